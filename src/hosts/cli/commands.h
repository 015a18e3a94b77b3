// The commands of `tessarlorn`, one source file each, and the options that they share.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <string>

#include "hosts/cli/console/exit_status.h"
#include "hosts/cli/output/result_writer.h"
#include "tessarlorn/host.h"

namespace tessarlorn::cli {

struct CommandContext {
  Host& host;
  /// The connection string as given, "" when it was not: then it is the environment's.
  std::string dsn;
  bool show_sql = false;
  /// What the chosen command does. Raises WrongCall and Error.
  std::function<ExitStatus()> action;

  /// The connection string, "" when neither the words nor the environment have one.
  [[nodiscard]] std::string FindDsn() const;
  /// Raises UsageError when there is none.
  [[nodiscard]] std::string RequireDsn() const;
  /// A connection of its own to the database that the connection string names.
  [[nodiscard]] std::unique_ptr<Connection> OpenDatabase() const;
};

/// What --json, --csv, --full and --columns ask for.
struct OutputOptions {
  bool json = false;
  bool csv = false;
  bool full = false;
  std::vector<std::string> columns;

  [[nodiscard]] OutputLayout Layout() const;
};

void AddConnectionOptions(CLI::App& command, CommandContext& context);
void AddOutputOptions(CLI::App& command, OutputOptions& options);

/// How messages name an input: the path, or "standard input" for "-".
std::string InputName(const std::string& path);

/// The whole of a file, or of standard input for "-", without a byte order mark. Raises UsageError naming an input that
/// cannot be read, that is a folder, or that is neither UTF-8 nor UTF-16 with a byte order mark.
std::string ReadInput(const std::string& path);

// Each adds a command that sets the context's action when it is chosen. `context` must outlive `app`.
void AddInitCommand(CLI::App& app, CommandContext& context);
void AddSeedCommand(CLI::App& app, CommandContext& context);
void AddOpsCommand(CLI::App& app, CommandContext& context);
void AddCallCommand(CLI::App& app, CommandContext& context);
void AddSqlCommand(CLI::App& app, CommandContext& context);
/// check, backup and restore.
void AddMaintenanceCommands(CLI::App& app, CommandContext& context);
void AddServeCommand(CLI::App& app, CommandContext& context);
// Commands of commands: who may call over HTTP.
void AddUserCommands(CLI::App& app, CommandContext& context);
void AddTokenCommands(CLI::App& app, CommandContext& context);
void AddRoleCommands(CLI::App& app, CommandContext& context);
/// man and completion, which describe `app`.
void AddShellCommands(CLI::App& app, CommandContext& context);
void AddVersionCommand(CLI::App& app, CommandContext& context);

}  // namespace tessarlorn::cli
