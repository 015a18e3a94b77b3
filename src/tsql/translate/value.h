// Values: literals, names, operators, CASE, CAST, scalar subqueries. Functions are in call.h.
#pragma once

#include <cstdint>
#include <string>

#include "tsql/translate/common/translation.h"

namespace tessarlorn::tsql {

/// Refuses the collations that heed case, by their names.
void RequireCollation(const std::string& name, std::uint32_t line);
/// An expression that is a value. Raises 102 for a condition or a star.
Typed TranslateValue(Translation& translation, const Expression& expression, Scope& scope);

}  // namespace tessarlorn::tsql
