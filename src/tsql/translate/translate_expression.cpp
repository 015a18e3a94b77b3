// Expressions: literals, names, operators, CASE, CAST, scalar subqueries.
#include <algorithm>
#include <array>

#include "platform/text.h"
#include "tsql/translate/literals.h"
#include "tsql/translate/translator.h"
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

std::string_view OperatorName(BinaryOp op) {
  switch (op) {
    case BinaryOp::kAdd:
      return "add";
    case BinaryOp::kSubtract:
      return "subtract";
    case BinaryOp::kMultiply:
      return "multiply";
    case BinaryOp::kDivide:
      return "divide";
    case BinaryOp::kModulo:
      return "modulo";
    case BinaryOp::kBitAnd:
      return "'&'";
    case BinaryOp::kBitOr:
      return "'|'";
    default:
      return "'^'";
  }
}

[[noreturn]] void RaiseOperand(const SqlType& type, BinaryOp op) {
  throw SqlError(8117, "Operand data type " + std::string(TypeNameText(type)) + " is invalid for " +
                           std::string(OperatorName(op)) + " operator.");
}

}  // namespace

std::string Translator::Collated(const Typed& value) {
  const std::string collation = CollationOf(value.type);
  return collation.empty() ? value.sql : "(" + value.sql + collation + ")";
}

Typed Translator::Constant(Datum value, const SqlType& type) {
  BoundParameter parameter;
  parameter.source = BoundParameter::Source::kConstant;
  parameter.constant = std::move(value);
  parameter.from = parameter.to = type;
  parameters_.push_back(std::move(parameter));
  return {"?" + std::to_string(parameters_.size()), type, false, static_cast<int>(parameters_.size()) - 1};
}

Typed Translator::SystemValue(const std::string& name, const SqlType& type) {
  Typed value = Constant({}, type);
  parameters_.back().source = BoundParameter::Source::kSystem;
  parameters_.back().name = name;
  value.nullable = true;
  return value;
}

void Translator::Pin(const Expression& literal) {
  if (lift_ && view_depth_ == 0 && literal.kind == Expression::Kind::kLiteral && literal.literal_index >= 0) {
    dependencies_.pinned.push_back({literal.literal_index, literal.text});
  }
}

void Translator::PinAll(const Expression& expression) {
  Pin(expression);
  for (const ExpressionPtr& operand : expression.operands) {
    if (operand != nullptr) PinAll(*operand);
  }
  for (const CaseBranch& branch : expression.branches) {
    PinAll(*branch.when);
    PinAll(*branch.then);
  }
}

Typed Translator::Literal(const Expression& expression) {
  SqlType type;
  Datum value;
  switch (expression.literal) {
    case LiteralKind::kNull:
      return {"NULL", NullType(), true, -1};
    case LiteralKind::kInteger: {
      std::string_view digits = expression.text;
      while (digits.size() > 1 && digits.front() == '0') digits.remove_prefix(1);
      if (digits.size() < 10 || (digits.size() == 10 && digits <= "2147483647")) {
        type = IntType();
        value = std::int64_t{std::stoll(std::string(digits))};
        break;
      }
      [[fallthrough]];
    }
    case LiteralKind::kDecimal: {
      const std::optional<Decimal> number = Decimal::Parse(expression.text);
      if (!number) {
        throw SqlError(1007,
                       "The number '" + expression.text +
                           "' is out of the range for numeric representation (maximum precision 38).",
                       15);
      }
      type = DecimalType(std::max(number->precision(), 1), number->scale());
      value = FromDecimal(*number, type);
      break;
    }
    case LiteralKind::kFloat:
      type = FloatType();
      value = Convert(expression.text, VarCharType(8000), type);
      break;
    case LiteralKind::kBinary:
      type = {FieldType::kVarBinary, IsLongLiteral(expression.literal, expression.text) ? 0 : 8000, 0, 0, false};
      value = BinaryLiteral(expression.text);
      break;
    case LiteralKind::kString:
      type = VarCharType(IsLongLiteral(expression.literal, expression.text) ? 0 : 8000);
      value = expression.text;
      break;
    case LiteralKind::kNString:
      type = NVarCharType(IsLongLiteral(expression.literal, expression.text) ? 0 : 4000);
      value = expression.text;
      break;
  }
  Typed literal = Constant(std::move(value), type);
  if (lift_ && view_depth_ == 0 && expression.literal_index >= 0) {
    parameters_.back().source = BoundParameter::Source::kLiteral;
    parameters_.back().index = expression.literal_index;
    parameters_.back().constant = {};
  }
  return literal;
}

