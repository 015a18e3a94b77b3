#include <array>
#include <atomic>
#include <csignal>
#include <ctime>
#include <iostream>
#include <mutex>
#include <string>
#include <sys/resource.h>

#include "hosts/cli/commands.h"
#include "hosts/cli/console/password.h"
#include "hosts/cli/console/usage_error.h"
#include "hosts/listening/listening.h"
#include "hosts/tds/server.h"
#include "hosts/tds/users.h"
#include "platform/session_string.h"
#include "platform/text/text.h"

namespace tessarlorn::cli {
namespace {

constexpr const char* kServeFooter =
    R"(Serves the database over TDS 7.1 to 7.4, the protocol of SQL Server's clients, until Ctrl-C or SIGTERM. The first line
of its output is "listening on ADDRESS:PORT"; port 0 is any free one. The log goes to standard error. Clients that are
slow to read are cut off five seconds after Ctrl-C, or by a second one.

Users stand in a file, with hashes of their passwords; --add-user reads a password from standard input and adds one.
Only addresses of this machine are served unless --allow-remote is given, and then only with a certificate, or with
--allow-plain: without TLS passwords and data can be read on their way.

Exit status: 0 when it was ended, 2 when it was called in a wrong way, 3 when it could not serve.

Examples:
  tessarlorn serve --add-user ann --users users.txt
  tessarlorn serve --tds 127.0.0.1:1433 --users users.txt --dsn Embedded=orders.db
  tessarlorn serve --tds 0.0.0.0:1433 --allow-remote --certificate server.crt --key server.key --users users.txt)";

struct ServeOptions {
  std::string address;
  std::string users;
  std::string add_user;
  std::string certificate;
  std::string key;
  bool allow_remote = false;
  bool allow_plain = false;
  bool verbose = false;
  int connections = 200;
  int message_megabytes = 64;
  int memory_megabytes = 1024;
  int login_seconds = 15;
  int idle_seconds = 8 * 3600;
  int send_seconds = 30;
};

ExitStatus AddUser(const ServeOptions& options) {
  if (options.users.empty()) throw UsageError("--add-user wants --users FILE, the file to which the user is added");
  try {
    tds::AddUser(options.users, options.add_user, ReadNewPassword(options.add_user));
  } catch (const Error& error) {
    throw UsageError(error.what());
  }
  std::cout << "user " << options.add_user << " is in " << options.users << '\n';
  return ExitStatus::kDone;
}

/// A line of the log, with the time.
void WriteLog(const std::string& line) {
  static std::mutex mutex;
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  localtime_r(&now, &parts);
  std::array<char, 32> stamp{};
  const std::size_t size = std::strftime(stamp.data(), stamp.size(), "%Y-%m-%d %H:%M:%S ", &parts);
  const std::scoped_lock lock(mutex);
  std::cerr << std::string_view(stamp.data(), size) << line << '\n' << std::flush;
}

std::atomic<tds::Server*> running_server{nullptr};
static_assert(std::atomic<tds::Server*>::is_always_lock_free);

extern "C" void StopServer(int /*signal*/) {
  if (tds::Server* const server = running_server.load()) server->Stop();
}

/// While it lives, Ctrl-C and SIGTERM end the server.
class EndedBySignals {
 public:
  explicit EndedBySignals(tds::Server& server) {
    running_server.store(&server);
    std::signal(SIGINT, StopServer);
    std::signal(SIGTERM, StopServer);
  }
  EndedBySignals(const EndedBySignals&) = delete;
  EndedBySignals& operator=(const EndedBySignals&) = delete;
  ~EndedBySignals() {
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
    running_server.store(nullptr);
  }
};

/// What the words ask for, or what is wrong with them.
tds::Service MakeService(const ServeOptions& options, const Address& address, const CommandContext& context) {
  if (options.certificate.empty() != options.key.empty()) {
    throw UsageError("--certificate and --key belong together");
  }
  tds::Service service(context.host);
  if (!address.is_loopback()) {
    if (!options.allow_remote) {
      throw UsageError(options.address + " is reached from other machines: give --allow-remote if that is wanted");
    }
    service.tls_required = !options.allow_plain;
    if (options.certificate.empty() && !options.allow_plain) {
      throw UsageError("serving other machines wants --certificate and --key, or --allow-plain to do without TLS");
    }
  }
  if (options.users.empty()) {
    throw UsageError("no users: give --users FILE; 'tessarlorn serve --add-user NAME --users FILE' adds one to it");
  }
  service.database_string = ParseSessionString(context.RequireDsn()).database;
  if (!EqualsIgnoreCase(service.host->DecidingKey(service.database_string), "Embedded")) {
    throw UsageError("only an embedded database is served, as --dsn Embedded=orders.db");
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

/// Takes as many open files as the system allows, and says when they are too few for all clients.
void AllowOpenFiles(std::size_t clients) {
  constexpr rlim_t kOfClient = 3;  // its socket, the database and its log
  constexpr rlim_t kOfServer = 24;
  rlimit files{};
  if (getrlimit(RLIMIT_NOFILE, &files) != 0) return;
  files.rlim_cur = files.rlim_max;
  setrlimit(RLIMIT_NOFILE, &files);
  getrlimit(RLIMIT_NOFILE, &files);
  if (files.rlim_cur >= kOfClient * clients + kOfServer) return;
  const rlim_t enough = files.rlim_cur <= kOfServer ? 0 : (files.rlim_cur - kOfServer) / kOfClient;
  WriteLog("the system allows " + std::to_string(files.rlim_cur) + " open files (ulimit -n), which is enough for " +
           std::to_string(enough) + " clients");
}

ExitStatus RunServe(const ServeOptions& options, const CommandContext& context) {
  if (!options.add_user.empty()) return AddUser(options);
  if (options.address.empty()) throw UsageError("--tds ADDRESS:PORT is required, as --tds 127.0.0.1:1433");
  Address address;
  tds::Service service(context.host);
  try {
    address = ParseAddress(options.address);
    service = MakeService(options, address, context);
  } catch (const Error& error) {
    if (error.number() != error_number::kInvalidArgument) throw;
    throw UsageError(error.what());
  }
  // A database that cannot be opened is told now, not to the first client; one in memory lives as long as the server.
  const std::unique_ptr<Connection> keeper = service.host->OpenConnection(service.database_string);
  AllowOpenFiles(service.limits.connections);
  tds::Server server(address, std::move(service));
  const EndedBySignals ended(server);
  std::cout << "listening on " << server.address().ToText() << '\n' << std::flush;
  WriteLog("serving on " + server.address().ToText());
  server.Run();
  WriteLog("ended");
  return ExitStatus::kDone;
}

}  // namespace

void AddServeCommand(CLI::App& app, CommandContext& context) {
  CLI::App* const command = app.add_subcommand("serve", "Serve the database to clients of SQL Server, over TDS");
  const auto options = std::make_shared<ServeOptions>();
  command->add_option("--tds", options->address, "Where to listen: a numeric address or localhost, and a port")
      ->type_name("ADDRESS:PORT");
  command->add_option("--users", options->users, "The file of users and hashes of their passwords")->type_name("FILE");
  command->add_option("--add-user", options->add_user, "Add a user to the file, or change its password, and end")
      ->type_name("NAME");
  command->add_option("--certificate", options->certificate, "Certificate for TLS, PEM")->type_name("FILE");
  command->add_option("--key", options->key, "The certificate's key, PEM")->type_name("FILE");
  command->add_flag("--allow-remote", options->allow_remote, "Serve an address that other machines reach");
  command->add_flag("--allow-plain", options->allow_plain, "Let other machines log in without TLS");
  const auto limit = [command](const char* name, int& value, int most, const char* help) {
    command->add_option(name, value, help)->check(CLI::Range(1, most))->capture_default_str()->type_name("N");
  };
  limit("--max-connections", options->connections, 10'000, "Clients at once");
  limit("--max-message", options->message_megabytes, 1024, "Megabytes of a batch, or of a call with its parameters");
  limit("--max-memory", options->memory_megabytes, 65'536, "Megabytes that a client's batch may take (16 at least)");
  limit("--login-timeout", options->login_seconds, 3600, "Seconds that a login may take");
  limit("--idle-timeout", options->idle_seconds, 7 * 86'400, "Seconds that a client may be silent");
  limit("--send-timeout", options->send_seconds, 3600, "Seconds that a client may take to read 64 KB of an answer");
  command->add_flag("--verbose", options->verbose, "Log logins and statements, too");
  AddConnectionOptions(*command, context);
  command->footer(kServeFooter);
  command->callback(
      [&context, options] { context.action = [&context, options] { return RunServe(*options, context); }; });
}

}  // namespace tessarlorn::cli
