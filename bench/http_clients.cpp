#include "bench/http_clients.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "platform/text/text.h"
#include "tessarlorn/error.h"

namespace tessarlorn::bench {
namespace {

[[noreturn]] void RaiseSystem(const char* what) {
  Raise(error_number::kInternalError, std::string(what) + ": " + std::strerror(errno));
}

Descriptor Connect(int port) {
  Descriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (connect(socket.get(), static_cast<sockaddr*>(static_cast<void*>(&address)), sizeof address) != 0) {
    RaiseSystem("connect");
  }
  const int on = 1;
  setsockopt(socket.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  return socket;
}

/// Where the answer ends, npos while it is not whole.
bool IsWhole(const std::string& answer, std::size_t size) {
  const std::size_t head = answer.find("\r\n\r\n");
  if (head == std::string::npos) return false;
  constexpr std::string_view kLength = "\r\nContent-Length: ";
  const std::size_t length = answer.find(kLength);
  if (length != std::string::npos && length < head) {
    return size >= head + 4 + std::strtoul(answer.c_str() + length + kLength.size(), nullptr, 10);
  }
  return answer.ends_with("\r\n0\r\n\r\n");
}

}  // namespace

std::string HttpRequest(const std::string& path, const std::string& token, const std::string& body,
                        const std::string& headers) {
  std::string request = (body.empty() ? "GET " : "POST ") + path + " HTTP/1.1\r\nHost: bench\r\n" + headers;
  if (!token.empty()) request += "Authorization: Bearer " + token + "\r\n";
  if (!body.empty()) {
    request += "Content-Type: application/json\r\nContent-Length: " + std::to_string(body.size()) + "\r\n";
  }
  return request + "\r\n" + body;
}

HttpClients::HttpClients(int port, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) clients_.push_back({.socket = Connect(port), .answer = {}});
}

void HttpClients::Send(Client& client, const std::string& request) {
  client.answer.clear();
  client.size = 0;
  if (send(client.socket.get(), request.data(), request.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(request.size())) {
    RaiseSystem("send");
  }
}

bool HttpClients::Receive(Client& client) {
  std::array<char, 65536> buffer;
  const ssize_t size = recv(client.socket.get(), buffer.data(), buffer.size(), 0);
  if (size <= 0) RaiseSystem("recv");
  client.size += static_cast<std::size_t>(size);
  client.answer.append(buffer.data(), static_cast<std::size_t>(size));
  if (!IsWhole(client.answer, client.size)) {
    // Of a long answer only the end tells.
    constexpr std::size_t kKept = 4096;
    if (client.answer.size() > 16 * kKept && client.answer.find("chunked") < kKept) {
      client.answer.erase(kKept / 2, client.answer.size() - kKept);
    }
    return false;
  }
  if (!client.answer.starts_with("HTTP/1.1 200")) Raise(error_number::kInternalError, client.answer.substr(0, 2000));
  return true;
}

void HttpClients::Run(const Next& next) {
  std::vector<pollfd> waiting;
  std::size_t open = 0;
  for (std::size_t i = 0; i < clients_.size(); ++i) {
    const std::string request = next(i);
    waiting.push_back({request.empty() ? -1 : clients_[i].socket.get(), POLLIN, 0});
    if (request.empty()) continue;
    Send(clients_[i], request);
    ++open;
  }
  while (open > 0) {
    if (poll(waiting.data(), waiting.size(), -1) < 0) RaiseSystem("poll");
    for (std::size_t i = 0; i < clients_.size(); ++i) {
      if (waiting[i].fd < 0 || waiting[i].revents == 0 || !Receive(clients_[i])) continue;
      const std::string request = next(i);
      if (!request.empty()) {
        Send(clients_[i], request);
      } else {
        waiting[i].fd = -1;
        --open;
      }
    }
  }
}

std::size_t HttpClients::Ask(const std::string& request) {
  Send(clients_[0], request);
  while (!Receive(clients_[0])) {
  }
  return clients_[0].size;
}

}  // namespace tessarlorn::bench
