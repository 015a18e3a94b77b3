// How long the server waits for a client.
#pragma once

#include <algorithm>
#include <chrono>

namespace tessarlorn::tds {

/// A moment that is so far away when it is made.
class Deadline {
 public:
  explicit Deadline(std::chrono::milliseconds time) : time_(time), moment_(std::chrono::steady_clock::now() + time) {}

  /// The time that it was made with.
  [[nodiscard]] std::chrono::milliseconds time() const noexcept { return time_; }
  /// 0 once the moment has passed.
  [[nodiscard]] std::chrono::milliseconds left() const noexcept {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(moment_ - std::chrono::steady_clock::now());
    return std::max(left, std::chrono::milliseconds(0));
  }
  [[nodiscard]] bool has_passed() const noexcept { return left().count() == 0; }

 private:
  std::chrono::milliseconds time_;
  std::chrono::steady_clock::time_point moment_;
};

}  // namespace tessarlorn::tds
