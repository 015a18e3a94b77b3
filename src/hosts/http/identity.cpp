#include "hosts/http/identity.h"

#include <algorithm>

#include "hosts/http/answers/problem.h"
#include "platform/text/text.h"

namespace tessarlorn::http {
namespace {

constexpr std::chrono::seconds kRemembered{1};
constexpr std::size_t kMostRemembered = 10'000;
constexpr std::string_view kBearer = "Bearer ";

/// The prefix binds it to this host and to TLS.
std::string_view CookieName(bool secure) { return secure ? "__Host-tessarlorn" : "tessarlorn"; }

std::string_view CookieOf(const Request& request) {
  for (const std::string_view part : Split(request.Header("Cookie"), ';')) {
    const std::size_t equals = part.find('=');
    if (equals == std::string_view::npos) continue;
    if (Trim(part.substr(0, equals)) == CookieName(request.secure)) return Trim(part.substr(equals + 1));
  }
  return {};
}

bool Changes(const Request& request) { return request.method != "GET" && request.method != "HEAD"; }

}  // namespace

Credentials CredentialsOf(const Request& request) {
  const std::string_view authorization = request.Header("Authorization");
  if (StartsWithIgnoreCase(authorization, kBearer)) {
    return {.token = std::string(Trim(authorization.substr(kBearer.size()))), .cookie = {}};
  }
  return {.token = {}, .cookie = std::string(CookieOf(request))};
}

std::string SessionCookie(const std::string& cookie, bool secure) {
  std::string header(CookieName(secure));
  header += "=" + cookie + "; Path=/; HttpOnly; SameSite=Strict";
  if (secure) header += "; Secure";
  return cookie.empty() ? header + "; Max-Age=0" : header;
}

void RefuseForeignPage(const Request& request, bool required) {
  const std::string_view site = request.Header("Sec-Fetch-Site");
  if (!site.empty()) {
    if (site == "same-origin" || site == "none") return;
    Refuse(403, "the request comes from another site's page");
  }
  const std::string_view origin = request.Header("Origin");
  const std::size_t slashes = origin.find("://");
  if (!origin.empty() && (slashes == std::string_view::npos || origin.substr(slashes + 3) != request.Header("Host"))) {
    Refuse(403, "the request comes from another site's page");
  }
  if (origin.empty() && required && Changes(request)) {
    Refuse(403, "a session's request tells where it comes from, by Sec-Fetch-Site or Origin; programs use tokens");
  }
}

void Callers::RequireShown(const Request& request, const Credentials& shown) {
  if (shown.token.empty() && shown.cookie.empty()) Refuse(401, "log in, or send Authorization: Bearer with a token");
  if (shown.token.empty()) RefuseForeignPage(request, true);
}

void Callers::RequireKnown(const std::optional<Caller>& caller) {
  if (!caller) Refuse(401, "the token or session is not known, or has ended");
}

std::optional<Caller> Callers::Remembered(const std::string& key) {
  const std::scoped_lock lock(mutex_);
  const auto found = entries_.find(key);
  if (found == entries_.end() || found->second.until < Clock::now()) return std::nullopt;
  return found->second.caller;
}

void Callers::Remember(const std::string& key, const Caller& caller) {
  const std::scoped_lock lock(mutex_);
  if (entries_.size() >= kMostRemembered) entries_.clear();
  entries_.insert_or_assign(key, Entry{caller, Clock::now() + kRemembered});
}

void Callers::Forget() {
  const std::scoped_lock lock(mutex_);
  entries_.clear();
}

}  // namespace tessarlorn::http
