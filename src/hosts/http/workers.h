// Threads that make calls, and the watch that ends calls which take too long.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <list>
#include <mutex>
#include <thread>
#include <vector>

#include "hosts/http/waiting_line.h"
#include "tessarlorn/connection.h"

namespace tessarlorn::http {

/// Cancels the batches of threads whose time is over. Used by several threads at once.
class Watchdog {
 public:
  using Clock = std::chrono::steady_clock;

  /// What a thread is doing; made once on each thread that makes calls, and gone before the watchdog.
  class Thread {
   public:
    explicit Thread(Watchdog& dog);
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;
    ~Thread();
    /// From now on batches may run until then; Clock::time_point::max() for as long as they want.
    void Allow(Clock::time_point until) noexcept { until_ = until; }

   private:
    friend class Watchdog;
    Watchdog& dog_;
    std::atomic<Connection*> running_{nullptr};
    std::atomic<Clock::time_point> until_{Clock::time_point::max()};
  };

  Watchdog();
  Watchdog(const Watchdog&) = delete;
  Watchdog& operator=(const Watchdog&) = delete;
  ~Watchdog();

 private:
  void Run();

  std::mutex mutex_;
  std::condition_variable stop_;
  bool stopping_ = false;
  std::list<Thread*> threads_;
  std::thread thread_;
};

/// Runs tasks on threads of its own, in the order in which they came. Used by several threads at once.
class Workers {
 public:
  using Task = std::function<void(Watchdog::Thread&)>;

  /// @param most_waiting tasks that may wait for a thread
  Workers(Watchdog& dog, unsigned threads, std::size_t most_waiting);
  Workers(const Workers&) = delete;
  Workers& operator=(const Workers&) = delete;
  /// Waits for what is running; what waits is dropped.
  ~Workers();

  /// False when too many wait.
  bool Post(Task task);
  [[nodiscard]] std::size_t waiting() const { return tasks_.size(); }

 private:
  void Run(Watchdog& dog);

  WaitingLine<Task> tasks_;
  std::vector<std::thread> threads_;
};

}  // namespace tessarlorn::http
