// How drivers, and whoever else has rows, make a recordset.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/packed_rows.h"
#include "tessarlorn/recordset.h"

namespace tessarlorn {

/// Fills a recordset: a row is BeginRow() and then one Append… for each field in order.
class RecordsetBuilder {
 public:
  /// Makes a new one.
  explicit RecordsetBuilder(std::vector<Field> fields)
      : RecordsetBuilder(std::make_shared<Recordset>(std::move(fields))) {}
  /// Adds to one that outlives this.
  explicit RecordsetBuilder(Recordset& rows);

  [[nodiscard]] const std::vector<Field>& fields() const noexcept { return result_->fields(); }
  void BeginRow() { cells_.BeginRow(); }
  void AppendNull() { cells_.AppendNull(); }
  void AppendInteger(std::int64_t value) { cells_.AppendInteger(value); }
  void AppendDouble(double value) { cells_.AppendDouble(value); }
  void AppendDecimal(const Decimal& value) { cells_.AppendDecimal(value); }
  /// coefficient × 10^-scale of the field.
  void AppendScaled(std::int64_t coefficient) { cells_.AppendScaled(coefficient); }
  void AppendDateTime(DateTime value) { cells_.AppendDateTime(value); }
  void AppendText(std::string_view text) { cells_.AppendText(text); }
  void AppendBytes(const void* data, std::size_t size) { cells_.AppendBytes(data, size); }
  /// Any value, as the kind of value that the field of that position has. Range, length and scale are the caller's
  /// business. Raises 13 and 6 for what is no such value.
  void Append(const Variant& value, std::size_t field);

  /// Bytes that the values of all rows take.
  [[nodiscard]] std::size_t bytes() const noexcept { return cells_.bytes(); }
  /// What there is so far.
  [[nodiscard]] Recordset& rows() noexcept { return *result_; }
  /// Takes all rows away and keeps room for as many more.
  void Clear();
  /// To be called after the last row: goes to the first row, gives back spare memory, answers the recordset.
  RecordsetPtr Finish();

 private:
  explicit RecordsetBuilder(RecordsetPtr rows);

  RecordsetPtr result_;
  PackedRows& cells_;
};

/// Where a driver leaves the rows of a result until somebody asks for them.
class RowSource {
 public:
  RowSource() = default;
  RowSource(const RowSource&) = delete;
  RowSource& operator=(const RowSource&) = delete;
  virtual ~RowSource() = default;

  /// Appends every row, in a call that nothing is appended before or behind. Raises what the database raises.
  virtual void Read(RecordsetBuilder& rows) = 0;
  /// Cuts the tie to the connection; the rows stay. Raises what the database raises.
  virtual void Detach() = 0;
};

}  // namespace tessarlorn
