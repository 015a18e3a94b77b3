// Functions: aggregates, windows, and the scalar functions by topic.
#include <algorithm>
#include <array>

#include "platform/text.h"
#include "tsql/functions/date_part.h"
#include "tsql/translate/translator.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

[[noreturn]] void RaiseArguments(const Expression& expression, std::size_t wanted) {
  SqlError error(174, "The " + expression.text + " function requires " + std::to_string(wanted) + " argument(s).", 15);
  error.set_line(expression.line);
  throw error;
}

void RequireArguments(const Expression& expression, std::size_t least, std::size_t most) {
  const std::size_t count = expression.operands.size();
  if (count < least || count > most) RaiseArguments(expression, count < least ? least : most);
}

enum class ArgumentKind : char { kText = 't', kInt = 'i', kFloat = 'f' };

/// A scalar function whose arguments are converted and handed to one row function.
struct PlainFunction {
  std::string_view name;
  std::string_view row_function;
  /// One letter an argument: t text, i whole number, f float; upper case: may be left out.
  std::string_view arguments;
  /// What stands behind the arguments in the call, "" for nothing.
  std::string_view tail;
  /// t: text like the first argument, n: nvarchar(4000), v: varchar(8000), i: int, f: float; w: as wide as text can be
  /// that comes of its texts, which the row function gets as last argument.
  char result;
};

constexpr std::array kPlainFunctions = {
    PlainFunction{"len", "ts_len", "t", "", 'i'},
    PlainFunction{"substring", "ts_substring", "tii", "", 't'},
    PlainFunction{"left", "ts_left", "ti", "", 't'},
    PlainFunction{"right", "ts_right", "ti", "", 't'},
    PlainFunction{"upper", "ts_upper", "t", "", 't'},
    PlainFunction{"lower", "ts_lower", "t", "", 't'},
    PlainFunction{"ltrim", "ts_trim", "t", ", 1", 't'},
    PlainFunction{"rtrim", "ts_trim", "t", ", 2", 't'},
    PlainFunction{"trim", "ts_trim", "t", ", 3", 't'},
    PlainFunction{"replace", "ts_replace", "ttt", "", 'w'},
    PlainFunction{"charindex", "ts_charindex", "ttI", "", 'i'},
    PlainFunction{"patindex", "ts_patindex", "tt", "", 'i'},
    PlainFunction{"reverse", "ts_reverse", "t", "", 't'},
    PlainFunction{"replicate", "ts_replicate", "ti", "", 'w'},
    PlainFunction{"stuff", "ts_stuff", "tiit", "", 'w'},
    PlainFunction{"space", "ts_space", "i", "", 'v'},
    PlainFunction{"char", "ts_char", "i", ", 0", 'v'},
    PlainFunction{"nchar", "ts_char", "i", ", 1", 'n'},
    PlainFunction{"ascii", "ts_unicode", "t", "", 'i'},
    PlainFunction{"unicode", "ts_unicode", "t", "", 'i'},
    PlainFunction{"quotename", "ts_quotename", "tT", "", 'n'},
    PlainFunction{"isdate", "ts_isdate", "t", "", 'i'},
    PlainFunction{"isnumeric", "ts_isnumeric", "t", "", 'i'},
    PlainFunction{"sqrt", "ts_sqrt", "f", "", 'f'},
    PlainFunction{"exp", "ts_exp", "f", "", 'f'},
    PlainFunction{"log", "ts_log", "fF", "", 'f'},
    PlainFunction{"log10", "ts_log10", "f", "", 'f'},
    PlainFunction{"sin", "ts_sin", "f", "", 'f'},
    PlainFunction{"cos", "ts_cos", "f", "", 'f'},
    PlainFunction{"tan", "ts_tan", "f", "", 'f'},
    PlainFunction{"asin", "ts_asin", "f", "", 'f'},
    PlainFunction{"acos", "ts_acos", "f", "", 'f'},
    PlainFunction{"atan", "ts_atan", "f", "", 'f'},
    PlainFunction{"atn2", "ts_atan2", "ff", "", 'f'},
};

