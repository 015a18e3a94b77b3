// Writes many rows of one table with few statements.
#pragma once

#include <concepts>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "platform/connection.h"
#include "platform/date_time.h"

namespace tessarlorn::cli {

/// value × 10^-scale; written as a text, so that statements of all amounts have one shape.
struct Fixed {
  std::int64_t value = 0;
  int scale = 2;
};

/// NULL. Statements with NULL in other places have another shape: rows with and without one go into objects of their
/// own.
struct Null {};

/// Collects rows and sends them as INSERT statements of `kRows` rows. What is left in the end needs a Flush().
class InsertRows {
 public:
  /// Few enough to keep the first statement of a shape cheap, whose cost grows with the square of its values.
  static constexpr int kRows = 40;

  /// @param table a literal; @param columns separated by commas
  InsertRows(Connection& connection, std::string_view table, std::string columns)
      : connection_(connection), table_(table), columns_(std::move(columns)) {}

  /// One value for each column.
  template <typename... Values>
  void Add(const Values&... values) {
    BeginRow();
    Append(values...);
    EndRow();
  }

  // The same in pieces.
  void BeginRow();
  template <typename... Values>
  void Append(const Values&... values) {
    (AppendValue(values), ...);
  }
  void EndRow();

  /// Raises what the database raises.
  void Flush();

 private:
  void AppendValue(std::integral auto value) { AppendPlain(std::to_string(value)); }
  void AppendValue(std::string_view value);
  void AppendValue(const std::string& value) { AppendValue(std::string_view(value)); }
  void AppendValue(const char* value) { AppendValue(std::string_view(value)); }
  void AppendValue(const Fixed& value);
  void AppendValue(DateTime value);
  void AppendValue(Null /*value*/) { AppendPlain("NULL"); }
  void AppendPlain(std::string_view text);

  Connection& connection_;
  std::string_view table_;
  std::string columns_;
  std::string text_;
  int rows_ = 0;
  bool first_value_ = true;
};

/// Runs `write` and sends what it wrote when the table is empty. @param table as InsertRows takes it
void FillIfEmpty(Connection& connection, std::string_view table, std::string columns,
                 const std::function<void(InsertRows&)>& write);

}  // namespace tessarlorn::cli
