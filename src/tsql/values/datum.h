// A value as it stands in SQLite, and the conversions between the types of Transact-SQL.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "tessarlorn/decimal.h"
#include "tsql/values/types.h"

namespace tessarlorn::tsql {

struct Blob {
  std::string bytes;
  friend bool operator==(const Blob&, const Blob&) = default;
};

/// NULL, INTEGER, REAL, TEXT or BLOB; what it means depends on its SqlType (see Storage).
using Datum = std::variant<std::monostate, std::int64_t, double, std::string, Blob>;

/// What a conversion does with values that the target cannot hold.
enum class Fit : std::uint8_t {
  kCast,     // CAST: text is cut, numbers out of range raise
  kAssign,   // storing: text that is too long raises 2628
  kCompare,  // for comparing only: numbers out of range become the nearest that can stand
};

/// Converts a value. Raises 245, 8114, 241, 8115, 220, 2628, 8169 in SQL Server's words.
/// @param style CONVERT's third argument for dates, binary and money; 0 when none. A text becomes a date in the order
/// of day, month and year that it stands for, see date_text.h.
Datum Convert(const Datum& value, const SqlType& from, const SqlType& to, int style = 0, Fit fit = Fit::kCast);

/// The decimal of an exact number or integer. @pre the value is not NULL.
Decimal ToDecimal(const Datum& value, const SqlType& type);
/// Stores a decimal as `type` has it, rounded to its places. Raises 8115 when it does not fit.
Datum FromDecimal(const Decimal& value, const SqlType& type);

/// 16 bytes whose order is the order of the numbers: coefficient + 2^127, big-endian.
std::string EncodeBigDecimal(const Decimal& value);
Decimal DecodeBigDecimal(std::string_view bytes, int scale);

/// A date or time as its type can hold it, rounded. Raises 242 when it is out of the type's range; `from` is for the
/// message.
std::int64_t FitDate(std::int64_t milliseconds, const SqlType& from, const SqlType& to);
/// SQL Server's text of a float: style 0 six significant digits.
std::string FormatFloat(double value, int style);

/// Arithmetic on exact numbers of any storage; the result as `result` has it. Raises 8134 and 8115.
Datum ExactArithmetic(BinaryOp op, const Datum& a, const SqlType& a_type, const Datum& b, const SqlType& b_type,
                      const SqlType& result);

/// Length as (n) of a type counts it: UTF-16 units of national text, bytes of a double-byte code page otherwise.
int TextLength(std::string_view text, bool national);
/// The longest beginning that is no longer than `size`.
std::string_view CutText(std::string_view text, int size, bool national);

[[noreturn]] void RaiseArithmeticOverflow(const SqlType& type);

}  // namespace tessarlorn::tsql
