// The numbers of TDS 7.3 and 7.4 that more than one part of the server needs, and the error that ends a connection.
#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

namespace tessarlorn::serve {

/// What came from the network is not TDS, or more than the limits allow: the connection ends, nothing else.
class ProtocolError : public std::runtime_error {
 public:
  explicit ProtocolError(const std::string& what) : std::runtime_error(what) {}
};

enum class PacketType : std::uint8_t {
  kSqlBatch = 1,
  kRpc = 3,
  kReply = 4,
  kAttention = 6,
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
inline constexpr std::uint32_t kTds73 = 0x730A0003;
/// Rows with a map of their nulls came with it.
inline constexpr std::uint32_t kTds73b = 0x730B0003;
inline constexpr std::uint32_t kTds74 = 0x74000004;

/// The sizes of packets that a client may ask for; without its asking it is the default.
inline constexpr std::size_t kSmallestPacket = 512;
inline constexpr std::size_t kDefaultPacket = 4096;
inline constexpr std::size_t kLargestPacket = 32767;

/// The name that stands in errors and messages, and that the login acknowledges.
inline constexpr const char* kServerName = "TessarLorn";
/// The one database that there is.
inline constexpr const char* kDatabaseName = "main";

}  // namespace tessarlorn::serve
