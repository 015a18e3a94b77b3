// Values as arguments of functions.
#pragma once

#include <cstddef>
#include <string>

#include "tsql/translate/common/translation.h"

namespace tessarlorn::tsql {

std::string TextArgument(Translation& translation, const Expression& expression, Scope& scope);
/// How many rows TOP, OFFSET or FETCH name. A negative number is an error when the statement runs.
enum class RowLimit { kTop, kOffset, kFetch };
std::string RowLimitArgument(Translation& translation, const Expression& expression, Scope& scope, RowLimit limit);
std::string IntArgument(Translation& translation, const Expression& expression, Scope& scope);
std::string FloatArgument(Translation& translation, const Expression& expression, Scope& scope);
std::string DateArgument(Translation& translation, const Expression& expression, Scope& scope);

/// A subquery of one column, which is named c. Raises 116.
TranslatedQuery SingleColumn(Translation& translation, const Query& query, const Scope& scope);

}  // namespace tessarlorn::tsql
