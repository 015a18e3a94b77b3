// PIVOT and UNPIVOT as queries.
#pragma once

#include "tsql/translate/common/translation.h"

namespace tessarlorn::tsql {

/// One row for each group of the other columns, and a column for each value that is named.
TranslatedQuery TranslatePivot(Translation& translation, const PivotTable& pivot, const Scope* parent);
/// One row for each column that is named and not NULL.
TranslatedQuery TranslateUnpivot(Translation& translation, const UnpivotTable& unpivot, const Scope* parent);

}  // namespace tessarlorn::tsql
