#include "hosts/tds/server.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <utility>

#include "tessarlorn/error.h"

namespace tessarlorn::tds {
namespace {

/// How long clients may still read when the server ends.
constexpr std::chrono::seconds kGrace{5};

std::string PeerText(const sockaddr_storage& storage, socklen_t size) {
  std::array<char, NI_MAXHOST> host{};
  std::array<char, NI_MAXSERV> port{};
  const auto* const address = static_cast<const sockaddr*>(static_cast<const void*>(&storage));
  if (getnameinfo(address, size, host.data(), host.size(), port.data(), port.size(), NI_NUMERICHOST | NI_NUMERICSERV) !=
      0) {
    return "client";
  }
  return std::string(host.data()) + ":" + port.data();
}

}  // namespace

struct Server::Client {
  Client(Descriptor descriptor, const Service& service, std::string peer, Watcher& watcher)
      : socket(std::move(descriptor), service.limits.send), session(socket, service, std::move(peer), &watcher) {}

  Socket socket;
  ClientSession session;
  std::atomic<bool> ended{false};
  bool displaced = false;  // it has to go for others
  std::thread thread;
};

Server::Server(Address address, Service service)
    : address_(std::move(address)), service_(std::move(service)), listening_(Listen(address_)) {
  std::array<int, 2> pipe{};
  if (pipe2(pipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
    Raise(error_number::kInternalError, std::string("Cannot make a pipe: ") + std::strerror(errno));
  }
  wake_reading_ = Descriptor(pipe[0]);
  wake_writing_ = Descriptor(pipe[1]);
}

Server::~Server() { EndAll(); }

void Server::Wake() noexcept {
  const char byte = 0;
  // A full pipe says the same.
  [[maybe_unused]] const ssize_t written = write(wake_writing_.get(), &byte, 1);
}

void Server::TakeWakes() noexcept {
  std::array<char, 256> bytes;
  while (read(wake_reading_.get(), bytes.data(), bytes.size()) > 0) {
  }
}

void Server::Stop() noexcept {
  ++stops_;
  Wake();
}

void Server::Run() {
  while (stops_ == 0) {
    std::array<pollfd, 2> wanted{pollfd{listening_.get(), POLLIN, 0}, pollfd{wake_reading_.get(), POLLIN, 0}};
    if (poll(wanted.data(), wanted.size(), -1) < 0 && errno != EINTR) {
      Raise(error_number::kInternalError, std::string("Cannot wait for clients: ") + std::strerror(errno));
    }
    TakeWakes();
    JoinEnded();
    if (wanted[0].revents != 0 && stops_ == 0) Accept();
  }
  EndAll();
}

void Server::Accept() {
  sockaddr_storage storage{};
  socklen_t size = sizeof storage;
  Descriptor descriptor(
      accept4(listening_.get(), static_cast<sockaddr*>(static_cast<void*>(&storage)), &size, SOCK_CLOEXEC));
  if (descriptor.get() < 0) {
    // Without a free descriptor the waiting client stays, and would be met again at once.
    if (errno == EMFILE || errno == ENFILE || errno == ENOMEM) {
      LogSeldom(std::string("cannot take a client: ") + std::strerror(errno));
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    return;
  }
  const std::string peer = PeerText(storage, size);
  MakePlace();
  clients_.push_back(std::make_unique<Client>(std::move(descriptor), service_, peer, watcher_));
  Client& client = *clients_.back();
  try {
    client.thread = std::thread([this, &client] {
      client.session.Run();
      client.socket.End();
      client.ended = true;
      Wake();
    });
  } catch (const std::system_error& error) {
    LogSeldom(peer + ": refused: " + error.what());
    clients_.pop_back();
  }
}

void Server::MakePlace() {
  const std::size_t most = service_.limits.silent();
  std::size_t silent = 0;
  Client* oldest_silent = nullptr;
  Client* oldest = nullptr;
  for (const std::unique_ptr<Client>& client : clients_) {
    if (client->session.logged_in() || client->ended || client->displaced) continue;
    if (oldest == nullptr) oldest = client.get();
    if (!client->session.is_silent()) continue;
    ++silent;
    if (oldest_silent == nullptr) oldest_silent = client.get();
  }
  // Those whose password is being checked keep their place as long as there is any.
  Client* const goes = silent >= most                                                 ? oldest_silent
                       : clients_.size() >= service_.limits.connections + most + most ? oldest
                                                                                      : nullptr;
  if (goes == nullptr) return;
  goes->displaced = true;
  shutdown(goes->socket.descriptor(), SHUT_RDWR);
  LogSeldom("more than " + std::to_string(most) +
            " connections have not logged in: the oldest one is dropped for each new one");
}

void Server::LogSeldom(const std::string& line) {
  constexpr std::chrono::seconds kPause{10};
  if (next_line_ && !next_line_->has_passed()) {
    ++unsaid_lines_;
    return;
  }
  service_.log(unsaid_lines_ == 0 ? line : line + " (and " + std::to_string(unsaid_lines_) + " lines like it before)");
  unsaid_lines_ = 0;
  next_line_ = Deadline(kPause);
}

void Server::JoinEnded() {
  for (auto client = clients_.begin(); client != clients_.end();) {
    const auto next = std::next(client);
    if ((*client)->ended) {
      (*client)->thread.join();
      clients_.erase(client);
    }
    client = next;
  }
}

void Server::EndAll() noexcept {
  listening_ = Descriptor();
  service_.gate->Stop();
  for (const std::unique_ptr<Client>& client : clients_) {
    client->session.Stop();
    // An idle client's thread wakes up; one that writes has a while to come to its end.
    shutdown(client->socket.descriptor(), SHUT_RD);
  }
  const Deadline grace(kGrace);
  bool cut_off = false;
  for (JoinEnded(); !clients_.empty(); JoinEnded()) {
    if (!cut_off && (stops_ > 1 || grace.has_passed())) {
      cut_off = true;
      for (const std::unique_ptr<Client>& client : clients_) shutdown(client->socket.descriptor(), SHUT_RDWR);
    }
    pollfd wanted{wake_reading_.get(), POLLIN, 0};
    poll(&wanted, 1, cut_off ? -1 : static_cast<int>(grace.left().count()));
    TakeWakes();
  }
}

}  // namespace tessarlorn::tds
