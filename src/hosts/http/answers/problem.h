// What went wrong with a request, as application/problem+json (RFC 9457).
#pragma once

#include <exception>
#include <optional>
#include <string>
#include <string_view>

#include "hosts/http/transport/message.h"
#include "tessarlorn/error.h"

namespace tessarlorn::http {

struct Problem {
  int status = 500;
  /// One sentence without an end, for people.
  std::string detail;
  /// The argument or key at fault, as "dctPara.FID"; "" for none.
  std::string key = {};
  /// What the operation or the database raised.
  std::optional<Error> error = {};
  /// Seconds after which it may go better; 0 when that is not known.
  int retry_after = 0;
  /// With 405, the methods that are taken.
  std::string allow = {};
};

/// Raised where a request cannot be done; the door answers it.
class Refusal : public std::exception {
 public:
  explicit Refusal(Problem problem) : problem_(std::move(problem)) {}
  [[nodiscard]] const Problem& problem() const noexcept { return problem_; }
  [[nodiscard]] const char* what() const noexcept override { return problem_.detail.c_str(); }

 private:
  Problem problem_;
};

[[noreturn]] inline void Refuse(int status, std::string detail, std::string key = {}) {
  throw Refusal({.status = status, .detail = std::move(detail), .key = std::move(key)});
}

/// @param what takes the methods, as "GET, HEAD"
[[noreturn]] inline void RefuseMethod(const std::string& what, const std::string& methods) {
  throw Refusal({.status = 405, .detail = what + " takes " + methods, .allow = methods});
}

/// The status of what an operation or the database raised: 504 for a time-out or a cancelled batch, 503 for a database
/// that cannot be reached or is busy, 500 for everything else.
Problem ProblemOf(const Error& error);

/// "Not Found", …
std::string_view TitleOf(int status);

/// The problem as JSON. @param request the request's id
std::string ProblemJson(const Problem& problem, std::string_view request);
Response ProblemResponse(const Problem& problem, std::string_view request);

/// Header lines that keep a browser safe, for every answer: what the answer is, that it is nobody's frame, and where
/// scripts may come from.
std::string_view SafetyHeaders(bool secure);

}  // namespace tessarlorn::http