Typed Translator::VariableValue(const std::string& name) {
  const Variable& variable = frame_.Get(name);
  const auto known = std::find_if(dependencies_.variables.begin(), dependencies_.variables.end(),
                                  [&](const Dependencies::Variable& entry) { return entry.name == name; });
  if (known == dependencies_.variables.end()) dependencies_.variables.push_back({name, variable.type});
  if (live_variables_.contains(name)) return {"ts_var(" + QuoteText(name) + ")", variable.type, true, -1};
  Typed value = Constant({}, variable.type);
  parameters_.back().source = BoundParameter::Source::kVariable;
  parameters_.back().name = name;
  value.nullable = true;
  return value;
}

Typed Translator::ColumnValue(const Expression& expression, Scope& scope) {
  const std::string& name = expression.parts.back();
  const std::string qualifier = expression.parts.size() > 1 ? expression.parts[expression.parts.size() - 2] : "";
  bool qualifier_known = false;
  for (const Scope* level = &scope; level != nullptr; level = level->parent) {
    const SourceColumn* found = nullptr;
    const Source* owner = nullptr;
    for (std::size_t i = level->visible_from; i < level->sources.size(); ++i) {
      const Source& source = level->sources[i];
      if (!qualifier.empty() && !EqualsIgnoreCase(source.alias, qualifier)) continue;
      if (!qualifier.empty()) qualifier_known = true;
      for (const SourceColumn& column : source.columns) {
        if (!EqualsIgnoreCase(column.name, name)) continue;
        if (found != nullptr) throw SqlError(209, "Ambiguous column name '" + name + "'.");
        found = &column;
        owner = &source;
      }
    }
    if (found == nullptr) {
      if (qualifier_known) break;
      continue;
    }
    if (level->check_grouping && aggregate_depth_ == 0 && !level->group_columns.contains(found->sql)) {
      throw SqlError(8120, "Column '" + owner->alias + "." + found->name + "' is invalid in the " + level->clause +
                               " because it is not contained in either an aggregate function or the GROUP BY clause.");
    }
    if (level->captured != nullptr) {
      level->captured->push_back(found->sql);
      return {"\"$row\".c" + std::to_string(level->captured->size()), found->type, found->nullable, -1};
    }
    return {found->sql, found->type, found->nullable, -1};
  }
  if (!qualifier.empty() && !qualifier_known) {
    throw SqlError(4104, "The multi-part identifier \"" + qualifier + "." + name + "\" could not be bound.");
  }
  throw SqlError(207, "Invalid column name '" + name + "'.");
}

std::string Translator::Coerce(const Typed& value, const SqlType& to, Fit fit, int style, bool attempt) {
  if (value.type.untyped_null || to.untyped_null) return value.sql;
  if (value.parameter >= 0 && !attempt) {
    BoundParameter& parameter = parameters_[static_cast<std::size_t>(value.parameter)];
    parameter.to = to;
    parameter.fit = fit;
    parameter.style = style;
    return value.sql;
  }
  const SqlType& from = value.type;
  if (NeedsNoConversion(from, to, fit)) return value.sql;
  if (from.is_integer() && to.kind == FieldType::kFloat) return "CAST(" + value.sql + " AS REAL)";
  if (to.storage() == Storage::kScaled && !attempt) {
    const SqlType exact = AsDecimal(from);
    const bool widens = (from.is_integer() || (from.is_exact() && from.storage() == Storage::kScaled)) &&
                        exact.scale <= to.scale && exact.precision + to.scale - exact.scale <= 18;
    if (widens && (fit == Fit::kCompare || exact.precision - exact.scale <= to.precision - to.scale)) {
      return "(" + value.sql + " * " + PowerOfTen(to.scale - exact.scale) + ")";
    }
  }
  return (attempt ? "ts_try(" : "ts_conv(") + value.sql + ", " + std::to_string(PackType(from)) + ", " +
         std::to_string(PackType(to)) + ", " + std::to_string(style) + ")";
}

void Translator::RequireImplicit(const SqlType& from, const SqlType& to) {
  if (from.untyped_null || !((from.is_text() && to.is_binary()) || (from.is_date() && to.is_number()))) return;
  throw SqlError(257, "Implicit conversion from data type " + std::string(TypeNameText(from)) + " to " +
                          std::string(TypeNameText(to)) +
                          " is not allowed. Use the CONVERT function to run this query.");
}

