// One connection of a client: its requests in their order, each answered before the next is read.
#pragma once

#include <atomic>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl/context.hpp>
#include <chrono>
#include <functional>
#include <memory>
#include <unordered_set>

#include "hosts/http/transport/server.h"

namespace tessarlorn::http {

class Client;

/// What the clients of one thread share. That thread's only, but for what is atomic.
struct ClientGroup {
  const TransportOptions* options = nullptr;
  const Server::Handler* handler = nullptr;
  /// nullptr without TLS.
  boost::asio::ssl::context* tls = nullptr;
  std::atomic<std::size_t>* connections = nullptr;
  std::unordered_set<std::shared_ptr<Client>> clients = {};
  /// The server ends.
  bool draining = false;
};

/// Lives in its group until its connection ends.
class Client {
 public:
  using Clock = std::chrono::steady_clock;

  Client() = default;
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;
  virtual ~Client() = default;

  /// Looks whether the client took too long.
  virtual void Tick(Clock::time_point now) = 0;
  /// Ends it when no request is under way, else after that one.
  virtual void Drain() = 0;
  virtual void Close() = 0;
};

/// Takes a new connection into the group and begins to read.
void AddClient(ClientGroup& group, boost::asio::ip::tcp::socket socket);

}  // namespace tessarlorn::http
