// How far a long work is, on standard error.
#pragma once

#include <string>
#include <string_view>

namespace tessarlorn::cli {

/// A bar on a terminal, else a line for each tenth.
class Progress {
 public:
  /// @param things what is counted, as "orders"
  explicit Progress(std::string_view things) : things_(things) {}
  void Show(int done, int total);

 private:
  std::string things_;
  int shown_tenth_ = 0;
};

}  // namespace tessarlorn::cli
