// A copy of the database that takes reads, and whether it is near enough.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include "tessarlorn/host.h"

namespace tessarlorn::http {

/// Once a second the database gets a beat, and the copy is asked how old the last one is that it has. Used by several
/// threads at once.
class Replica {
 public:
  /// @param primary and replica session strings; @param longest_lag of which reads may know nothing yet
  Replica(Host& host, std::string primary, std::string replica, std::chrono::seconds longest_lag);
  Replica(const Replica&) = delete;
  Replica& operator=(const Replica&) = delete;
  ~Replica();

  /// Whether reads may go there.
  [[nodiscard]] bool usable() const noexcept { return usable_; }
  /// It failed: it gets no reads until it has answered again.
  void Doubt() noexcept { usable_ = false; }

 private:
  void Run();
  [[nodiscard]] bool Look();

  Host& host_;
  const std::string primary_;
  const std::string replica_;
  const std::chrono::milliseconds longest_lag_;
  std::atomic<bool> usable_{false};
  std::mutex mutex_;
  std::condition_variable stop_;
  bool stopping_ = false;
  std::thread thread_;
};

}  // namespace tessarlorn::http
