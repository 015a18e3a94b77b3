#include "cli/terminal.h"

#ifdef _WIN32
#include <io.h>
#else
#include <sys/ioctl.h>
#include <unistd.h>
#endif

namespace tessarlorn::cli {
namespace {

constexpr int kOutput = 1;
constexpr int kError = 2;
constexpr std::size_t kUsualWidth = 80;

bool IsTerminal(int descriptor) noexcept {
#ifdef _WIN32
  return _isatty(descriptor) != 0;
#else
  return isatty(descriptor) != 0;
#endif
}

}  // namespace

bool IsOutputTerminal() noexcept { return IsTerminal(kOutput); }

bool IsErrorTerminal() noexcept { return IsTerminal(kError); }

std::size_t OutputWidth() noexcept {
  if (!IsOutputTerminal()) return 0;
#ifndef _WIN32
  winsize size{};
  if (ioctl(kOutput, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
#endif
  return kUsualWidth;
}

}  // namespace tessarlorn::cli
