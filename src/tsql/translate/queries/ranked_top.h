// TOP … WITH TIES and TOP … PERCENT, which SQLite's LIMIT cannot say: the rows are numbered first.
#pragma once

#include <string>
#include <vector>

#include "tsql/translate/queries/order.h"

namespace tessarlorn::tsql {

/// A SELECT that is cut by its TOP.
struct CutSelect {
  const Select& select;
  std::vector<Typed> values;
  std::vector<ResultColumn> columns;
  std::vector<OrderKey> keys;
  /// From FROM to HAVING.
  std::string rest;
};

inline bool NeedsRanks(const Select& select) {
  return select.top != nullptr && (select.top_percent || select.top_with_ties);
}

/// The query with its columns under their names. Raises 1031 and 1062.
std::string TranslateRankedTop(Translation& translation, const CutSelect& cut, Scope& scope);

}  // namespace tessarlorn::tsql
