// Random choices that come out the same on every machine, unlike the distributions of the standard library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <span>
#include <utility>

namespace tessarlorn::cli {

class Random {
 public:
  explicit Random(std::uint64_t seed) : engine_(seed) {}

  /// 0 to `limit` - 1. @pre limit > 0
  std::int64_t Below(std::int64_t limit) {
    return static_cast<std::int64_t>(engine_() % static_cast<std::uint64_t>(limit));
  }
  /// Both ends included.
  std::int64_t Between(std::int64_t low, std::int64_t high) { return low + Below(high - low + 1); }
  bool Percent(int chance) { return Below(100) < chance; }
  /// @pre items is not empty
  template <typename Items>
  const auto& Pick(const Items& items) {
    return items[static_cast<std::size_t>(Below(static_cast<std::int64_t>(std::size(items))))];
  }
  template <typename Item>
  void Shuffle(std::span<Item> items) {
    for (std::size_t i = items.size(); i > 1; --i) {
      std::swap(items[i - 1], items[static_cast<std::size_t>(Below(static_cast<std::int64_t>(i)))]);
    }
  }

 private:
  std::mt19937_64 engine_;
};

}  // namespace tessarlorn::cli
