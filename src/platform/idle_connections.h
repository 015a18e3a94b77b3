// The connections that sessions gave back.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "tessarlorn/connection.h"

namespace tessarlorn {

struct TextHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const noexcept { return std::hash<std::string_view>{}(text); }
};
template <typename T>
using ByText = std::unordered_map<std::string, T, TextHash, std::equal_to<>>;

/// They belong to no thread. A thread that ends could not close its own: on Windows it must not wait for others then.
class IdleConnections {
 public:
  /// nullptr when there is none.
  std::shared_ptr<Connection> Take(const std::string& database) {
    const std::scoped_lock lock(mutex_);
    const auto found = idle_.find(database);
    while (found != idle_.end() && !found->second.empty()) {
      std::shared_ptr<Connection> connection = std::move(found->second.back());
      found->second.pop_back();
      if (connection->usable()) return connection;
    }
    return nullptr;
  }

  /// Keeps the connection, or closes it when there are enough.
  void Put(const std::string& database, std::shared_ptr<Connection> connection) {
    const std::scoped_lock lock(mutex_);
    auto& idle = idle_[database];
    if (idle.size() < kMostIdle) idle.push_back(std::move(connection));
  }

  void Close() noexcept {
    ByText<std::vector<std::shared_ptr<Connection>>> closing;
    const std::scoped_lock lock(mutex_);
    closing.swap(idle_);
  }

 private:
  /// Of one database string.
  static constexpr std::size_t kMostIdle = 16;

  std::mutex mutex_;
  ByText<std::vector<std::shared_ptr<Connection>>> idle_;
};

}  // namespace tessarlorn