std::string Translator::Assign(const Typed& value, const Column& column, const std::string& table) {
  RequireImplicit(value.type, column.type);
  std::string sql;
  if (value.type.untyped_null) {
    sql = value.sql;
  } else if (value.parameter >= 0) {
    sql = Coerce(value, column.type, Fit::kAssign);
    BoundParameter& parameter = parameters_[static_cast<std::size_t>(value.parameter)];
    parameter.table = table;
    parameter.column = column.name;
  } else if ((value.type.is_text() && column.type.is_text()) || (value.type.is_binary() && column.type.is_binary())) {
    sql = NeedsNoConversion(value.type, column.type, Fit::kAssign)
              ? value.sql
              : "ts_assign(" + value.sql + ", " + std::to_string(PackType(value.type)) + ", " +
                    std::to_string(PackType(column.type)) + ", " + QuoteText(table) + ", " + QuoteText(column.name) +
                    ")";
  } else {
    sql = Coerce(value, column.type);
  }
  return column.row_key && value.nullable ? Required(sql, column, table) : sql;
}

std::string Translator::Required(const std::string& sql, const Column& column, const std::string& table) {
  return "ts_require(" + sql + ", " + QuoteText(table) + ", " + QuoteText(column.name) + ")";
}

Typed Translator::BinaryOf(BinaryOp op, Typed a, Typed b) {
  const bool nullable = a.nullable || b.nullable;
  const SqlType common = CommonType(a.type, b.type);
  if (op == BinaryOp::kAdd && common.is_text()) {
    SqlType type = common;
    if (type.kind == FieldType::kChar) type.kind = FieldType::kVarChar;
    if (type.kind == FieldType::kNChar) type.kind = FieldType::kNVarChar;
    const int most = type.is_national() ? 4000 : 8000;
    type.size = a.type.size == 0 || b.type.size == 0 ? 0 : std::min(most, a.type.size + b.type.size);
    SqlType left = type;
    left.size = 0;
    return {"(" + Coerce(a, left) + " || " + Coerce(b, left) + ")", type, nullable, -1};
  }
  const bool bits = op == BinaryOp::kBitAnd || op == BinaryOp::kBitOr || op == BinaryOp::kBitXor;
  if (common.is_date() && !bits && (op == BinaryOp::kAdd || op == BinaryOp::kSubtract)) {
    const auto side = [&](const Typed& value) {
      if (value.type.is_date() && !value.type.is_old_date()) {
        const SqlType& other = &value == &a ? b.type : a.type;
        if (!other.is_number() || other.untyped_null) RaiseOperand(value.type, op);
        throw SqlError(206, "Operand type clash: " + std::string(TypeNameText(value.type)) + " is incompatible with " +
                                std::string(TypeNameText(other)));
      }
      if (value.type.is_date()) return value.sql;
      if (value.type.is_text()) return Coerce(value, DateTimeType());
      if (value.type.is_integer()) return "(" + Coerce(value, BigIntType()) + " * 86400000)";
      return "CAST(round(" + Coerce(value, FloatType()) + " * 86400000) AS INTEGER)";
    };
    const SqlType type = common.form() == DateForm::kSmallDateTime ? common : DateTimeType();
    return {"ts_datetime(" + side(a) + (op == BinaryOp::kAdd ? " + " : " - ") + side(b) + ", " +
                std::to_string(PackType(type)) + ")",
            type, nullable, -1};
  }
  if (common.is_binary() && op == BinaryOp::kAdd) {
    constexpr int kMost = 8000;
    const int size = a.type.size == 0 || b.type.size == 0 ? 0 : std::min(kMost, a.type.size + b.type.size);
    const SqlType whole{FieldType::kVarBinary, 0, 0, 0, false};
    // What SQLite joins is text, whatever it was.
    return {"CAST((" + Coerce(a, whole) + " || " + Coerce(b, whole) + ") AS BLOB)",
            SqlType{FieldType::kVarBinary, size, 0, 0, false}, nullable, -1};
  }
  if (!common.is_number()) RaiseOperand(common, op);
  // Text beside a number becomes a number of that type.
  const auto as_number = [&](Typed& value) {
    if (value.type.untyped_null) value.type = common;
    if (!value.type.is_text()) return;
    value = {Coerce(value, common), common, value.nullable, -1};
  };
  as_number(a);
  as_number(b);
  if (bits) {
    if (!a.type.is_integer() || !b.type.is_integer()) RaiseOperand(common, op);
    if (op == BinaryOp::kBitXor) {
      return {"((" + a.sql + " | " + b.sql + ") - (" + a.sql + " & " + b.sql + "))", common, nullable, -1};
    }
    return {"(" + a.sql + (op == BinaryOp::kBitAnd ? " & " : " | ") + b.sql + ")", common, nullable, -1};
  }
  const SqlType type = ArithmeticType(op, a.type, b.type);
  constexpr std::array<std::string_view, 5> kSigns = {" + ", " - ", " * ", " / ", " % "};
  const std::string sign(kSigns[static_cast<std::size_t>(op)]);
  if (type.is_float()) {
    const std::string left = Coerce(a, FloatType());
    const std::string right = Coerce(b, FloatType());
    if (op == BinaryOp::kModulo) RaiseOperand(type, op);
    if (op == BinaryOp::kDivide) return {"ts_fdiv(" + left + ", " + right + ")", type, nullable, -1};
    return {"ts_float(" + left + sign + right + ")", type, nullable, -1};
  }
  if (type.is_integer()) {
    if (op == BinaryOp::kModulo) return {"ts_mod(" + a.sql + ", " + b.sql + ")", type, nullable, -1};
    const std::string value = op == BinaryOp::kDivide ? "ts_div(" + a.sql + ", " + b.sql + ")" : a.sql + sign + b.sql;
    if (type.kind == FieldType::kBigInt) return {"ts_i64(" + value + ")", type, nullable, -1};
    if (type.kind == FieldType::kInt) return {"ts_i32(" + value + ")", type, nullable, -1};
    return {"ts_small(" + value + ", " + std::to_string(PackType(type)) + ")", type, nullable, -1};
  }
  const bool inline_arithmetic =
      type.storage() == Storage::kScaled && (op == BinaryOp::kAdd || op == BinaryOp::kSubtract) &&
      AsDecimal(a.type).storage() == Storage::kScaled && AsDecimal(b.type).storage() == Storage::kScaled;
  if (inline_arithmetic) {
    return {"(" + Coerce(a, type, Fit::kCompare) + sign + Coerce(b, type, Fit::kCompare) + ")", type, nullable, -1};
  }
  return {"ts_arith(" + std::to_string(static_cast<int>(op)) + ", " + a.sql + ", " + std::to_string(PackType(a.type)) +
              ", " + b.sql + ", " + std::to_string(PackType(b.type)) + ", " + std::to_string(PackType(type)) + ")",
          type, nullable, -1};
}

