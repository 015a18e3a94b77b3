// Ways through the syntax tree, for whoever looks at many kinds of nodes alike.
#pragma once

#include <functional>

#include "tsql/syntax/statement.h"

namespace tessarlorn::tsql {

/// Whether it is true or false, and no value.
bool IsCondition(const Expression& expression);

/// Hands over the expressions that stand right within another one; those in its queries and its window do not.
void ForEachOperand(const Expression& expression, const std::function<void(const Expression&)>& visit);

/// Whether `holds` is true of the expression or of any below it, queries and windows left out.
bool AnyOperand(const Expression& expression, const std::function<bool(const Expression&)>& holds);

/// Hands over the statements that stand right within another one: branches, bodies, the EXEC of an INSERT.
void ForEachChild(const Statement& statement, const std::function<void(const Statement&)>& visit);

/// The OUTPUT of a change, without items where there is none; nullptr for any other statement.
const Output* OutputClauseOf(const Statement& statement);

}  // namespace tessarlorn::tsql