bool IsAggregate(std::string_view name) {
  return name == "count" || name == "count_big" || name == "sum" || name == "avg" || name == "min" || name == "max" ||
         name == "string_agg";
}

std::string Packed(const SqlType& type) { return std::to_string(PackType(type)); }

}  // namespace

std::string Translator::TextArgument(const Expression& expression, Scope& scope) {
  return AsText(Value(expression, scope));
}

std::string Translator::AsText(const Typed& value) {
  if (value.type.is_text()) return value.sql;
  return Coerce(value, value.type.is_binary() ? VarCharType(0) : NVarCharType(0));
}

std::string Translator::IntArgument(const Expression& expression, Scope& scope) {
  return Coerce(Value(expression, scope), BigIntType());
}

std::string Translator::FloatArgument(const Expression& expression, Scope& scope) {
  return Coerce(Value(expression, scope), FloatType());
}

std::string Translator::DateArgument(const Expression& expression, Scope& scope) {
  return AsDate(Value(expression, scope));
}

std::string Translator::AsDate(const Typed& value) {
  if (value.type.is_date()) return value.sql;
  return Coerce(value, value.type.is_text() || value.type.has_offset() ? DateTime2Type(7) : DateTimeType());
}

Typed Translator::Function(const Expression& expression, Scope& scope) {
  if (expression.window != nullptr) return WindowFunction(expression, scope);
  if (IsAggregate(expression.text)) return Aggregate(expression, scope);
  for (const PlainFunction& plain : kPlainFunctions) {
    if (plain.name != expression.text) continue;
    const auto required = static_cast<std::size_t>(
        std::count_if(plain.arguments.begin(), plain.arguments.end(), [](char c) { return c >= 'a'; }));
    RequireArguments(expression, required, plain.arguments.size());
    std::string sql = std::string(plain.row_function) + "(";
    SqlType first = NVarCharType(4000);
    bool national = false;
    bool unlimited = false;
    for (std::size_t i = 0; i < expression.operands.size(); ++i) {
      const auto kind = static_cast<ArgumentKind>(plain.arguments[i] | 0x20);
      const Expression& operand = *expression.operands[i];
      if (i > 0) sql += ", ";
      if (kind == ArgumentKind::kText) {
        const Typed value = Value(operand, scope);
        if (i == 0 && value.type.is_text()) first = value.type;
        national = national || value.type.is_national();
        unlimited = unlimited || (i == 0 && value.type.is_text() && value.type.size == 0);
        const bool cut = plain.name == "substring" && i == 0;
        if (cut && !value.type.is_text() && !value.type.is_binary()) {
          throw SqlError(8116, "Argument data type " + std::string(TypeNameText(value.type)) +
                                   " is invalid for argument 1 of substring function.");
        }
        // Of binaries bytes are counted and cut.
        const bool bytes = value.type.is_binary() && (cut || plain.name == "len");
        if (cut && bytes) first = {FieldType::kVarBinary, value.type.size, 0, 0, false};
        sql += bytes ? value.sql : AsText(value);
      } else {
        sql += kind == ArgumentKind::kInt ? IntArgument(operand, scope) : FloatArgument(operand, scope);
      }
    }
    if (first.kind == FieldType::kChar) first.kind = FieldType::kVarChar;
    if (first.kind == FieldType::kNChar) first.kind = FieldType::kNVarChar;
    const SqlType type = plain.result == 't'   ? first
                         : plain.result == 'n' ? NVarCharType(4000)
                         : plain.result == 'v' ? VarCharType(8000)
                         : plain.result == 'f' ? FloatType()
                         : plain.result == 'w'
                             ? (national ? NVarCharType(unlimited ? 0 : 4000) : VarCharType(unlimited ? 0 : 8000))
                             : IntType();
    if (plain.result == 'w') sql += ", " + Packed(type);
    return {sql + std::string(plain.tail) + ")", type, true, -1};
  }
  for (const auto topic : {&Translator::ConditionalFunction, &Translator::DateFunction, &Translator::NumberFunction,
                           &Translator::TextFunction, &Translator::MetadataFunction, &Translator::ServerFunction}) {
    Typed value = (this->*topic)(expression, scope);
    if (!value.sql.empty()) return value;
  }
  constexpr std::array<std::string_view, 22> kServerOnly = {
      "format",    "stdev",   "stdevp",      "var",          "varp",      "checksum",     "degrees",
      "radians",   "cot",     "object_name", "parsename",    "translate", "string_split", "json_value",
      "hashbytes", "soundex", "difference",  "percent_rank", "cume_dist", "checksum_agg", "datetimefromparts",
      "grouping"};
  if (std::find(kServerOnly.begin(), kServerOnly.end(), expression.text) != kServerOnly.end()) {
    RaiseUnsupported("The function " + UpperCase(expression.text), expression.line);
  }
  SqlError error(195, "'" + expression.text + "' is not a recognized built-in function name.", 15);
  error.set_line(expression.line);
  throw error;
}

