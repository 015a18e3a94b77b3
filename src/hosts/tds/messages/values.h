// Columns and values of results as TDS carries them.
#pragma once

#include <vector>

#include "hosts/tds/messages/tds_writer.h"
#include "tessarlorn/recordset.h"

namespace tessarlorn::tds {

/// Writes the columns and rows of one result.
class RowWriter {
 public:
  /// A char or varchar column is declared wide enough for its longest value in UTF-8: of `rows`, which are at their
  /// first row afterwards, or, when they are not all, for the longest that such a column may have.
  /// @param version that of the writers below
  RowWriter(Recordset& rows, bool more_follow, TdsVersion version);
  RowWriter(const RowWriter&) = delete;
  RowWriter& operator=(const RowWriter&) = delete;

  /// COLMETADATA.
  void WriteColumns(TdsWriter& writer) const;
  /// The current row. Raises Error for a value that is longer than its column can be.
  void WriteRow(TdsWriter& writer, const Recordset& rows) const;
  /// Type and value of a column of the current row, as an output parameter ends with them.
  void WriteTypeAndValue(TdsWriter& writer, const Recordset& rows, std::size_t column) const;

 private:
  /// Where they differ from those of the first rows, or outlive them.
  std::vector<Field> own_fields_;
  const std::vector<Field>& fields_;
};

/// Type and value of an int, as an output parameter ends with them.
void WriteTypeAndInteger(TdsWriter& writer, std::int32_t value);

}  // namespace tessarlorn::tds
