#include "hosts/tds/login_gate.h"

#include <algorithm>
#include <utility>

#include "platform/text/text.h"

namespace tessarlorn::tds {
namespace {

using std::chrono::milliseconds;

constexpr int kFree = 3;
constexpr milliseconds kFirst{250};
constexpr milliseconds kLongest{5000};
constexpr std::chrono::minutes kForgotten{10};
/// So many users and addresses are kept; beyond that the one whose failure is the longest ago goes.
constexpr std::size_t kMostKept = 4096;

std::string UserKey(const std::string& user) { return "u" + LowerCase(user.substr(0, 128)); }
std::string AddressKey(const std::string& address) { return "a" + address; }

}  // namespace

milliseconds LoginGate::DelayOf(const std::string& key, Clock::time_point now) const {
  const auto found = failures_.find(key);
  if (found == failures_.end() || now - found->second.last > kForgotten) return milliseconds(0);
  const int beyond = found->second.count - kFree;
  if (beyond <= 0) return milliseconds(0);
  constexpr int kMostDoublings = 10;
  return std::min(kFirst * (1 << std::min(beyond - 1, kMostDoublings)), kLongest);
}

milliseconds LoginGate::Delay(const std::string& user, const std::string& address, Clock::time_point now) {
  const std::scoped_lock lock(mutex_);
  return std::max(DelayOf(UserKey(user), now), DelayOf(AddressKey(address), now));
}

void LoginGate::Count(const std::string& key, Clock::time_point now) {
  if (failures_.size() >= kMostKept && !failures_.contains(key)) {
    std::erase_if(failures_, [now](const auto& entry) { return now - entry.second.last > kForgotten; });
  }
  if (failures_.size() >= kMostKept && !failures_.contains(key)) {
    failures_.erase(std::min_element(failures_.begin(), failures_.end(),
                                     [](const auto& a, const auto& b) { return a.second.last < b.second.last; }));
  }
  Failures& failures = failures_[key];
  if (now - failures.last > kForgotten) failures.count = 0;
  ++failures.count;
  failures.last = now;
}

void LoginGate::NoteFailure(const std::string& user, const std::string& address, Clock::time_point now) {
  const std::scoped_lock lock(mutex_);
  Count(UserKey(user), now);
  Count(AddressKey(address), now);
}

void LoginGate::NoteSuccess(const std::string& user) {
  const std::scoped_lock lock(mutex_);
  failures_.erase(UserKey(user));
}

void LoginGate::Wait(milliseconds time) {
  std::unique_lock lock(mutex_);
  stop_.wait_for(lock, time, [this] { return stopped_; });
}

void LoginGate::Stop() {
  {
    const std::scoped_lock lock(mutex_);
    stopped_ = true;
  }
  stop_.notify_all();
}

std::optional<std::string> LoginGate::Line(const std::string& line, Clock::time_point now) {
  constexpr std::size_t kMostLines = 20;
  constexpr std::chrono::seconds kWindow{10};
  const std::scoped_lock lock(mutex_);
  if (now - lines_since_ > kWindow) {
    lines_since_ = now;
    lines_ = 0;
  }
  if (lines_ >= kMostLines) {
    ++unsaid_;
    return std::nullopt;
  }
  ++lines_;
  const std::size_t unsaid = std::exchange(unsaid_, 0);
  return unsaid == 0 ? line : line + " (" + std::to_string(unsaid) + " lines of refused logins before were left out)";
}

bool LoginGate::Enter(std::size_t places) {
  const std::scoped_lock lock(mutex_);
  if (inside_ >= places) return false;
  ++inside_;
  return true;
}

void LoginGate::Leave() {
  const std::scoped_lock lock(mutex_);
  --inside_;
}

}  // namespace tessarlorn::tds
