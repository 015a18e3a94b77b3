#include "hosts/cli/commands.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>
#include <system_error>
#include <utility>

#include "hosts/cli/console/system_text.h"
#include "hosts/cli/console/terminal.h"
#include "hosts/cli/console/usage_error.h"
#include "hosts/cli/input/input_text.h"
#include "platform/file_path.h"
#include "platform/session_string.h"
#include "tessarlorn/version.h"

namespace tessarlorn::cli {
namespace {

constexpr const char* kDsnVariable = "TESSARLORN_DSN";

}  // namespace

std::string CommandContext::FindDsn() const {
  if (!dsn.empty()) return dsn;
  return EnvironmentVariable(kDsnVariable);
}

std::string CommandContext::RequireDsn() const {
  std::string found = FindDsn();
  if (found.empty()) {
    throw UsageError(std::string("no connection string: give --dsn, as --dsn Embedded=orders.db, or set ") +
                     kDsnVariable);
  }
  return found;
}

std::unique_ptr<Connection> CommandContext::OpenDatabase() const {
  return host.OpenConnection(ParseSessionString(RequireDsn()).database);
}

OutputLayout OutputOptions::Layout() const {
  OutputLayout layout;
  if (json) layout.format = OutputFormat::kJson;
  if (csv) layout.format = OutputFormat::kCsv;
  if (!full) layout.width = OutputWidth();
  layout.columns = columns;
  return layout;
}

void AddConnectionOptions(CLI::App& command, CommandContext& context) {
  command
      .add_option("--dsn", context.dsn,
                  "Connection string of the database, or a session string; else that of TESSARLORN_DSN")
      ->check([](const std::string& text) { return std::string(text.empty() ? "the connection string is empty" : ""); })
      ->type_name("STRING");
  command.add_flag("--show-sql", context.show_sql,
                   "Print each statement, as it goes to the database and before it runs, to standard error");
}

void AddOutputOptions(CLI::App& command, OutputOptions& options) {
  CLI::Option* const json = command.add_flag("--json", options.json, "Print results as JSON, numbers with all digits");
  command.add_flag("--csv", options.csv, "Print results as comma-separated values with a line of heads")
      ->excludes(json);
  command.add_flag("--full", options.full, "Cut no cell and leave out no column of a table on a terminal");
  command.add_option("--columns", options.columns, "The columns of recordsets to print, as FID,FOrderID")
      ->delimiter(',')
      ->allow_extra_args(false)
      ->type_name("NAMES");
}

std::string InputName(const std::string& path) { return path == "-" ? "standard input" : path; }

std::string ReadInput(const std::string& path) {
  const auto refuse = [&path](const std::string& why) {
    throw UsageError("cannot read " + InputName(path) + ": " + why);
  };
  std::ifstream file;
  if (path != "-") {
    std::error_code unknown;
    if (std::filesystem::is_directory(ToPath(path), unknown)) refuse("it is a folder");
    file.open(ToPath(path), std::ios::binary);
    if (!file) refuse(std::strerror(errno));
  }
  std::string text;
  try {
    text.assign(std::istreambuf_iterator<char>(path == "-" ? std::cin : file), {});
  } catch (const std::ios_base::failure&) {
    refuse(std::strerror(errno));
  }
  std::optional<std::string> decoded = DecodeText(std::move(text));
  if (!decoded) refuse("it is neither UTF-8 nor UTF-16 with a byte order mark");
  return *std::move(decoded);
}

void AddVersionCommand(CLI::App& app, CommandContext& context) {
  CLI::App* const command = app.add_subcommand("version", "Print the version");
  command->callback([&context] {
    context.action = [] {
      std::cout << "tessarlorn " << kVersion << '\n';
      return ExitStatus::kDone;
    };
  });
}

}  // namespace tessarlorn::cli
