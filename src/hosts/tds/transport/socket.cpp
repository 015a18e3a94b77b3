#include "hosts/tds/transport/socket.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <cstring>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

#include "hosts/tds/transport/protocol.h"
#include "platform/text/text.h"
#include "tessarlorn/error.h"

namespace tessarlorn::tds {
namespace {

/// So much is sent within the time that a client has for reading.
constexpr std::size_t kBlockSize = 65536;
constexpr std::chrono::hours kLongestPoll{24};

/// An address as the system takes it.
struct SystemAddress {
  sockaddr_storage storage{};
  socklen_t size = 0;

  [[nodiscard]] bool Read(const std::string& host, std::uint16_t port) {
    if (sockaddr_in v4{}; inet_pton(AF_INET, host.c_str(), &v4.sin_addr) == 1) {
      v4.sin_family = AF_INET;
      v4.sin_port = htons(port);
      std::memcpy(&storage, &v4, size = sizeof v4);
      return true;
    }
    if (sockaddr_in6 v6{}; inet_pton(AF_INET6, host.c_str(), &v6.sin6_addr) == 1) {
      v6.sin6_family = AF_INET6;
      v6.sin6_port = htons(port);
      std::memcpy(&storage, &v6, size = sizeof v6);
      return true;
    }
    return false;
  }
  [[nodiscard]] sockaddr* get() { return static_cast<sockaddr*>(static_cast<void*>(&storage)); }
};

[[noreturn]] void RaiseListening(const Address& address) {
  Raise(error_number::kDatabaseFailure, "Cannot listen on " + address.ToText() + ": " + std::strerror(errno));
}

}  // namespace

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
  if (this != &other) {
    if (number_ >= 0) close(number_);
    number_ = other.Release();
  }
  return *this;
}

Descriptor::~Descriptor() {
  if (number_ >= 0) close(number_);
}

int Descriptor::Release() noexcept { return std::exchange(number_, -1); }

bool Address::is_loopback() const {
  in6_addr v6{};
  if (inet_pton(AF_INET6, host.c_str(), &v6) == 1) return IN6_IS_ADDR_LOOPBACK(&v6);
  return host.starts_with("127.");
}

std::string Address::ToText() const {
  const bool v6 = host.find(':') != std::string::npos;
  return (v6 ? "[" + host + "]" : host) + ":" + std::to_string(port);
}

Address ParseAddress(std::string_view text) {
  const auto refuse = [&] {
    Raise(error_number::kInvalidArgument,
          "'" + std::string(text) + "' is no address and port, as 127.0.0.1:1433 or [::1]:1433");
  };
  Address address;
  const std::size_t colon = text.rfind(':');
  if (colon == std::string_view::npos) refuse();
  std::string_view host = text.substr(0, colon);
  if (host.size() > 2 && host.front() == '[' && host.back() == ']') {
    host = host.substr(1, host.size() - 2);
  } else if (host.find(':') != std::string_view::npos) {
    refuse();
  }
  const std::optional<std::uint16_t> port = WholeNumber<std::uint16_t>(text.substr(colon + 1));
  if (!port) refuse();
  address.port = *port;
  address.host = EqualsIgnoreCase(host, "localhost") ? "127.0.0.1" : std::string(host);
  if (SystemAddress system; !system.Read(address.host, address.port)) refuse();
  return address;
}

Descriptor Listen(Address& address) {
  SystemAddress system;
  if (!system.Read(address.host, address.port)) {
    Raise(error_number::kInvalidArgument, "'" + address.host + "' is no address");
  }
  Descriptor listening(socket(system.storage.ss_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (listening.get() < 0) RaiseListening(address);
  const int on = 1;
  setsockopt(listening.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  if (bind(listening.get(), system.get(), system.size) != 0 || listen(listening.get(), SOMAXCONN) != 0) {
    RaiseListening(address);
  }
  socklen_t size = sizeof system.storage;
  if (getsockname(listening.get(), system.get(), &size) != 0) RaiseListening(address);
  // The port stands at the same place of both kinds of address.
  sockaddr_in v4{};
  std::memcpy(&v4, &system.storage, sizeof v4);
  address.port = ntohs(v4.sin_port);
  return listening;
}

Socket::Socket(Descriptor descriptor, std::chrono::milliseconds send_time)
    : descriptor_(std::move(descriptor)), send_time_(send_time) {
  const int on = 1;
  setsockopt(descriptor_.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  setsockopt(descriptor_.get(), SOL_SOCKET, SO_KEEPALIVE, &on, sizeof on);
  // Otherwise the system says only after megabytes that the client reads.
  const int unsent = kBlockSize;
  setsockopt(descriptor_.get(), IPPROTO_TCP, TCP_NOTSENT_LOWAT, &unsent, sizeof unsent);
}

bool Socket::Wait(short event, const Deadline& deadline) const {
  for (;;) {
    const std::chrono::milliseconds left = deadline.left();
    if (left.count() == 0) return false;
    pollfd wanted{descriptor_.get(), event, 0};
    const int ready =
        poll(&wanted, 1, static_cast<int>(std::min<std::chrono::milliseconds>(left, kLongestPoll).count()));
    if (ready > 0 || (ready < 0 && errno != EINTR)) return true;
  }
}

ByteStream::Read Socket::WaitAndRead(std::string& bytes, std::size_t most, const Deadline& deadline) {
  std::array<char, 16384> buffer;
  for (;;) {
    if (!Wait(POLLIN, deadline)) return Read::kTimeOut;
    const ssize_t size = recv(descriptor_.get(), buffer.data(), std::min(most, buffer.size()), MSG_DONTWAIT);
    if (size > 0) {
      bytes.append(buffer.data(), static_cast<std::size_t>(size));
      return Read::kSome;
    }
    if (size == 0 || (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR)) return Read::kEnd;
  }
}

bool Socket::ReadSome(std::string& bytes, std::size_t most) {
  std::array<char, 16384> buffer;
  while (most > 0) {
    const ssize_t size = recv(descriptor_.get(), buffer.data(), std::min(most, buffer.size()), MSG_DONTWAIT);
    if (size > 0) {
      bytes.append(buffer.data(), static_cast<std::size_t>(size));
      most -= static_cast<std::size_t>(size);
      if (static_cast<std::size_t>(size) < buffer.size()) return true;
    } else if (size == 0) {
      return false;
    } else if (errno != EINTR) {
      return errno == EAGAIN || errno == EWOULDBLOCK;
    }
  }
  return true;
}

void Socket::End() noexcept {
  shutdown(descriptor_.get(), SHUT_WR);
  std::array<char, 16384> buffer;
  while (recv(descriptor_.get(), buffer.data(), buffer.size(), MSG_DONTWAIT) > 0) {
  }
}

void Socket::WriteAll(std::string_view bytes) {
  while (!bytes.empty()) {
    WriteBlock(bytes.substr(0, kBlockSize));
    bytes.remove_prefix(std::min(bytes.size(), kBlockSize));
  }
}

void Socket::WriteBlock(std::string_view bytes) {
  const Deadline deadline(send_time_);
  while (!bytes.empty()) {
    const ssize_t size = send(descriptor_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (size >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(size));
    } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
      if (!Wait(POLLOUT, deadline)) throw ProtocolError("the client does not read what it asked for");
    } else if (errno != EINTR) {
      throw ProtocolError(std::string("the client is gone: ") + std::strerror(errno));
    }
  }
}

}  // namespace tessarlorn::tds
