// How much memory the batch that runs may take, so that no client takes the machine.
#pragma once

#include <algorithm>
#include <cstddef>

#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {

/// Counts what a batch makes of its text, in rough bytes: tokens, trees, rows on their way into a table. A batch may
/// take 20 times its own size and 100 MB, and never more than the session's limit.
class MemoryBudget {
 public:
  static constexpr std::size_t kMegabyte = std::size_t{1} << 20;
  static constexpr std::size_t kDefaultLimit = 1024 * kMegabyte;

  explicit MemoryBudget(std::size_t limit) : limit_(limit) {}

  void Begin(std::size_t batch) {
    used_ = 0;
    most_ = std::min(limit_, 20 * batch + 100 * kMegabyte);
  }
  [[nodiscard]] std::size_t used() const noexcept { return used_; }
  void ReleaseTo(std::size_t used) noexcept { used_ = used; }
  /// Raises 701 when that is too much.
  void Charge(std::size_t bytes) {
    used_ += bytes;
    if (used_ > most_) throw OutOfMemory(most_ / kMegabyte);
  }
  /// The same for what goes at once, as the result of a function. It counts against the session's limit only: a small
  /// batch may make a large value.
  void Require(std::size_t bytes) const {
    if (used_ + bytes > limit_) throw OutOfMemory(limit_ / kMegabyte);
  }

 private:
  std::size_t limit_;
  std::size_t most_ = kDefaultLimit;
  std::size_t used_ = 0;
};

}  // namespace tessarlorn::tsql
