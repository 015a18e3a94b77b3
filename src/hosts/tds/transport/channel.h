// Messages from and to one client, over its bytes, encrypted when it was so agreed.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "hosts/tds/transport/byte_stream.h"
#include "hosts/tds/transport/tds_packet.h"
#include "hosts/tds/transport/tls.h"

namespace tessarlorn::tds {

/// What came while a batch was running. kFull: so much of the next requests that no more is taken now.
enum class Arrival : std::uint8_t { kNothing, kAttention, kEnd, kFull };

/// Used by the client's thread, but for Look(). Raises ProtocolError.
class Channel {
 public:
  Channel(ByteStream& stream, std::size_t message_limit) : stream_(stream), assembler_(message_limit) {}

  void set_message_limit(std::size_t limit) { assembler_.set_message_limit(limit); }
  void set_packet_size(std::size_t size) noexcept { packet_size_ = size; }

  /// The next message, or nothing when the client ended the connection. Raises when it is not there in time.
  std::optional<Message> Receive(const Deadline& deadline);
  /// Sends a part of a reply; the last part ends the message.
  void Send(std::string_view payload, bool last, PacketType type = PacketType::kReply);

  /// Whether an attention came together with the request before it; it is taken out.
  bool TakeAttention();
  /// What came meanwhile; never waits. For the thread that watches running batches, while no other thread receives.
  /// @param hung_up the client will send no more
  Arrival Look(bool hung_up) noexcept;

  /// Runs the handshake inside pre-login packets; from then on everything is encrypted.
  void StartTls(const TlsContext& context, const Deadline& deadline);
  /// What follows is not encrypted.
  void EndTls();

 private:
  /// Takes what arrived.
  void Feed();

  ByteStream& stream_;
  std::mutex mutex_;  // of all that Look() touches
  PacketAssembler assembler_;
  std::unique_ptr<TlsStream> tls_;
  std::string arrived_;
  std::size_t packet_size_ = kDefaultPacket;
  std::uint8_t packet_number_ = 0;
  std::string unsent_;
  std::string packets_;
};

}  // namespace tessarlorn::tds