Typed Translator::Aggregate(const Expression& expression, Scope& scope) {
  const std::string& name = expression.text;
  if (scope.no_aggregates) {
    throw SqlError(
        147,
        "An aggregate may not appear in the WHERE clause unless it is in a subquery contained in a HAVING clause "
        "or a select list, and the column being aggregated is an outer reference.",
        15);
  }
  if (aggregate_depth_ > 0) {
    throw SqlError(130, "Cannot perform an aggregate function on an expression containing an aggregate or a subquery.",
                   15);
  }
  const bool count = name == "count" || name == "count_big";
  if (count && !expression.operands.empty() && expression.operands[0]->kind == Expression::Kind::kStar) {
    return {"count(*)", name == "count" ? IntType() : BigIntType(), false, -1};
  }
  RequireArguments(expression, name == "string_agg" ? 2 : 1, name == "string_agg" ? 2 : 1);
  ++aggregate_depth_;
  Typed value = Value(*expression.operands[0], scope);
  std::string separator;
  if (name == "string_agg") separator = TextArgument(*expression.operands[1], scope);
  --aggregate_depth_;
  const std::string distinct = expression.distinct ? "DISTINCT " : "";
  if (count)
    return {"count(" + distinct + Collated(value) + ")", name == "count" ? IntType() : BigIntType(), false, -1};
  if (name == "string_agg") {
    const SqlType type = value.type.is_national() || !value.type.is_text() ? NVarCharType(4000) : VarCharType(8000);
    return {"group_concat(" + Coerce(value, NVarCharType(0)) + ", " + separator + ")", type, true, -1};
  }
  if ((name == "min" || name == "max") && value.type.kind != FieldType::kBit) {
    return {name + "(" + Collated(value) + ")", value.type, true, -1};
  }
  if (!value.type.is_number() || value.type.kind == FieldType::kBit) {
    throw SqlError(
        8117, "Operand data type " + std::string(TypeNameText(value.type)) + " is invalid for " + name + " operator.");
  }
  const bool sum = name == "sum";
  if (value.type.is_float()) return {"ts_float(" + name + "(" + distinct + value.sql + "))", FloatType(), true, -1};
  if (value.type.is_integer()) {
    const SqlType type = value.type.kind == FieldType::kBigInt ? BigIntType() : IntType();
    const std::string total = "sum(" + distinct + value.sql + ")";
    if (!sum) return {"ts_div(" + total + ", count(" + distinct + value.sql + "))", type, true, -1};
    return {type.kind == FieldType::kBigInt ? total : "ts_i32(" + total + ")", type, true, -1};
  }
  const SqlType exact = AsDecimal(value.type);
  const SqlType total_type = DecimalType(38, exact.scale);
  const std::string total =
      value.type.storage() == Storage::kScaled
          ? "ts_conv(sum(" + distinct + value.sql + "), " + Packed(DecimalType(18, exact.scale)) + ", " +
                Packed(total_type) + ", 0)"
          : "ts_sum(" + distinct + value.sql + ", " + Packed(value.type) + ", " + Packed(total_type) + ")";
  if (sum) return {total, total_type, true, -1};
  const SqlType average = DecimalType(38, std::max(exact.scale, 6));
  return {"ts_arith(" + std::to_string(static_cast<int>(BinaryOp::kDivide)) + ", " + total + ", " + Packed(total_type) +
              ", count(" + distinct + value.sql + "), " + Packed(IntType()) + ", " + Packed(average) + ")",
          average, true, -1};
}

