#include "hosts/cli/command.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <optional>
#include <span>

#include "hosts/cli/commands.h"
#include "hosts/cli/console/display_width.h"
#include "hosts/cli/console/interrupt.h"
#include "hosts/cli/console/system_text.h"
#include "hosts/cli/console/terminal.h"
#include "hosts/cli/console/usage_error.h"
#include "hosts/cli/shell_examples.h"
#include "tessarlorn/embedded_driver.h"
#ifdef TESSARLORN_HAS_ADO
#include "tessarlorn/ado_driver.h"
#endif
#ifdef TESSARLORN_HAS_ODBC
#include "tessarlorn/odbc_driver.h"
#endif
#include "platform/text/text.h"
#include "tessarlorn/error.h"
#include "tessarlorn/siblings.h"
#include "tessarlorn/version.h"

namespace tessarlorn::cli {
namespace {

constexpr const char* kEmbeddedStrings = R"(Connection strings:
  Embedded=orders.db                    an embedded database file, made when it is not there
)";

#ifdef _WIN32
constexpr const char* kServerStrings =
    R"(  Driver=ODBC Driver 18 for SQL Server;Server=db1,1433;Database=erp;UID=shop;PWD={...}
                                        a database server over ODBC; LoginTimeout= and StatementTimeout= are seconds
  Provider=SQLOLEDB;Data Source=db1;Initial Catalog=erp;User ID=shop;Password="..."
                                        the same over ADO, with the same seconds
)";
#else
constexpr const char* kServerStrings =
    R"(  Driver=FreeTDS;Server=db1;Port=1433;TDS_Version=7.4;Database=erp;UID=shop;PWD={...}
                                        a database server over ODBC; LoginTimeout= and StatementTimeout= are seconds
)";
#endif

constexpr const char* kCallerAndStatus = R"(  Connect={Embedded=orders.db};User=16394;Language=CHS;Client=10.0.0.5
                                        any of them, with who is calling

Exit status:
  0  done
  1  the operation answered its empty result: False, Nothing, 0 or ""
  2  a wrong call: nothing was done
  3  the operation or the database raised an error; its number, Source and description are on standard error
  4  the result could not be written; what was called has been done
  130  ended by Ctrl-C)";

#ifdef TESSARLORN_HAS_SERVER
constexpr const char* kServerStatus = "; 'serve' ends with 0";
#else
constexpr const char* kServerStatus = "";
#endif

constexpr const char* kExamples = R"(
  tessarlorn init
  tessarlorn seed --orders 500
  tessarlorn ops GetListData
  tessarlorn call GetListData Filter.FOrderStatus=2 Filter.WebOrderMaxDisplayCount=10
  tessarlorn sql "select top 5 * from IC_Web2ERPOrders"

'tessarlorn COMMAND --help' explains a command.)";

std::string FooterText() {
  return std::string(kEmbeddedStrings) + kServerStrings + kCallerAndStatus + kServerStatus + "\n\nExamples:\n  " +
         kSetDsnExample + kExamples;
}

/// The chosen command, or the application itself.
const CLI::App& Chosen(const CLI::App& app) {
  const std::vector<CLI::App*> chosen = app.get_subcommands();
  return chosen.empty() ? app : Chosen(*chosen.front());
}

void ReportUsage(const CLI::App& app, std::string_view fault, std::string_view help_command = {}) {
  std::string words;
  for (const CLI::App* command = &Chosen(app); command != nullptr; command = command->get_parent()) {
    words.insert(0, command->get_name() + (words.empty() ? "" : " "));
  }
  std::cerr << words << ": " << OnOneLine(fault) << "\n'";
  if (help_command.empty()) {
    std::cerr << words << " --help' explains the command.\n";
  } else {
    std::cerr << help_command << "' explains the operation.\n";
  }
}

/// The first word that is no text, with U+FFFD for what is malformed; nothing when all are texts.
std::optional<std::string> FindMalformedWord(std::span<const std::string> words) {
  const auto found = std::find_if_not(words.begin(), words.end(), IsValidUtf8);
  if (found == words.end()) return std::nullopt;
  const std::string_view word = *found;
  std::string shown;
  for (std::size_t position = 0; position < word.size();) AppendCharacter(shown, NextCharacter(word, position));
  constexpr std::size_t kShownWidth = 60;
  return CutToWidth(shown, kShownWidth);
}

/// What the library says of words that nobody expects, better said.
std::string DescribeExtra(const CLI::App& app) {
  const CLI::App& chosen = Chosen(app);
  const std::vector<std::string> words = app.remaining(true);
  if (words.empty()) return "unexpected words";
  const std::string& word = words.front();
  std::vector<std::string> names;
  std::string kind = "unexpected word ";
  if (word.starts_with("-")) {
    kind = "unknown option ";
    for (const CLI::Option* option : chosen.get_options()) {
      for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    }
  } else if (!chosen.get_subcommands({}).empty()) {
    kind = "unknown command ";
    for (const CLI::App* command : chosen.get_subcommands({})) names.push_back(command->get_name());
  }
  return kind + word + DidYouMean(word.substr(0, word.find('=')), {names.begin(), names.end()});
}

