// What comes before the first batch: pre-login, and the login record.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "hosts/tds/messages/tds_writer.h"
#include "hosts/tds/transport/protocol.h"

namespace tessarlorn::tds {

/// The answers to the question of encryption, as pre-login has them.
enum class Encryption : std::uint8_t { kOff = 0, kOn = 1, kNotSupported = 2, kRequired = 3 };

/// What a client's pre-login says about encryption; kOff when nothing. Raises ProtocolError for a malformed one.
Encryption ReadPreLogin(std::string_view payload);
/// The server's pre-login: its version, its answer about encryption, no MARS.
void WritePreLogin(TdsWriter& writer, Encryption answer);

/// The error of a client whose version of TDS is too old.
inline constexpr std::int32_t kOldVersion = 17828;
inline constexpr std::uint8_t kOldVersionSeverity = 20;

struct Login {
  TdsVersion version;
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

/// The collation of texts: Chinese, without regard to case and width, in UTF-8. Clients before 7.4 do not know UTF-8.
constexpr std::string_view CollationFor(TdsVersion version) {
  return version.is_74() ? std::string_view("\x04\x08\xD0\x24\x00", 5) : std::string_view("\x04\x08\xD0\x00\x00", 5);
}

/// The refusal of a client that speaks a version before TDS 7, as such clients read it.
void WriteOldRefusal(TdsWriter& writer, std::string_view text);

/// What a server says to a client that it lets in. DONE is the caller's.
void WriteLoginAnswer(TdsWriter& writer, const Login& login);

}  // namespace tessarlorn::tds
