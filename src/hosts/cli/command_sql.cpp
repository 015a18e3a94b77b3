#include <iostream>

#include "hosts/cli/commands.h"
#include "hosts/cli/console/usage_error.h"
#include "hosts/cli/shell_examples.h"
#include "schema/schema_files.h"

namespace tessarlorn::cli {
namespace {

constexpr const char* kSqlFooter =
    R"(Lines that hold nothing but GO part the text into batches. Each batch is parsed whole before it runs. The first error
ends the command; what ran before it stays, unless the text itself opened a transaction. Files are UTF-8, or UTF-16 with
a byte order mark.

--json prints each result set as an array of objects, one after the other; --csv parts them by an empty line.

Examples:
  tessarlorn sql "select FOrderStatus, count(*) Orders from IC_Web2ERPOrders group by FOrderStatus"
  tessarlorn sql --file report.sql --csv > report.csv
  )";

struct SqlOptions {
  std::string text;
  std::string file;
  OutputOptions output;
};

ExitStatus RunSql(const SqlOptions& options, const CommandContext& context) {
  if (options.text.empty() == options.file.empty()) {
    throw UsageError("give the text to run, --file FILE, or - for standard input");
  }
  std::string text = options.text;
  if (!options.file.empty()) text = ReadInput(options.file);
  if (options.text == "-") text = ReadInput("-");
  const std::unique_ptr<Connection> connection = context.OpenDatabase();
  const std::unique_ptr<ResultWriter> writer = MakeResultWriter(options.output.Layout(), std::cout);
  for (const std::string_view batch : SplitBatches(text)) {
    connection->ExecuteAll(batch, [&writer](const RecordsetPtr& result) { writer->Write(result); });
    std::cout.flush();
    if (!std::cout) break;
  }
  return ExitStatus::kDone;
}

}  // namespace

void AddSqlCommand(CLI::App& app, CommandContext& context) {
  CLI::App* const command = app.add_subcommand("sql", "Run Transact-SQL and print every result set");
  const auto options = std::make_shared<SqlOptions>();
  command->add_option("TEXT", options->text, "The batches to run; - reads them from standard input")->type_name("");
  command->add_option("--file", options->file, "Run the batches of a file")->type_name("FILE");
  AddConnectionOptions(*command, context);
  AddOutputOptions(*command, options->output);
  command->footer(std::string(kSqlFooter) + kPrintSqlExample + " | tessarlorn sql -");
  command->callback(
      [&context, options] { context.action = [&context, options] { return RunSql(*options, context); }; });
}

}  // namespace tessarlorn::cli
