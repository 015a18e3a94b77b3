#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>
#include <utility>

#include "hosts/cli/console/usage_error.h"
#include "hosts/cli/serving/serving.h"
#include "hosts/http/door.h"
#include "hosts/http/transport/server.h"
#include "platform/file_path.h"
#include "platform/session_string.h"
#include "platform/text/text.h"

namespace tessarlorn::cli {
namespace {

constexpr std::string_view kSystemd = "systemd";
/// The first descriptor that systemd hands over.
constexpr int kFirstHanded = 3;

/// The socket that systemd listens on for this process, by the rules of sd_listen_fds(3).
Descriptor HandedSocket() {
  const char* const process = std::getenv("LISTEN_PID");
  const char* const count = std::getenv("LISTEN_FDS");
  if (process == nullptr || count == nullptr || process != std::to_string(getpid()) || count != std::string_view("1")) {
    throw UsageError("--http systemd wants one socket that systemd hands over (LISTEN_PID, LISTEN_FDS)");
  }
  return Descriptor(kFirstHanded);
}

http::DoorOptions MakeDoorOptions(const ServeOptions& options, const CommandContext& context) {
  const SessionString session = ParseSessionString(context.RequireDsn());
  http::DoorOptions door;
  door.database = session.database;
  door.replica = session.replica;
  door.longest_lag = std::chrono::seconds(options.replica_lag_seconds);
  door.readers = static_cast<unsigned>(options.readers);
  // The embedded database has one writer, whose calls share commits.
  const bool one_writer = EqualsIgnoreCase(context.host.DecidingKey(session.database), "Embedded");
  door.shares_commits = one_writer;
  // Many connections keep little each, unless the string says otherwise.
  const auto is_cache = [](const auto& pair) { return EqualsIgnoreCase(pair.first, "Cache"); };
  const Pairs pairs = one_writer ? ParsePairs(door.database) : Pairs();
  if (one_writer && std::none_of(pairs.begin(), pairs.end(), is_cache)) door.database += ";Cache=8";
  door.writers = one_writer ? 1 : static_cast<unsigned>(options.writers);
  door.waiting = static_cast<std::size_t>(options.calls_waiting);
  door.calls_per_caller = static_cast<std::size_t>(options.calls_per_user);
  door.rows = static_cast<std::size_t>(options.rows);
  door.time = std::chrono::seconds(options.call_seconds);
  door.sessions.idle = std::chrono::minutes(options.session_minutes);
  door.sessions.whole = std::chrono::hours(options.session_hours);
  door.log = WriteLogLine;
  door.page = http::WorkbenchFiles();
  return door;
}

http::TransportOptions MakeTransportOptions(const ServeOptions& options) {
  http::TransportOptions transport;
  transport.limits.connections = static_cast<std::size_t>(options.http_connections);
  transport.limits.body = static_cast<std::size_t>(options.body_megabytes) << 20;
  transport.limits.header = static_cast<std::size_t>(options.header_kilobytes) << 10;
  transport.certificate = options.certificate;
  transport.key = options.key;
  transport.behind_proxy = options.behind_proxy;
  return transport;
}

class HttpDoor final : public ServedDoor {
 public:
  HttpDoor(std::string place, Descriptor listening, const ServeOptions& options, const CommandContext& context)
      : place_(std::move(place)),
        keeper_(context.host.OpenConnection(ParseSessionString(context.RequireDsn()).database)),
        server_(std::move(listening), TransportOptionsFor(options),
                [this](std::unique_ptr<http::Exchange> exchange) { door_.Handle(std::move(exchange)); }),
        door_(context.host, MakeDoorOptions(options, context)) {
    if (!http::HasItsIndexes(*keeper_)) {
      throw UsageError("the database lacks indexes of this version: 'tessarlorn init' makes them");
    }
    door_.set_connections([this] { return server_.connections(); });
  }

  [[nodiscard]] std::string place() const override { return place_; }
  void Run() override {
    server_.Run([this] { door_.Stop(); });
  }
  void Stop() noexcept override { server_.Stop(); }

 private:
  http::TransportOptions TransportOptionsFor(const ServeOptions& options) {
    http::TransportOptions transport = MakeTransportOptions(options);
    transport.refusal = [this](int status, std::string_view why) { return door_.Refused(status, why); };
    return transport;
  }

  std::string place_;
  /// One in memory lives as long as the server.
  std::unique_ptr<Connection> keeper_;
  http::Server server_;
  /// Goes first: calls that are not answered yet have connections of the server.
  http::Door door_;
};

}  // namespace

std::unique_ptr<ServedDoor> ServeHttp(const ServeOptions& options, const CommandContext& context) {
  const bool handed = EqualsIgnoreCase(options.http, kSystemd);
  Descriptor listening = handed ? HandedSocket() : Descriptor();
  Address address = handed ? AddressOf(listening) : ParseAddress(options.http);
  CheckAddress(options, address, address.ToText());
  for (const std::string& file : {options.certificate, options.key}) {
    if (!file.empty() && !std::filesystem::is_regular_file(ToPath(file))) {
      throw UsageError("there is no file " + file);
    }
  }
  if (!handed) listening = Listen(address);
  const std::string scheme = options.certificate.empty() ? "http://" : "https://";
  try {
    return std::make_unique<HttpDoor>(scheme + address.ToText(), std::move(listening), options, context);
  } catch (const Error& error) {
    if (error.number() != error_number::kNoSuchTable) throw;
    throw UsageError("the database has no tables of users and calls: 'tessarlorn init' makes them");
  }
}

}  // namespace tessarlorn::cli
