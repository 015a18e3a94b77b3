#include "hosts/tds/transport/tds_packet.h"

#include <algorithm>
#include <utility>

namespace tessarlorn::tds {
namespace {

bool IsKnown(PacketType type) {
  switch (type) {
    case PacketType::kSqlBatch:
    case PacketType::kOldLogin:
    case PacketType::kRpc:
    case PacketType::kBulkLoad:
    case PacketType::kAttention:
    case PacketType::kTransactionManager:
    case PacketType::kLogin7:
    case PacketType::kPreLogin:
      return true;
    default:
      return false;
  }
}

}  // namespace

void PacketAssembler::Feed(std::string_view bytes) {
  if (start_ > 0) {
    bytes_.erase(0, start_);
    start_ = 0;
  }
  bytes_ += bytes;
}

bool PacketAssembler::TakePacket() {
  if (bytes_.size() - start_ < kPacketHeaderSize) return false;
  const auto byte = [&](std::size_t at) { return static_cast<std::uint8_t>(bytes_[start_ + at]); };
  const auto type = static_cast<PacketType>(byte(0));
  const std::uint8_t status = byte(1);
  const std::size_t size = (std::size_t{byte(2)} << 8) | byte(3);
  if (!IsKnown(type)) throw ProtocolError("a packet has the unknown type " + std::to_string(byte(0)));
  if (size < kPacketHeaderSize || size > kLargestPacket) {
    throw ProtocolError("a packet says that it has " + std::to_string(size) + " bytes");
  }
  if (begun_ && type == PacketType::kAttention) begun_ = false;
  if (begun_ && type != message_.type) throw ProtocolError("a message of packets of different types");
  if (bytes_.size() - start_ < size) return false;
  if (!begun_) message_ = {type, status, Fate::kWhole, {}};
  begun_ = true;
  whole_ = (status & kEndOfMessage) != 0;
  if (message_.payload.size() + size - kPacketHeaderSize > message_limit_) message_.fate = Fate::kTooLong;
  if (whole_ && (status & kIgnoreMessage) != 0) message_.fate = Fate::kTakenBack;
  if (message_.fate == Fate::kWhole) {
    message_.payload.append(bytes_, start_ + kPacketHeaderSize, size - kPacketHeaderSize);
  } else {
    message_.payload = {};
  }
  start_ += size;
  return true;
}

bool PacketAssembler::TakeMessage() {
  while (!whole_ && TakePacket()) {
  }
  return whole_;
}

std::optional<Message> PacketAssembler::Next() {
  if (!TakeMessage()) return std::nullopt;
  begun_ = false;
  whole_ = false;
  return std::exchange(message_, {});
}

bool PacketAssembler::TakeAttention() {
  if (!TakeMessage() || message_.type != PacketType::kAttention) return false;
  Next();
  return true;
}

std::string PacketAssembler::TakeRaw() {
  std::string raw = bytes_.substr(start_);
  bytes_.clear();
  start_ = 0;
  return raw;
}

void AppendPackets(std::string& out, PacketType type, std::string_view payload, std::size_t packet_size, bool last,
                   std::uint8_t& number) {
  const std::size_t most = packet_size - kPacketHeaderSize;
  do {
    const std::size_t size = std::min(most, payload.size());
    const bool end = last && size == payload.size();
    const std::size_t total = size + kPacketHeaderSize;
    out += static_cast<char>(type);
    out += static_cast<char>(end ? kEndOfMessage : 0);
    out += static_cast<char>(total >> 8);
    out += static_cast<char>(total & 0xff);
    out.append(2, '\0');
    out += static_cast<char>(++number);
    out += '\0';
    out.append(payload.substr(0, size));
    payload.remove_prefix(size);
  } while (!payload.empty());
  if (last) number = 0;
}

}  // namespace tessarlorn::tds
