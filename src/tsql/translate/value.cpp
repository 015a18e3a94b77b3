#include "tsql/translate/value.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "platform/text/text.h"
#include "tsql/syntax/ast_walk.h"
#include "tsql/translate/calls/call_topics.h"
#include "tsql/translate/common/argument.h"
#include "tsql/translate/common/conversion.h"
#include "tsql/translate/common/meaning.h"
#include "tsql/translate/common/operators.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

/// One function a node that is a value.
class Values {
 public:
  Values(Translation& translation, Scope& scope, std::uint32_t line)
      : translation_(translation), parameters_(translation.parameters), scope_(scope), line_(line) {}

  Typed operator()(const Literal& literal) const { return parameters_.OfLiteral(literal); }
  Typed operator()(const VariableReference& variable) const { return parameters_.Variable(variable.name); }
  Typed operator()(const GlobalReference& global) const { return GlobalValue(parameters_, global.name, line_); }
  Typed operator()(const ColumnReference& column) const {
    return FindColumn(column, scope_, translation_.aggregate_depth > 0);
  }
  Typed operator()(const UnaryOperation& operation) const;
  Typed operator()(const BinaryOperation& operation) const;
  Typed operator()(const CaseExpression& choice) const;
  Typed operator()(const CastExpression& cast) const {
    return Cast(*cast.value, ResolveType(cast.type, true), 0, cast.attempt);
  }
  Typed operator()(const ConvertExpression& convert) const;
  Typed operator()(const FunctionCall& call) const {
    if (call.qualifier.empty() && (call.name == "grouping" || call.name == "grouping_id")) return Grouping(call);
    const NumbersAt numbers(translation_, MayLeaveOut(call) ? Optional() : translation_.numbers);
    return TranslateCall(Call(translation_, call, line_, scope_));
  }
  Typed operator()(const IdentityCall& /*call*/) const { RaiseUnknownFunction("identity", line_); }
  Typed operator()(const NextValue& next) const { return NextValueOf(translation_, next); }
  Typed operator()(const ScalarSubquery& subquery) const;
  Typed operator()(const CollateExpression& collate) const;
  Typed operator()(const Star& /*star*/) const { throw SqlError(102, "Incorrect syntax near '*'.", 15); }
  // Whatever else there is, is a condition, or has no place among values.
  template <typename Other>
  Typed operator()(const Other& /*node*/) const {
    SqlError error(102, "Incorrect syntax: a condition stands where a value is expected.", 15);
    error.set_line(line_);
    throw error;
  }

 private:
  /// Whether the call computes some of its arguments only.
  static bool MayLeaveOut(const FunctionCall& call) {
    constexpr auto kNames = std::to_array<std::string_view>({"choose", "coalesce", "iif", "isnull", "nullif"});
    return call.qualifier.empty() && std::find(kNames.begin(), kNames.end(), call.name) != kNames.end();
  }
  [[nodiscard]] NumberPlace Optional() const {
    return translation_.numbers == NumberPlace::kHere ? NumberPlace::kOptional : translation_.numbers;
  }
  [[nodiscard]] Typed Value(const Expression& expression) const { return translation_.Value(expression, scope_); }
  [[nodiscard]] Typed Cast(const Expression& written, const SqlType& type, int style, bool attempt) const;
  /// A bit for each argument: whether the grouping set has it not.
  [[nodiscard]] Typed Grouping(const FunctionCall& call) const;
  static bool IsLongChain(const BinaryOperation& last);
  [[nodiscard]] Typed LongChain(const BinaryOperation& last) const;
  /// Of a whole number that is written beside a decimal only its own digits count.
  void CountDigits(Typed& value, const Typed& other, const Expression& written) const;

  Translation& translation_;
  Parameters& parameters_;
  Scope& scope_;
  std::uint32_t line_;
};

Typed Values::operator()(const UnaryOperation& operation) const {
  Typed value = Value(*operation.operand);
  switch (operation.op) {
    case UnaryOp::kPlus:
      return value;
    case UnaryOp::kBitNot:
      return BitComplement(value);
    default:
      return Negative(std::move(value));
  }
}

Typed Values::Grouping(const FunctionCall& call) const {
  std::int64_t bits = 0;
  for (const ExpressionPtr& argument : call.arguments) {
    parameters_.PinAll(*argument);
    const bool grouped = scope_.check_grouping && scope_.group_expressions.contains(MeaningOf(*argument));
    const auto* column = As<ColumnReference>(*argument);
    if (!grouped && (column == nullptr || !scope_.group_columns.contains(FindColumn(*column, scope_, true).sql))) {
      throw SqlError(8161, "Argument 1 of the " + UpperCase(call.name) +
                               " function does not match any of the expressions in the GROUP BY clause.");
    }
    const Typed value = Value(*argument);
    bits = bits * 2 + (value.sql == "NULL" ? 1 : 0);
  }
  return {std::to_string(bits), call.name == "grouping" ? SqlType{FieldType::kTinyInt, 0, 0, 0, false} : IntType(),
          false, -1};
}

Typed Values::LongChain(const BinaryOperation& last) const {
  std::vector<const BinaryOperation*> steps;
  for (const BinaryOperation* step = &last; step != nullptr; step = As<BinaryOperation>(*step->left)) {
    steps.push_back(step);
  }
  ArithmeticChain chain(parameters_, Value(*steps.back()->left));
  std::reverse(steps.begin(), steps.end());
  for (const BinaryOperation* step : steps) {
    Typed value = Value(*step->right);
    CountDigits(value, chain.value(), *step->right);
    chain.Add(step->op, std::move(value));
  }
  return chain.value();
}

