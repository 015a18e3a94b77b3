// Functions on texts, but for those of plain_calls.cpp.
#include "tsql/translate/calls/call_topics.h"

namespace tessarlorn::tsql {
namespace {

/// CONCAT and CONCAT_WS.
Typed Concat(const Call& call) {
  call.Require(2, 254);
  std::string sql = "ts_" + call.name() + "(";
  for (std::size_t i = 0; i < call.count(); ++i) sql += (i == 0 ? "" : ", ") + call.Text(i);
  return {sql + ")", NVarCharType(4000), false, -1};
}

Typed DataLength(const Call& call) {
  call.Require(1);
  const Typed value = call.Value(0);
  return {"ts_datalength(" + value.sql + ", " + Packed(value.type) + ")", IntType(), value.nullable, -1};
}

Typed Str(const Call& call) {
  call.Require(1, 3);
  std::string sql = "ts_str(" + call.Float(0);
  sql += ", " + call.Int(1, "10");
  sql += ", " + call.Int(2, "0");
  return {sql + ")", VarCharType(8000), true, -1};
}

}  // namespace

Typed TextCall(const Call& call) {
  if (call.name() == "concat" || call.name() == "concat_ws") return Concat(call);
  if (call.name() == "datalength") return DataLength(call);
  if (call.name() == "str") return Str(call);
  return {};
}

}  // namespace tessarlorn::tsql
