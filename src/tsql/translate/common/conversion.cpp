#include "tsql/translate/common/conversion.h"

#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

bool SameText(const SqlType& from, const SqlType& to, Fit fit) {
  if (fit == Fit::kCompare) return true;
  const bool padded = to.kind == FieldType::kChar || to.kind == FieldType::kNChar;
  if (padded) return from.kind == to.kind && from.size == to.size;
  if (to.size == 0) return true;
  // A character of national text may take two bytes of the other kind.
  const int most = from.is_national() && !to.is_national() ? from.size * 2 : from.size;
  return from.size != 0 && most <= to.size;
}

int IntegerRank(FieldType kind) {
  switch (kind) {
    case FieldType::kBit:
      return 0;
    case FieldType::kTinyInt:
      return 1;
    case FieldType::kSmallInt:
      return 2;
    case FieldType::kInt:
      return 3;
    default:
      return 4;
  }
}

/// Whether a value of `from` stands in SQLite as the same value of `to` would.
bool NeedsNoConversion(const SqlType& from, const SqlType& to, Fit fit) {
  if (from.is_text() && to.is_text()) return SameText(from, to, fit);
  if (from.is_integer() && to.is_integer()) {
    return fit == Fit::kCompare || IntegerRank(from.kind) <= IntegerRank(to.kind);
  }
  if (from.is_exact() && to.is_exact()) {
    return from.storage() == to.storage() && from.scale == to.scale &&
           (fit == Fit::kCompare || from.precision <= to.precision);
  }
  if (from.is_float() && to.is_float()) return to.kind == FieldType::kFloat || from.kind == to.kind;
  if (from.is_date() && to.is_date()) {
    if (fit == Fit::kCompare) return to.kind == FieldType::kDateTime || from.kind == to.kind;
    return from == to || (from.kind == FieldType::kDateTime && to == DateTime2Type(to.scale) && to.scale >= 3);
  }
  if (from.has_offset() && to.has_offset()) return from.scale <= to.scale || to.scale >= 3;
  return from.kind == to.kind && from.size == to.size;
}

std::string PowerOfTen(int power) { return "1" + std::string(static_cast<std::size_t>(power), '0'); }

/// Whether an exact number gets nothing but further places.
bool OnlyWidens(const SqlType& from, const SqlType& to, Fit fit) {
  if (to.storage() != Storage::kScaled) return false;
  const SqlType exact = AsDecimal(from);
  const bool widens = (from.is_integer() || (from.is_exact() && from.storage() == Storage::kScaled)) &&
                      exact.scale <= to.scale && exact.precision + to.scale - exact.scale <= 18;
  return widens && (fit == Fit::kCompare || exact.precision - exact.scale <= to.precision - to.scale);
}

}  // namespace

std::string Coerce(Parameters& parameters, const Typed& value, const SqlType& to, Fit fit, int style, bool attempt) {
  if (value.type.untyped_null || to.untyped_null) return value.sql;
  if (value.parameter >= 0 && !attempt) {
    BoundParameter& parameter = parameters.at(value.parameter);
    parameter.to = to;
    parameter.fit = fit;
    parameter.style = style;
    return value.sql;
  }
  const SqlType& from = value.type;
  if (NeedsNoConversion(from, to, fit)) return value.sql;
  if (from.is_integer() && to.kind == FieldType::kFloat) return "CAST(" + value.sql + " AS REAL)";
  if (!attempt && OnlyWidens(from, to, fit)) {
    return "(" + value.sql + " * " + PowerOfTen(to.scale - AsDecimal(from).scale) + ")";
  }
  return (attempt ? "ts_try(" : "ts_conv(") + value.sql + ", " + Packed(from) + ", " + Packed(to) + ", " +
         std::to_string(style) + ")";
}

std::string AsText(Parameters& parameters, const Typed& value) {
  if (value.type.is_text()) return value.sql;
  return Coerce(parameters, value, value.type.is_binary() ? VarCharType(0) : NVarCharType(0));
}

std::string AsDate(Parameters& parameters, const Typed& value) {
  if (value.type.is_date()) return value.sql;
  const bool fine = value.type.is_text() || value.type.has_offset();
  return Coerce(parameters, value, fine ? DateTime2Type(7) : DateTimeType());
}

void RequireImplicit(const SqlType& from, const SqlType& to) {
  if (from.untyped_null || !((from.is_text() && to.is_binary()) || (from.is_date() && to.is_number()))) return;
  throw SqlError(257, "Implicit conversion from data type " + std::string(TypeNameText(from)) + " to " +
                          std::string(TypeNameText(to)) +
                          " is not allowed. Use the CONVERT function to run this query.");
}

std::string Assigned(Parameters& parameters, const Typed& value, const Column& column, const std::string& table) {
  RequireImplicit(value.type, column.type);
  std::string sql;
  if (value.type.untyped_null) {
    sql = value.sql;
  } else if (value.parameter >= 0) {
    sql = Coerce(parameters, value, column.type, Fit::kAssign);
    BoundParameter& parameter = parameters.at(value.parameter);
    parameter.table = table;
    parameter.column = column.name;
  } else if ((value.type.is_text() && column.type.is_text()) || (value.type.is_binary() && column.type.is_binary())) {
    sql = NeedsNoConversion(value.type, column.type, Fit::kAssign)
              ? value.sql
              : "ts_assign(" + value.sql + ", " + Packed(value.type) + ", " + Packed(column.type) + ", " +
                    QuoteText(table) + ", " + QuoteText(column.name) + ")";
  } else {
    sql = Coerce(parameters, value, column.type);
  }
  return column.row_key && value.nullable ? Required(sql, column, table) : sql;
}

std::string Required(const std::string& sql, const Column& column, const std::string& table) {
  return "ts_require(" + sql + ", " + QuoteText(table) + ", " + QuoteText(column.name) + ")";
}

std::string Collated(const Typed& value) {
  const std::string collation = CollationOf(value.type);
  return collation.empty() ? value.sql : "(" + value.sql + collation + ")";
}

std::string Packed(const SqlType& type) { return std::to_string(PackType(type)); }

}  // namespace tessarlorn::tsql
