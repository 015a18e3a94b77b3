// The server: it listens, gives each client a thread, and ends them all.
#pragma once

#include <atomic>
#include <list>
#include <memory>
#include <optional>

#include "hosts/tds/client_session.h"
#include "hosts/tds/transport/socket.h"
#include "hosts/tds/transport/watcher.h"

namespace tessarlorn::tds {

class Server {
 public:
  /// Listens from now on. Raises what Listen raises.
  Server(Address address, Service service);
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;
  ~Server();

  /// With the port that was chosen.
  [[nodiscard]] const Address& address() const noexcept { return address_; }
  /// Serves until Stop() is called, then ends all clients: running batches are cancelled, and open transactions rolled
  /// back. What a batch had done without a transaction stays.
  void Run();
  /// May be called from any thread, or from a signal handler. Called again it no longer waits for clients that are slow
  /// to read.
  void Stop() noexcept;

 private:
  struct Client;
  void Accept();
  /// Makes place for one more connection: of those that have not logged in, the oldest goes when they are too many.
  void MakePlace();
  /// Logs at most one line in ten seconds, with the number of those before it that were left out.
  void LogSeldom(const std::string& line);
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
  // Of the thread that runs Run().
  std::list<std::unique_ptr<Client>> clients_;  // the oldest first
  std::optional<Deadline> next_line_;
  std::size_t unsaid_lines_ = 0;
};

}  // namespace tessarlorn::tds
