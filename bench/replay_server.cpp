#include "bench/replay_server.h"

#include <array>
#include <cstdint>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace tessarlorn::bench {
namespace {

constexpr std::size_t kHeader = 8;

sockaddr_in Loopback(int port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

int Connect(int port) {
  const int descriptor = socket(AF_INET, SOCK_STREAM, 0);
  const sockaddr_in address = Loopback(port);
  if (connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    throw std::runtime_error("the recorder cannot reach the server");
  }
  return descriptor;
}

void SendAtOnce(int descriptor) {
  const int on = 1;
  setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

bool ReadAll(int descriptor, char* data, std::size_t size) {
  for (std::size_t done = 0; done < size;) {
    const ssize_t count = recv(descriptor, data + done, size - done, 0);
    if (count <= 0) return false;
    done += static_cast<std::size_t>(count);
  }
  return true;
}

void WriteAll(int descriptor, const std::string& bytes) {
  for (std::size_t done = 0; done < bytes.size();) {
    const ssize_t count = send(descriptor, bytes.data() + done, bytes.size() - done, MSG_NOSIGNAL);
    if (count <= 0) return;
    done += static_cast<std::size_t>(count);
  }
}

/// A message of one or more packets with their headers, "" when the other side is gone.
std::string ReadMessage(int descriptor) {
  std::string message;
  for (bool last = false; !last;) {
    std::array<char, kHeader> header{};
    if (!ReadAll(descriptor, header.data(), header.size())) return "";
    const auto byte = [&](std::size_t i) { return static_cast<std::size_t>(static_cast<unsigned char>(header[i])); };
    const std::size_t size = byte(2) * 256 + byte(3);
    last = (byte(1) & 1U) != 0;
    message.append(header.data(), header.size());
    const std::size_t start = message.size();
    message.resize(start + size - kHeader);
    if (!ReadAll(descriptor, message.data() + start, size - kHeader)) return "";
  }
  return message;
}

}  // namespace

Listener::Listener() : descriptor_(socket(AF_INET, SOCK_STREAM, 0)) {
  sockaddr_in address = Loopback(0);
  socklen_t size = sizeof address;
  constexpr int kWaiting = 16;
  if (bind(descriptor_, reinterpret_cast<const sockaddr*>(&address), size) != 0 || listen(descriptor_, kWaiting) != 0 ||
      getsockname(descriptor_, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
    throw std::runtime_error("no port to listen on");
  }
  port_ = ntohs(address.sin_port);
}

Listener::~Listener() { Close(); }

void Listener::Close() noexcept {
  const int descriptor = descriptor_.exchange(-1);
  if (descriptor < 0) return;
  shutdown(descriptor, SHUT_RDWR);
  close(descriptor);
}

int Listener::Accept() const {
  const int client = accept(descriptor_, nullptr, nullptr);
  if (client >= 0) SendAtOnce(client);
  return client;
}

Recorder::Recorder(int server_port)
    : thread_([this, server_port] {
        const int client = listener_.Accept();
        if (client < 0) return;
        const int server = Connect(server_port);
        for (std::string request = ReadMessage(client); !request.empty(); request = ReadMessage(client)) {
          WriteAll(server, request);
          answers_.push_back(ReadMessage(server));
          WriteAll(client, answers_.back());
        }
        close(server);
        close(client);
      }) {}

Recorder::~Recorder() {
  listener_.Close();
  if (thread_.joinable()) thread_.join();
}

Recording Recorder::Take() {
  thread_.join();
  return std::move(answers_);
}

ReplayServer::ReplayServer(Recording answers)
    : answers_(std::move(answers)), thread_([this] {
        for (int client = listener_.Accept(); client >= 0; client = listener_.Accept()) Serve(client);
      }) {}

ReplayServer::~ReplayServer() {
  listener_.Close();
  thread_.join();
}

void ReplayServer::Serve(int client) const {
  for (std::size_t next = 0; !ReadMessage(client).empty();) {
    WriteAll(client, answers_[next]);
    if (next + 1 < answers_.size()) ++next;
  }
  close(client);
}

}  // namespace tessarlorn::bench
