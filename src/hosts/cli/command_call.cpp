#include <iostream>
#include <optional>

#include "hosts/calls/call_arguments.h"
#include "hosts/calls/json_arguments.h"
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

--json prints the result alone; with arguments that are written back, an object with Result and Arguments.
Recordsets are arrays of objects, numbers have all their digits, dates are in ISO form.

Examples:
  tessarlorn call GetListData Filter.FOrderStatus=2 Filter.WebOrderMaxDisplayCount=20 --columns FID,FOrderID
  tessarlorn call GetListData Filter={} --csv > orders.csv
  tessarlorn call ConfirmBill dctPara.FID=12,15 dctPara.FPickManNumber=E01
  tessarlorn call UploadStatusFailure --args failures.json
  tessarlorn call SaveLogWeight )";

struct CallOptions {
  std::string operation;
  std::vector<std::string> words;
  std::string json_file;
  bool no_transaction = false;
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
  Variant result;
  {
    std::optional<ContainerTransaction> transaction;
    if (!options.no_transaction) transaction.emplace(context.host);
    result = ServiceObject(context.host, operation.service).Invoke(operation, arguments);
    RaiseIfInterrupted();
    if (transaction) transaction->Commit();
  }
  WriteResult(options, operation, result, arguments);
  return IsEmptyResult(result) ? ExitStatus::kEmpty : ExitStatus::kDone;
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
  AddConnectionOptions(*command, context);
  AddOutputOptions(*command, options->output);
  command->footer(std::string(kCallFooter) + kNestedValueExample + "\n  " + kPrintJsonExample +
                  " | tessarlorn call Delivery --args - --show-sql");
  command->callback([&context, options] { context.action = [&context, options] { return Call(*options, context); }; });
}

}  // namespace tessarlorn::cli
