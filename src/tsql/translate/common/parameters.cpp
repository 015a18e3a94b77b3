#include "tsql/translate/common/parameters.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string_view>
#include <utility>

#include "platform/text/text.h"
#include "tsql/storage/catalog.h"
#include "tsql/syntax/ast_walk.h"
#include "tsql/translate/common/literals.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

struct TypedDatum {
  SqlType type;
  Datum value;
};

TypedDatum DecimalLiteral(const std::string& text) {
  const std::optional<Decimal> number = Decimal::Parse(text);
  if (!number) {
    throw SqlError(
        1007, "The number '" + text + "' is out of the range for numeric representation (maximum precision 38).", 15);
  }
  const SqlType type = DecimalType(std::max(number->precision(), 1), number->scale());
  return {type, FromDecimal(*number, type)};
}

TypedDatum IntegerLiteral(const std::string& text) {
  if (const auto number = WholeNumber<std::int32_t>(text)) return {IntType(), std::int64_t{*number}};
  return DecimalLiteral(text);
}

TypedDatum ValueOf(const Literal& literal) {
  const bool is_long = IsLongLiteral(literal.kind, literal.text);
  switch (literal.kind) {
    case LiteralKind::kInteger:
      return IntegerLiteral(literal.text);
    case LiteralKind::kDecimal:
      return DecimalLiteral(literal.text);
    case LiteralKind::kFloat:
      return {FloatType(), Convert(literal.text, VarCharType(8000), FloatType())};
    case LiteralKind::kMoney:
      return {MoneyType(), MoneyLiteral(literal.text)};
    case LiteralKind::kBinary:
      return {{FieldType::kVarBinary, is_long ? 0 : 8000, 0, 0, false}, BinaryLiteral(literal.text)};
    case LiteralKind::kString:
      return {VarCharType(is_long ? 0 : 8000), literal.text};
    case LiteralKind::kNString:
      return {NVarCharType(is_long ? 0 : 4000), literal.text};
    default:
      return {NullType(), {}};
  }
}

/// SQLite's words for a constant in a definition.
std::string ConstantText(const BoundParameter& parameter) {
  if (parameter.source != BoundParameter::Source::kConstant)
    RaiseUnsupported("A CHECK constraint or computed column that is not made of columns and constants");
  return ConstantSql(Convert(parameter.constant, parameter.from, parameter.to, parameter.style, parameter.fit));
}

}  // namespace

std::string ConstantSql(const Datum& value) {
  if (const auto* integer = std::get_if<std::int64_t>(&value)) return std::to_string(*integer);
  if (const auto* words = std::get_if<std::string>(&value)) return QuoteText(*words);
  if (const auto* blob = std::get_if<Blob>(&value)) {
    return "X'" + HexText(blob->bytes.data(), blob->bytes.size()) + "'";
  }
  const auto* real = std::get_if<double>(&value);
  if (real == nullptr) return "NULL";
  std::array<char, 32> digits{};
  const auto end =
      std::to_chars(digits.data(), digits.data() + digits.size(), *real, std::chars_format::scientific, 16);
  return {digits.data(), end.ptr};
}

Typed Parameters::Constant(Datum value, const SqlType& type) {
  BoundParameter parameter;
  parameter.source = BoundParameter::Source::kConstant;
  parameter.constant = std::move(value);
  parameter.from = parameter.to = type;
  parameters_.push_back(std::move(parameter));
  return {"?" + std::to_string(parameters_.size()), type, false, static_cast<int>(parameters_.size()) - 1};
}

Typed Parameters::System(const std::string& name, const SqlType& type) {
  Typed value = Constant({}, type);
  parameters_.back().source = BoundParameter::Source::kSystem;
  parameters_.back().name = name;
  value.nullable = true;
  return value;
}

Typed Parameters::Variable(const std::string& name) {
  if (arguments_ != nullptr) {
    const auto argument = arguments_->find(name);
    if (argument == arguments_->end()) RaiseNoVariable(name);
    return argument->second;
  }
  const SqlType type = VariableType(name);
  const auto known = std::find_if(dependencies_.variables.begin(), dependencies_.variables.end(),
                                  [&](const Dependencies::Variable& entry) { return entry.name == name; });
  if (known == dependencies_.variables.end()) dependencies_.variables.push_back({name, type});
  if (assigned_.contains(name)) return {"ts_var(" + QuoteText(name) + ")", type, true, -1};
  Typed value = Constant({}, type);
  parameters_.back().source = BoundParameter::Source::kVariable;
  parameters_.back().name = name;
  value.nullable = true;
  return value;
}

Typed Parameters::OfLiteral(const Literal& literal) {
  if (literal.kind == LiteralKind::kNull) return {"NULL", NullType(), true, -1};
  TypedDatum typed = ValueOf(literal);
  Typed value = Constant(std::move(typed.value), typed.type);
  if (lifts(literal)) {
    parameters_.back().source = BoundParameter::Source::kLiteral;
    parameters_.back().index = literal.index;
    parameters_.back().constant = {};
  }
  return value;
}

std::string Parameters::List(int index, const SqlType& item, const SqlType& to) {
  BoundParameter list;
  list.source = BoundParameter::Source::kList;
  list.index = index;
  list.from = item;
  list.to = to;
  list.fit = Fit::kCompare;
  parameters_.push_back(std::move(list));
  return "?" + std::to_string(parameters_.size());
}

void Parameters::Pin(const Literal& literal) {
  if (lifts(literal)) dependencies_.pinned.push_back({literal.index, literal.text});
}

void Parameters::PinAll(const Expression& expression) {
  if (const auto* literal = As<Literal>(expression)) Pin(*literal);
  ForEachOperand(expression, [this](const Expression& operand) { PinAll(operand); });
}

template <typename Text>
std::string Parameters::Filled(const std::string& sql, const Text& text) const {
  std::string filled;
  filled.reserve(sql.size());
  std::size_t copied = 0;
  std::size_t i = 0;
  while (i < sql.size()) {
    const char c = sql[i++];
    if (c == '\'' || c == '"') {
      i = std::min(sql.find(c, i), sql.size() - 1) + 1;
    } else if (c == '?') {
      filled.append(sql, copied, i - 1 - copied);
      std::size_t number = 0;
      for (; i < sql.size() && sql[i] >= '0' && sql[i] <= '9'; ++i) {
        number = number * 10 + static_cast<std::size_t>(sql[i] - '0');
      }
      filled += text(parameters_.at(number - 1));
      copied = i;
    }
  }
  return filled.append(sql, copied, std::string::npos);
}

Compiled Parameters::Finish(const std::string& sql) {
  Compiled compiled = Part(sql);
  parameters_.clear();
  return compiled;
}

Compiled Parameters::Part(const std::string& sql) const {
  Compiled compiled;
  // SQLite looks for a numbered parameter among all others, so each gets its number from its place instead.
  compiled.sql = Filled(sql, [&](const BoundParameter& parameter) {
    compiled.parameters.push_back(parameter);
    return "?";
  });
  return compiled;
}

std::string Parameters::FinishDefinition(const std::string& sql) {
  std::string filled = Filled(sql, ConstantText);
  parameters_.clear();
  return filled;
}

}  // namespace tessarlorn::tsql