bool Values::IsLongChain(const BinaryOperation& last) {
  constexpr int kLong = 12;
  int steps = 0;
  const BinaryOperation* step = &last;
  while (step != nullptr && ++steps < kLong) step = As<BinaryOperation>(*step->left);
  return step != nullptr;
}

Typed Values::operator()(const BinaryOperation& operation) const {
  if (IsLongChain(operation)) return LongChain(operation);
  Typed a = Value(*operation.left);
  Typed b = Value(*operation.right);
  CountDigits(a, b, *operation.left);
  CountDigits(b, a, *operation.right);
  return Arithmetic(parameters_, operation.op, std::move(a), std::move(b));
}

void Values::CountDigits(Typed& value, const Typed& other, const Expression& written) const {
  if (!other.type.is_exact() || value.type.kind != FieldType::kInt || value.parameter < 0) return;
  const auto* literal = As<Literal>(written);
  if (literal == nullptr) return;
  parameters_.Pin(*literal);
  const std::string& digits = literal->text;
  const std::size_t leading = std::min(digits.find_first_not_of('0'), digits.size() - 1);
  value.type.precision = static_cast<int>(digits.size() - leading);
}

Typed Values::operator()(const CaseExpression& choice) const {
  const NumbersAt numbers(translation_, Optional());
  std::vector<std::string> conditions;
  std::vector<Typed> values;
  for (const CaseBranch& branch : choice.branches) {
    conditions.push_back(choice.compared == nullptr
                             ? translation_.Condition(*branch.when, scope_)
                             : Compared(parameters_, CompareOp::kEqual, Value(*choice.compared), Value(*branch.when)));
    values.push_back(Value(*branch.then));
  }
  if (choice.otherwise != nullptr) values.push_back(Value(*choice.otherwise));
  SqlType type = NullType();
  bool nullable = choice.otherwise == nullptr;
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
    sql += " WHEN " + conditions[i] + " THEN " + Coerce(parameters_, values[i], type);
  }
  if (choice.otherwise != nullptr) sql += " ELSE " + Coerce(parameters_, values.back(), type);
  return {sql + " END", type, nullable, -1};
}

Typed Values::operator()(const ConvertExpression& convert) const {
  const SqlType type = ResolveType(convert.type, true);
  int style = 0;
  if (convert.style != nullptr) {
    const auto* given = As<Literal>(*convert.style);
    if (given == nullptr || given->kind != LiteralKind::kInteger) {
      RaiseUnsupported("A CONVERT style that is not a whole number", line_);
    }
    parameters_.Pin(*given);
    style = std::stoi(given->text.substr(0, 9));
  }
  return Cast(*convert.value, type, style, convert.attempt);
}

Typed Values::Cast(const Expression& written, const SqlType& type, int style, bool attempt) const {
  const Typed value = Value(written);
  if (value.type.untyped_null) return {"NULL", type, true, -1};
  if (value.parameter >= 0 && !attempt) {
    // The parameter stays one, converted when it is bound; from here on it is of the new type.
    return {"(" + Coerce(parameters_, value, type, Fit::kCast, style) + ")", type, value.nullable, -1};
  }
  constexpr int kLongestNumber = 20;
  const bool text_of_number =
      value.type.is_integer() && type.is_text() && (type.size == 0 || type.size >= kLongestNumber);
  return {Coerce(parameters_, value, type, Fit::kCast, style, attempt), type, value.nullable || attempt, -1,
          text_of_number ? value.sql : ""};
}

Typed Values::operator()(const ScalarSubquery& subquery) const {
  const TranslatedQuery query = SingleColumn(translation_, *subquery.query, scope_);
  const Select* select = subquery.query->select();
  const bool one_row = select != nullptr && select->group_by.empty() && select->having == nullptr &&
                       std::any_of(select->items.begin(), select->items.end(),
                                   [](const SelectItem& item) { return HasAggregate(*item.expression); });
  const Literal* top = select == nullptr || select->top == nullptr ? nullptr : As<Literal>(*select->top);
  const bool top_one = top != nullptr && !select->top_percent && !select->top_with_ties && top->text == "1";
  const SqlType type = query.columns[0].type;
  if (one_row || top_one) return {"(" + query.sql + ")", type, true, -1};
  return {"(SELECT ts_single(\"c\") FROM (" + query.sql + "))", type, true, -1};
}

Typed Values::operator()(const CollateExpression& collate) const {
  RequireCollation(collate.collation, line_);
  Typed value = Value(*collate.value);
  const std::optional<TextOrder> order = FindTextOrder(collate.collation);
  if (!order || !value.type.is_text()) return value;
  if (!CanSort(*order)) RaiseUnsupported("The collation " + collate.collation, line_);
  value.type.order = *order;
  return value;
}

}  // namespace

void RequireCollation(const std::string& name, std::uint32_t line) {
  if (name.empty() || EqualsIgnoreCase(name, "database_default") ||
      FindIgnoreCase(name, "_CI_AS") != std::string_view::npos)
    return;
  RaiseUnsupported("The collation " + name, line);
}

Typed TranslateValue(Translation& translation, const Expression& expression, Scope& scope) {
  const bool grouped = scope.check_grouping && translation.aggregate_depth == 0 && !scope.group_expressions.empty() &&
                       As<Literal>(expression) == nullptr && scope.group_expressions.contains(MeaningOf(expression));
  if (!grouped) return std::visit(Values(translation, scope, expression.line), expression.node);
  translation.parameters.PinAll(expression);
  const bool absent = scope.absent.contains(MeaningOf(expression));
  scope.check_grouping = false;
  Typed value = TranslateValue(translation, expression, scope);
  scope.check_grouping = true;
  if (absent) value = {"NULL", value.type, true, -1};
  return value;
}

}  // namespace tessarlorn::tsql
