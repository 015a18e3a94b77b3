// Where servers listen: addresses, and the listening socket.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tessarlorn {

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

/// Where a listening socket listens. Raises Error with the system's words.
Address AddressOf(const Descriptor& listening);

/// Listens there and answers the socket; `address` gets the port that was chosen. Raises Error with the system's words.
Descriptor Listen(Address& address);

}  // namespace tessarlorn
