// JSON_QUERY and JSON_MODIFY.
#include "tsql/translate/calls/call_topics.h"

namespace tessarlorn::tsql {
namespace {

Typed JsonFragment(const Call& call) {
  call.Require(1, 2);
  const std::string text = call.Text(0);
  return {"ts_json_query(" + text + ", " + (call.count() > 1 ? call.Text(1) : "'$'") + ")", NVarCharType(0), true, -1};
}

Typed ModifiedJson(const Call& call) {
  call.Require(3);
  const std::string text = call.Text(0);
  const std::string path = call.Text(1);
  const Typed value = call.Value(2);
  // What these give is taken as it is; any other text becomes a string.
  const auto* made = As<FunctionCall>(call.Argument(2));
  const bool raw = made != nullptr && (made->name == "json_query" || made->name == "json_modify");
  return {
      "ts_json_modify(" + text + ", " + path + ", " + value.sql + ", " + Packed(value.type) + (raw ? ", 1)" : ", 0)"),
      NVarCharType(0), true, -1};
}

}  // namespace

Typed JsonCall(const Call& call) {
  if (call.name() == "json_query") return JsonFragment(call);
  if (call.name() == "json_modify") return ModifiedJson(call);
  return {};
}

}  // namespace tessarlorn::tsql
