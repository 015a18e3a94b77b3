// What waits for threads that take it up.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <utility>

namespace tessarlorn::http {

/// First come, first taken. Used by several threads at once.
template <typename Item>
class WaitingLine {
 public:
  /// @param most items that may wait
  explicit WaitingLine(std::size_t most) : most_(most) {}

  /// False, and leaves the item, when too many wait, or the line has ended.
  bool Post(Item& item) {
    {
      const std::scoped_lock lock(mutex_);
      if (items_.size() >= most_ || ended_) return false;
      items_.push_back(std::move(item));
    }
    wake_.notify_one();
    return true;
  }

  /// Waits for the next item; nothing when the line has ended.
  std::optional<Item> Take() {
    std::unique_lock lock(mutex_);
    wake_.wait(lock, [this] { return ended_ || !items_.empty(); });
    return TakeFirst();
  }

  /// The next item when it is wanted, without waiting.
  template <typename Wants>
  std::optional<Item> TakeIf(const Wants& wants) {
    const std::scoped_lock lock(mutex_);
    if (items_.empty() || !wants(items_.front())) return std::nullopt;
    return TakeFirst();
  }

  [[nodiscard]] std::size_t size() const {
    const std::scoped_lock lock(mutex_);
    return items_.size();
  }

  /// Drops what waits, and what would come.
  void End() {
    std::deque<Item> dropped;
    {
      const std::scoped_lock lock(mutex_);
      ended_ = true;
      dropped.swap(items_);
    }
    wake_.notify_all();
  }

 private:
  std::optional<Item> TakeFirst() {
    if (items_.empty()) return std::nullopt;
    std::optional<Item> item(std::move(items_.front()));
    items_.pop_front();
    return item;
  }

  const std::size_t most_;
  mutable std::mutex mutex_;
  std::condition_variable wake_;
  std::deque<Item> items_;
  bool ended_ = false;
};

}  // namespace tessarlorn::http
