#include <iostream>

#include "hosts/cli/commands.h"
#include "schema/schema_files.h"

namespace tessarlorn::cli {
namespace {

constexpr const char* kInitFooter = R"(What is there already stays as it is, with its rows.

Examples:
  tessarlorn init --dsn Embedded=orders.db
  tessarlorn init --dsn Embedded=orders.db --show-sql 2> schema.log)";

ExitStatus Init(const CommandContext& context) {
  const std::unique_ptr<Connection> connection = context.OpenDatabase();
  for (const SchemaFile& file : SchemaFiles()) {
    const std::vector<std::string_view> batches = SplitBatches(file.text);
    std::cout << file.name << ": " << std::flush;
    for (const std::string_view batch : batches) connection->Execute(batch);
    std::cout << batches.size() << (batches.size() == 1 ? " batch\n" : " batches\n") << std::flush;
  }
  std::cout << "The schema is complete.\n";
  const std::string warning = DateOrderWarning(*connection);
  if (!warning.empty()) std::cerr << "warning: " << warning << '\n';
  return ExitStatus::kDone;
}

}  // namespace

void AddInitCommand(CLI::App& app, CommandContext& context) {
  CLI::App* const command = app.add_subcommand("init", "Create the tables, views and indexes that are missing");
  AddConnectionOptions(*command, context);
  command->footer(kInitFooter);
  command->callback([&context] { context.action = [&context] { return Init(context); }; });
}

}  // namespace tessarlorn::cli
