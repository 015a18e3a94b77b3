// The order of rows: how two values of a field compare, and rows sorted as ADO's Sort says it.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "tessarlorn/recordset.h"

namespace tessarlorn {

/// -1, 0 or 1 as the database orders values of one field: null first, False before True, numbers, dates and bytes by
/// value, texts without regard to case and trailing blanks.
int CompareValues(const Variant& a, const Variant& b);

/// Sorts row numbers by fields as "FBuyer, [Order date] DESC"; rows that are equal stay as they are, all for "". Moves
/// the rows' position. Raises 3001 for an order that cannot be read, 3265 for a field that the rows do not have.
void SortRows(std::string_view order, Recordset& rows, std::vector<std::size_t>& numbers);

}  // namespace tessarlorn
