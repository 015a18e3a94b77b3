// The rows of a recordset as one client sees them: which are shown, in which order, and the current one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tessarlorn/recordset.h"

namespace tessarlorn {

/// Shared by the objects of a recordset, its fields and one field. Leaves the rows themselves at any position.
class RecordsetView {
 public:
  /// @pre not nullptr
  explicit RecordsetView(RecordsetPtr rows);

  [[nodiscard]] bool open() const noexcept { return rows_ != nullptr; }
  /// Raises 3704 when it is closed. So does everything below that reads rows or fields.
  [[nodiscard]] const RecordsetPtr& rows() const;
  [[nodiscard]] const std::vector<Field>& fields() const { return rows()->fields(); }
  void Close() noexcept;

  [[nodiscard]] std::size_t count() const noexcept { return shown_.size(); }
  /// 1 to count(); 0 before the first row, count() + 1 behind the last.
  [[nodiscard]] std::size_t position() const noexcept { return position_; }
  /// Without rows both are true.
  [[nodiscard]] bool bof() const noexcept { return position_ == 0 || shown_.empty(); }
  [[nodiscard]] bool eof() const noexcept { return position_ > shown_.size() || shown_.empty(); }
  [[nodiscard]] bool IsRow(std::size_t position) const noexcept { return position >= 1 && position <= shown_.size(); }
  /// Beyond the last row is behind it.
  void set_position(std::size_t position) noexcept;
  /// Steps by so many rows from a position; one step beyond either end is possible. Raises 3021 for a step from there
  /// onwards, and for any step when there are no rows.
  void Move(std::int64_t steps, std::size_t from);

  /// The value of a field in the current row, or in the row at a position. Raises 3021 when there is none.
  [[nodiscard]] Variant Value(std::size_t field) const { return Value(position_, field); }
  [[nodiscard]] Variant Value(std::size_t position, std::size_t field) const;
  /// The rows, standing at the current one. Raises 3021 when there is none.
  [[nodiscard]] const Recordset& Current() const { return At(position_); }
  /// By name, or by position from 0. Raises 3265 naming it.
  [[nodiscard]] std::size_t FieldIndex(const Variant& name_or_position);

  /// A number for the row at a position; stays the row's own whatever is shown. Raises 3021 when there is no row.
  [[nodiscard]] std::size_t RowNumber(std::size_t position) const;
  /// Where a row of that number is shown, or nothing.
  [[nodiscard]] std::optional<std::size_t> PositionOf(std::size_t row_number) const;

  /// Shows the rows that the condition holds for, all for "", in the order `sort` (see SortRows). Goes to the first
  /// one. Raises 3001 for a text that cannot be read, 3265 for an unknown field; everything is as before then.
  void Show(std::string_view filter, std::string_view sort);
  /// Shows the rows of these numbers instead.
  void ShowRows(std::vector<std::size_t> numbers, std::string_view sort);
  /// The position of the first row from `from` on (backwards from it) that the condition holds for, or nothing.
  [[nodiscard]] std::optional<std::size_t> Find(std::string_view condition, std::int64_t from, bool forwards) const;

 private:
  struct NameHash {
    std::size_t operator()(std::string_view name) const noexcept;
  };
  struct SameName {
    bool operator()(std::string_view a, std::string_view b) const noexcept;
  };

  /// The rows, standing at that one.
  [[nodiscard]] const Recordset& At(std::size_t position) const;

  RecordsetPtr rows_;
  std::vector<std::size_t> shown_;  // row numbers by position - 1
  std::size_t position_ = 1;
  /// Of every field, once one is asked for by name.
  std::unordered_map<std::string_view, std::size_t, NameHash, SameName> names_;
};

/// A field's value as clients have it, as text for people: bytes in hexadecimal digits, of a date or time only what it
/// has, milliseconds where there are some; "" for null.
std::string CellText(const Field& field, const Variant& value);

}  // namespace tessarlorn