Typed Translator::Binary(const Expression& expression, Scope& scope) {
  Typed a = Value(*expression.operands[0], scope);
  Typed b = Value(*expression.operands[1], scope);
  // Of a whole number that is written beside a decimal only its own digits count.
  const auto count_digits = [&](Typed& value, const Typed& other, const Expression& written) {
    if (!other.type.is_exact() || value.type.kind != FieldType::kInt || value.parameter < 0) return;
    if (written.kind != Expression::Kind::kLiteral) return;
    Pin(written);
    const std::size_t leading = std::min(written.text.find_first_not_of('0'), written.text.size() - 1);
    value.type.precision = static_cast<int>(written.text.size() - leading);
  };
  count_digits(a, b, *expression.operands[0]);
  count_digits(b, a, *expression.operands[1]);
  return BinaryOf(expression.binary, std::move(a), std::move(b));
}

Typed Translator::Unary(const Expression& expression, Scope& scope) {
  Typed value = Value(*expression.operands[0], scope);
  if (expression.unary == UnaryOp::kPlus) return value;
  if (expression.unary == UnaryOp::kBitNot) {
    if (!value.type.is_integer()) RaiseOperand(value.type, BinaryOp::kBitAnd);
    if (value.type.kind == FieldType::kBit) return {"(1 - " + value.sql + ")", value.type, value.nullable, -1};
    return {"(~" + value.sql + ")", value.type, value.nullable, -1};
  }
  if (value.type.untyped_null) return value;
  if (!value.type.is_number()) RaiseOperand(value.type, BinaryOp::kSubtract);
  if (value.type.storage() == Storage::kBigDecimal) {
    // Of its own type: all 38 digits may be taken.
    const std::string type = std::to_string(PackType(value.type));
    return {"ts_arith(" + std::to_string(static_cast<int>(BinaryOp::kSubtract)) + ", 0, " +
                std::to_string(PackType(IntType())) + ", " + value.sql + ", " + type + ", " + type + ")",
            value.type, value.nullable, -1};
  }
  if (value.type.kind == FieldType::kTinyInt) value.type.kind = FieldType::kSmallInt;
  return {"(-" + value.sql + ")", value.type, value.nullable, -1};
}

