// COUNT, SUM, AVG, MIN, MAX, STRING_AGG and the statistics over the rows of a group.
#include <algorithm>
#include <array>

#include "tsql/translate/calls/call_topics.h"
#include "tsql/translate/common/operators.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

Typed CountOf(const Call& call, const std::string& counted) {
  return {"count(" + counted + ")", call.name() == "count" ? IntType() : BigIntType(), false, -1};
}

[[noreturn]] void RaiseOperandType(const Call& call, const Typed& value) {
  throw SqlError(8117, "Operand data type " + std::string(TypeNameText(value.type)) + " is invalid for " + call.name() +
                           " operator.");
}

/// SUM and AVG.
Typed Total(const Call& call, const Typed& value) {
  const bool sum = call.name() == "sum";
  const std::string counted = (call.distinct() ? "DISTINCT " : "") + value.sql;
  if (value.type.is_float()) return {"ts_float(" + call.name() + "(" + counted + "))", FloatType(), true, -1};
  if (value.type.is_integer()) {
    const SqlType type = value.type.kind == FieldType::kBigInt ? BigIntType() : IntType();
    const std::string total = "sum(" + counted + ")";
    if (!sum) return {"ts_div(" + total + ", count(" + counted + "))", type, true, -1};
    return {type.kind == FieldType::kBigInt ? total : "ts_i32(" + total + ")", type, true, -1};
  }
  const SqlType exact = AsDecimal(value.type);
  const SqlType total_type = DecimalType(38, exact.scale);
  const std::string total =
      value.type.storage() == Storage::kScaled
          ? "ts_conv(sum(" + counted + "), " + Packed(DecimalType(18, exact.scale)) + ", " + Packed(total_type) + ", 0)"
          : "ts_sum(" + counted + ", " + Packed(value.type) + ", " + Packed(total_type) + ")";
  if (sum) return {total, total_type, true, -1};
  const SqlType average = DecimalType(38, std::max(exact.scale, 6));
  return {DecimalCall(BinaryOp::kDivide, total, total_type, "count(" + counted + ")", IntType(), average), average,
          true, -1};
}

/// STRING_AGG. @param separator SQL
Typed Joined(const Call& call, const Typed& value, const std::string& separator) {
  const SqlType type = value.type.is_national() || !value.type.is_text() ? NVarCharType(4000) : VarCharType(8000);
  const std::string text = call.Coerced(value, NVarCharType(0));
  if (call.within().empty()) return {"group_concat(" + text + ", " + separator + ")", type, true, -1};
  std::string directions;
  std::string keys;
  for (const OrderItem& item : call.within()) {
    const Typed key = call.translation().Value(*item.expression, call.scope());
    if (key.type.has_offset()) RaiseUnsupported("WITHIN GROUP ordered by a datetimeoffset", call.line());
    directions += item.descending ? 'd' : 'a';
    directions += static_cast<char>('0' + static_cast<int>(key.type.order));
    keys += ", " + key.sql;
  }
  return {"ts_string_agg(" + text + ", " + separator + ", '" + directions + "'" + keys + ")", type, true, -1};
}

}  // namespace

Typed Statistic(const Call& call, const Typed& value, const std::string& over) {
  struct Named {
    std::string_view name;
    std::string_view function;
  };
  constexpr std::array kStatistics = {Named{"stdev", "ts_stdev"}, Named{"stdevp", "ts_stdevp"},
                                      Named{"var", "ts_variance"}, Named{"varp", "ts_variancep"},
                                      Named{"checksum_agg", "ts_checksum_agg"}};
  const auto* const found = std::find_if(kStatistics.begin(), kStatistics.end(),
                                         [&](const Named& entry) { return entry.name == call.name(); });
  if (found == kStatistics.end()) return {};
  const SqlType type = call.name() == "checksum_agg" ? IntType() : FloatType();
  const bool fits = type.is_float() ? value.type.is_number() : value.type.is_integer();
  if (!fits || value.type.kind == FieldType::kBit) RaiseOperandType(call, value);
  return {std::string(found->function) + "(" + (call.distinct() ? "DISTINCT " : "") + call.Coerced(value, type) + ")" +
              over,
          type, true, -1};
}

Typed AggregateCall(const Call& call) {
  const std::string& name = call.name();
  if (call.scope().no_aggregates) {
    throw SqlError(
        147,
        "An aggregate may not appear in the WHERE clause unless it is in a subquery contained in a HAVING clause "
        "or a select list, and the column being aggregated is an outer reference.",
        15);
  }
  int& depth = call.translation().aggregate_depth;
  if (depth > 0) {
    throw SqlError(130, "Cannot perform an aggregate function on an expression containing an aggregate or a subquery.",
                   15);
  }
  const bool count = name == "count" || name == "count_big";
  if (count && call.of_star()) return CountOf(call, "*");
  call.Require(name == "string_agg" ? 2 : 1);
  ++depth;
  const Typed value = call.Value(0);
  if (name == "string_agg") {
    Typed joined = Joined(call, value, call.Text(1));
    --depth;
    return joined;
  }
  --depth;
  if (count) return CountOf(call, (call.distinct() ? "DISTINCT " : "") + Collated(value));
  if ((name == "min" || name == "max") && value.type.kind != FieldType::kBit) {
    return {name + "(" + Collated(value) + ")", value.type, true, -1};
  }
  Typed statistic = Statistic(call, value, "");
  if (!statistic.sql.empty()) return statistic;
  if (!value.type.is_number() || value.type.kind == FieldType::kBit) RaiseOperandType(call, value);
  return Total(call, value);
}

}  // namespace tessarlorn::tsql
