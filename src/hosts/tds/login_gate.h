// Who may log in, and when: failed logins make the next ones wait, and places are counted.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace tessarlorn::tds {

/// Shared by all clients of a server. May be used by several threads at once.
class LoginGate {
 public:
  using Clock = std::chrono::steady_clock;

  /// How long a login has to wait, after failed ones by the same user or from the same address: nothing after the first
  /// few, then twice as long each time, five seconds at most. Failures are forgotten after ten minutes.
  [[nodiscard]] std::chrono::milliseconds Delay(const std::string& user, const std::string& address,
                                                Clock::time_point now = Clock::now());
  void NoteFailure(const std::string& user, const std::string& address, Clock::time_point now = Clock::now());
  /// The user's failures are forgotten. Those of the address stay: it may have a user of its own.
  void NoteSuccess(const std::string& user);

  /// Waits so long, or until Stop().
  void Wait(std::chrono::milliseconds time);
  void Stop();

  /// What to log of a refused login: the line, which says how many before it were left out, or nothing when there were
  /// twenty within the last ten seconds already.
  std::optional<std::string> Line(const std::string& line, Clock::time_point now = Clock::now());

  /// Takes one of `places`; false when all are taken.
  bool Enter(std::size_t places);
  void Leave();

 private:
  struct Failures {
    int count = 0;
    Clock::time_point last;
  };
  [[nodiscard]] std::chrono::milliseconds DelayOf(const std::string& key, Clock::time_point now) const;
  void Count(const std::string& key, Clock::time_point now);

  std::mutex mutex_;
  std::condition_variable stop_;
  bool stopped_ = false;
  std::size_t inside_ = 0;
  Clock::time_point lines_since_;
  std::size_t lines_ = 0;
  std::size_t unsaid_ = 0;
  std::map<std::string, Failures> failures_;  // by "u" and the user, "a" and the address
};

}  // namespace tessarlorn::tds
