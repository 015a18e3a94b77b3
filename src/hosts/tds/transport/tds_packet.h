// Packets of TDS: messages put together from the packets that come, and cut into packets that go.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "hosts/tds/transport/protocol.h"

namespace tessarlorn::tds {

/// What became of a message on its way: its sender took it back, or it was longer than allowed. It has no payload then.
enum class Fate : std::uint8_t { kWhole, kTakenBack, kTooLong };

struct Message {
  PacketType type = PacketType::kSqlBatch;
  /// The status bits of its first packet.
  std::uint8_t status = 0;
  Fate fate = Fate::kWhole;
  std::string payload;
};

/// Puts messages together from bytes as they come. Raises ProtocolError for what is no packet, and for a packet of
/// another type inside a message: but an attention takes the place of a message that is not whole. No memory is taken
/// for what is beyond the limit.
class PacketAssembler {
 public:
  explicit PacketAssembler(std::size_t message_limit) : message_limit_(message_limit) {}

  void set_message_limit(std::size_t limit) noexcept { message_limit_ = limit; }
  void Feed(std::string_view bytes);
  /// The next message, when its last packet is there.
  std::optional<Message> Next();
  /// Whether an attention is the next message; it is taken out.
  bool TakeAttention();
  /// Bytes that came and belong to no message yet that was handed out.
  [[nodiscard]] std::size_t waiting() const noexcept { return bytes_.size() - start_ + message_.payload.size(); }
  /// All bytes that came and are not yet part of a message, taken out: what follows is no TDS.
  std::string TakeRaw();

 private:
  bool TakePacket();
  bool TakeMessage();

  std::size_t message_limit_;
  std::string bytes_;
  std::size_t start_ = 0;
  Message message_;
  bool begun_ = false;
  bool whole_ = false;
};

/// Adds `payload` as packets of at most `packet_size` bytes; the last carries the end of the message when `last`.
/// @param number counts the packets of a message, kept from call to call
void AppendPackets(std::string& out, PacketType type, std::string_view payload, std::size_t packet_size, bool last,
                   std::uint8_t& number);

}  // namespace tessarlorn::tds
