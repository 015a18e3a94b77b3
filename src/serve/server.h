// The server: it listens, gives each client a thread, and ends them all.
#pragma once

#include <condition_variable>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

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
  /// May be called from any thread, or from a signal handler.
  void Stop() noexcept;

 private:
  struct Client;
  void Accept();
  void JoinEnded();
  void EndAll();

  Address address_;
  Service service_;
  Descriptor listening_;
  Descriptor stop_reading_;
  Descriptor stop_writing_;
  Watcher watcher_;
  std::mutex mutex_;
  std::condition_variable ended_changed_;
  std::list<std::unique_ptr<Client>> clients_;
};

}  // namespace tessarlorn::serve
