// What a server allows its clients.
#pragma once

#include <chrono>
#include <cstddef>

namespace tessarlorn::serve {

struct Limits {
  std::size_t connections = 200;
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

}  // namespace tessarlorn::serve