std::string Translator::Over(const Window& window, Scope& scope) {
  std::string sql = " OVER (";
  for (std::size_t i = 0; i < window.partition.size(); ++i) {
    sql += (i == 0 ? "PARTITION BY " : ", ") + Collated(Value(*window.partition[i], scope));
  }
  for (std::size_t i = 0; i < window.order.size(); ++i) {
    const Expression& key = *window.order[i].expression;
    // ORDER BY (SELECT NULL) is how an order that does not matter is written.
    const std::string value = key.kind == Expression::Kind::kSubquery ? "NULL" : Collated(Value(key, scope));
    sql += (i == 0 ? " ORDER BY " : ", ") + value + (window.order[i].descending ? " DESC" : "");
  }
  if (!window.frame.empty()) sql += " " + window.frame;
  return sql + ")";
}

Typed Translator::WindowFunction(const Expression& expression, Scope& scope) {
  const std::string& name = expression.text;
  const bool numbering = name == "row_number" || name == "rank" || name == "dense_rank" || name == "ntile";
  if (numbering) {
    if (expression.window->order.empty()) {
      throw SqlError(4112, "The function '" + name + "' must have an OVER clause with ORDER BY.", 15);
    }
    const std::string argument =
        name == "ntile" && !expression.operands.empty() ? IntArgument(*expression.operands[0], scope) : "";
    return {name + "(" + argument + ")" + Over(*expression.window, scope), BigIntType(), false, -1};
  }
  if (name == "lag" || name == "lead" || name == "first_value" || name == "last_value") {
    const Typed value = Value(*expression.operands.at(0), scope);
    std::string sql = name + "(" + value.sql;
    if (expression.operands.size() > 1) sql += ", " + IntArgument(*expression.operands[1], scope);
    if (expression.operands.size() > 2) sql += ", " + Coerce(Value(*expression.operands[2], scope), value.type);
    return {sql + ")" + Over(*expression.window, scope), value.type, true, -1};
  }
  if (!IsAggregate(name) || name == "string_agg" || expression.distinct) {
    RaiseUnsupported("The window function " + name, expression.line);
  }
  if (name == "count" || name == "count_big") {
    const Expression& operand = *expression.operands.at(0);
    const std::string counted = operand.kind == Expression::Kind::kStar ? "*" : Value(operand, scope).sql;
    return {"count(" + counted + ")" + Over(*expression.window, scope), name == "count" ? IntType() : BigIntType(),
            false, -1};
  }
  const Typed value = Value(*expression.operands.at(0), scope);
  const std::string over = Over(*expression.window, scope);
  if (name == "min" || name == "max") return {name + "(" + value.sql + ")" + over, value.type, true, -1};
  if (!value.type.is_number() || value.type.storage() == Storage::kBigDecimal) {
    RaiseUnsupported("The window function " + name + " over " + TypeText(value.type), expression.line);
  }
  const std::string total = "sum(" + value.sql + ")" + over;
  if (value.type.is_float()) return {"ts_float(" + name + "(" + value.sql + ")" + over + ")", FloatType(), true, -1};
  if (value.type.is_integer()) {
    if (name == "sum") return {"ts_i32(" + total + ")", IntType(), true, -1};
    return {"ts_div(" + total + ", count(" + value.sql + ")" + over + ")", IntType(), true, -1};
  }
  const SqlType total_type = DecimalType(18, AsDecimal(value.type).scale);
  if (name == "sum") return {total, total_type, true, -1};
  const SqlType average = DecimalType(38, std::max(total_type.scale, 6));
  return {"ts_arith(" + std::to_string(static_cast<int>(BinaryOp::kDivide)) + ", " + total + ", " + Packed(total_type) +
              ", count(" + value.sql + ")" + over + ", " + Packed(IntType()) + ", " + Packed(average) + ")",
          average, true, -1};
}

