#include "hosts/http/transport/server.h"

#include <array>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <cerrno>
#include <sys/eventfd.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

#include "hosts/http/transport/client.h"
#include "hosts/http/transport/signals.h"
#include "tessarlorn/error.h"

namespace tessarlorn::http {
namespace {

namespace asio = boost::asio;
using Tcp = asio::ip::tcp;
using Failure = boost::system::error_code;

constexpr std::chrono::milliseconds kTick{250};
/// Before another client is taken when there was no room for the last one.
constexpr std::chrono::milliseconds kPause{100};

/// One thread with its clients.
struct Lane {
  Lane() = default;
  Lane(const Lane&) = delete;
  Lane& operator=(const Lane&) = delete;
  ~Lane() { group.clients.clear(); }

  /// Clients that wait in the context know their group.
  ClientGroup group;
  asio::io_context context{1};
  asio::steady_timer ticker{context};
};

asio::ssl::context MakeTls(const std::string& certificate, const std::string& key) {
  asio::ssl::context tls(asio::ssl::context::tls_server);
  SSL_CTX_set_min_proto_version(tls.native_handle(), TLS1_2_VERSION);
  SSL_CTX_set_options(tls.native_handle(), SSL_OP_NO_RENEGOTIATION | SSL_OP_NO_COMPRESSION);
  Failure failure;
  tls.use_certificate_chain_file(certificate, failure);
  if (failure) {
    Raise(error_number::kInvalidArgument, "The certificate " + certificate + " cannot be used: " + failure.message());
  }
  tls.use_private_key_file(key, asio::ssl::context::pem, failure);
  if (failure) Raise(error_number::kInvalidArgument, "The key " + key + " cannot be used: " + failure.message());
  return tls;
}

}  // namespace

struct Server::State {
  State(Descriptor listening, TransportOptions given, Handler handles)
      : options(std::move(given)), handler(std::move(handles)), wake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!options.certificate.empty()) tls.emplace(MakeTls(options.certificate, options.key));
    for (unsigned i = 0; i < std::max(1U, options.threads); ++i) {
      lanes.push_back(std::make_unique<Lane>());
      ClientGroup& group = lanes.back()->group;
      group.options = &options;
      group.handler = &handler;
      group.tls = tls ? &*tls : nullptr;
      group.connections = &connections;
    }
    if (wake.get() < 0) Raise(error_number::kInternalError, "The system gives no event for the server's end");
    asio::io_context& first = lanes.front()->context;
    waker.emplace(first, wake.Release());
    acceptor.emplace(first);
    // The family of the address does not matter any more.
    acceptor->assign(Tcp::v4(), listening.Release());
    pause.emplace(first);
  }

  void Accept() {
    Lane& lane = *lanes[next++ % lanes.size()];
    acceptor->async_accept(lane.context, [this, &lane](Failure failure, Tcp::socket socket) {
      if (stops > 0 || !acceptor->is_open()) return;
      if (failure) {
        // Without a free descriptor the waiting client stays, and would be met again at once.
        pause->expires_after(kPause);
        pause->async_wait([this](Failure) { Accept(); });
        return;
      }
      if (connections >= options.limits.connections) {
        Refuse(socket);
      } else {
        asio::post(lane.context, [&lane, taken = std::move(socket)]() mutable {
          if (!lane.group.draining) AddClient(lane.group, std::move(taken));
        });
      }
      Accept();
    });
  }

  /// Says in one write that there is no room. Over TLS it only ends.
  void Refuse(Tcp::socket& socket) const {
    if (tls) return;
    const Response response = options.refusal(503, "too many connections");
    std::string text = "HTTP/1.1 503 Service Unavailable\r\nConnection: close\r\nContent-Length: " +
                       std::to_string(response.body.size()) + "\r\n";
    for (const auto& [name, value] : response.headers) text += name + ": " + value + "\r\n";
    text.append(response.common_headers).append("\r\n").append(response.body);
    Failure ignored;
    socket.non_blocking(true, ignored);
    socket.write_some(asio::buffer(text), ignored);
    socket.shutdown(Tcp::socket::shutdown_send, ignored);
  }

  void Tick(Lane& lane) {
    lane.ticker.expires_after(kTick);
    lane.ticker.async_wait([this, &lane](Failure) {
      const Client::Clock::time_point now = Client::Clock::now();
      const std::vector<std::shared_ptr<Client>> clients(lane.group.clients.begin(), lane.group.clients.end());
      for (const std::shared_ptr<Client>& client : clients) {
        if (lane.group.draining && (stops > 1 || now >= end.load())) {
          client->Close();
        } else {
          client->Tick(now);
        }
      }
      if (lane.group.draining && lane.group.clients.empty()) return;
      Tick(lane);
    });
  }

  void WaitForStop() {
    waker->async_read_some(asio::buffer(woken), [this](Failure, std::size_t) {
      if (stops == 0) {
        WaitForStop();
        return;
      }
      Failure ignored;
      acceptor->close(ignored);
      if (stopped) stopped();
      end = Client::Clock::now() + options.limits.drain;
      for (const std::unique_ptr<Lane>& lane : lanes) {
        asio::post(lane->context, [&lane] {
          lane->group.draining = true;
          const std::vector<std::shared_ptr<Client>> clients(lane->group.clients.begin(), lane->group.clients.end());
          for (const std::shared_ptr<Client>& client : clients) client->Drain();
        });
      }
    });
  }

  TransportOptions options;
  Handler handler;
  Descriptor wake;
  std::optional<asio::ssl::context> tls;
  std::atomic<std::size_t> connections{0};
  std::vector<std::unique_ptr<Lane>> lanes;
  std::optional<asio::posix::stream_descriptor> waker;
  std::optional<Tcp::acceptor> acceptor;
  std::optional<asio::steady_timer> pause;
  std::array<char, 8> woken{};
  std::size_t next = 0;
  std::function<void()> stopped;
  std::atomic<int> stops{0};
  std::atomic<Client::Clock::time_point> end{Client::Clock::time_point::max()};
};

Server::Server(Descriptor listening, TransportOptions options, Handler handler)
    : state_(std::make_unique<State>(std::move(listening), std::move(options), std::move(handler))) {}

Server::~Server() = default;

void Server::Run(std::function<void()> stopped) {
  State& state = *state_;
  state.stopped = std::move(stopped);
  state.Accept();
  state.WaitForStop();
  std::vector<std::thread> threads;
  for (const std::unique_ptr<Lane>& lane : state.lanes) {
    state.Tick(*lane);
    if (lane == state.lanes.front()) continue;
    threads.emplace_back([&lane] {
      BlockSignals();
      lane->context.run();
    });
  }
  // It ends when nobody is left to tick for.
  state.lanes.front()->context.run();
  for (std::thread& thread : threads) thread.join();
}

void Server::Stop() noexcept {
  ++state_->stops;
  const std::uint64_t one = 1;
  [[maybe_unused]] const ssize_t written = write(state_->waker->native_handle(), &one, sizeof one);
}

std::size_t Server::connections() const noexcept { return state_->connections; }

bool Server::stopping() const noexcept { return state_->stops > 0; }

}  // namespace tessarlorn::http
