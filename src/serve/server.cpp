#include "serve/server.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

#include "platform/error.h"

namespace tessarlorn::serve {
namespace {

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
  bool ended = false;
  std::thread thread;
};

Server::Server(Address address, Service service)
    : address_(std::move(address)), service_(std::move(service)), listening_(Listen(address_)) {
  std::array<int, 2> pipe{};
  if (pipe2(pipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
    Raise(error_number::kInternalError, std::string("Cannot make a pipe: ") + std::strerror(errno));
  }
  stop_reading_ = Descriptor(pipe[0]);
  stop_writing_ = Descriptor(pipe[1]);
}

Server::~Server() { EndAll(); }

void Server::Stop() noexcept {
  const char byte = 0;
  // A full pipe says the same.
  [[maybe_unused]] const ssize_t written = write(stop_writing_.get(), &byte, 1);
}

void Server::Run() {
  for (;;) {
    std::array<pollfd, 2> wanted{pollfd{listening_.get(), POLLIN, 0}, pollfd{stop_reading_.get(), POLLIN, 0}};
    if (poll(wanted.data(), wanted.size(), -1) < 0 && errno != EINTR) {
      Raise(error_number::kInternalError, std::string("Cannot wait for clients: ") + std::strerror(errno));
    }
    if (wanted[1].revents != 0) break;
    if (wanted[0].revents != 0) Accept();
  }
  EndAll();
}

void Server::Accept() {
  sockaddr_storage storage{};
  socklen_t size = sizeof storage;
  Descriptor descriptor(
      accept4(listening_.get(), static_cast<sockaddr*>(static_cast<void*>(&storage)), &size, SOCK_CLOEXEC));
  JoinEnded();
  if (descriptor.get() < 0) {
    // Without a free descriptor the waiting client stays, and would be met again at once.
    if (errno == EMFILE || errno == ENFILE || errno == ENOMEM) {
      service_.log(std::string("cannot take a client: ") + std::strerror(errno));
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    return;
  }
  const std::string peer = PeerText(storage, size);
  const std::scoped_lock lock(mutex_);
  if (clients_.size() >= service_.limits.connections) {
    service_.log(peer + ": refused: there are " + std::to_string(clients_.size()) + " clients already");
    return;
  }
  clients_.push_back(std::make_unique<Client>(std::move(descriptor), service_, peer, watcher_));
  Client& client = *clients_.back();
  try {
    client.thread = std::thread([this, &client] {
      client.session.Run();
      shutdown(client.socket.descriptor(), SHUT_RDWR);
      const std::scoped_lock ended(mutex_);
      client.ended = true;
      ended_changed_.notify_all();
    });
  } catch (const std::system_error& error) {
    service_.log(peer + ": refused: " + error.what());
    clients_.pop_back();
  }
}

void Server::JoinEnded() {
  std::list<std::unique_ptr<Client>> ended;
  {
    const std::scoped_lock lock(mutex_);
    for (auto client = clients_.begin(); client != clients_.end();) {
      const auto next = std::next(client);
      if ((*client)->ended) ended.splice(ended.end(), clients_, client);
      client = next;
    }
  }
  for (const std::unique_ptr<Client>& client : ended) client->thread.join();
}

void Server::EndAll() {
  listening_ = Descriptor();
  {
    std::unique_lock lock(mutex_);
    for (const std::unique_ptr<Client>& client : clients_) {
      client->session.Stop();
      // An idle client's thread wakes up; one that writes does so to its end, or to its time-out.
      shutdown(client->socket.descriptor(), SHUT_RD);
    }
    ended_changed_.wait(lock, [this] {
      return std::all_of(clients_.begin(), clients_.end(), [](const auto& client) { return client->ended; });
    });
  }
  JoinEnded();
}

}  // namespace tessarlorn::serve
