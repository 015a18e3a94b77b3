#include "tsql/engine/plans/evaluate.h"

#include <utility>

namespace tessarlorn::tsql {

Datum Evaluator::FirstValue(Compiled& compiled, const Activation& activation) {
  binder_.Bind(compiled, activation);
  const SqliteStatement::Use use(compiled.statement);
  return compiled.statement.Step(compiled.verb) ? compiled.statement.Value(0) : Datum{};
}

Datum Evaluator::Value(const Expression& expression, const SqlType& type, const Activation& activation) {
  const Transaction::Snapshot snapshot(transaction_, database_.catalog());
  Compiled& compiled = plans_.OfValue(expression, type, activation);
  if (compiled.parameter_only) return binder_.Value(compiled.parameters[0], activation);
  return FirstValue(compiled, activation);
}

std::optional<std::int64_t> Evaluator::Integer(const Expression& expression, const Activation& activation) {
  const Datum value = Value(expression, IntType(), activation);
  const auto* number = std::get_if<std::int64_t>(&value);
  return number == nullptr ? std::nullopt : std::optional(*number);
}

std::optional<std::string> Evaluator::Text(const Expression& expression, const SqlType& type,
                                           const Activation& activation) {
  Datum value = Value(expression, type, activation);
  auto* text = std::get_if<std::string>(&value);
  return text == nullptr ? std::nullopt : std::optional(std::move(*text));
}

Datum Evaluator::Compound(const Assignment& assignment, const SqlType& type, const Activation& activation) {
  const Transaction::Snapshot snapshot(transaction_, database_.catalog());
  return FirstValue(plans_.OfCompound(assignment, type, activation), activation);
}

bool Evaluator::Holds(const Expression& condition, const Activation& activation) {
  const Transaction::Snapshot snapshot(transaction_, database_.catalog());
  Compiled& compiled = plans_.OfCondition(condition, activation);
  binder_.Bind(compiled, activation);
  const SqliteStatement::Use use(compiled.statement);
  return compiled.statement.Step(compiled.verb) && compiled.statement.Integer(0) != 0;
}

}  // namespace tessarlorn::tsql