Typed Translator::ConditionalFunction(const Expression& expression, Scope& scope) {
  const std::string& name = expression.text;
  if (name == "isnull") {
    RequireArguments(expression, 2, 2);
    const Typed value = Value(*expression.operands[0], scope);
    Typed instead = Value(*expression.operands[1], scope);
    if (value.type.untyped_null) return instead;
    return {"ifnull(" + value.sql + ", " + Coerce(instead, value.type) + ")", value.type, instead.nullable, -1};
  }
  if (name == "coalesce" || name == "iif" || name == "choose") {
    const bool coalesce = name == "coalesce";
    RequireArguments(expression, name == "iif" ? 3 : coalesce ? 1 : 2, name == "iif" ? 3 : 127);
    std::vector<Typed> values;
    SqlType type = NullType();
    bool nullable = coalesce;
    for (std::size_t i = coalesce ? 0 : 1; i < expression.operands.size(); ++i) {
      values.push_back(Value(*expression.operands[i], scope));
      type = CommonType(type, values.back().type);
      nullable = coalesce ? nullable && values.back().nullable : nullable || values.back().nullable;
    }
    if (coalesce) {
      if (type.untyped_null) {
        throw SqlError(
            4127, "At least one of the arguments to COALESCE must be an expression that is not the NULL constant.", 16);
      }
      if (values.size() == 1) return values[0];
      std::string sql = "coalesce(";
      for (std::size_t i = 0; i < values.size(); ++i) sql += (i == 0 ? "" : ", ") + Coerce(values[i], type);
      return {sql + ")", type, nullable, -1};
    }
    if (name == "iif") {
      return {"CASE WHEN " + Condition(*expression.operands[0], scope) + " THEN " + Coerce(values[0], type) + " ELSE " +
                  Coerce(values[1], type) + " END",
              type, nullable, -1};
    }
    std::string sql = "CASE " + IntArgument(*expression.operands[0], scope);
    for (std::size_t i = 0; i < values.size(); ++i) {
      sql += " WHEN " + std::to_string(i + 1) + " THEN " + Coerce(values[i], type);
    }
    return {sql + " END", type, true, -1};
  }
  if (name == "nullif") {
    RequireArguments(expression, 2, 2);
    const std::string equal =
        Compare(CompareOp::kEqual, Value(*expression.operands[0], scope), Value(*expression.operands[1], scope));
    const Typed value = Value(*expression.operands[0], scope);
    return {"CASE WHEN " + equal + " THEN NULL ELSE " + value.sql + " END", value.type, true, -1};
  }
  return {};
}

