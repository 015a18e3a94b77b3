#include "hosts/tds/transport/watcher.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace tessarlorn::tds {
namespace {

/// How long a batch runs before it is looked at, and how often a cancel is repeated.
constexpr std::chrono::milliseconds kGrace{20};

}  // namespace

Watcher::Watcher() : thread_([this] { Run(); }) {}

Watcher::~Watcher() {
  {
    const std::scoped_lock lock(mutex_);
    stopping_ = true;
  }
  wake_.notify_all();
  thread_.join();
}

void Watcher::Add(Watched& client) {
  bool wake = false;
  {
    const std::scoped_lock lock(mutex_);
    running_.push_back(&client);
    wake = std::exchange(asleep_, false);
  }
  if (wake) wake_.notify_all();
}

void Watcher::Remove(Watched& client) {
  const std::scoped_lock lock(mutex_);
  std::erase(running_, &client);
}

void Watcher::Run() {
  std::vector<Watched*> seen;
  std::vector<Watched*> waiting;
  std::vector<pollfd> wanted;
  std::unique_lock lock(mutex_);
  while (!stopping_) {
    if (running_.empty()) seen.clear();
    // The batch that woke this thread may be over when it is awake.
    while (!stopping_ && running_.empty()) {
      asleep_ = true;
      wake_.wait(lock);
    }
    asleep_ = false;
    // Those that were running at the last look have run for a while now.
    wanted.clear();
    waiting.clear();
    for (Watched* const client : seen) {
      if (std::find(running_.begin(), running_.end(), client) == running_.end()) continue;
      client->CancelIfWanted();
      if (const pollfd events = client->watched(); events.fd >= 0) {
        wanted.push_back(events);
        waiting.push_back(client);
      }
    }
    seen = running_;
    if (wanted.empty()) {
      wake_.wait_for(lock, kGrace, [this] { return stopping_; });
      continue;
    }
    lock.unlock();
    const int ready = poll(wanted.data(), wanted.size(), static_cast<int>(kGrace.count()));
    lock.lock();
    for (std::size_t i = 0; ready > 0 && i < wanted.size(); ++i) {
      if (wanted[i].revents == 0) continue;
      if (std::find(running_.begin(), running_.end(), waiting[i]) == running_.end()) continue;
      waiting[i]->Look((wanted[i].revents & (POLLRDHUP | POLLHUP | POLLERR)) != 0);
      waiting[i]->CancelIfWanted();
    }
  }
}

}  // namespace tessarlorn::tds
