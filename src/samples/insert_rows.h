// Writes many rows of one table with few statements.
#pragma once

#include <concepts>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tessarlorn/connection.h"
#include "tessarlorn/date_time.h"

namespace tessarlorn::cli {

/// value × 10^-scale
struct Fixed {
  std::int64_t value = 0;
  int scale = 2;
};

/// Collects rows and sends several with one INSERT, whose parameters are their values. What is left in the end needs a
/// Flush(). A statement is translated once: a column has values of one type, or NULL, in all rows of an object.
class InsertRows {
 public:
  /// @param table a literal; @param columns separated by commas
  InsertRows(Connection& connection, std::string_view table, std::string columns);

  /// One value for each column.
  template <typename... Values>
  void Add(const Values&... values) {
    Append(values...);
    EndRow();
  }

  // The same in pieces: Append… for each column, then EndRow().
  template <typename... Values>
  void Append(const Values&... values) {
    (AppendValue(values), ...);
  }
  void EndRow();

  /// Raises what the database raises.
  void Flush();

 private:
  void AppendValue(std::integral auto value) { Take("bigint", static_cast<std::int64_t>(value)); }
  void AppendValue(std::string_view value) { Take("nvarchar(4000)", value); }
  void AppendValue(const std::string& value) { AppendValue(std::string_view(value)); }
  void AppendValue(const char* value) { AppendValue(std::string_view(value)); }
  void AppendValue(const Fixed& value);
  void AppendValue(DateTime value) { Take("datetime", value); }
  void AppendValue(const std::optional<DateTime>& value) {
    Take("datetime", value ? Variant(*value) : Variant(Null{}));
  }
  void AppendValue(Null value) { Take("int", value); }
  void Take(const char* type, Variant value);

  Connection& connection_;
  std::string_view table_;
  std::string columns_;
  std::size_t width_;
  std::vector<SqlParameter> values_;
};

/// Runs `write` and sends what it wrote when the table is empty. @param table as InsertRows takes it
void FillIfEmpty(Connection& connection, std::string_view table, std::string columns,
                 const std::function<void(InsertRows&)>& write);

}  // namespace tessarlorn::cli