void ReportError(const Error& error) {
  std::array<char, 9> digits{};
  std::snprintf(digits.data(), digits.size(), "%08X", static_cast<unsigned>(error.number()));
  std::cerr << "Number: " << error.number() << " (0x" << digits.data() << ")\n"
            << "Source: " << OnOneLine(error.source()) << '\n'
            << "Description: " << OnOneLine(error.description()) << '\n';
  if (error.native().number != 0) std::cerr << "Native: " << error.native().number << '\n';
  if (!error.native().sqlstate.empty()) std::cerr << "SQLSTATE: " << error.native().sqlstate << '\n';
}

void ObserveBatches(Host& host, bool show) {
  host.ObserveStatements([show](std::string_view text) {
    RaiseIfInterrupted();
    if (show) std::cerr << text << (text.ends_with('\n') ? "" : "\n") << std::flush;
  });
  host.ObserveMessages([](std::string_view message) { std::cerr << message << '\n' << std::flush; });
}

ExitStatus RunAction(const CLI::App& app, const CommandContext& context) {
  try {
    const ExitStatus status = context.action();
    RaiseIfInterrupted();
    return status;
  } catch (const UsageError& error) {
    ReportUsage(app, error.what(), error.help_command());
    return ExitStatus::kWrongCall;
  } catch (const WrongCall& error) {
    ReportUsage(app, error.what());
    return ExitStatus::kWrongCall;
  } catch (const Error& error) {
    if (WasInterrupted()) {
      std::cerr << "tessarlorn: interrupted\n";
      return ExitStatus::kInterrupted;
    }
    ReportError(error);
    return ExitStatus::kRaised;
  }
}

/// Reads the words and runs the command that they choose.
ExitStatus Run(Host& host, std::span<const std::string> words) {
  CLI::App app("Picking and delivery of web-shop orders: lists, checks, weighs, delivers and reports them.",
               "tessarlorn");
  CommandContext context{.host = host, .dsn = {}, .action = {}};
  app.set_version_flag("--version", std::string("tessarlorn ") + kVersion, "Print the version");
  app.set_help_flag("-h,--help", "Print this help");
  app.require_subcommand(0, 1);
  app.footer(FooterText());
  AddConnectionOptions(app, context);
  AddInitCommand(app, context);
  AddSeedCommand(app, context);
  AddOpsCommand(app, context);
  AddCallCommand(app, context);
  AddSqlCommand(app, context);
  AddMaintenanceCommands(app, context);
#ifdef TESSARLORN_HAS_SERVER
  AddServeCommand(app, context);
  AddUserCommands(app, context);
  AddTokenCommands(app, context);
  AddRoleCommands(app, context);
#endif
  AddShellCommands(app, context);
  AddVersionCommand(app, context);
  if (const auto word = FindMalformedWord(words)) {
    ReportUsage(app, "\"" + *word + "\" is not valid UTF-8");
    return ExitStatus::kWrongCall;
  }
  try {
    // The parser takes them from the end, without the program's name.
    const std::span<const std::string> own = words.subspan(std::min<std::size_t>(1, words.size()));
    app.parse(std::vector<std::string>(own.rbegin(), own.rend()));
  } catch (const CLI::Success& request) {
    app.exit(request, std::cout, std::cerr);
    return ExitStatus::kDone;
  } catch (const CLI::ExtrasError&) {
    ReportUsage(app, DescribeExtra(app));
    return ExitStatus::kWrongCall;
  } catch (const CLI::ParseError& error) {
    ReportUsage(app, error.what());
    return ExitStatus::kWrongCall;
  }
  if (!context.action) {
    ReportUsage(app, "no command given");
    return ExitStatus::kWrongCall;
  }
  ObserveBatches(host, context.show_sql);
  return RunAction(app, context);
}

/// Nothing that was printed may be lost in silence.
ExitStatus FlushOutput(ExitStatus status) {
  errno = 0;
  std::cout.flush();
  if (std::cout.good()) return status;
  if (errno == 0) {
    // An earlier part could not be written; what is left fails for the same reason.
    std::cout.clear();
    std::cout.flush();
  }
  std::cerr << "tessarlorn: cannot write to standard output";
  if (errno != 0) std::cerr << ": " << std::strerror(errno);
  std::cerr << '\n';
  return ExitStatus::kNotWritten;
}

}  // namespace

ExitStatus RunCommand(int argc, const char* const* argv) noexcept {
#ifdef SIGPIPE
  std::signal(SIGPIPE, SIG_IGN);
#endif
#ifdef SIGXFSZ
  // A file that may not grow is a full disk, which the write reports.
  std::signal(SIGXFSZ, SIG_IGN);
#endif
  try {
    std::ios::sync_with_stdio(false);
    const Utf8Streams streams;
    CatchInterrupts();
    Host host;
    AddEmbeddedDriver(host);
#ifdef TESSARLORN_HAS_ODBC
    AddOdbcDriver(host);
#endif
#ifdef TESSARLORN_HAS_ADO
    AddAdoDriver(host);
#endif
    AddDefaultSiblings(host);
    return FlushOutput(Run(host, CommandWords({argv, static_cast<std::size_t>(argc)})));
  } catch (const std::exception& error) {
    std::fprintf(stderr, "tessarlorn: %s\n", error.what());
    return ExitStatus::kRaised;
  }
}

}  // namespace tessarlorn::cli
