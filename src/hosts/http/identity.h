// Who sent a request: by its token or its session's cookie.
#pragma once

#include <chrono>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "hosts/http/access/logins.h"
#include "hosts/http/safety/order_access.h"
#include "hosts/http/transport/message.h"

namespace tessarlorn::http {

/// What a request shows of its sender.
struct Credentials {
  /// "" for none.
  std::string token;
  std::string cookie;
};

Credentials CredentialsOf(const Request& request);

/// The header Set-Cookie for a session, or for its end when `cookie` is "".
std::string SessionCookie(const std::string& cookie, bool secure);

/// Raises Refusal 403 for a request that another site's page may have sent with the user's cookie: one that comes
/// neither from a page of this server nor from the address line.
/// @param required whether one that changes something and does not tell where it comes from is refused
void RefuseForeignPage(const Request& request, bool required);

/// Remembers callers for a second, so that not every request asks the database. Used by several threads at once.
class Callers {
 public:
  using Clock = std::chrono::steady_clock;

  /// Raises Refusal 401, and 403 as RefuseForeignPage. @param connection answers a connection outside of transactions
  template <typename Connect>
  Caller Find(const Request& request, const SessionTimes& times, const Connect& connection) {
    const Credentials shown = CredentialsOf(request);
    RequireShown(request, shown);
    const std::string remembered = shown.token.empty() ? "c" + shown.cookie : "t" + shown.token;
    if (std::optional<Caller> caller = Remembered(remembered)) return *std::move(caller);
    Connection& database = connection();
    std::optional<Caller> caller =
        shown.token.empty() ? CallerOfSession(database, shown.cookie, times) : CallerOfToken(database, shown.token);
    RequireKnown(caller);
    caller->every_shop = SeesEveryShop(database, caller->user);
    Remember(remembered, *caller);
    return *std::move(caller);
  }
  /// After a login or logout.
  void Forget();

 private:
  struct Entry {
    Caller caller;
    Clock::time_point until;
  };
  static void RequireShown(const Request& request, const Credentials& shown);
  static void RequireKnown(const std::optional<Caller>& caller);
  std::optional<Caller> Remembered(const std::string& key);
  void Remember(const std::string& key, const Caller& caller);

  std::mutex mutex_;
  std::map<std::string, Entry> entries_;
};

}  // namespace tessarlorn::http
