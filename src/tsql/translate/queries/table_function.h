// Functions of FROM, which give rows.
#pragma once

#include <string>
#include <vector>

#include "tsql/translate/common/translation.h"

namespace tessarlorn::tsql {

struct TranslatedTable {
  /// An expression for the rows as `ts_rows` takes them.
  std::string packed;
  std::vector<ResultColumn> columns;
};

/// Its arguments may hold what stands beside it in the scope. Raises 174 for another number of them, 8158 and 8159.
TranslatedTable TranslateTableFunction(Translation& translation, const TableFunction& function, Scope& scope);

}  // namespace tessarlorn::tsql
