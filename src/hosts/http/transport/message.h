// A request and its answer, as the door sees them, whatever library carries them.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tessarlorn::http {

using Headers = std::vector<std::pair<std::string, std::string>>;

/// The value of the first header of that name without regard to case, "" when there is none.
std::string_view HeaderOf(const Headers& headers, std::string_view name);

/// What is wrong with the headers of a request, nullptr for nothing: where its body ends is said in one way only, and
/// so is the host. Proxies in front may read anything else otherwise than this server.
/// @param old whether it is a request of HTTP/1.0
const char* FaultOfHeaders(const Headers& headers, bool old);

struct Request {
  /// "GET", "POST", … as sent.
  std::string method;
  /// Path and query as sent, "/api/v1/me?x=1".
  std::string target;
  Headers headers;
  std::string body;
  /// Numeric address of the other end of the connection.
  std::string peer;
  /// Whether it came over TLS.
  bool secure = false;

  [[nodiscard]] std::string_view Header(std::string_view name) const { return HeaderOf(headers, name); }
};

struct Response {
  int status = 200;
  /// Values are without line breaks: whoever makes them takes care of that.
  Headers headers = {};
  /// Lines of headers that many answers have, each with its CR LF; a text that stays.
  std::string_view common_headers = {};
  std::string body = {};
  /// The body compressed by gzip, "" when it is not; a text that stays.
  std::string_view packed = {};
};

/// A path without its query, decoded, and the pairs of the query in their order, decoded.
struct Target {
  std::string path;
  std::vector<std::pair<std::string, std::string>> query;

  /// The value of a name of the query, nullptr when it is not there.
  [[nodiscard]] const std::string* Find(std::string_view name) const;
};

/// Reads a request's target. False when it has a bad escape, a NUL, or decodes to malformed UTF-8.
bool ReadTarget(std::string_view text, Target& target);

}  // namespace tessarlorn::http
