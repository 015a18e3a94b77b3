// Values and conditions of statements that the session runs itself.
#pragma once

#include "tsql/engine/plans/bind.h"
#include "tsql/engine/plans/plan_store.h"
#include "tsql/engine/state/transaction.h"

namespace tessarlorn::tsql {

class Evaluator {
 public:
  Evaluator(SessionDatabase& database, const Transaction& transaction, PlanStore& plans, Binder& binder)
      : database_(database), transaction_(transaction), plans_(plans), binder_(binder) {}

  /// The value converted to `type`.
  Datum Value(const Expression& expression, const SqlType& type, const Activation& activation);
  /// The value as a whole number or as text, nothing for NULL.
  std::optional<std::int64_t> Integer(const Expression& expression, const Activation& activation);
  std::optional<std::string> Text(const Expression& expression, const SqlType& type, const Activation& activation);
  /// The variable's new value of `SET @v += x`.
  Datum Compound(const Assignment& assignment, const SqlType& type, const Activation& activation);
  /// Whether the condition is true, and neither false nor unknown.
  bool Holds(const Expression& condition, const Activation& activation);

 private:
  Datum FirstValue(Compiled& compiled, const Activation& activation);

  SessionDatabase& database_;
  const Transaction& transaction_;
  PlanStore& plans_;
  Binder& binder_;
};

}  // namespace tessarlorn::tsql
