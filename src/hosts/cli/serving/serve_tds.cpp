#include <string>
#include <utility>

#include "hosts/cli/console/usage_error.h"
#include "hosts/cli/serving/serving.h"
#include "hosts/tds/server.h"
#include "hosts/tds/users.h"
#include "platform/session_string.h"
#include "platform/text/text.h"

namespace tessarlorn::cli {
namespace {

/// What the words ask for, or what is wrong with them.
tds::Service MakeTdsService(const ServeOptions& options, const Address& address, const CommandContext& context) {
  CheckAddress(options, address, options.tds);
  tds::Service service(context.host);
  service.tls_required = !address.is_loopback() && !options.allow_plain;
  if (options.users.empty()) {
    throw UsageError("no users: give --users FILE; 'tessarlorn serve --add-user NAME --users FILE' adds one to it");
  }
  service.database_string = ParseSessionString(context.RequireDsn()).database;
  if (!EqualsIgnoreCase(service.host->DecidingKey(service.database_string), "Embedded")) {
    throw UsageError("only an embedded database is served over TDS, as --dsn Embedded=orders.db");
  }
  service.database_string += ";MaxMemory=" + std::to_string(options.memory_megabytes);
  service.users = tds::Users::Read(options.users);
  if (!options.certificate.empty()) {
    service.tls = std::make_shared<tds::TlsContext>(options.certificate, options.key);
  }
  service.limits.connections = static_cast<std::size_t>(options.connections);
  service.limits.message = static_cast<std::size_t>(options.message_megabytes) << 20;
  service.limits.login = std::chrono::seconds(options.login_seconds);
  service.limits.idle = std::chrono::seconds(options.idle_seconds);
  service.limits.send = std::chrono::seconds(options.send_seconds);
  service.log = WriteLog;
  service.verbose = options.verbose;
  return service;
}

class TdsDoor final : public ServedDoor {
 public:
  TdsDoor(const Address& address, tds::Service service)
      : keeper_(service.host->OpenConnection(service.database_string)), server_(address, std::move(service)) {}

  [[nodiscard]] std::string place() const override { return server_.address().ToText(); }
  void Run() override { server_.Run(); }
  void Stop() noexcept override { server_.Stop(); }

 private:
  /// A database that cannot be opened is told now, not to the first client; one in memory lives as long as the server.
  std::unique_ptr<Connection> keeper_;
  tds::Server server_;
};

}  // namespace

std::unique_ptr<ServedDoor> ServeTds(const ServeOptions& options, const CommandContext& context) {
  const Address address = ParseAddress(options.tds);
  return std::make_unique<TdsDoor>(address, MakeTdsService(options, address, context));
}

}  // namespace tessarlorn::cli
