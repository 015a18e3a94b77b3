// A server that answers recorded bytes: what a client's read costs when nothing is looked up.
#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace tessarlorn::bench {

/// A listening socket on 127.0.0.1 with a port of its own.
class Listener {
 public:
  Listener();
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;
  ~Listener();
  [[nodiscard]] int port() const noexcept { return port_; }
  /// The next client's descriptor, -1 once it is closed.
  [[nodiscard]] int Accept() const;
  void Close() noexcept;

 private:
  std::atomic<int> descriptor_;
  int port_ = 0;
};

/// What a server answered to the requests of one client, in their order.
using Recording = std::vector<std::string>;

/// Stands between one client and a server while it lives, and records the answers.
class Recorder {
 public:
  explicit Recorder(int server_port);
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;
  ~Recorder();
  [[nodiscard]] int port() const noexcept { return listener_.port(); }
  /// To be called when the client is gone.
  Recording Take();

 private:
  Listener listener_;
  Recording answers_;
  std::thread thread_;
};

/// Answers each client's requests with the recorded answers in their order, and the last of them again and again.
class ReplayServer {
 public:
  explicit ReplayServer(Recording answers);
  ReplayServer(const ReplayServer&) = delete;
  ReplayServer& operator=(const ReplayServer&) = delete;
  ~ReplayServer();
  [[nodiscard]] int port() const noexcept { return listener_.port(); }

 private:
  void Serve(int client) const;

  Recording answers_;
  Listener listener_;
  std::thread thread_;
};

}  // namespace tessarlorn::bench
