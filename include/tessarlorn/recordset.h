// A result of the database: fields with name and type, and all rows, packed in memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tessarlorn/variant.h"

namespace tessarlorn {

/// The type of a field as the database declares it. A new one comes last: files of the embedded database have the
/// numbers in the definitions of indexes and constraints.
enum class FieldType : std::uint8_t {
  kBit,
  kTinyInt,
  kSmallInt,
  kInt,
  kBigInt,
  kReal,
  kFloat,
  kDecimal,
  kMoney,
  kDate,
  kTime,
  kDateTime,
  kChar,
  kVarChar,
  kNChar,
  kNVarChar,
  kBinary,
  kVarBinary,
  kGuid,
  /// Its values are texts: `2026-11-03 09:08:07.0000000 +08:00`, date and time of a clock, and its offset from UTC.
  kDateTimeOffset,
};

struct Field {
  std::string name;
  FieldType type = FieldType::kNVarChar;
  /// Characters or bytes for text and binary; 0 = without limit (max).
  int size = 0;
  /// Digits and places, for kDecimal and kMoney.
  int precision = 0;
  int scale = 0;
  bool nullable = true;
  /// The database gives its values. Drivers that do not know say false.
  bool identity = false;
};

class PackedRows;
class RowSource;

/// A client-side, read-only result: it knows its count and moves both ways. It stands on the first row when it is made.
/// Bigint values come as 32-bit integers when they fit, else as decimals; every other value in the type of its field.
/// Not for use by two threads at once.
class Recordset {
 public:
  /// Without rows.
  explicit Recordset(std::vector<Field> fields);
  /// The rows are read when one of them, or their count, is asked for, which raises what the source raises.
  Recordset(std::vector<Field> fields, std::shared_ptr<RowSource> source);
  Recordset(const Recordset&) = delete;
  Recordset& operator=(const Recordset&) = delete;
  ~Recordset();

  [[nodiscard]] const std::vector<Field>& fields() const noexcept { return fields_; }
  /// Where the rows come from, or nullptr when they were there from the first.
  [[nodiscard]] const std::shared_ptr<RowSource>& source() const noexcept { return source_; }
  [[nodiscard]] std::size_t RecordCount() const;
  [[nodiscard]] bool eof() const { return position_ >= RecordCount(); }
  void MoveFirst() noexcept { position_ = 0; }
  /// Raises 3021 at the end.
  void MoveNext();
  /// 0-based; RecordCount() is the end.
  void MoveTo(std::size_t position);

  /// Position of a field by name without regard to case, or nothing.
  [[nodiscard]] std::optional<std::size_t> FindField(std::string_view name) const;
  /// The current row's value. Raises 3021 when no row is current, 3265 when there is no such field.
  [[nodiscard]] Variant Get(std::size_t field) const;
  [[nodiscard]] Variant Get(std::string_view field) const;
  /// The text of a text field without a copy, "" for null; valid until the recordset goes. Raises as Get, and 13 for a
  /// field that holds no text.
  [[nodiscard]] std::string_view GetText(std::size_t field) const;
  /// The same, nothing for null and for what is no text.
  [[nodiscard]] std::optional<std::string_view> FindText(std::size_t field) const;
  [[nodiscard]] bool IsNull(std::size_t field) const;

  /// Cuts the tie to the connection that produced the rows; the rows stay. Raises what the source raises.
  void Detach();
  [[nodiscard]] bool attached() const noexcept { return attached_; }
  /// Bytes that the rows take in memory, spare room included.
  [[nodiscard]] std::size_t memory() const noexcept;

 private:
  friend class RecordsetBuilder;
  void Read() const;
  void Locate() const;
  void Rewind() noexcept;
  [[nodiscard]] const std::uint8_t* Cell(std::size_t field) const;

  std::vector<Field> fields_;
  std::unique_ptr<PackedRows> cells_;
  std::shared_ptr<RowSource> source_;
  mutable bool unread_ = false;
  std::size_t position_ = 0;
  bool attached_ = true;
  mutable std::size_t located_row_ = static_cast<std::size_t>(-1);
  mutable std::vector<std::uint32_t> cell_offsets_;
};

using RecordsetPtr = std::shared_ptr<Recordset>;

}  // namespace tessarlorn