Typed Translator::Case(const Expression& expression, Scope& scope) {
  const Expression* compared = expression.operands.empty() ? nullptr : expression.operands[0].get();
  const Expression* otherwise = expression.operands.size() < 2 ? nullptr : expression.operands[1].get();
  std::vector<std::string> conditions;
  std::vector<Typed> values;
  for (const CaseBranch& branch : expression.branches) {
    conditions.push_back(compared == nullptr
                             ? Condition(*branch.when, scope)
                             : Compare(CompareOp::kEqual, Value(*compared, scope), Value(*branch.when, scope)));
    values.push_back(Value(*branch.then, scope));
  }
  if (otherwise != nullptr) values.push_back(Value(*otherwise, scope));
  SqlType type = NullType();
  bool nullable = otherwise == nullptr;
  for (const Typed& value : values) {
    type = CommonType(type, value.type);
    nullable = nullable || value.nullable;
  }
  if (type.untyped_null) {
    throw SqlError(8133,
                   "At least one of the result expressions in a CASE specification must be an expression other "
                   "than the NULL constant.");
  }
  std::string sql = "CASE";
  for (std::size_t i = 0; i < conditions.size(); ++i) {
    sql += " WHEN " + conditions[i] + " THEN " + Coerce(values[i], type);
  }
  if (otherwise != nullptr) sql += " ELSE " + Coerce(values.back(), type);
  return {sql + " END", type, nullable, -1};
}

Typed Translator::Cast(const Expression& expression, Scope& scope) {
  const SqlType type = ResolveType(expression.type, true);
  int style = 0;
  if (expression.kind == Expression::Kind::kConvert && expression.operands.size() > 1 && expression.operands[1]) {
    const Expression& given = *expression.operands[1];
    if (given.kind != Expression::Kind::kLiteral || given.literal != LiteralKind::kInteger) {
      RaiseUnsupported("A CONVERT style that is not a whole number", expression.line);
    }
    Pin(given);
    style = std::stoi(given.text.substr(0, 9));
  }
  const Typed value = Value(*expression.operands[0], scope);
  if (value.type.untyped_null) return {"NULL", type, true, -1};
  if (value.parameter >= 0 && !expression.try_cast) {
    // The parameter stays one, converted when it is bound; from here on it is of the new type.
    const std::string sql = Coerce(value, type, Fit::kCast, style);
    return {"(" + sql + ")", type, value.nullable, -1};
  }
  constexpr int kLongestNumber = 20;
  const bool text_of_number =
      value.type.is_integer() && type.is_text() && (type.size == 0 || type.size >= kLongestNumber);
  return {Coerce(value, type, Fit::kCast, style, expression.try_cast), type, value.nullable || expression.try_cast, -1,
          text_of_number ? value.sql : ""};
}

TranslatedQuery Translator::SingleColumn(const Query& query, Scope& scope) {
  static const std::vector<std::string> kNames = {"c"};
  SelectOptions options;
  options.names = &kNames;
  TranslatedQuery translated = QueryText(query, &scope, options);
  if (translated.columns.size() == 1) return translated;
  throw SqlError(116,
                 "Only one expression can be specified in the select list when the subquery is not introduced with "
                 "EXISTS.");
}

Typed Translator::ScalarSubquery(const Expression& expression, Scope& scope) {
  const TranslatedQuery query = SingleColumn(*expression.query, scope);
  const Select* select = expression.query->select.get();
  const bool one_row = select != nullptr && select->group_by.empty() && select->having == nullptr &&
                       std::any_of(select->items.begin(), select->items.end(),
                                   [](const SelectItem& item) { return HasAggregate(*item.expression); });
  const bool top_one = select != nullptr && select->top != nullptr && !select->top_percent && !select->top_with_ties &&
                       select->top->kind == Expression::Kind::kLiteral && select->top->text == "1";
  const SqlType type = query.columns[0].type;
  if (one_row || top_one) return {"(" + query.sql + ")", type, true, -1};
  return {"(SELECT ts_single(\"c\") FROM (" + query.sql + "))", type, true, -1};
}

