// ORDER BY, TOP and OFFSET.
#pragma once

#include <string>
#include <vector>

#include "tsql/translate/common/translation.h"

namespace tessarlorn::tsql {

/// ORDER BY of one SELECT. Raises 108 and 145.
std::string TranslateOrder(Translation& translation, const Query& query, const Select& select, Scope& scope,
                           const std::vector<ResultColumn>& columns, const std::vector<Typed>& values);
/// ORDER BY behind a set operator, which knows the columns of the result only. Raises 104 and 108.
std::string TranslateOrderOfSet(Translation& translation, const Query& query, const std::vector<ResultColumn>& columns);

std::string TranslateTop(Translation& translation, const Select& select, Scope& scope);
/// OFFSET … FETCH
std::string TranslateOffset(Translation& translation, const Query& query, Scope& scope);

}  // namespace tessarlorn::tsql
