// Writes numbers, texts and the tokens that carry no rows into a reply.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "hosts/tds/transport/protocol.h"
#include "tessarlorn/error.h"

namespace tessarlorn::tds {

enum class Token : std::uint8_t {
  kReturnStatus = 0x79,
  kColumnMetadata = 0x81,
  kError = 0xAA,
  kInfo = 0xAB,
  kReturnValue = 0xAC,
  kLoginAck = 0xAD,
  kRow = 0xD1,
  kRowWithNulls = 0xD2,
  kEnvironmentChange = 0xE3,
  kDone = 0xFD,
  kDoneProcedure = 0xFE,
  kDoneInProcedure = 0xFF,
};

enum class Environment : std::uint8_t {
  kDatabase = 1,
  kLanguage = 2,
  kPacketSize = 4,
  kCollation = 7,
  kTransactionBegun = 8,
  kTransactionCommitted = 9,
  kTransactionRolledBack = 10,
  kResetAcknowledged = 18,
};

/// Bits of the status of DONE tokens.
inline constexpr std::uint16_t kDoneMore = 0x01;
inline constexpr std::uint16_t kDoneError = 0x02;
inline constexpr std::uint16_t kDoneInTransaction = 0x04;
inline constexpr std::uint16_t kDoneCount = 0x10;
inline constexpr std::uint16_t kDoneAttention = 0x20;

struct Done {
  Token token = Token::kDone;
  std::uint16_t status = 0;
  std::uint16_t command = 0;
  std::uint64_t rows = 0;
};

/// What an ERROR or INFO token says. A severity above 10 makes it an error.
struct ServerMessage {
  std::int32_t number = 0;
  std::uint8_t state = 1;
  std::uint8_t severity = 0;
  std::uint32_t line = 1;
  std::string text;
  std::string procedure = {};
};

/// The server's message of what the database said.
ServerMessage ToMessage(std::string_view text, const NativeError& about);

/// Numbers are little-endian, texts UTF-16LE.
class TdsWriter {
 public:
  TdsWriter() = default;
  /// Tokens are laid out for clients of that version.
  explicit TdsWriter(TdsVersion version) : version_(version) {}

  [[nodiscard]] TdsVersion version() const noexcept { return version_; }
  [[nodiscard]] const std::string& bytes() const noexcept { return bytes_; }
  [[nodiscard]] std::size_t size() const noexcept { return bytes_.size(); }
  void Clear() noexcept { bytes_.clear(); }
  /// Cuts what was written behind `size`.
  void CutTo(std::size_t size) { bytes_.resize(size); }

  void U8(std::uint8_t value) { bytes_ += static_cast<char>(value); }
  void U16(std::uint16_t value) { Number(value, 2); }
  void U32(std::uint32_t value) { Number(value, 4); }
  void U64(std::uint64_t value) { Number(value, 8); }
  void Number(std::uint64_t value, std::size_t size);
  void Bytes(std::string_view bytes) { bytes_ += bytes; }
  void Put(Token token) { U8(static_cast<std::uint8_t>(token)); }
  void SetU8(std::size_t position, std::uint8_t value) { bytes_[position] = static_cast<char>(value); }
  void SetU16(std::size_t position, std::uint16_t value);
  void SetU32(std::size_t position, std::uint32_t value);
  /// UTF-8 as UTF-16LE; answers the number of bytes written.
  std::size_t Text(std::string_view text);
  /// Behind its count of units in one byte; cut to 255 units.
  void ShortText(std::string_view text);
  /// Behind its count of units in two bytes; cut to `most` units.
  void LongText(std::string_view text, std::size_t most);

  void Put(const Done& done);
  void Put(const ServerMessage& message);
  /// With new and old value as texts.
  void PutEnvironment(Environment kind, std::string_view now, std::string_view before);
  /// With new and old value as bytes.
  void PutEnvironmentBytes(Environment kind, std::string_view now, std::string_view before);

 private:
  TdsVersion version_;
  std::string bytes_;
};

}  // namespace tessarlorn::tds
