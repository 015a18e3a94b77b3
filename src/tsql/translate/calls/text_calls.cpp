// Functions on texts, but for those of plain_calls.cpp.
#include "tsql/translate/calls/call_topics.h"
#include "tsql/values/sql_error.h"

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

Typed Format(const Call& call) {
  call.Require(2, 3);
  const Typed value = call.Value(0);
  const bool formats =
      (value.type.is_number() && value.type.kind != FieldType::kBit) || value.type.is_date() || value.type.has_offset();
  if (!formats) {
    throw SqlError(8116, "Argument data type " + std::string(TypeNameText(value.type)) +
                             " is invalid for argument 1 of format function.");
  }
  std::string sql = "ts_format(" + value.sql + ", " + Packed(value.type) + ", " + call.Text(1);
  if (call.count() > 2) sql += ", " + call.Text(2);
  return {sql + ")", NVarCharType(4000), true, -1};
}

}  // namespace

Typed TextCall(const Call& call) {
  if (call.name() == "concat" || call.name() == "concat_ws") return Concat(call);
  if (call.name() == "datalength") return DataLength(call);
  if (call.name() == "format") return Format(call);
  if (call.name() == "str") return Str(call);
  return {};
}

}  // namespace tessarlorn::tsql
