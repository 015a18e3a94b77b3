// TCP: the clients' sockets.
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <string_view>

#include "hosts/listening/listening.h"
#include "hosts/tds/transport/byte_stream.h"

namespace tessarlorn::tds {

/// A client's socket.
class Socket final : public ByteStream {
 public:
  /// @param send_time how long the client may take to read a block of 64 KB
  Socket(Descriptor descriptor, std::chrono::milliseconds send_time);

  Read WaitAndRead(std::string& bytes, std::size_t most, const Deadline& deadline) override;
  bool ReadSome(std::string& bytes, std::size_t most) override;
  void WriteAll(std::string_view bytes) override;
  [[nodiscard]] int descriptor() const noexcept override { return descriptor_.get(); }
  /// Nothing more is sent, and what came is thrown away: unread, it would take from the client what was sent last.
  void End() noexcept;

 private:
  /// Whether the event came before the deadline.
  [[nodiscard]] bool Wait(short event, const Deadline& deadline) const;
  void WriteBlock(std::string_view bytes);

  Descriptor descriptor_;
  std::chrono::milliseconds send_time_;
};

}  // namespace tessarlorn::tds
