// Any bytes as the arguments of any operation: what passes the checks is no fault in the statements that it becomes.
#include <array>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "hosts/calls/json_text.h"
#include "hosts/calls/save_point.h"
#include "hosts/http/call.h"
#include "hosts/http/visit.h"
#include "platform/text/text.h"
#include "support/sample_database.h"

namespace {

using namespace tessarlorn;

/// An object of the operation's arguments and keys, with the pieces of the text one after the other as their values;
/// an empty piece leaves its key out.
std::string BodyOf(const Operation& operation, std::string_view text) {
  const std::vector<std::string_view> pieces = Split(text, '\n');
  std::size_t next = 0;
  const auto members = [&](const auto& named, const auto& left_out, const auto& append) {
    std::string json = "{";
    for (const auto& one : named) {
      if (left_out(one)) continue;
      std::string value = append(one);
      if (value.empty()) continue;
      if (json.size() > 1) json += ',';
      AppendJsonText(json, one.name);
      json += ":" + value;
    }
    return json + "}";
  };
  const auto piece = [&](const auto&) {
    const std::string_view value = pieces[next++ % pieces.size()];
    std::string json;
    if (!value.empty()) AppendJsonText(json, value);
    return json;
  };
  return members(
      operation.arguments(), [](const Argument& argument) { return argument.is_connection; },
      [&](const Argument& argument) {
        return argument.keys.empty() ? piece(argument)
                                     : members(
                                           argument.keys, [](const Key& key) { return key.is_connection(); }, piece);
      });
}

void Call(const http::Request& request, const Operation& operation) {
  static SampleDatabase database(8);
  static const http::Caller caller{
      .name = "ann", .user = 16395, .language = "CHS", .role = http::MakeRole("administrator", ""), .token = "t"};
  http::Target target;
  if (!http::ReadTarget(request.target, target)) return;
  http::Call call = http::ReadCall(request, target, operation, caller, database.database(), "10.0.0.5");
  call.dry_run = true;
  ContainerTransaction transaction(TestHost());
  TransactionConnection connection(TestHost(), call.session);
  http::CutOrders(call, connection.get());
  Variant result;
  http::Beside beside;
  http::MakeCall(TestHost(), call, &connection.get(), result, beside);
  (void)http::AnswerText(call.format, call.columns, result, beside);
}

}  // namespace

// The first byte chooses the operation. The second tells how the rest is meant: as a body, as a query, or as values.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2 || size > 4000) return 0;
  const Operation& operation = *Operations()[data[0] % Operations().size()];
  const std::string_view rest(reinterpret_cast<const char*>(data) + 2, size - 2);
  http::Request request{.method = "POST", .target = "/", .headers = {{"Content-Type", "application/json"}}};
  if (data[1] % 4 == 0) {
    request.body = rest;
  } else if (data[1] % 4 == 1) {
    request.method = "GET";
    request.target += "?" + std::string(rest);
  } else if (IsValidUtf8(rest)) {
    request.body = BodyOf(operation, rest);
  }
  try {
    Call(request, operation);
  } catch (...) {
    // A refusal is an answer. Statements that the values have broken are none.
    constexpr std::array<std::int32_t, 3> kBroken = {102, 105, 156};
    const http::Problem problem = http::ProblemOfException(std::current_exception());
    for (const std::int32_t number : kBroken) {
      if (problem.error && problem.error->native().number == number) {
        std::fprintf(stderr, "%s: %s\n", std::string(operation.name).c_str(), problem.detail.c_str());
        std::abort();
      }
    }
  }
  return 0;
}