Typed Translator::DateFunction(const Expression& expression, Scope& scope) {
  const std::string& name = expression.text;
  const auto part = [&]() -> std::string {
    const std::string written = expression.parts.empty() ? "" : expression.parts[0];
    const std::optional<DatePart> found = FindDatePart(written);
    if (!found) throw SqlError(155, "'" + written + "' is not a recognized " + name + " option.", 15);
    return std::to_string(static_cast<int>(*found));
  };
  if (name == "dateadd") {
    RequireArguments(expression, 2, 2);
    const Typed date = Value(*expression.operands[1], scope);
    const SqlType type = date.type.is_date() || date.type.has_offset() ? date.type : DateTimeType();
    const std::optional<DatePart> found = FindDatePart(expression.parts.empty() ? "" : expression.parts[0]);
    const bool of_time = found && *found >= DatePart::kHour;
    if (found && ((type.kind == FieldType::kDate && of_time) || (type.kind == FieldType::kTime && !of_time))) {
      throw SqlError(9810, "The datepart " + LowerCase(expression.parts[0]) +
                               " is not supported by date function dateadd for data type " +
                               std::string(TypeNameText(type)) + ".");
    }
    const std::string number = IntArgument(*expression.operands[0], scope);
    return {"ts_dateadd(" + part() + ", " + number + ", " + Coerce(date, type) + ", " + Packed(type) + ")", type, true,
            -1};
  }
  if (name == "datediff" || name == "datediff_big") {
    RequireArguments(expression, 2, 2);
    // Between moments of different clocks, by UTC.
    const auto side = [&](const Expression& operand) {
      const Typed value = Value(operand, scope);
      if (!value.type.has_offset()) return AsDate(value);
      return AsDate({"ts_switchoffset(" + value.sql + ", 0, " + Packed(value.type) + ")", value.type, true, -1});
    };
    const std::string from = side(*expression.operands[0]);
    const std::string difference = "ts_datediff(" + part() + ", " + from + ", " + side(*expression.operands[1]) + ")";
    if (name == "datediff_big") return {difference, BigIntType(), true, -1};
    return {"ts_datediff_int(" + difference + ")", IntType(), true, -1};
  }
  if (name == "datepart" || name == "datename") {
    RequireArguments(expression, 1, 1);
    return {"ts_" + name + "(" + part() + ", " + DateArgument(*expression.operands[0], scope) + ")",
            name == "datepart" ? IntType() : NVarCharType(30), true, -1};
  }
  if (name == "year" || name == "month" || name == "day") {
    RequireArguments(expression, 1, 1);
    const int number = static_cast<int>(*FindDatePart(name));
    return {"ts_datepart(" + std::to_string(number) + ", " + DateArgument(*expression.operands[0], scope) + ")",
            IntType(), true, -1};
  }
  if (name == "sysdatetimeoffset") return SystemValue(name, DateTimeOffsetType(7));
  if (name == "switchoffset" || name == "todatetimeoffset") {
    RequireArguments(expression, 2, 2);
    const Typed value = Value(*expression.operands[0], scope);
    const Typed zone = Value(*expression.operands[1], scope);
    constexpr int kPlacesOfDateTime = 3;
    const SqlType type = DateTimeOffsetType(value.type.is_old_date()                          ? kPlacesOfDateTime
                                            : value.type.is_date() || value.type.has_offset() ? value.type.scale
                                                                                              : 7);
    const std::string moment = name == "switchoffset" ? Coerce(value, type) : Coerce(value, DateTime2Type(type.scale));
    const std::string offset = zone.type.is_text() ? zone.sql : Coerce(zone, BigIntType());
    return {"ts_" + name + "(" + moment + ", " + offset + ", " + Packed(type) + ")", type, true, -1};
  }
  const bool fine = name == "sysdatetime" || name == "sysutcdatetime";
  const SqlType now = fine ? DateTime2Type(7) : DateTimeType();
  if (name == "getdate" || name == "sysdatetime" || name == "current_timestamp") return SystemValue("getdate", now);
  if (name == "getutcdate" || name == "sysutcdatetime") return SystemValue("getutcdate", now);
  if (name == "eomonth") {
    RequireArguments(expression, 1, 2);
    const std::string date = DateArgument(*expression.operands[0], scope);
    const std::string months = expression.operands.size() > 1 ? IntArgument(*expression.operands[1], scope) : "0";
    return {"ts_eomonth(" + date + ", " + months + ")", SqlType{FieldType::kDate, 0, 0, 0, false}, true, -1};
  }
  if (name == "datefromparts") {
    RequireArguments(expression, 3, 3);
    std::string sql = "ts_datefromparts(";
    for (std::size_t i = 0; i < 3; ++i) sql += (i == 0 ? "" : ", ") + IntArgument(*expression.operands[i], scope);
    return {sql + ")", SqlType{FieldType::kDate, 0, 0, 0, false}, true, -1};
  }
  return {};
}

