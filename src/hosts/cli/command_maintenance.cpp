#include <iostream>

#include "hosts/calls/json_text.h"
#include "hosts/cli/commands.h"
#include "hosts/cli/console/interrupt.h"
#include "hosts/cli/console/progress.h"
#include "hosts/cli/console/usage_error.h"
#include "platform/session_string.h"
#include "platform/text/text.h"
#include "tessarlorn/collections.h"
#include "tsql/storage/maintenance.h"

namespace tessarlorn::cli {
namespace {

constexpr const char* kCheckFooter =
    R"(Reads every page, row and index of an embedded database, and compares the definitions with the tables. Others may use
it meanwhile. Exit status 0: sound; 1: damaged, with a line for each fault; 3: it could not be read at all.

Examples:
  tessarlorn check --dsn Embedded=orders.db
  tessarlorn check --json)";

constexpr const char* kBackupFooter =
    R"(Copies an embedded database as it is at this moment, while others read and write. FILE takes its name when the copy is
complete. An earlier backup of that name is replaced; any other file is left alone, and so is one that is in use.

Example:
  tessarlorn backup monday.db --dsn Embedded=orders.db)";

constexpr const char* kRestoreFooter =
    R"(Puts a backup in the place of all that the embedded database holds, or makes the database. The backup is checked first.
Others may have the database open: they see the old contents until all of the new ones are there. If the database is
so damaged that it cannot be opened, move it away first, with the files -wal and -shm beside it.

Example:
  tessarlorn restore monday.db --dsn Embedded=orders.db)";

std::string RequireEmbedded(const CommandContext& context) {
  std::string database = ParseSessionString(context.RequireDsn()).database;
  if (!EqualsIgnoreCase(context.host.DecidingKey(database), "Embedded")) {
    throw UsageError("this is for embedded databases, as --dsn Embedded=orders.db; a server has its own means");
  }
  return database;
}

ExitStatus Check(const CommandContext& context, bool json) {
  const EmbeddedCheck check = CheckEmbedded(RequireEmbedded(context));
  if (json) {
    Vector faults;
    for (const std::string& fault : check.faults) faults.Add(fault);
    std::cout << JsonText(Dictionary{{"File", check.file},
                                     {"Sound", check.faults.empty()},
                                     {"Tables", check.tables},
                                     {"Bytes", check.bytes},
                                     {"Faults", std::move(faults)}})
              << '\n';
  } else if (check.faults.empty()) {
    std::cout << check.file << " is sound: " << check.tables << " tables, " << check.bytes << " bytes\n";
  } else {
    std::cout << check.file << " is damaged:\n";
    for (const std::string& fault : check.faults) std::cout << fault << '\n';
  }
  return check.faults.empty() ? ExitStatus::kDone : ExitStatus::kEmpty;
}

PagesCopied ShownPages() {
  return [progress = Progress("pages")](int done, int total) mutable {
    RaiseIfInterrupted();
    progress.Show(done, total);
  };
}

ExitStatus BackUp(const CommandContext& context, const std::string& file) {
  const DeferInterrupt deferred;
  BackUpEmbedded(RequireEmbedded(context), file, ShownPages());
  std::cout << file << " is complete\n";
  return ExitStatus::kDone;
}

ExitStatus Restore(const CommandContext& context, const std::string& file) {
  const DeferInterrupt deferred;
  RestoreEmbedded(RequireEmbedded(context), file, ShownPages());
  std::cout << "the contents of " << file << " are in the database\n";
  return ExitStatus::kDone;
}

void AddFileCommand(CLI::App& app, CommandContext& context, const char* name, const char* help, const char* footer,
                    const char* file_help, ExitStatus (*run)(const CommandContext&, const std::string&)) {
  CLI::App* const command = app.add_subcommand(name, help);
  const auto file = std::make_shared<std::string>();
  command->add_option("FILE", *file, file_help)->required()->type_name("");
  AddConnectionOptions(*command, context);
  command->footer(footer);
  command->callback([&context, file, run] { context.action = [&context, file, run] { return run(context, *file); }; });
}

}  // namespace

void AddMaintenanceCommands(CLI::App& app, CommandContext& context) {
  CLI::App* const check = app.add_subcommand("check", "Check the file of an embedded database");
  const auto json = std::make_shared<bool>(false);
  check->add_flag("--json", *json, "Print the outcome as JSON");
  AddConnectionOptions(*check, context);
  check->footer(kCheckFooter);
  check->callback([&context, json] { context.action = [&context, json] { return Check(context, *json); }; });
  AddFileCommand(app, context, "backup", "Copy an embedded database while it is used", kBackupFooter, "The copy",
                 BackUp);
  AddFileCommand(app, context, "restore", "Put a backup back into an embedded database", kRestoreFooter, "The backup",
                 Restore);
}

}  // namespace tessarlorn::cli
