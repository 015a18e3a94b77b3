// Bulk loads: INSERT BULK names a table and columns, and the next message brings the rows.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/tds/messages/parameter.h"

namespace tessarlorn::tds {

/// What an INSERT BULK asks for.
struct BulkTarget {
  /// Its parts in brackets.
  std::string table;
  /// In brackets.
  std::vector<std::string> columns;
  /// Whether each has a default.
  std::vector<bool> defaults;
  /// A NULL stays one; otherwise it becomes the column's default.
  bool keep_nulls = false;
};

/// The target of an INSERT BULK, nothing for any other batch. Raises Error 102 for a malformed one.
std::optional<BulkTarget> ReadBulkInsert(std::string_view batch);

/// Reads the rows of a bulk load, each as an INSERT.
class BulkRows {
 public:
  /// Reads the columns. `reader` and `target` live as long as this. Raises ProtocolError for what is malformed, Error
  /// 4801 when the columns are others than those of the target, and what ReadParameter raises for types.
  BulkRows(TdsReader& reader, TdsVersion version, const BulkTarget& target);

  /// Reads the next row; false behind the last one.
  bool Next();
  /// Of the row that was read last; refers to this.
  [[nodiscard]] SqlCommand insertion() { return {text_, parameters_}; }

 private:
  /// The value of the column, Null for none.
  Variant ReadColumn(std::size_t column);
  void WriteText();

  TdsReader& reader_;
  const BulkTarget& target_;
  std::vector<WireType> types_;
  std::vector<SqlParameter> parameters_;
  // Whether each column of the row that was read last gets its default; the text is that of such rows.
  std::vector<bool> defaulted_;
  std::string text_;
};

}  // namespace tessarlorn::tds
