#include "hosts/tds/transport/socket.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <utility>

#include "hosts/tds/transport/protocol.h"

namespace tessarlorn::tds {
namespace {

/// So much is sent within the time that a client has for reading.
constexpr std::size_t kBlockSize = 65536;
constexpr std::chrono::hours kLongestPoll{24};

}  // namespace

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
