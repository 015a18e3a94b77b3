// TCP: addresses, the listening socket and the clients' sockets.
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <string_view>

#include "hosts/tds/transport/byte_stream.h"

namespace tessarlorn::tds {

/// An open file descriptor, closed when it goes.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) noexcept : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(other.Release()) {}
  Descriptor& operator=(Descriptor&& other) noexcept;
  ~Descriptor();

  [[nodiscard]] int get() const noexcept { return number_; }
  int Release() noexcept;

 private:
  int number_ = -1;
};

/// Where to listen: a numeric IPv4 or IPv6 address (the latter in brackets), and a port; port 0 is any free one.
struct Address {
  std::string host;
  std::uint16_t port = 0;

  [[nodiscard]] bool is_loopback() const;
  /// `127.0.0.1:1433`, `[::1]:1433`.
  [[nodiscard]] std::string ToText() const;
};

/// Reads `ADDRESS:PORT`; `localhost` is 127.0.0.1. Raises Error 5 naming what is wrong.
Address ParseAddress(std::string_view text);

/// Listens there and answers the socket; `address` gets the port that was chosen. Raises Error with the system's words.
Descriptor Listen(Address& address);

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
