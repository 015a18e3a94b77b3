// A client's half of TDS for tests: the messages that it sends, and a stream in memory that carries them.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

#include "hosts/tds/messages/tds_writer.h"
#include "hosts/tds/transport/byte_stream.h"
#include "hosts/tds/transport/tds_packet.h"

namespace tessarlorn::tds {

/// Gives the bytes that it was made with, then the end, and keeps what is written.
class MemoryStream final : public ByteStream {
 public:
  explicit MemoryStream(std::string input) : input_(std::move(input)) {}

  Read WaitAndRead(std::string& bytes, std::size_t most, const Deadline&) override {
    if (position_ == input_.size()) return Read::kEnd;
    ReadSome(bytes, most);
    return Read::kSome;
  }
  bool ReadSome(std::string& bytes, std::size_t most) override {
    const std::size_t size = std::min(most, input_.size() - position_);
    bytes.append(input_, position_, size);
    position_ += size;
    return position_ < input_.size();
  }
  void WriteAll(std::string_view bytes) override {
    output_ += bytes;
    largest_write_ = std::max(largest_write_, bytes.size());
  }
  [[nodiscard]] const std::string& output() const { return output_; }
  [[nodiscard]] std::size_t largest_write() const { return largest_write_; }

 private:
  std::string input_;
  std::size_t position_ = 0;
  std::string output_;
  std::size_t largest_write_ = 0;
};

inline constexpr TdsVersion kTds71(0x71000001);
inline constexpr TdsVersion kTds72(0x72090002);
inline constexpr TdsVersion kTds73(0x730A0003);
inline constexpr TdsVersion kTds73b(0x730B0003);

/// A whole message of packets of the default size. `status` joins that of its first packet.
inline std::string ClientMessage(PacketType type, std::string_view payload, std::uint8_t status = 0) {
  std::string packets;
  std::uint8_t number = 0;
  AppendPackets(packets, type, payload, kDefaultPacket, true, number);
  packets[1] = static_cast<char>(static_cast<std::uint8_t>(packets[1]) | status);
  return packets;
}

/// Headers with the number of the transaction, as every request begins.
inline void WriteHeaders(TdsWriter& writer, std::uint64_t transaction = 0) {
  writer.U32(22);
  writer.U32(18);
  writer.U16(2);
  writer.U64(transaction);
  writer.U32(1);
}

inline std::string BatchMessage(std::string_view text, std::uint8_t status = 0) {
  TdsWriter writer;
  WriteHeaders(writer);
  writer.Text(text);
  return ClientMessage(PacketType::kSqlBatch, writer.bytes(), status);
}

/// A call's beginning: of a procedure by its number.
inline std::string CallHead(std::uint16_t procedure) {
  TdsWriter writer;
  writer.U16(0xffff);
  writer.U16(procedure);
  writer.U16(0);
  return writer.bytes();
}

/// A parameter of a call, by its position.
inline std::string TextParameter(std::string_view text) {
  TdsWriter writer;
  writer.Bytes(std::string("\x00\x00\xE7\x40\x1F\x04\x08\xD0\x24\x00", 10));
  const std::size_t size = writer.size();
  writer.U16(0);
  writer.SetU16(size, static_cast<std::uint16_t>(writer.Text(text)));
  return writer.bytes();
}

/// A request of calls, of which each but the last is followed by a byte.
inline std::string CallsMessage(std::string_view calls) {
  TdsWriter writer;
  WriteHeaders(writer);
  writer.Bytes(calls);
  return ClientMessage(PacketType::kRpc, writer.bytes());
}

inline std::string PreLoginMessage(std::uint8_t encryption) {
  const std::string payload{0x01, 0x00, 0x06, 0x00, 0x01, static_cast<char>(0xff), static_cast<char>(encryption)};
  return ClientMessage(PacketType::kPreLogin, payload);
}

struct LoginWords {
  std::string user = "ann";
  std::string password = "s3cret";
  std::string database{};
  TdsVersion version = TdsVersion();
  std::uint32_t packet_size = kDefaultPacket;
};

inline std::string LoginPayload(const LoginWords& words) {
  TdsWriter texts;
  TdsWriter writer;
  constexpr std::size_t kFixed = 94;
  const auto field = [&](std::string_view text, bool password = false) {
    const std::size_t start = texts.size();
    writer.U16(static_cast<std::uint16_t>(kFixed + start));
    writer.U16(static_cast<std::uint16_t>(texts.Text(text) / 2));
    for (std::size_t i = start; password && i < texts.size(); ++i) {
      const auto byte = static_cast<std::uint8_t>(texts.bytes()[i]);
      texts.SetU8(i, static_cast<std::uint8_t>(((byte << 4) | (byte >> 4)) ^ 0xA5));
    }
  };
  writer.U32(0);
  writer.U32(words.version.number());
  writer.U32(words.packet_size);
  for (int i = 0; i < 6; ++i) writer.U32(0);
  field("host");
  field(words.user);
  field(words.password, true);
  field("test");
  field("server");
  field("");
  field("library");
  field("Deutsch");
  field(words.database);
  for (int i = 0; i < 6; ++i) writer.U8(0);
  for (int i = 0; i < 3; ++i) field("");
  writer.U32(0);
  writer.SetU32(0, static_cast<std::uint32_t>(kFixed + texts.size()));
  return writer.bytes() + texts.bytes();
}

inline std::string LoginMessage(const LoginWords& words = {}) {
  return ClientMessage(PacketType::kLogin7, LoginPayload(words));
}

/// The payload of all packets of a server's answers, one behind the other.
inline std::string Payload(std::string_view packets) {
  std::string payload;
  while (packets.size() >= kPacketHeaderSize) {
    const std::size_t size =
        (static_cast<std::size_t>(static_cast<std::uint8_t>(packets[2])) << 8) | static_cast<std::uint8_t>(packets[3]);
    if (size < kPacketHeaderSize || size > packets.size()) break;
    payload += packets.substr(kPacketHeaderSize, size - kPacketHeaderSize);
    packets.remove_prefix(size);
  }
  return payload;
}

/// UTF-16LE.
inline std::string Wide(std::string_view text) {
  TdsWriter writer;
  writer.Text(text);
  return writer.bytes();
}

}  // namespace tessarlorn::tds
