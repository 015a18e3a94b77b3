// The server of HTTP/1.1: it listens, reads requests, and takes answers back, by Boost.Beast.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "hosts/http/transport/exchange.h"
#include "hosts/listening/listening.h"

namespace tessarlorn::http {

struct TransportLimits {
  /// Connections at once; one more is answered 503.
  std::size_t connections = 1000;
  /// Bytes of a request's line and headers.
  std::size_t header = 16384;
  /// Bytes of a body of a request that shows neither a token nor a cookie.
  std::size_t nobodys_body = std::size_t{64} << 10;
  /// Bytes of a request's body.
  std::size_t body = std::size_t{8} << 20;
  /// From the first byte of a request to the end of its headers, and for the TLS handshake.
  std::chrono::milliseconds header_time{10'000};
  /// From the end of the headers to the end of the body.
  std::chrono::milliseconds body_time{30'000};
  /// From one answer to the next request.
  std::chrono::milliseconds idle{75'000};
  /// How long a client may take to read 32 KB of an answer.
  std::chrono::milliseconds send{30'000};
  /// How long requests under way may take when the server ends.
  std::chrono::milliseconds drain{20'000};
};

struct TransportOptions {
  TransportLimits limits = {};
  /// Files in PEM; without them there is no TLS.
  std::string certificate = {};
  std::string key = {};
  /// The answer to a request that cannot be read: 400, 408, 413, 431, 503.
  std::function<Response(int status, std::string_view why)> refusal = {};
  /// Whether the client's address and TLS are those that a proxy in front tells, by the last address of X-Forwarded-For
  /// and by X-Forwarded-Proto.
  bool behind_proxy = false;
  /// Threads that read and write.
  unsigned threads = 1;
};

class Server {
 public:
  /// Takes a request, on a thread that reads and writes: it must not wait.
  using Handler = std::function<void(std::unique_ptr<Exchange>)>;

  /// Serves what comes to the listening socket. It outlives the exchanges that it hands out. Raises Error 5 naming a
  /// certificate or key that cannot be used.
  Server(Descriptor listening, TransportOptions options, Handler handler);
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;
  ~Server();

  /// Serves until Stop(). Then `stopped` is called, nobody new is taken, and what is under way is answered first.
  void Run(std::function<void()> stopped = {});
  /// May be called from any thread and from a signal handler; twice ends what is under way, too.
  void Stop() noexcept;

  [[nodiscard]] std::size_t connections() const noexcept;
  /// Whether Stop() was called.
  [[nodiscard]] bool stopping() const noexcept;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace tessarlorn::http
