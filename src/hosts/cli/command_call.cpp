#include <algorithm>
#include <iostream>
#include <optional>

#include "automation/order_list.h"
#include "hosts/calls/call_arguments.h"
#include "hosts/calls/dry_run.h"
#include "hosts/calls/json_arguments.h"
#include "hosts/calls/save_point.h"
#include "hosts/cli/commands.h"
#include "hosts/cli/console/interrupt.h"
#include "hosts/cli/console/usage_error.h"
#include "hosts/cli/shell_examples.h"
#include "tessarlorn/collections.h"
#include "tessarlorn/operations.h"
#include "tessarlorn/session.h"

namespace tessarlorn::cli {
namespace {

constexpr const char* kCallFooter =
    R"(Arguments are named without regard to case, keys to the letter; 'tessarlorn ops NAME' lists both. Every argument that
is neither optional nor written back has to be given, if only as NAME=; a Dictionary or Vector that is not given is
Nothing, a key that is not given is missing. A connection string that the operation wants is the command's, unless it
is given.

A value is text, and the operation converts it. A Dictionary or Vector, or a key that wants a Vector, is given as
JSON. In JSON an object is a Dictionary, an array a Vector; whole numbers become Long, others exact decimals.

The call runs in a transaction: it is committed when the call returns and rolled back when it raises.

With --each-order the orders of the list are called for one by one in one transaction, and what one of them raised takes
back only what was done for it.

--json prints the result alone; with arguments that are written back, an object with Result and Arguments.
Recordsets are arrays of objects, numbers have all their digits, dates are in ISO form.

Examples:
  tessarlorn call GetListData Filter.FOrderStatus=2 Filter.WebOrderMaxDisplayCount=20 --columns FID,FOrderID
  tessarlorn call GetListData Filter={} --csv > orders.csv
  tessarlorn call ConfirmBill dctPara.FID=12,15 dctPara.FPickManNumber=E01
  tessarlorn call Delivery dctPara.FID=12,15 --each-order --dry-run
  tessarlorn call UploadStatusFailure --args failures.json
  tessarlorn call SaveLogWeight )";

struct CallOptions {
  std::string operation;
  std::vector<std::string> words;
  std::string json_file;
  bool no_transaction = false;
  bool dry_run = false;
  bool each_order = false;
  OutputOptions output;
};

/// Whether it is the empty result of its type. An empty recordset is not: it answers that nothing matched.
bool IsEmptyResult(const Variant& result) {
  if (result.is_object()) return result.type_name() == "Nothing";
  if (const auto* text = result.get_if<std::string>()) return text->empty();
  return result.is_empty() || result.is_null() || result.ToDouble() == 0;
}

void WriteResult(const CallOptions& options, const Operation& operation, const Variant& result,
                 const std::vector<Variant>& arguments) {
  Dictionary written_back;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const Argument& argument = operation.arguments()[i];
    if (argument.in_out) written_back.SetValue(argument.name, arguments[i]);
  }
  const OutputLayout layout = options.output.Layout();
  const std::unique_ptr<ResultWriter> writer = MakeResultWriter(layout, std::cout);
  if (written_back.empty()) {
    writer->Write(result);
  } else if (layout.format == OutputFormat::kJson) {
    writer->Write(Dictionary{{"Result", result}, {"Arguments", written_back}});
  } else {
    writer->Write(result);
    writer->Write(written_back);
  }
}

/// A fault of the arguments points to the page of the operation, which lists them.
std::vector<Variant> ReadArguments(const CallOptions& options, const Operation& operation, const Variant& json,
                                   const std::string& dsn) {
  try {
    return ReadCallArguments(operation, json, options.words, dsn);
  } catch (const WrongCall& error) {
    throw UsageError(error.what(), "tessarlorn ops " + std::string(operation.name));
  }
}

/// Outcomes as rows: Order, Result, and of an error Number and Description.
Variant OutcomeRows(const std::vector<OrderOutcome>& outcomes) {
  auto rows = std::make_shared<Vector>();
  for (const OrderOutcome& outcome : outcomes) {
    Dictionary row{{"Order", outcome.order}, {"Result", outcome.result}};
    row.SetValue("Number", outcome.error ? Variant(outcome.error->number()) : Variant(Null{}));
    row.SetValue("Description", outcome.error ? Variant(outcome.error->description()) : Variant(Null{}));
    rows->Add(std::make_shared<Dictionary>(std::move(row)));
  }
  return rows;
}

