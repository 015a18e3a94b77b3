// What expressions are made of, as GROUP BY and ORDER BY ask for it.
#pragma once

#include <string>
#include <string_view>

#include "tsql/syntax/ast.h"

namespace tessarlorn::tsql {

/// Whether a function of that name, in lower case, is an aggregate.
bool IsAggregate(std::string_view name);
/// Whether the expression holds a column or a subquery.
bool HasColumn(const Expression& expression);
/// Whether the expression holds an aggregate of its own query level.
bool HasAggregate(const Expression& expression);
/// A text that is the same for expressions that mean the same, without regard to case.
std::string MeaningOf(const Expression& expression);

}  // namespace tessarlorn::tsql
