// Results as rows of cells: what the writers of tables, CSV and JSON have in common.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tessarlorn/recordset.h"

namespace tessarlorn {

/// Rows, and the fields that are shown of them.
struct ResultRows {
  RecordsetPtr rows;
  std::vector<std::size_t> fields;
  /// The head of each shown field, its name or, when it has none, "ColumnN"; two may be the same.
  std::vector<std::string> heads;
};

/// @param columns the fields to show, in this order and without regard to case; all when empty
/// Raises WrongCall naming the column that there is not.
ResultRows SelectColumns(const RecordsetPtr& rows, const std::vector<std::string>& columns);

/// A Dictionary as rows of key and value, a Vector as one row for each item: with a column for each key when the items
/// are Dictionaries. Values inside values are JSON. Any other value is one row of one cell.
RecordsetPtr RowsOf(const Variant& value);

enum class CellStyle : std::uint8_t {
  /// For people: True, NULL, `2024-05-06 07:08:09`.
  kDisplay,
  /// For programs: true, "" for null, `2024-05-06T07:08:09`, doubles to their last digit.
  kData,
};

/// Binary is `0x…`, an object is JSON.
std::string CellText(const Variant& value, FieldType type, CellStyle style);

}  // namespace tessarlorn
