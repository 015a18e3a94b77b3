// Rows in one value: the aggregate `ts_pack(a, b, …)` makes it of a query's rows, and the table-valued function
// `ts_rows(packed[, 1])` gives them back as columns c0, c1, …; with 1, a row of NULLs where there are none.
#pragma once

#include <cstddef>
#include <string>

#include "tsql/functions/functions.h"

namespace tessarlorn::tsql {

inline constexpr std::size_t kMostPackedColumns = 256;

/// Rows on their way into one value.
class PackedRows {
 public:
  /// Begins a row of so many values, which are added next.
  void AddRow(std::size_t columns);
  void Add(const Datum& value);
  [[nodiscard]] const std::string& bytes() const noexcept { return bytes_; }

 private:
  void AddNumber(std::uint64_t number, int size);

  std::string bytes_;
};

void RegisterRowTable(sqlite3* database, Runtime& runtime);

}  // namespace tessarlorn::tsql
