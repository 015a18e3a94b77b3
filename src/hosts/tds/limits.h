// What a server allows its clients.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>

namespace tessarlorn::tds {

struct Limits {
  /// Clients that are logged in.
  std::size_t connections = 200;
  /// Connections that have not sent their login yet, beside the clients. One more takes the place of the oldest.
  [[nodiscard]] std::size_t silent() const { return std::max<std::size_t>(connections, 64); }
  /// Bytes of a message: a batch with its headers, or a call with its parameters.
  std::size_t message = std::size_t{64} << 20;
  /// From the connection to the end of the login.
  std::chrono::milliseconds login{15'000};
  /// From one answer to the end of the next message.
  std::chrono::milliseconds idle{std::chrono::hours(8)};
  /// How long a client may take to read 64 KB of an answer.
  std::chrono::milliseconds send{30'000};
};

/// Before the login a message is no longer than this.
inline constexpr std::size_t kLoginMessageLimit = std::size_t{128} << 10;

}  // namespace tessarlorn::tds
