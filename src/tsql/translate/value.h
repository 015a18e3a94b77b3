// Values: literals, names, operators, CASE, CAST, scalar subqueries. Functions are in call.h.
#pragma once

#include "tsql/translate/common/translation.h"

namespace tessarlorn::tsql {

/// An expression that is a value. Raises 102 for a condition or a star.
Typed TranslateValue(Translation& translation, const Expression& expression, Scope& scope);

}  // namespace tessarlorn::tsql
