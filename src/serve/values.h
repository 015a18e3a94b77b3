// Columns and values of results as TDS carries them.
#pragma once

#include <vector>

#include "platform/recordset.h"
#include "serve/tds_writer.h"

namespace tessarlorn::serve {

/// Writes the rows of a result. It must not outlive the recordset.
class RowWriter {
 public:
  /// A char or varchar column is declared wide enough for its longest value in UTF-8; the recordset is at its first row
  /// afterwards.
  explicit RowWriter(Recordset& rows);
  RowWriter(const RowWriter&) = delete;
  RowWriter& operator=(const RowWriter&) = delete;

  /// COLMETADATA.
  void WriteColumns(TdsWriter& writer) const;
  /// The current row, with a map of its nulls when it has any. Raises Error for a date that `datetime` does not have
  /// (before 1753).
  void WriteRow(TdsWriter& writer) const;
  /// Type and value of a column of the current row, as an output parameter ends with them.
  void WriteTypeAndValue(TdsWriter& writer, std::size_t column) const;

 private:
  Recordset& rows_;
  std::vector<Field> widened_;
  const std::vector<Field>& fields_;
};

/// Type and value of an int, as an output parameter ends with them.
void WriteTypeAndInteger(TdsWriter& writer, std::int32_t value);

}  // namespace tessarlorn::serve
