#include "hosts/http/workers.h"

#include <optional>

#include "hosts/http/transport/signals.h"

namespace tessarlorn::http {
namespace {

constexpr std::chrono::milliseconds kWatchEvery{100};

}  // namespace

Watchdog::Thread::Thread(Watchdog& dog) : dog_(dog) {
  ShowRunningConnection(&running_);
  const std::scoped_lock lock(dog_.mutex_);
  dog_.threads_.push_back(this);
}

Watchdog::Thread::~Thread() {
  {
    const std::scoped_lock lock(dog_.mutex_);
    dog_.threads_.remove(this);
  }
  ShowRunningConnection(nullptr);
}

Watchdog::Watchdog() : thread_([this] { Run(); }) {}

Watchdog::~Watchdog() {
  {
    const std::scoped_lock lock(mutex_);
    stopping_ = true;
  }
  stop_.notify_all();
  thread_.join();
}

void Watchdog::Run() {
  BlockSignals();
  std::unique_lock lock(mutex_);
  while (!stop_.wait_for(lock, kWatchEvery, [this] { return stopping_; })) {
    const Clock::time_point now = Clock::now();
    for (Thread* const thread : threads_) {
      if (now < thread->until_.load()) continue;
      // While it is taken out the batch does not end. A cancel that comes too early is lost, and comes again.
      Connection* const connection = thread->running_.exchange(nullptr);
      if (connection == nullptr) continue;
      connection->Cancel();
      thread->running_.store(connection);
    }
  }
}

Workers::Workers(Watchdog& dog, unsigned threads, std::size_t most_waiting) : tasks_(most_waiting) {
  for (unsigned i = 0; i < threads; ++i) threads_.emplace_back([this, &dog] { Run(dog); });
}

Workers::~Workers() {
  tasks_.End();
  for (std::thread& thread : threads_) thread.join();
}

bool Workers::Post(Task task) { return tasks_.Post(task); }

void Workers::Run(Watchdog& dog) {
  BlockSignals();
  Watchdog::Thread self(dog);
  while (const std::optional<Task> task = tasks_.Take()) {
    (*task)(self);
    self.Allow(Watchdog::Clock::time_point::max());
  }
}

}  // namespace tessarlorn::http
