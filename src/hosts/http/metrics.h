// What the server counts, in the text form of Prometheus.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>

namespace tessarlorn::http {

/// What is true at the moment it is asked for.
struct Gauges {
  std::size_t connections = 0;
  std::size_t reads_waiting = 0;
  std::size_t writes_waiting = 0;
  std::size_t calls_running = 0;
  std::size_t event_streams = 0;
  /// Whether the replica takes reads; nothing stands for none.
  int replica = -1;
};

/// Used by several threads at once.
class Metrics {
 public:
  using Time = std::chrono::nanoseconds;

  /// @param operation "GetListData", or the name of another route
  void Count(const std::string& operation, int status, Time time, Time database);
  [[nodiscard]] std::string Text(const Gauges& gauges) const;

 private:
  /// Upper ends of the buckets, in seconds; one more has no end.
  static constexpr std::array kBuckets = {0.001, 0.0025, 0.005, 0.01, 0.025, 0.05, 0.1, 0.25, 0.5, 1.0, 2.5, 10.0};
  struct Series {
    std::map<int, std::uint64_t> by_status;
    std::array<std::uint64_t, kBuckets.size() + 1> buckets{};
    std::uint64_t count = 0;
    double seconds = 0;
    double database_seconds = 0;
  };

  mutable std::mutex mutex_;
  std::map<std::string, Series, std::less<>> series_;
};

}  // namespace tessarlorn::http
