// What comes before the first batch: pre-login, and the login record.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "serve/protocol.h"
#include "serve/tds_writer.h"

namespace tessarlorn::serve {

/// The answers to the question of encryption, as pre-login has them.
enum class Encryption : std::uint8_t { kOff = 0, kOn = 1, kNotSupported = 2, kRequired = 3 };

/// What a client's pre-login says about encryption; kOff when nothing. Raises ProtocolError for a malformed one.
Encryption ReadPreLogin(std::string_view payload);
/// The server's pre-login: its version, its answer about encryption, no MARS.
void WritePreLogin(TdsWriter& writer, Encryption answer);

struct Login {
  std::uint32_t version = 0;
  std::size_t packet_size = kDefaultPacket;
  std::string host;
  std::string user;
  std::string password;
  std::string application;
  std::string database;
  /// The client wants the operating system's user instead of a name and a password.
  bool integrated = false;
};

/// Raises ProtocolError for a malformed record.
Login ReadLogin(std::string_view payload);

/// The collation of texts: Chinese, without regard to case and width, in UTF-8.
inline constexpr std::string_view kCollation{"\x04\x08\xD0\x24\x00", 5};

/// What a server says to a client that it lets in. DONE is the caller's.
void WriteLoginAnswer(TdsWriter& writer, const Login& login);

}  // namespace tessarlorn::serve
