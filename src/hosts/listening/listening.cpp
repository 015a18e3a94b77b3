#include "hosts/listening/listening.h"

#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <cstring>
#include <netinet/in.h>
#include <optional>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

#include "platform/text/text.h"
#include "tessarlorn/error.h"

namespace tessarlorn {
namespace {

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

Address AddressOf(const Descriptor& listening) {
  SystemAddress system;
  socklen_t size = sizeof system.storage;
  std::array<char, INET6_ADDRSTRLEN> text{};
  if (getsockname(listening.get(), system.get(), &size) != 0) {
    Raise(error_number::kDatabaseFailure, std::string("Cannot tell where the socket listens: ") + std::strerror(errno));
  }
  sockaddr_in v4{};
  sockaddr_in6 v6{};
  std::memcpy(&v4, &system.storage, sizeof v4);
  std::memcpy(&v6, &system.storage, sizeof v6);
  const bool is_v6 = system.storage.ss_family == AF_INET6;
  const void* const number = is_v6 ? static_cast<const void*>(&v6.sin6_addr) : static_cast<const void*>(&v4.sin_addr);
  inet_ntop(system.storage.ss_family, number, text.data(), text.size());
  // The port stands at the same place of both kinds of address.
  return {.host = text.data(), .port = ntohs(v4.sin_port)};
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
  address = AddressOf(listening);
  return listening;
}

}  // namespace tessarlorn
