// Watches the clients whose batch is running: an attention or the end of the connection cancels it.
#pragma once

#include <condition_variable>
#include <mutex>
#include <poll.h>
#include <thread>
#include <vector>

namespace tessarlorn::tds {

/// A client as the watcher sees it; its functions are called on the watcher's thread.
class Watched {
 public:
  Watched() = default;
  Watched(const Watched&) = delete;
  Watched& operator=(const Watched&) = delete;
  virtual ~Watched() = default;

  /// Descriptor and events to wait for; a descriptor of -1 when there is nothing more to wait for.
  [[nodiscard]] virtual pollfd watched() const noexcept = 0;
  /// One of the events came. @param hung_up the other end is gone, or will send no more
  virtual void Look(bool hung_up) noexcept = 0;
  /// Cancels the batch when it is to end. Called again until it has ended, since a cancel that comes before the batch
  /// has begun is lost.
  virtual void CancelIfWanted() noexcept = 0;
};

/// One thread for all clients. It sleeps while no batch runs, and looks at one only when it has run for a while: short
/// ones cost two locks.
class Watcher {
 public:
  Watcher();
  Watcher(const Watcher&) = delete;
  Watcher& operator=(const Watcher&) = delete;
  ~Watcher();

  void Add(Watched& client);
  /// Afterwards none of the client's functions is called any more.
  void Remove(Watched& client);

 private:
  void Run();

  std::mutex mutex_;
  std::condition_variable wake_;
  std::vector<Watched*> running_;
  bool asleep_ = false;
  bool stopping_ = false;
  std::thread thread_;
};

}  // namespace tessarlorn::tds
