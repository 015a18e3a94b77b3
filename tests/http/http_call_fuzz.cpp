// Any bytes as the arguments of any operation: what passes the checks breaks none of the statements that it becomes.
#include <cstdint>
#include <cstdlib>

#include "automation/operation_arguments.h"
#include "hosts/calls/save_point.h"
#include "hosts/http/call.h"
#include "hosts/http/safety/safe_values.h"
#include "hosts/http/visit.h"
#include "support/sample_database.h"
#include "support/temporary_folder.h"

namespace {

using namespace tessarlorn;

void MakeDry(http::Call call) {
  call.dry_run = true;
  ContainerTransaction transaction(TestHost());
  TransactionConnection connection(TestHost(), call.session);
  http::CutOrders(call, [&]() -> Connection& { return connection.get(); });
  Variant result;
  http::Beside beside;
  http::MakeCall(TestHost(), call, &connection.get(), result, beside);
  (void)http::AnswerText(call.format, call.columns, result, beside);
}

/// In a file, where readers do not wait for the writer.
const std::string& TheDatabase() {
  static const TemporaryFolder folder;
  static const std::string database = [] {
    std::string string = "Embedded=" + folder.file("fuzz.db") + ";Synchronous=Off;Timeout=1";
    const auto connection = OpenConnection(string);
    ApplySchema(*connection);
    cli::Seed(*connection, {.orders = 8}, {});
    return string;
  }();
  return database;
}

/// @param way what the text is: a body, a query, or a line for each value
void Try(const Operation& operation, int way, const std::string& text) {
  static const http::Caller caller{
      .name = "ann", .user = 16395, .language = "CHS", .role = http::MakeRole("administrator", ""), .token = ""};
  const std::string target = way == 1 ? "/?" + text : "/";
  http::Request request{.method = way == 1 ? "GET" : "POST", .target = target, .headers = {}};
  request.headers = {{"Content-Type", "application/json"}};
  if (way == 0) request.body = text;
  http::Target read;
  if (!http::ReadTarget(request.target, read)) return;
  http::Call call;
  if (way < 2) {
    call = http::ReadCall(request, read, operation, caller, TheDatabase(), "10.0.0.5");
  } else {
    call = {.operation = &operation, .caller = caller};
    call.session = http::SessionStringFor(TheDatabase(), caller, "10.0.0.5");
    const std::vector<std::string_view> values = Split(text, '\n');
    std::size_t next = 0;
    call.arguments = SampleArguments(operation, call.session, [&](std::string_view, ValueType, Standing) {
      return Variant(values[next++ % values.size()]);
    });
    if (http::FindRefusedValue(operation, call.arguments, false)) return;
  }
  MakeDry(std::move(call));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2 || size > 4000) return 0;
  const Operation& operation = *Operations()[data[0] % Operations().size()];
  try {
    Try(operation, data[1] % 4, {reinterpret_cast<const char*>(data) + 2, size - 2});
  } catch (...) {
    // A refusal is an answer; a syntax error or an open quote is not.
    const http::Problem problem = http::ProblemOfException(std::current_exception());
    const std::int32_t number = problem.error ? problem.error->native().number : 0;
    if (number != 102 && number != 105 && number != 156) return 0;
    std::fprintf(stderr, "%s: %s\n", std::string(operation.name).c_str(), problem.detail.c_str());
    std::abort();
  }
  return 0;
}