/// One order after the other; answers 3 when one of them raised.
ExitStatus CallEachOrder(const CallOptions& options, const Operation& operation, std::vector<Variant> arguments,
                         const CommandContext& context) {
  const std::optional<OrderList> list = FindOrderList(operation);
  if (!list) throw UsageError("--each-order: " + std::string(operation.name) + " takes no list of orders");
  std::vector<std::string> orders;
  std::vector<std::vector<Variant>> calls = SplitByOrder(*list, arguments, orders);
  std::vector<OrderOutcome> outcomes;
  ContainerTransaction transaction(context.host);
  TransactionConnection connection(context.host, ConnectionStringOf(operation, arguments));
  try {
    outcomes = CallOrderByOrder(context.host, connection.get(), operation, orders, std::move(calls));
  } catch (const TransactionLost& lost) {
    throw Error(lost.cause());
  }
  RaiseIfInterrupted();
  if (options.dry_run) {
    transaction.Rollback();
  } else {
    transaction.Commit();
  }
  MakeResultWriter(options.output.Layout(), std::cout)->Write(OutcomeRows(outcomes));
  const bool failed = std::any_of(outcomes.begin(), outcomes.end(), [](const auto& one) { return one.error; });
  return failed ? ExitStatus::kRaised : ExitStatus::kDone;
}

/// What a dry run found: the statements, and a table of what would change.
void WriteDryRun(const CallOptions& options, const DryRun& run) {
  const OutputLayout layout = options.output.Layout();
  const Dictionary report = run.Report();
  if (layout.format == OutputFormat::kJson) {
    MakeResultWriter(layout, std::cout)->Write(std::make_shared<Dictionary>(report));
    return;
  }
  for (const std::string& statement : run.statements()) {
    std::cout << statement << (statement.ends_with('\n') ? "" : "\n");
  }
  MakeResultWriter(layout, std::cout)->Write(report.GetValue("changes"));
  std::cout << "dry run: nothing of this was kept\n";
}

ExitStatus CallWhole(const CallOptions& options, const Operation& operation, std::vector<Variant>& arguments,
                     const CommandContext& context) {
  Variant result;
  {
    std::optional<ContainerTransaction> transaction;
    if (!options.no_transaction) transaction.emplace(context.host);
    result = ServiceObject(context.host, operation.service).Invoke(operation, arguments);
    RaiseIfInterrupted();
    if (options.dry_run) {
      transaction->Rollback();
    } else if (transaction) {
      transaction->Commit();
    }
  }
  WriteResult(options, operation, result, arguments);
  return IsEmptyResult(result) ? ExitStatus::kEmpty : ExitStatus::kDone;
}

ExitStatus Call(const CallOptions& options, const CommandContext& context) {
  const Operation& operation = RequireOperation(options.operation);
  if (!options.output.columns.empty() && operation.result != ValueType::kRecordset) {
    throw UsageError("--columns chooses columns of recordsets; " + std::string(operation.name) + " answers a " +
                     std::string(TypeName(operation.result)));
  }
  Variant json;
  if (!options.json_file.empty()) {
    json = ReadJson(ReadInput(options.json_file), InputName(options.json_file));
  }
  std::vector<Variant> arguments = ReadArguments(options, operation, json, context.FindDsn());
  const auto call = [&] {
    return options.each_order ? CallEachOrder(options, operation, std::move(arguments), context)
                              : CallWhole(options, operation, arguments, context);
  };
  if (!options.dry_run) return call();
  DryRun run;
  const ExitStatus status = [&] {
    const WatchedBatches watched(&run);
    return call();
  }();
  WriteDryRun(options, run);
  return status;
}

}  // namespace

void AddCallCommand(CLI::App& app, CommandContext& context) {
  CLI::App* const command = app.add_subcommand("call", "Call an operation and print its result");
  const auto options = std::make_shared<CallOptions>();
  command->add_option("OPERATION", options->operation, "Name, as GetListData or clsGetData.GetListData")
      ->required()
      ->type_name("");
  command->add_option("ARGUMENTS", options->words, "argument=value, or argument.Key=value for a key of a Dictionary")
      ->type_name("");
  command->add_option("--args", options->json_file, "Arguments from a file of JSON, - for standard input; words win")
      ->type_name("FILE");
  command->add_flag("--no-transaction", options->no_transaction,
                    "Call without a transaction: what ran before an error stays");
  command
      ->add_flag("--dry-run", options->dry_run,
                 "Call, tell the statements and how many rows of which table they change, and take all of it back")
      ->excludes("--no-transaction");
  command
      ->add_flag("--each-order", options->each_order,
                 "Call for one order of the list after the other: what can be done is done, and each has its outcome")
      ->excludes("--no-transaction");
  AddConnectionOptions(*command, context);
  AddOutputOptions(*command, options->output);
  command->footer(std::string(kCallFooter) + kNestedValueExample + "\n  " + kPrintJsonExample +
                  " | tessarlorn call Delivery --args - --show-sql");
  command->callback([&context, options] { context.action = [&context, options] { return Call(*options, context); }; });
}

}  // namespace tessarlorn::cli
