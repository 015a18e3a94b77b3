#include <array>
#include <atomic>
#include <csignal>
#include <iostream>
#include <string>
#include <sys/resource.h>
#include <thread>
#include <vector>

#include "hosts/cli/commands.h"
#include "hosts/cli/console/password.h"
#include "hosts/cli/console/usage_error.h"
#include "hosts/cli/serving/demo.h"
#include "hosts/cli/serving/serving.h"
#include "hosts/tds/users.h"

namespace tessarlorn::cli {
namespace {

constexpr const char* kServeFooter =
    R"(Serves the database until Ctrl-C or SIGTERM: with --tds over TDS 7.1 to 7.4, the protocol of SQL Server's clients, and
with --http as JSON over HTTP/1.1, or both. For each a line of its output says where: "listening on 127.0.0.1:1433",
"listening on http://127.0.0.1:8080"; port 0 is any free one. The log goes to standard error, for HTTP a line of JSON for
each request. At the end what is under way is answered first, in five seconds over TDS and twenty over HTTP, or until a
second signal.

Over TDS the users stand in a file, with hashes of their passwords; --add-user reads a password from standard input and
adds one. Over HTTP users, tokens and roles stand in the database: 'tessarlorn user', 'token' and 'role'. There the
operations are called: POST /api/v1/clsGetData/GetListData. /api/v1/docs shows all of them, and lets them be tried. The
address itself is the workbench, the page on which people in the warehouse work; --demo shows it with sample orders.

Only addresses of this machine are served unless --allow-remote is given, and then only with a certificate, or with
--allow-plain: without TLS passwords and data can be read on their way. Behind a proxy that has TLS: --behind-proxy
believes its X-Forwarded-For and X-Forwarded-Proto. --http systemd takes the socket that systemd hands over.

A connection string with Replica={...} sends reads to that copy of the database.

Exit status: 0 when it was ended, 2 when it was called in a wrong way, 3 when it could not serve.

Examples:
  tessarlorn serve --http 127.0.0.1:8080 --demo
  tessarlorn serve --http 127.0.0.1:8080 --dsn Embedded=orders.db
  tessarlorn serve --add-user ann --users users.txt
  tessarlorn serve --tds 127.0.0.1:1433 --users users.txt --dsn Embedded=orders.db
  tessarlorn serve --http 0.0.0.0:443 --allow-remote --certificate server.crt --key server.key)";

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

std::array<std::atomic<ServedDoor*>, 2> running_doors{};
static_assert(std::atomic<ServedDoor*>::is_always_lock_free);

extern "C" void StopDoors(int /*signal*/) {
  for (const std::atomic<ServedDoor*>& running : running_doors) {
    if (ServedDoor* const door = running.load()) door->Stop();
  }
}

/// While it lives, Ctrl-C and SIGTERM end the servers.
class EndedBySignals {
 public:
  explicit EndedBySignals(const std::vector<std::unique_ptr<ServedDoor>>& doors) {
    for (std::size_t i = 0; i < doors.size(); ++i) running_doors[i] = doors[i].get();
    std::signal(SIGINT, StopDoors);
    std::signal(SIGTERM, StopDoors);
  }
  EndedBySignals(const EndedBySignals&) = delete;
  EndedBySignals& operator=(const EndedBySignals&) = delete;
  ~EndedBySignals() {
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
    for (std::atomic<ServedDoor*>& running : running_doors) running = nullptr;
  }
};

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

std::vector<std::unique_ptr<ServedDoor>> MakeDoors(const ServeOptions& options, const CommandContext& context) {
  std::vector<std::unique_ptr<ServedDoor>> doors;
  try {
    if (!options.tds.empty()) doors.push_back(ServeTds(options, context));
    if (!options.http.empty()) doors.push_back(ServeHttp(options, context));
  } catch (const Error& error) {
    if (error.number() != error_number::kInvalidArgument) throw;
    throw UsageError(error.what());
  }
  if (doors.empty()) {
    throw UsageError("--tds ADDRESS:PORT or --http ADDRESS:PORT is required, as --http 127.0.0.1:8080");
  }
  return doors;
}

ExitStatus RunServe(const ServeOptions& options, CommandContext& context) {
  if (!options.add_user.empty()) return AddUser(options);
  if (options.demo && (options.http.empty() || options.allow_remote || options.behind_proxy)) {
    throw UsageError("--demo goes with --http, and for this machine only: its password is shown");
  }
  const std::string demo_password = options.demo ? PrepareDemo(context) : "";
  const int tds_clients = options.tds.empty() ? 0 : options.connections;
  const int http_clients = options.http.empty() ? 0 : options.http_connections / 3;
  AllowOpenFiles(static_cast<std::size_t>(tds_clients) + static_cast<std::size_t>(http_clients));
  const std::vector<std::unique_ptr<ServedDoor>> doors = MakeDoors(options, context);
  const EndedBySignals ended(doors);
  for (const std::unique_ptr<ServedDoor>& door : doors) {
    std::cout << "listening on " << door->place() << '\n' << std::flush;
    WriteLog("serving on " + door->place());
  }
  if (options.demo) {
    std::cout << "\nThe workbench is at " << doors.back()->place() << "\nLog in as demo with the password "
              << demo_password << "\nCtrl-C ends it.\n"
              << std::flush;
  }
  std::thread other;
  if (doors.size() > 1) other = std::thread([&doors] { doors[1]->Run(); });
  doors[0]->Run();
  if (other.joinable()) other.join();
  WriteLog("ended");
  return ExitStatus::kDone;
}

}  // namespace

