// Conditions: comparisons, IN, BETWEEN, LIKE, EXISTS, quantifiers, AND, OR, NOT.
#pragma once

#include "tsql/translate/common/translation.h"

namespace tessarlorn::tsql {

/// An expression that is a condition. Raises 4145 for a value.
std::string TranslateCondition(Translation& translation, const Expression& expression, Scope& scope);

}  // namespace tessarlorn::tsql
