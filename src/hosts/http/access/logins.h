// Who is calling: by a token, by a session of the page, or by a name and a password.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include "hosts/http/access/caller.h"
#include "tessarlorn/connection.h"

namespace tessarlorn::http {

/// When sessions end. Both count by the database's clock.
struct SessionTimes {
  /// Since the last call, of which the minute is kept.
  std::chrono::seconds idle{1800};
  /// Since the login.
  std::chrono::seconds whole{12 * 3600};
};

// All of these want a connection outside of any transaction. They raise what the database raises.

/// Nothing for a token that there is not, that has expired, or whose user is disabled.
std::optional<Caller> CallerOfToken(Connection& connection, std::string_view token);

/// Nothing for a session that there is not or that has ended, and when its user is disabled.
std::optional<Caller> CallerOfSession(Connection& connection, std::string_view cookie, const SessionTimes& times);

/// The outcome of a login. Without a caller the name or the password is wrong, or `wait` says how long nobody may try.
struct Login {
  std::string cookie;
  std::optional<Caller> caller;
  /// Rounded up.
  std::chrono::seconds wait{0};
};

/// Begins a session. Takes a tenth of a second, and as long for a user that there is not. At most two passwords are
/// checked at once in this process; others wait three seconds at most.
/// @param address the client's, "" when unknown: all of these are one address then
Login LogIn(Connection& connection, std::string_view user, std::string_view password, std::string_view address);

/// Ends a session; one that there is not is no error.
void LogOut(Connection& connection, std::string_view cookie);
/// Ends all sessions of a user. Tokens stay.
void LogOutEverywhere(Connection& connection, std::string_view user);

/// Removes sessions that have ended and failed logins that are forgotten. Tokens that have expired stay, for the list.
void SweepAccess(Connection& connection, const SessionTimes& times);

}  // namespace tessarlorn::http