Typed Translator::NumberFunction(const Expression& expression, Scope& scope) {
  const std::string& name = expression.text;
  if (name == "pi") return Constant(3.14159265358979323846, FloatType());
  if (name == "rand") return {"ts_rand()", FloatType(), false, -1};
  if (name == "newid") return {"ts_newid()", SqlType{FieldType::kGuid, 0, 0, 0, false}, false, -1};
  if (name != "abs" && name != "round" && name != "floor" && name != "ceiling" && name != "sign" && name != "power" &&
      name != "square") {
    return {};
  }
  RequireArguments(expression, name == "round" || name == "power" ? 2 : 1,
                   name == "round"   ? 3
                   : name == "power" ? 2
                                     : 1);
  Typed value = Value(*expression.operands[0], scope);
  if (!value.type.is_number()) value = {Coerce(value, FloatType()), FloatType(), value.nullable, -1};
  if (value.type.kind == FieldType::kBit || value.type.kind == FieldType::kTinyInt ||
      value.type.kind == FieldType::kSmallInt) {
    value.type = IntType();
  }
  value.type.precision = value.type.is_integer() ? 0 : value.type.precision;
  const std::string type = Packed(value.type);
  if (name == "abs" || name == "sign") {
    if (value.type.storage() != Storage::kBigDecimal) {
      const bool sign_of_scaled = name == "sign" && value.type.is_exact();
      const std::string call = name + "(" + value.sql + ")";
      const std::string sql =
          sign_of_scaled ? "(" + call + " * 1" + std::string(static_cast<std::size_t>(value.type.scale), '0') + ")"
          : value.type.kind == FieldType::kInt ? "ts_i32(" + call + ")"
                                               : call;
      return {sql, value.type, value.nullable, -1};
    }
    const std::string zero = Packed(IntType());
    const std::string negated = "ts_arith(" + std::to_string(static_cast<int>(BinaryOp::kSubtract)) + ", 0, " + zero +
                                ", " + value.sql + ", " + type + ", " + type + ")";
    const std::string origin = "ts_conv(0, " + zero + ", " + type + ", 0)";
    if (name == "abs") return {"max(" + value.sql + ", " + negated + ")", value.type, value.nullable, -1};
    return {"CASE WHEN " + value.sql + " > " + origin + " THEN 1 WHEN " + value.sql + " < " + origin +
                " THEN -1 WHEN " + value.sql + " IS NOT NULL THEN 0 END",
            IntType(), value.nullable, -1};
  }
  if (name == "round") {
    const std::string places = IntArgument(*expression.operands[1], scope);
    const std::string cut = expression.operands.size() > 2 ? IntArgument(*expression.operands[2], scope) : "0";
    return {"ts_round(" + value.sql + ", " + places + ", " + cut + ", " + type + ")", value.type, value.nullable, -1};
  }
  if (name == "floor" || name == "ceiling") {
    const SqlType result = value.type.is_exact() ? DecimalType(value.type.precision, 0) : value.type;
    return {"ts_floor(" + value.sql + ", " + (name == "floor" ? "0" : "1") + ", " + type + ", " + Packed(result) + ")",
            result, value.nullable, -1};
  }
  if (name == "square") {
    const std::string number = Coerce(value, FloatType());
    return {"ts_power(" + number + ", 2.0, " + Packed(FloatType()) + ")", FloatType(), value.nullable, -1};
  }
  const SqlType result = value.type;
  const std::string base = Coerce(value, FloatType());
  return {"ts_power(" + base + ", " + FloatArgument(*expression.operands[1], scope) + ", " + type + ")", result, true,
          -1};
}

