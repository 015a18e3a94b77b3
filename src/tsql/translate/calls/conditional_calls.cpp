// ISNULL, COALESCE, NULLIF, IIF and CHOOSE.
#include "tsql/translate/calls/call_topics.h"
#include "tsql/translate/common/operators.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

Typed IsNullCall(const Call& call) {
  call.Require(2);
  const Typed value = call.Value(0);
  Typed instead = call.Value(1);
  if (value.type.untyped_null) return instead;
  return {"ifnull(" + value.sql + ", " + call.Coerced(instead, value.type) + ")", value.type, instead.nullable, -1};
}

Typed NullIf(const Call& call) {
  call.Require(2);
  const Typed left = call.Value(0);
  if (left.type.untyped_null) {
    throw SqlError(4151,
                   "The type of the first argument to NULLIF cannot be the NULL constant because the type of the first "
                   "argument has to be known.");
  }
  const std::string equal = Compared(call.parameters(), CompareOp::kEqual, left, call.Value(1));
  const Typed value = call.Value(0);
  return {"CASE WHEN " + equal + " THEN NULL ELSE " + value.sql + " END", value.type, true, -1};
}

/// The arguments from the one at `first` on, and the type that they have in common.
struct Alternatives {
  Alternatives(const Call& call, std::size_t first) {
    for (std::size_t i = first; i < call.count(); ++i) {
      values.push_back(call.Value(i));
      type = CommonType(type, values.back().type);
      all_nullable = all_nullable && values.back().nullable;
      any_nullable = any_nullable || values.back().nullable;
    }
  }
  std::vector<Typed> values;
  SqlType type = NullType();
  bool all_nullable = true;
  bool any_nullable = false;
};

Typed Coalesce(const Call& call) {
  call.Require(1, 127);
  const Alternatives of(call, 0);
  if (of.type.untyped_null) {
    throw SqlError(
        4127, "At least one of the arguments to COALESCE must be an expression that is not the NULL constant.", 16);
  }
  if (of.values.size() == 1) return of.values[0];
  std::string sql = "coalesce(";
  for (std::size_t i = 0; i < of.values.size(); ++i) sql += (i == 0 ? "" : ", ") + call.Coerced(of.values[i], of.type);
  return {sql + ")", of.type, of.all_nullable, -1};
}

Typed Iif(const Call& call) {
  call.Require(3);
  const Alternatives of(call, 1);
  std::string sql = "CASE WHEN " + call.Condition(0) + " THEN " + call.Coerced(of.values[0], of.type);
  sql += " ELSE " + call.Coerced(of.values[1], of.type) + " END";
  return {sql, of.type, of.any_nullable, -1};
}

Typed Choose(const Call& call) {
  call.Require(2, 127);
  const Alternatives of(call, 1);
  std::string sql = "CASE " + call.Int(0);
  for (std::size_t i = 0; i < of.values.size(); ++i) {
    sql += " WHEN " + std::to_string(i + 1) + " THEN " + call.Coerced(of.values[i], of.type);
  }
  return {sql + " END", of.type, true, -1};
}

}  // namespace

Typed ConditionalCall(const Call& call) {
  if (call.name() == "isnull") return IsNullCall(call);
  if (call.name() == "coalesce") return Coalesce(call);
  if (call.name() == "iif") return Iif(call);
  if (call.name() == "choose") return Choose(call);
  if (call.name() == "nullif") return NullIf(call);
  return {};
}

}  // namespace tessarlorn::tsql