void AddServeCommand(CLI::App& app, CommandContext& context) {
  CLI::App* const command = app.add_subcommand("serve", "Serve the operations over HTTP, and the database over TDS");
  const auto options = std::make_shared<ServeOptions>();
  command->add_option("--tds", options->tds, "Where to serve TDS: a numeric address or localhost, and a port")
      ->type_name("ADDRESS:PORT");
  command->add_option("--http", options->http, "Where to serve HTTP")->type_name("ADDRESS:PORT");
  command->add_option("--users", options->users, "The file of the users of TDS, with hashes of their passwords")
      ->type_name("FILE");
  command->add_option("--add-user", options->add_user, "Add a user to the file, or change its password, and end")
      ->type_name("NAME");
  command->add_option("--certificate", options->certificate, "Certificate for TLS, PEM")->type_name("FILE");
  command->add_option("--key", options->key, "The certificate's key, PEM")->type_name("FILE");
  command->add_flag("--allow-remote", options->allow_remote, "Serve an address that other machines reach");
  command->add_flag("--allow-plain", options->allow_plain, "Let other machines log in without TLS");
  command->add_flag("--behind-proxy", options->behind_proxy,
                    "Believe what a proxy in front tells of clients; HTTP only");
  const auto limit = [command](const char* name, int& value, int most, const char* help) {
    command->add_option(name, value, help)->check(CLI::Range(1, most))->capture_default_str()->type_name("N");
  };
  limit("--max-connections", options->connections, 10'000, "Clients of TDS at once");
  limit("--max-message", options->message_megabytes, 1024, "Megabytes of a batch, or of a call with its parameters");
  limit("--max-memory", options->memory_megabytes, 65'536, "Megabytes that a client's batch may take (16 at least)");
  limit("--login-timeout", options->login_seconds, 3600, "Seconds that a login may take");
  limit("--idle-timeout", options->idle_seconds, 7 * 86'400, "Seconds that a client may be silent");
  limit("--send-timeout", options->send_seconds, 3600, "Seconds that a client may take to read 64 KB of an answer");
  limit("--max-http-connections", options->http_connections, 100'000, "Connections of HTTP at once");
  limit("--max-body", options->body_megabytes, 1024, "Megabytes of a request's body");
  limit("--max-header", options->header_kilobytes, 1024, "Kilobytes of a request's headers");
  limit("--max-rows", options->rows, 1'000'000'000, "Rows of an answer over HTTP");
  limit("--max-waiting", options->calls_waiting, 100'000, "Calls that wait for a thread; one more is answered 503");
  limit("--max-calls", options->calls_per_user, 10'000, "Calls of a user at once; one more is answered 429");
  limit("--call-timeout", options->call_seconds, 86'400, "Seconds that a call over HTTP may take");
  limit("--readers", options->readers, 256, "Threads that read");
  limit("--writers", options->writers, 256, "Threads that write; an embedded database has one");
  limit("--session-idle", options->session_minutes, 7 * 1440, "Minutes after which a silent session of the page ends");
  limit("--session-length", options->session_hours, 365 * 24, "Hours after which every session of the page ends");
  limit("--replica-lag", options->replica_lag_seconds, 3600, "Seconds that a replica may be behind");
  command->add_flag("--demo", options->demo, "Make sample orders where there are none, and show a login for the page");
  command->add_flag("--verbose", options->verbose, "Log logins and statements, too");
  AddConnectionOptions(*command, context);
  command->footer(kServeFooter);
  command->callback(
      [&context, options] { context.action = [&context, options] { return RunServe(*options, context); }; });
}

}  // namespace tessarlorn::cli
