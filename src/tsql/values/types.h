// The types of Transact-SQL: how they are written, how they are stored in SQLite, and which type an operation yields.
#pragma once

#include <cstdint>
#include <string>

#include "tessarlorn/recordset.h"
#include "tsql/values/text_order.h"
#include "tsql/values/type_name.h"

namespace tessarlorn::tsql {

/// How a value of a type stands in SQLite.
enum class Storage : std::uint8_t {
  kInteger,     // whole numbers, bits; dates and times as milliseconds since 1900-01-01
  kScaled,      // decimals of up to 18 digits and money: value × 10^scale as integer
  kBigDecimal,  // longer decimals: a blob of 16 bytes whose byte order is that of the numbers (see datum.h)
  kReal,
  kText,  // also moments with an offset, see moment.h
  kBlob,
};

/// Which of the types of FieldType::kDateTime it is.
enum class DateForm : std::uint8_t {
  kDateTime,       // 1753 to 9999, in steps of 1/300 s
  kSmallDateTime,  // 1900-01-01 to 2079-06-06, in minutes
  kDateTime2,      // years 1 to 9999, `scale` decimal places of a second; milliseconds are kept
};

struct SqlType {
  FieldType kind = FieldType::kInt;
  /// Characters (UTF-16 units; bytes of a double-byte code page for char and varchar), or bytes; 0 is (max).
  int size = 0;
  /// Of exact numbers; of date-times the form.
  int precision = 0;
  /// Of exact numbers, datetime2, datetimeoffset and time: decimal places.
  int scale = 0;
  /// The type of NULL itself, which takes any other's place.
  bool untyped_null = false;
  /// Of text: how COLLATE wants it sorted; kCodePoints for as the database does.
  TextOrder order = TextOrder::kCodePoints;

  [[nodiscard]] Storage storage() const noexcept;
  [[nodiscard]] bool is_text() const noexcept;
  /// Bit, integers.
  [[nodiscard]] bool is_integer() const noexcept;
  /// Decimal or money.
  [[nodiscard]] bool is_exact() const noexcept { return kind == FieldType::kDecimal || kind == FieldType::kMoney; }
  [[nodiscard]] bool is_float() const noexcept { return kind == FieldType::kFloat || kind == FieldType::kReal; }
  [[nodiscard]] bool is_number() const noexcept { return is_integer() || is_exact() || is_float(); }
  /// Date, time, datetime and its kin; not datetimeoffset.
  [[nodiscard]] bool is_date() const noexcept;
  /// datetimeoffset.
  [[nodiscard]] bool has_offset() const noexcept { return kind == FieldType::kDateTimeOffset; }
  [[nodiscard]] DateForm form() const noexcept { return static_cast<DateForm>(precision); }
  [[nodiscard]] bool is_small_money() const noexcept { return kind == FieldType::kMoney && precision == 10; }
  /// datetime or smalldatetime, the types that numbers can be added to.
  [[nodiscard]] bool is_old_date() const noexcept {
    return kind == FieldType::kDateTime && form() != DateForm::kDateTime2;
  }
  [[nodiscard]] bool is_binary() const noexcept { return kind == FieldType::kBinary || kind == FieldType::kVarBinary; }
  /// Text of the national types: Unicode.
  [[nodiscard]] bool is_national() const noexcept { return kind == FieldType::kNChar || kind == FieldType::kNVarChar; }

  friend bool operator==(const SqlType&, const SqlType&) = default;
};

SqlType IntType();
SqlType BigIntType();
SqlType FloatType();
SqlType MoneyType();
SqlType DateTimeType();
SqlType DateTime2Type(int scale);
SqlType DateTimeOffsetType(int scale);
/// What a datetimeoffset takes on the server.
constexpr int BytesOfMoment(int scale) { return scale <= 2 ? 8 : scale <= 4 ? 9 : 10; }
SqlType BitType();
SqlType NullType();
SqlType DecimalType(int precision, int scale);
SqlType VarCharType(int size);
SqlType NVarCharType(int size);

/// The type that a name means. `in_cast`: text without a length has 30 characters, elsewhere 1. Raises 2715 for an
/// unknown type ("Column, parameter, or variable #…: Cannot find data type …."), 1002 and 2716-like errors for
/// arguments out of range, 40000 for types that are not supported.
SqlType ResolveType(const TypeName& name, bool in_cast);

/// As it is written: "nvarchar(50)", "decimal(18, 4)".
std::string TypeText(const SqlType& type);
/// Only the name: "nvarchar".
std::string_view TypeNameText(const SqlType& type);
/// The type that `TypeText` wrote.
SqlType ParseTypeText(std::string_view text);

/// The declared type of a SQLite column that holds values of the type, chosen so that SQLite converts nothing.
std::string_view SqliteColumnType(const SqlType& type);

/// What has to stand behind a value of the type where SQLite compares, groups or orders it: " COLLATE …", or "".
std::string CollationOf(const SqlType& type);

/// A type in one number, as the row functions get it.
std::int64_t PackType(const SqlType& type);
SqlType UnpackType(std::int64_t packed);

/// The type to which both sides of a comparison, or all branches of a CASE, are converted.
SqlType CommonType(const SqlType& a, const SqlType& b);

/// The result of an arithmetic operation on two numbers; exact types follow SQL Server's rules of precision and scale.
SqlType ArithmeticType(BinaryOp op, const SqlType& a, const SqlType& b);

/// Exact types as decimal(p,s): integers by their digits, money as decimal(19,4).
SqlType AsDecimal(const SqlType& type);

Field ToField(const std::string& name, const SqlType& type, bool nullable);

}  // namespace tessarlorn::tsql
