#include "hosts/tds/transport/channel.h"

#include <utility>

namespace tessarlorn::tds {
namespace {

/// So much is read at once, and kept while a batch runs, at most.
constexpr std::size_t kReadSize = 65536;

}  // namespace

void Channel::Feed() {
  if (tls_ != nullptr && !arrived_.empty()) {
    assembler_.Feed(tls_->Decrypt(arrived_));
  } else {
    assembler_.Feed(arrived_);
  }
  arrived_.clear();
}

std::optional<Message> Channel::Receive(const Deadline& deadline) {
  for (;;) {
    {
      const std::scoped_lock lock(mutex_);
      if (std::optional<Message> message = assembler_.Next()) return message;
    }
    const ByteStream::Read read = stream_.WaitAndRead(arrived_, kReadSize, deadline);
    if (read == ByteStream::Read::kTimeOut) {
      throw ProtocolError("what was waited for did not come within " + std::to_string(deadline.time().count() / 1000) +
                          " seconds");
    }
    const std::scoped_lock lock(mutex_);
    Feed();
    if (read == ByteStream::Read::kEnd) {
      if (assembler_.waiting() > 0) throw ProtocolError("the client ended the connection inside a message");
      return std::nullopt;
    }
  }
}

void Channel::Send(std::string_view payload, bool last, PacketType type) {
  unsent_ += payload;
  const std::size_t most = packet_size_ - kPacketHeaderSize;
  // All packets but the last are full, and the last one is not empty.
  const std::size_t size = last ? unsent_.size() : (unsent_.size() - (unsent_.empty() ? 0 : 1)) / most * most;
  if (size == 0 && !last) return;
  packets_.clear();
  AppendPackets(packets_, type, std::string_view(unsent_).substr(0, size), packet_size_, last, packet_number_);
  unsent_.erase(0, size);
  if (tls_ != nullptr) {
    const std::scoped_lock lock(mutex_);
    tls_->Encrypt(packets_);
    packets_ = tls_->TakeOutput();
  }
  stream_.WriteAll(packets_);
}

bool Channel::TakeAttention() {
  const std::scoped_lock lock(mutex_);
  return assembler_.TakeAttention();
}

Arrival Channel::Look(bool hung_up) noexcept {
  try {
    const std::scoped_lock lock(mutex_);
    if (assembler_.TakeAttention()) return Arrival::kAttention;
    if (assembler_.waiting() > kReadSize) return hung_up ? Arrival::kEnd : Arrival::kFull;
    const bool open = stream_.descriptor() < 0 || stream_.ReadSome(arrived_, kReadSize);
    Feed();
    if (assembler_.TakeAttention()) return Arrival::kAttention;
    if (!open) return Arrival::kEnd;
    return assembler_.waiting() > kReadSize ? Arrival::kFull : Arrival::kNothing;
  } catch (const std::exception&) {
    return Arrival::kEnd;
  }
}

void Channel::StartTls(const TlsContext& context, const Deadline& deadline) {
  auto tls = std::make_unique<TlsStream>(context);
  for (bool done = false; !done;) {
    const std::optional<Message> message = Receive(deadline);
    if (!message) throw ProtocolError("the client ended the connection while TLS began");
    if (message->type != PacketType::kPreLogin || message->payload.empty()) {
      throw ProtocolError("TLS was agreed, and did not begin");
    }
    done = tls->Handshake(message->payload);
    const std::string answer = tls->TakeOutput();
    if (!answer.empty()) Send(answer, true, PacketType::kPreLogin);
  }
  const std::string early = assembler_.TakeRaw();
  if (!early.empty()) assembler_.Feed(tls->Decrypt(early));
  tls_ = std::move(tls);
}

void Channel::EndTls() {
  const std::scoped_lock lock(mutex_);
  tls_.reset();
}

}  // namespace tessarlorn::tds
