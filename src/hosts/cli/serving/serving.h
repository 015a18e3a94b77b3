// The servers that `tessarlorn serve` runs, and what is asked of them.
#pragma once

#include <memory>
#include <string>

#include "hosts/cli/commands.h"
#include "hosts/listening/listening.h"

namespace tessarlorn::cli {

struct ServeOptions {
  /// Where to listen, "" for not at all; systemd's socket is "systemd".
  std::string tds;
  std::string http;
  std::string users;
  std::string add_user;
  std::string certificate;
  std::string key;
  bool allow_remote = false;
  bool allow_plain = false;
  bool behind_proxy = false;
  bool verbose = false;
  /// Whether it is for a newcomer to try.
  bool demo = false;
  int connections = 200;
  int message_megabytes = 64;
  int memory_megabytes = 1024;
  int login_seconds = 15;
  int idle_seconds = 8 * 3600;
  int send_seconds = 30;
  int http_connections = 1000;
  int body_megabytes = 8;
  int header_kilobytes = 16;
  int call_seconds = 60;
  int calls_waiting = 256;
  int calls_per_user = 16;
  int rows = 1'000'000;
  int readers = 24;
  int writers = 8;
  int session_minutes = 30;
  int session_hours = 12;
  int replica_lag_seconds = 5;
};

/// A server that listens.
class ServedDoor {
 public:
  ServedDoor() = default;
  ServedDoor(const ServedDoor&) = delete;
  ServedDoor& operator=(const ServedDoor&) = delete;
  virtual ~ServedDoor() = default;

  /// Where, as its line of output says: "127.0.0.1:1433", "http://127.0.0.1:8080".
  [[nodiscard]] virtual std::string place() const = 0;
  /// Serves until Stop().
  virtual void Run() = 0;
  /// May be called by a signal handler; twice ends what is under way, too.
  virtual void Stop() noexcept = 0;
};

/// Both raise UsageError for what cannot be served so, and what listening and the database raise.
std::unique_ptr<ServedDoor> ServeTds(const ServeOptions& options, const CommandContext& context);
std::unique_ptr<ServedDoor> ServeHttp(const ServeOptions& options, const CommandContext& context);

/// Raises UsageError for an address that others reach without what that takes: --allow-remote, and TLS or
/// --allow-plain. @param words the address as it was given
void CheckAddress(const ServeOptions& options, const Address& address, const std::string& words);

/// Writes a line of the log to standard error, with the time in front of it. By any thread.
void WriteLog(const std::string& line);
/// The same as it is.
void WriteLogLine(const std::string& line);

}  // namespace tessarlorn::cli
