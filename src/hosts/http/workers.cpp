#include "hosts/http/workers.h"

#include <utility>

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

Workers::Workers(Watchdog& dog, unsigned threads, std::size_t most_waiting) : most_waiting_(most_waiting) {
  for (unsigned i = 0; i < threads; ++i) threads_.emplace_back([this, &dog] { Run(dog); });
}

Workers::~Workers() {
  {
    const std::scoped_lock lock(mutex_);
    stopping_ = true;
    tasks_.clear();
  }
  wake_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

bool Workers::Post(Task task) {
  {
    const std::scoped_lock lock(mutex_);
    if (tasks_.size() >= most_waiting_ || stopping_) return false;
    tasks_.push_back(std::move(task));
  }
  wake_.notify_one();
  return true;
}

std::size_t Workers::waiting() const {
  const std::scoped_lock lock(mutex_);
  return tasks_.size();
}

void Workers::Run(Watchdog& dog) {
  BlockSignals();
  Watchdog::Thread self(dog);
  for (;;) {
    Task task;
    {
      std::unique_lock lock(mutex_);
      wake_.wait(lock, [this] { return stopping_ || !tasks_.empty(); });
      if (stopping_) return;
      task = std::move(tasks_.front());
      tasks_.pop_front();
    }
    task(self);
    self.Allow(Watchdog::Clock::time_point::max());
  }
}

}  // namespace tessarlorn::http
