// A condition that lets SQLite begin at a list of keys.
#pragma once

#include <string>

#include "tsql/translate/common/translation.h"

namespace tessarlorn::tsql {

/// For `EXISTS (SELECT … FROM #keys WHERE key = outer.column …)`: the condition that the column is among the keys, ""
/// for anything else. It follows from the EXISTS, and lets SQLite start from the keys instead of trying every row.
std::string KeyListCondition(Translation& translation, const Expression& condition, Scope& scope);

}  // namespace tessarlorn::tsql
