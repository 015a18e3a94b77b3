// The server: it listens, gives each client a thread, and ends them all.
#pragma once

#include <atomic>
#include <list>
#include <memory>

#include "serve/client_session.h"
#include "serve/socket.h"
#include "serve/watcher.h"

namespace tessarlorn::serve {

class Server {
 public:
  /// Listens from now on. Raises what Listen raises.
  Server(Address address, Service service);
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;
  ~Server();

  /// With the port that was chosen.
  [[nodiscard]] const Address& address() const noexcept { return address_; }
  /// Serves until Stop() is called, then ends all clients: running batches are cancelled and rolled back.
  void Run();
  /// May be called from any thread, or from a signal handler. Called again it no longer waits for clients that are slow
  /// to read.
  void Stop() noexcept;

 private:
  struct Client;
  void Accept();
  void JoinEnded();
  void EndAll() noexcept;
  /// Makes Run() look up from waiting.
  void Wake() noexcept;
  void TakeWakes() noexcept;

  Address address_;
  Service service_;
  Descriptor listening_;
  Descriptor wake_reading_;
  Descriptor wake_writing_;
  std::atomic<int> stops_{0};
  Watcher watcher_;
  std::list<std::unique_ptr<Client>> clients_;  // of the thread that runs Run()
};

}  // namespace tessarlorn::serve