Typed Translator::TextFunction(const Expression& expression, Scope& scope) {
  const std::string& name = expression.text;
  if (name == "concat" || name == "concat_ws") {
    RequireArguments(expression, 2, 254);
    std::string sql = name == "concat" ? "ts_concat(" : "ts_concat_ws(";
    for (std::size_t i = 0; i < expression.operands.size(); ++i) {
      sql += (i == 0 ? "" : ", ") + TextArgument(*expression.operands[i], scope);
    }
    return {sql + ")", NVarCharType(4000), false, -1};
  }
  if (name == "datalength") {
    RequireArguments(expression, 1, 1);
    const Typed value = Value(*expression.operands[0], scope);
    return {"ts_datalength(" + value.sql + ", " + Packed(value.type) + ")", IntType(), value.nullable, -1};
  }
  if (name == "str") {
    RequireArguments(expression, 1, 3);
    std::string sql = "ts_str(" + FloatArgument(*expression.operands[0], scope);
    sql += ", " + (expression.operands.size() > 1 ? IntArgument(*expression.operands[1], scope) : "10");
    sql += ", " + (expression.operands.size() > 2 ? IntArgument(*expression.operands[2], scope) : "0");
    return {sql + ")", VarCharType(8000), true, -1};
  }
  return {};
}

Typed Translator::MetadataFunction(const Expression& expression, Scope& scope) {
  const std::string& name = expression.text;
  struct System {
    std::string_view name;
    FieldType kind;
  };
  constexpr std::array kSystems = {
      System{"@@rowcount", FieldType::kInt},
      System{"@@error", FieldType::kInt},
      System{"@@trancount", FieldType::kInt},
      System{"@@identity", FieldType::kDecimal},
      System{"@@spid", FieldType::kInt},
      System{"@@version", FieldType::kNVarChar},
      System{"@@servername", FieldType::kNVarChar},
      System{"scope_identity", FieldType::kDecimal},
      System{"error_number", FieldType::kInt},
      System{"error_severity", FieldType::kInt},
      System{"error_state", FieldType::kInt},
      System{"error_line", FieldType::kInt},
      System{"error_message", FieldType::kNVarChar},
      System{"error_procedure", FieldType::kNVarChar},
      System{"db_name", FieldType::kNVarChar},
      System{"host_name", FieldType::kNVarChar},
      System{"suser_sname", FieldType::kNVarChar},
      System{"suser_name", FieldType::kNVarChar},
      System{"user_name", FieldType::kNVarChar},
      System{"app_name", FieldType::kNVarChar},
      System{"xact_state", FieldType::kInt},
  };
  for (const System& system : kSystems) {
    if (system.name != name) continue;
    return SystemValue(name, system.kind == FieldType::kNVarChar  ? NVarCharType(4000)
                             : system.kind == FieldType::kDecimal ? DecimalType(38, 0)
                                                                  : IntType());
  }
  if (name == "object_id" || name == "col_length" || name == "ident_current") {
    RequireArguments(expression, 1, 2);
    // Answered when the statement runs: the objects are the database's, not the statement's.
    std::string sql = "ts_" + name + "(" + TextArgument(*expression.operands[0], scope);
    if (expression.operands.size() > 1) sql += ", " + TextArgument(*expression.operands[1], scope);
    if (name != "ident_current") return {sql + ")", IntType(), true, -1};
    const SqlType type = DecimalType(38, 0);
    return {Coerce({sql + ")", BigIntType(), true, -1}, type), type, true, -1};
  }
  return {};
}

}  // namespace tessarlorn::tsql
