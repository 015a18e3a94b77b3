// ORDER BY, TOP and OFFSET.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tsql/translate/common/translation.h"

namespace tessarlorn::tsql {

/// A key of ORDER BY.
struct OrderKey {
  static constexpr std::size_t kNoColumn = static_cast<std::size_t>(-1);

  /// The column of the result that it is, kNoColumn for a value of its own.
  std::size_t column = kNoColumn;
  /// That value; "" for a column.
  std::string sql;
  /// " COLLATE …", or "".
  std::string collation;
  bool descending = false;
};

/// The keys of one SELECT. Raises 108 and 145.
std::vector<OrderKey> OrderKeys(Translation& translation, const Query& query, const Select& select, Scope& scope,
                                const std::vector<ResultColumn>& columns, const std::vector<Typed>& values);
/// ORDER BY of one SELECT. Raises 108 and 145.
std::string TranslateOrder(Translation& translation, const Query& query, const Select& select, Scope& scope,
                           const std::vector<ResultColumn>& columns, const std::vector<Typed>& values);
/// ORDER BY behind a set operator, which knows the columns of the result only. Raises 104 and 108.
std::string TranslateOrderOfSet(Translation& translation, const Query& query, const std::vector<ResultColumn>& columns);

std::string TranslateTop(Translation& translation, const Select& select, Scope& scope);
/// OFFSET … FETCH
std::string TranslateOffset(Translation& translation, const Query& query, Scope& scope);

}  // namespace tessarlorn::tsql
