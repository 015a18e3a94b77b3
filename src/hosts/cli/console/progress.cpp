#include "hosts/cli/console/progress.h"

#include <cstdint>
#include <iostream>

#include "hosts/cli/console/terminal.h"

namespace tessarlorn::cli {

void Progress::Show(int done, int total) {
  if (total <= 0) return;
  const int tenth = static_cast<int>(std::int64_t{done} * 10 / total);
  if (IsErrorTerminal()) {
    constexpr int kBarWidth = 40;
    const auto filled = static_cast<std::size_t>(std::int64_t{done} * kBarWidth / total);
    std::cerr << "\r[" << std::string(filled, '#') << std::string(kBarWidth - filled, '.') << "] " << done << " of "
              << total << ' ' << things_ << (done >= total ? "\n" : "") << std::flush;
  } else if (tenth > shown_tenth_) {
    std::cerr << done << " of " << total << ' ' << things_ << '\n' << std::flush;
  }
  shown_tenth_ = tenth;
}

}  // namespace tessarlorn::cli
