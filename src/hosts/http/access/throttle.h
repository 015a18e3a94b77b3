// How often a password may be guessed: failures are counted in the database, for each user and each address.
#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include "tessarlorn/connection.h"

namespace tessarlorn::http {

/// An attempt that is counted as a failure until it is taken back. Nothing waits for the first five failures of a user
/// or from an address; then each makes the next attempt wait, a second at first, twice as long each time, five minutes
/// at most. Failures are forgotten an hour after the last one.
class Attempt {
 public:
  /// Counts the attempt, unless it has to wait. Attempts that come at once are counted one after the other.
  /// @param user "" for what is no name
  Attempt(Connection& connection, std::string_view user, std::string_view address);

  /// How long the next attempt has to wait; this one was not counted then. 0 when it may go on.
  [[nodiscard]] std::chrono::milliseconds wait() const noexcept { return wait_; }
  /// It was no guess after all: the counts are as before.
  void TakeBack(Connection& connection) const;
  /// What forgets the failures of the user and takes the attempt back for the address. It is part of a batch that has
  /// Parameters(), too.
  static constexpr std::string_view kForgive = R"(
UPDATE DoorThrottle SET FFailures=CASE WHEN FFailures>0 THEN FFailures-1 ELSE 0 END,
  FLast=CASE WHEN FLast=@at THEN @addressBefore ELSE FLast END
WHERE FKey=@address
DELETE FROM DoorThrottle WHERE FKey=@user
)";
  [[nodiscard]] std::vector<SqlParameter> Parameters() const;

 private:
  std::string user_;
  std::string address_;
  std::chrono::milliseconds wait_{0};
  /// When it was counted, and when the attempts before it were.
  Variant at_;
  Variant user_before_;
  Variant address_before_;
};

/// Forgets failures that are more than an hour old.
void SweepThrottle(Connection& connection);

}  // namespace tessarlorn::http
