#include "hosts/http/answers/problem.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "hosts/calls/json_text.h"

namespace tessarlorn::http {
namespace {

struct Title {
  int status;
  std::string_view text;
};

constexpr std::array kTitles = {
    Title{400, "Bad Request"},
    Title{401, "Unauthorized"},
    Title{403, "Forbidden"},
    Title{404, "Not Found"},
    Title{405, "Method Not Allowed"},
    Title{406, "Not Acceptable"},
    Title{408, "Request Timeout"},
    Title{409, "Conflict"},
    Title{413, "Content Too Large"},
    Title{415, "Unsupported Media Type"},
    Title{422, "Unprocessable Content"},
    Title{429, "Too Many Requests"},
    Title{431, "Request Header Fields Too Large"},
    Title{500, "Internal Server Error"},
    Title{503, "Service Unavailable"},
    Title{504, "Gateway Timeout"},
};

void AppendMember(std::string& json, std::string_view name, std::string_view text) {
  json += ",\"";
  json.append(name).append("\":");
  AppendJsonText(json, text);
}

void AppendError(std::string& json, const Error& error) {
  json += ",\"number\":" + std::to_string(error.number());
  std::array<char, 11> hex{};
  std::snprintf(hex.data(), hex.size(), "0x%08X", static_cast<unsigned>(error.number()));
  AppendMember(json, "hex", hex.data());
  AppendMember(json, "source", error.source());
  AppendMember(json, "description", error.description());
  if (error.native().number != 0) json += ",\"native\":" + std::to_string(error.native().number);
  if (!error.native().sqlstate.empty()) AppendMember(json, "sqlstate", error.native().sqlstate);
}

}  // namespace

std::string_view TitleOf(int status) {
  const auto* const found =
      std::find_if(kTitles.begin(), kTitles.end(), [status](const Title& title) { return title.status == status; });
  return found == kTitles.end() ? "Error" : found->text;
}

Problem ProblemOf(const Error& error) {
  constexpr int kRetrySeconds = 2;
  // A lock that nobody gave up in time, a victim of a deadlock, a write that somebody else's came before.
  constexpr std::array<std::int32_t, 3> kBusy = {1205, 1222, 3960};
  Problem problem{.status = 500, .detail = error.description(), .key = {}, .error = error};
  const std::int32_t native = error.native().number;
  // SQLSTATE class 08 is that of connections.
  const bool unreachable = error.number() == error_number::kLoginRefused || error.native().sqlstate.starts_with("08");
  if (unreachable || std::find(kBusy.begin(), kBusy.end(), native) != kBusy.end()) {
    problem.status = 503;
    problem.retry_after = kRetrySeconds;
  } else if (error.number() == error_number::kTimeout || error.number() == error_number::kCancelled) {
    problem.status = 504;
  }
  return problem;
}

std::string ProblemJson(const Problem& problem, std::string_view request) {
  std::string json = "{\"title\":";
  AppendJsonText(json, TitleOf(problem.status));
  json += ",\"status\":" + std::to_string(problem.status);
  AppendMember(json, "detail", problem.detail);
  if (!problem.key.empty()) AppendMember(json, "key", problem.key);
  if (problem.error) AppendError(json, *problem.error);
  if (!request.empty()) AppendMember(json, "request", request);
  return json + "}";
}

Response ProblemResponse(const Problem& problem, std::string_view request) {
  Response response{.status = problem.status,
                    .headers = {{"Content-Type", "application/problem+json"}, {"Cache-Control", "no-store"}},
                    .body = ProblemJson(problem, request)};
  if (problem.status == 401) response.headers.emplace_back("WWW-Authenticate", "Bearer");
  if (!problem.allow.empty()) response.headers.emplace_back("Allow", problem.allow);
  if (problem.retry_after > 0) response.headers.emplace_back("Retry-After", std::to_string(problem.retry_after));
  return response;
}

std::string_view SafetyHeaders(bool secure) {
  static constexpr std::string_view kLines =
      "Strict-Transport-Security: max-age=31536000\r\n"
      "X-Content-Type-Options: nosniff\r\n"
      "Content-Security-Policy: default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; "
      "connect-src 'self'; form-action 'self'; base-uri 'none'; frame-ancestors 'none'\r\n"
      "X-Frame-Options: DENY\r\n"
      "Referrer-Policy: no-referrer\r\n"
      "Cross-Origin-Resource-Policy: same-origin\r\n";
  return secure ? kLines : kLines.substr(kLines.find('\n') + 1);
}

}  // namespace tessarlorn::http
