// What colleagues do, as a stream of server-sent events: the operation log, and the calls that came through the door.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "hosts/http/access/caller.h"
#include "hosts/http/visit.h"
#include "tessarlorn/connection.h"
#include "tessarlorn/host.h"

namespace tessarlorn::http {

/// Up to where a log is read. Keys are given before they are committed, so that a lower one may come later: what lies
/// behind a gap is told at once, and the gap is looked at until it is old.
class LogCursor {
 public:
  using Clock = std::chrono::steady_clock;

  explicit LogCursor(std::int64_t after) : low_(after) {}
  /// Every key up to here is told, or will never come.
  [[nodiscard]] std::int64_t low() const noexcept { return low_; }
  /// Whether the key is new.
  bool Take(std::int64_t key);
  /// To be called behind the keys of each look: gaps that are ten seconds old are given up.
  void Settle(Clock::time_point now);
  /// Gives up all gaps: so much has come behind them that they are old.
  void GiveUpGaps();

 private:
  std::int64_t low_;
  std::set<std::int64_t> seen_;
  std::optional<Clock::time_point> gap_since_;
};

struct Event {
  std::string text;
  /// In the log of calls, or in the operation log.
  bool of_call = false;
  std::int64_t key = 0;
  /// The orders that it tells of.
  std::vector<std::int32_t> orders;
};

/// Reads both logs twice a second while somebody listens. Used by several threads at once.
class Events {
 public:
  /// Whether the sender of a request may still listen.
  using Known = std::function<bool(const Request&)>;

  /// @param session a session string without a user; @param known asked every few seconds for each listener
  Events(Host& host, std::string session, Known known);
  Events(const Events&) = delete;
  Events& operator=(const Events&) = delete;
  /// Ends all streams.
  ~Events();

  /// Begins a stream: from what the header Last-Event-ID says, or from now on. On a thread that may wait.
  void Listen(std::unique_ptr<Visit> visit, Caller caller);
  /// Ends all streams: the server ends.
  void Stop();
  [[nodiscard]] std::size_t listeners() const;

 private:
  struct Cursors {
    LogCursor log{0};
    LogCursor calls{0};
  };
  struct Listener {
    std::unique_ptr<Visit> visit;
    Caller caller;
    int looks = 0;
    /// What it was told when it joined the others.
    Cursors told = {};
  };

  void Run();
  /// What is new behind the cursors, in the order of each log.
  static std::vector<Event> ReadNew(Connection& connection, Cursors& cursors);
  /// Those of the events that the user may see.
  static std::string TextFor(Connection& connection, const Caller& caller, const std::vector<Event>& events);
  /// Those that the listener was not told yet. Raises ClientGone.
  static void Tell(Connection& connection, Listener& listener, const std::vector<Event>& events);
  static Cursors Now(Connection& connection);

  Host& host_;
  const std::string session_;
  const Known known_;
  mutable std::mutex mutex_;
  std::condition_variable wake_;
  bool stopping_ = false;
  std::list<Listener> listeners_;
  std::optional<Cursors> cursors_;
  std::thread thread_;
};

}  // namespace tessarlorn::http
