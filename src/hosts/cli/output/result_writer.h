// Writing results for people and for programs: one interface, a writer for each form.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "hosts/cli/console/interrupt.h"
#include "tessarlorn/recordset.h"
#include "tessarlorn/variant.h"

namespace tessarlorn::cli {

enum class OutputFormat : std::uint8_t { kTable, kJson, kCsv };

struct OutputLayout {
  OutputFormat format = OutputFormat::kTable;
  /// Columns of the terminal, for tables: long cells are cut and what does not fit beside is left out. 0 = no limit.
  std::size_t width = 0;
  /// The columns of a recordset to show, all when empty.
  std::vector<std::string> columns;
};

/// Writes one result after the other.
class ResultWriter {
 public:
  ResultWriter() = default;
  ResultWriter(const ResultWriter&) = delete;
  ResultWriter& operator=(const ResultWriter&) = delete;
  virtual ~ResultWriter() = default;

  /// Raises WrongCall for a column of the layout that a recordset does not have; nothing is written then.
  virtual void Write(const Variant& result) = 0;
};

/// Calls `visit` for each row while it is the recordset's current one. Raises `error_number::kCancelled` once Ctrl-C
/// was pressed: the batch may be done when its rows are still being written.
template <typename Visit>
void ForEachRow(Recordset& rows, const Visit& visit) {
  for (rows.MoveFirst(); !rows.eof(); rows.MoveNext()) {
    RaiseIfInterrupted();
    visit();
  }
}

/// A table: heads, a line, the rows with numbers at the right, their count. One value is one line, Nothing "Nothing".
/// Blanks stand in for control characters.
std::unique_ptr<ResultWriter> MakeTableWriter(const OutputLayout& layout, std::ostream& out);

/// One JSON value for each result, a recordset as an array with one object on each line; of columns of the same name
/// the later ones get "_2" and so on behind it.
std::unique_ptr<ResultWriter> MakeJsonWriter(const OutputLayout& layout, std::ostream& out);

/// A line of heads and a line for each row, ended by CR LF; a cell with a comma, quote or line break is quoted, the
/// empty text is "" and null nothing at all. A blank line stands between two results. Nothing writes no line.
std::unique_ptr<ResultWriter> MakeCsvWriter(const OutputLayout& layout, std::ostream& out);

/// The writer that the layout asks for. `out` must outlive it.
std::unique_ptr<ResultWriter> MakeResultWriter(const OutputLayout& layout, std::ostream& out);

}  // namespace tessarlorn::cli
