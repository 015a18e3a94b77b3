// A client's end of a connection to a server on this machine.
#pragma once

#include <arpa/inet.h>
#include <array>
#include <netinet/in.h>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <sys/time.h>

#include "hosts/listening/listening.h"

namespace tessarlorn {

class ClientSocket {
 public:
  explicit ClientSocket(int port) : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    const timeval patience{20, 0};
    setsockopt(socket_.get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    (void)connect(socket_.get(), static_cast<sockaddr*>(static_cast<void*>(&address)), sizeof address);
  }

  /// What cannot be sent is dropped: servers answer before they have read everything.
  void Send(std::string_view bytes) const { (void)send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL); }

 protected:
  /// False at the end of the connection, and when nothing comes for twenty seconds.
  bool ReadMore() {
    std::array<char, 16384> bytes{};
    const ssize_t size = recv(socket_.get(), bytes.data(), bytes.size(), 0);
    if (size > 0) arrived_.append(bytes.data(), static_cast<std::size_t>(size));
    return size > 0;
  }
  std::string Take(std::size_t size) {
    std::string taken = arrived_.substr(0, size);
    arrived_.erase(0, size);
    return taken;
  }

  Descriptor socket_;
  std::string arrived_;
};

}  // namespace tessarlorn
