// Functions with OVER: numbering, neighbours, and aggregates of a window.
#include <algorithm>
#include <array>

#include "platform/text/text.h"
#include "tsql/translate/calls/call_topics.h"
#include "tsql/translate/common/meaning.h"
#include "tsql/translate/common/operators.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

std::string Over(const Call& call) {
  const Window& window = *call.window();
  const auto value = [&](const Expression& key) { return Collated(call.translation().Value(key, call.scope())); };
  std::string sql = " OVER (";
  for (std::size_t i = 0; i < window.partition.size(); ++i) {
    sql += (i == 0 ? "PARTITION BY " : ", ") + value(*window.partition[i]);
  }
  for (std::size_t i = 0; i < window.order.size(); ++i) {
    const Expression& key = *window.order[i].expression;
    // ORDER BY (SELECT NULL) is how an order that does not matter is written.
    sql += (i == 0 ? " ORDER BY " : ", ") + (As<ScalarSubquery>(key) != nullptr ? "NULL" : value(key)) +
           (window.order[i].descending ? " DESC" : "");
  }
  if (!window.frame.empty()) sql += " " + window.frame;
  return sql + ")";
}

Typed Numbering(const Call& call) {
  if (call.window()->order.empty()) {
    throw SqlError(4112, "The function '" + call.name() + "' must have an OVER clause with ORDER BY.", 15);
  }
  const std::string argument = call.name() == "ntile" ? call.Int(0, "") : "";
  const bool share = call.name() == "percent_rank" || call.name() == "cume_dist";
  return {call.name() + "(" + argument + ")" + Over(call), share ? FloatType() : BigIntType(), false, -1};
}

/// PERCENTILE_CONT and PERCENTILE_DISC.
Typed PercentileOf(const Call& call) {
  call.Require(1);
  if (call.within().size() != 1 || !call.window()->order.empty()) {
    RaiseUnsupported(UpperCase(call.name()) + " without an order of one key in WITHIN GROUP alone", call.line());
  }
  const OrderItem& item = call.within()[0];
  const Typed value = call.translation().Value(*item.expression, call.scope());
  const bool continuous = call.name() == "percentile_cont";
  if (continuous && !value.type.is_number()) {
    throw SqlError(8117, "Operand data type " + std::string(TypeNameText(value.type)) + " is invalid for " +
                             call.name() + " operator.");
  }
  if (value.type.has_offset()) RaiseUnsupported("WITHIN GROUP ordered by a datetimeoffset", call.line());
  const SqlType type = continuous ? FloatType() : value.type;
  return {"ts_percentile(" + call.Coerced(value, type) + ", " + call.Float(0) + (continuous ? ", 1" : ", 0") +
              (item.descending ? ", 1)" : ", 0)") + Over(call),
          type, true, -1};
}

/// LAG, LEAD, FIRST_VALUE and LAST_VALUE.
Typed Neighbour(const Call& call) {
  const Typed value = call.Value(0);
  std::string sql = call.name() + "(" + value.sql;
  if (call.count() > 1) sql += ", " + call.Int(1);
  if (call.count() > 2) sql += ", " + call.Coerced(call.Value(2), value.type);
  return {sql + ")" + Over(call), value.type, true, -1};
}

/// SUM and AVG.
Typed Total(const Call& call, const Typed& value, const std::string& over) {
  const bool sum = call.name() == "sum";
  if (!value.type.is_number() || value.type.storage() == Storage::kBigDecimal) {
    RaiseUnsupported("The window function " + call.name() + " over " + TypeText(value.type), call.line());
  }
  const std::string total = "sum(" + value.sql + ")" + over;
  const std::string count = "count(" + value.sql + ")" + over;
  if (value.type.is_float()) {
    return {"ts_float(" + call.name() + "(" + value.sql + ")" + over + ")", FloatType(), true, -1};
  }
  if (value.type.is_integer()) {
    return {sum ? "ts_i32(" + total + ")" : "ts_div(" + total + ", " + count + ")", IntType(), true, -1};
  }
  const SqlType total_type = DecimalType(18, AsDecimal(value.type).scale);
  if (sum) return {total, total_type, true, -1};
  const SqlType average = DecimalType(38, std::max(total_type.scale, 6));
  return {DecimalCall(BinaryOp::kDivide, total, total_type, count, IntType(), average), average, true, -1};
}

}  // namespace

Typed WindowCall(const Call& call) {
  if (!call.scope().windows) {
    throw SqlError(4108, "Windowed functions can only appear in the SELECT or ORDER BY clauses.", 15);
  }
  const std::string& name = call.name();
  constexpr std::array<std::string_view, 6> kNumberings = {"row_number", "rank",         "dense_rank",
                                                           "ntile",      "percent_rank", "cume_dist"};
  if (std::find(kNumberings.begin(), kNumberings.end(), name) != kNumberings.end()) return Numbering(call);
  if (name == "percentile_cont" || name == "percentile_disc") return PercentileOf(call);
  if (name == "lag" || name == "lead" || name == "first_value" || name == "last_value") return Neighbour(call);
  if (!IsAggregate(name) || name == "string_agg" || call.distinct()) {
    RaiseUnsupported("The window function " + name, call.line());
  }
  if (name == "count" || name == "count_big") {
    const std::string counted = As<Star>(call.Argument(0)) != nullptr ? "*" : call.Value(0).sql;
    return {"count(" + counted + ")" + Over(call), name == "count" ? IntType() : BigIntType(), false, -1};
  }
  const Typed value = call.Value(0);
  const std::string over = Over(call);
  Typed statistic = Statistic(call, value, over);
  if (!statistic.sql.empty()) return statistic;
  if (name == "min" || name == "max") return {name + "(" + value.sql + ")" + over, value.type, true, -1};
  return Total(call, value, over);
}

}  // namespace tessarlorn::tsql
