#include "drivers/odbc/cancel_watch.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <vector>

namespace tessarlorn::odbc {
namespace {

/// A request that comes before the batch is sent meets nothing to cancel, so it is repeated.
constexpr std::chrono::milliseconds kRepeat{50};

/// Counts requests and the end of the process. Waiting for it and waking it are allowed in a signal handler.
std::atomic<unsigned> wakeups{0};
static_assert(std::atomic<unsigned>::is_always_lock_free);

class Watch {
 public:
  Watch() : thread_([this] { Run(); }) {}
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;
  ~Watch() {
    ends_.store(true);
    wakeups.fetch_add(1);
    wakeups.notify_all();
    thread_.join();
  }

  void Add(const std::shared_ptr<CancelState>& state) {
    const std::scoped_lock lock(mutex_);
    std::erase_if(states_, [](const std::weak_ptr<CancelState>& known) { return known.expired(); });
    states_.push_back(state);
  }

 private:
  void Run() {
    for (unsigned seen = 0; !ends_.load();) {
      const unsigned now = wakeups.load();
      if (CancelAll()) {
        std::this_thread::sleep_for(kRepeat);
      } else if (now == seen) {
        wakeups.wait(seen);
      }
      seen = now;
    }
  }

  /// Whether a call that is to end was still running.
  bool CancelAll() {
    std::vector<std::shared_ptr<CancelState>> states;
    {
      const std::scoped_lock lock(mutex_);
      for (const std::weak_ptr<CancelState>& known : states_) {
        if (auto state = known.lock()) states.push_back(std::move(state));
      }
    }
    return std::count_if(states.begin(), states.end(), [](const auto& state) { return state->CancelRunning(); }) > 0;
  }

  std::mutex mutex_;
  std::vector<std::weak_ptr<CancelState>> states_;
  std::atomic<bool> ends_{false};
  std::thread thread_;
};

}  // namespace

std::shared_ptr<CancelState> CancelState::Make() {
  static Watch watch;
  auto state = std::make_shared<CancelState>();
  watch.Add(state);
  return state;
}

void CancelState::Request() noexcept {
  Phase in_call = Phase::kInCall;
  if (!phase_.compare_exchange_strong(in_call, Phase::kRequested)) return;
  wakeups.fetch_add(1);
  wakeups.notify_all();
}

void CancelState::SetInCall(bool in_call) noexcept { phase_.store(in_call ? Phase::kInCall : Phase::kIdle); }

void CancelState::SetRunning(SQLHSTMT statement) noexcept {
  const std::scoped_lock lock(mutex_);
  running_ = statement;
}

bool CancelState::CancelRunning() noexcept {
  if (!requested()) return false;
  const std::scoped_lock lock(mutex_);
  if (running_ != nullptr) SQLCancel(running_);
  return true;
}

}  // namespace tessarlorn::odbc
