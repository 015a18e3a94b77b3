// The numbers of TDS 7.1 to 7.4 that more than one part of the server needs, and the error that ends a connection.
#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

namespace tessarlorn::tds {

/// What came from the network is not TDS, or more than the limits allow: the connection ends, nothing else.
class ProtocolError : public std::runtime_error {
 public:
  explicit ProtocolError(const std::string& what) : std::runtime_error(what) {}
};

enum class PacketType : std::uint8_t {
  kSqlBatch = 1,
  kOldLogin = 2,
  kRpc = 3,
  kReply = 4,
  kAttention = 6,
  kBulkLoad = 7,
  kTransactionManager = 14,
  kLogin7 = 16,
  kPreLogin = 18,
};

/// Bits of a packet header's status.
inline constexpr std::uint8_t kEndOfMessage = 0x01;
inline constexpr std::uint8_t kIgnoreMessage = 0x02;
inline constexpr std::uint8_t kResetConnection = 0x08;
inline constexpr std::uint8_t kResetKeepingTransaction = 0x10;

inline constexpr std::size_t kPacketHeaderSize = 8;

/// A version of TDS, as a login names it: what its clients know.
class TdsVersion {
 public:
  /// The latest.
  constexpr TdsVersion() = default;
  constexpr explicit TdsVersion(std::uint32_t number) : number_(number) {}

  [[nodiscard]] constexpr std::uint32_t number() const noexcept { return number_; }
  [[nodiscard]] constexpr bool is_served() const noexcept { return number_ >= 0x71000000; }
  /// 7.2: headers before requests, transactions by number, (max) types in parts, counts of 8 bytes.
  [[nodiscard]] constexpr bool is_72() const noexcept { return number_ >= 0x72090002; }
  /// 7.3: date, time and datetime2.
  [[nodiscard]] constexpr bool is_73() const noexcept { return number_ >= 0x730A0003; }
  /// 7.3 in its second form: rows with a map of their nulls.
  [[nodiscard]] constexpr bool has_null_maps() const noexcept { return number_ >= 0x730B0003; }

  /// 7.4: texts in UTF-8. To older clients they go in UTF-16 only.
  [[nodiscard]] constexpr bool is_74() const noexcept { return number_ >= 0x74000004; }

 private:
  std::uint32_t number_ = 0x74000004;
};

/// The sizes of packets that a client may ask for; without its asking it is the default.
inline constexpr std::size_t kSmallestPacket = 512;
inline constexpr std::size_t kDefaultPacket = 4096;
inline constexpr std::size_t kLargestPacket = 32767;

/// The name that stands in errors and messages, and that the login acknowledges.
inline constexpr const char* kServerName = "TessarLorn";
/// The one database that there is.
inline constexpr const char* kDatabaseName = "main";

}  // namespace tessarlorn::tds