Typed Translator::Value(const Expression& expression, Scope& scope) {
  if (scope.check_grouping && aggregate_depth_ == 0 && !scope.group_expressions.empty() &&
      expression.kind != Expression::Kind::kLiteral && scope.group_expressions.contains(Dump(expression))) {
    PinAll(expression);
    scope.check_grouping = false;
    Typed value = Value(expression, scope);
    scope.check_grouping = true;
    return value;
  }
  switch (expression.kind) {
    case Expression::Kind::kLiteral:
      return Literal(expression);
    case Expression::Kind::kVariable:
      return VariableValue(expression.text);
    case Expression::Kind::kGlobal: {
      Typed value = MetadataFunction(expression, scope);
      return value.sql.empty() ? ServerFunction(expression, scope) : value;
    }
    case Expression::Kind::kColumn:
      return ColumnValue(expression, scope);
    case Expression::Kind::kUnary:
      return Unary(expression, scope);
    case Expression::Kind::kBinary:
      return Binary(expression, scope);
    case Expression::Kind::kCase:
      return Case(expression, scope);
    case Expression::Kind::kCast:
    case Expression::Kind::kConvert:
      return Cast(expression, scope);
    case Expression::Kind::kFunction:
      return Function(expression, scope);
    case Expression::Kind::kSubquery:
      return ScalarSubquery(expression, scope);
    case Expression::Kind::kCollate: {
      if (!EqualsIgnoreCase(expression.text, "database_default") &&
          FindIgnoreCase(expression.text, "_CI_AS") == std::string_view::npos) {
        RaiseUnsupported("The collation " + expression.text, expression.line);
      }
      return Value(*expression.operands[0], scope);
    }
    case Expression::Kind::kStar:
      throw SqlError(102, "Incorrect syntax near '*'.", 15);
    default: {
      SqlError error(102, "Incorrect syntax: a condition stands where a value is expected.", 15);
      error.set_line(expression.line);
      throw error;
    }
  }
}

bool HasColumn(const Expression& expression) {
  if (expression.kind == Expression::Kind::kColumn || expression.kind == Expression::Kind::kSubquery) return true;
  const auto has = [](const ExpressionPtr& operand) { return operand != nullptr && HasColumn(*operand); };
  return std::any_of(expression.operands.begin(), expression.operands.end(), has) ||
         std::any_of(expression.branches.begin(), expression.branches.end(),
                     [&](const CaseBranch& branch) { return has(branch.when) || has(branch.then); });
}

bool HasAggregate(const Expression& expression) {
  constexpr std::array<std::string_view, 8> kAggregates = {"count", "count_big", "sum",        "avg",
                                                           "min",   "max",       "string_agg", "checksum_agg"};
  if (expression.kind == Expression::Kind::kFunction && expression.window == nullptr &&
      std::find(kAggregates.begin(), kAggregates.end(), expression.text) != kAggregates.end()) {
    return true;
  }
  for (const ExpressionPtr& operand : expression.operands) {
    if (operand != nullptr && HasAggregate(*operand)) return true;
  }
  return std::any_of(expression.branches.begin(), expression.branches.end(),
                     [](const CaseBranch& branch) { return HasAggregate(*branch.when) || HasAggregate(*branch.then); });
}

std::string Dump(const Expression& expression) {
  std::string text =
      std::to_string(static_cast<int>(expression.kind)) + ":" + std::to_string(static_cast<int>(expression.unary)) +
      std::to_string(static_cast<int>(expression.binary)) + std::to_string(static_cast<int>(expression.compare)) +
      (expression.negated ? "!" : "") + (expression.distinct ? "d" : "") + ":";
  const bool literal = expression.kind == Expression::Kind::kLiteral;
  text += (literal ? expression.text : LowerCase(expression.text)) + ":" + expression.type.name + ":";
  if (!expression.parts.empty()) text += LowerCase(expression.parts.back());
  text += "(";
  for (const ExpressionPtr& operand : expression.operands) text += (operand == nullptr ? "-" : Dump(*operand)) + ",";
  for (const CaseBranch& branch : expression.branches) text += Dump(*branch.when) + ">" + Dump(*branch.then) + ",";
  return text + ")";
}

}  // namespace tessarlorn::tsql
