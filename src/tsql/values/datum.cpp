#include "tsql/values/datum.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "platform/text/guid_text.h"
#include "platform/text/text.h"
#include "platform/unicode/utf16.h"
#include "tessarlorn/date_time.h"
#include "tsql/values/date_text.h"
#include "tsql/values/moment.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

constexpr std::int64_t kDayMilliseconds = 86'400'000;

struct IntegerRange {
  std::int64_t least;
  std::int64_t most;
};

IntegerRange RangeOf(FieldType kind) {
  switch (kind) {
    case FieldType::kTinyInt:
      return {0, 255};
    case FieldType::kSmallInt:
      return {-32768, 32767};
    case FieldType::kInt:
      return {std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()};
    default:
      return {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()};
  }
}

std::string_view SourceName(const SqlType& type) {
  return type.kind == FieldType::kDecimal ? "numeric" : TypeNameText(type);
}

[[noreturn]] void RaiseConversion(std::string_view text, const SqlType& from, const SqlType& to) {
  throw SqlError(245, "Conversion failed when converting the " + std::string(SourceName(from)) + " value '" +
                          std::string(text) + "' to data type " + std::string(TypeNameText(to)) + ".");
}

[[noreturn]] void RaiseConverting(const SqlType& from, const SqlType& to) {
  throw SqlError(
      8114, "Error converting data type " + std::string(SourceName(from)) + " to " + std::string(SourceName(to)) + ".");
}

[[noreturn]] void RaiseNotAllowed(const SqlType& from, const SqlType& to) {
  throw SqlError(529, "Explicit conversion from data type " + std::string(TypeNameText(from)) + " to " +
                          std::string(TypeNameText(to)) + " is not allowed.");
}

std::int64_t CheckRange(std::int64_t value, const SqlType& to, Fit fit) {
  if (to.kind == FieldType::kBit) return value != 0 ? 1 : 0;
  const IntegerRange range = RangeOf(to.kind);
  if (value >= range.least && value <= range.most) return value;
  if (fit == Fit::kCompare) return value;
  if (to.kind == FieldType::kInt || to.kind == FieldType::kBigInt) RaiseArithmeticOverflow(to);
  throw SqlError(220, "Arithmetic overflow error for data type " + std::string(TypeNameText(to)) +
                          ", value = " + std::to_string(value) + ".");
}

std::int64_t TextToInteger(std::string_view text, const SqlType& from, const SqlType& to, Fit fit) {
  const std::string_view digits = Trim(text);
  if (to.kind == FieldType::kBit) {
    if (EqualsIgnoreCase(digits, "true")) return 1;
    if (EqualsIgnoreCase(digits, "false")) return 0;
  }
  if (digits.empty()) return 0;
  std::int64_t value = 0;
  const char* first = digits.data() + (digits.front() == '+' && digits.size() > 1 ? 1 : 0);
  const auto [end, error] = std::from_chars(first, digits.data() + digits.size(), value);
  if (end != digits.data() + digits.size()) {
    if (to.kind == FieldType::kBigInt) RaiseConverting(from, to);
    RaiseConversion(text, from, to);
  }
  const IntegerRange range = RangeOf(to.kind);
  if (error != std::errc{} || (to.kind != FieldType::kBit && (value < range.least || value > range.most))) {
    if (fit == Fit::kCompare && error == std::errc{}) return value;
    if (to.kind == FieldType::kBigInt) RaiseArithmeticOverflow(to);
    throw SqlError(to.kind == FieldType::kInt ? 248 : 244, "The conversion of the " + std::string(SourceName(from)) +
                                                               " value '" + std::string(text) + "' overflowed an " +
                                                               std::string(TypeNameText(to)) + " column.");
  }
  return CheckRange(value, to, fit);
}

std::int64_t RealToInteger(double value, const SqlType& to, Fit fit) {
  const double whole = std::trunc(value);
  if (!(whole >= -9.2233720368547758e18 && whole < 9.2233720368547758e18)) RaiseArithmeticOverflow(to);
  return CheckRange(to.kind == FieldType::kBit ? (value != 0.0) : static_cast<std::int64_t>(whole), to, fit);
}

Datum ToInteger(const Datum& value, const SqlType& from, const SqlType& to, Fit fit) {
  if (from.is_integer()) return CheckRange(std::get<std::int64_t>(value), to, fit);
  if (from.is_text()) return TextToInteger(std::get<std::string>(value), from, to, fit);
  if (from.is_float()) return RealToInteger(std::get<double>(value), to, fit);
  if (from.is_date() && !from.is_old_date()) RaiseNotAllowed(from, to);
  if (from.is_date()) {
    const double days = static_cast<double>(std::get<std::int64_t>(value)) / kDayMilliseconds;
    return CheckRange(static_cast<std::int64_t>(std::floor(days + 0.5)), to, fit);
  }
  if (from.is_exact()) {
    const Decimal number = ToDecimal(value, from);
    if (to.kind == FieldType::kBit) return std::int64_t{!number.is_zero()};
    const std::optional<std::int64_t> whole =
        from.kind == FieldType::kMoney ? number.ToScaled(0) : number.Truncate(0).ToScaled(0);
    if (!whole) {
      if (fit == Fit::kCompare)
        return number.negative() ? RangeOf(FieldType::kBigInt).least : RangeOf(FieldType::kBigInt).most;
      RaiseArithmeticOverflow(to);
    }
    if (fit != Fit::kCompare && to.kind != FieldType::kBigInt) {
      const IntegerRange range = RangeOf(to.kind);
      if (*whole < range.least || *whole > range.most) {
        throw SqlError(8115, "Arithmetic overflow error converting " + std::string(SourceName(from)) +
                                 " to data type " + std::string(TypeNameText(to)) + ".");
      }
    }
    return CheckRange(*whole, to, fit);
  }
  if (from.is_binary()) {
    std::uint64_t number = 0;
    const std::string& bytes = std::get<Blob>(value).bytes;
    for (const char byte : bytes) number = (number << 8) | static_cast<std::uint8_t>(byte);
    if (to.kind == FieldType::kInt) return static_cast<std::int64_t>(static_cast<std::int32_t>(number));
    return CheckRange(static_cast<std::int64_t>(number), to, fit);
  }
  RaiseConverting(from, to);
}

/// Text that money reads: thousands commas and a currency sign are passed over.
std::string MoneyDigits(std::string_view text) {
  std::string digits;
  for (const char c : Trim(text)) {
    if (c != ',' && c != '$') digits += c;
  }
  return digits.empty() ? "0" : digits;
}

Datum ToExact(const Datum& value, const SqlType& from, const SqlType& to, Fit fit) {
  Decimal number;
  if (from.is_text()) {
    const std::string& text = std::get<std::string>(value);
    const std::optional<Decimal> parsed =
        Decimal::Parse(to.kind == FieldType::kMoney ? MoneyDigits(text) : std::string(Trim(text)));
    const bool exponent = text.find_first_of("eE") != std::string::npos;
    if (!parsed || exponent) RaiseConverting(from, to);
    number = *parsed;
  } else if (from.is_float()) {
    const double real = std::get<double>(value);
    std::array<char, 400> digits{};
    if (!std::isfinite(real) || std::fabs(real) >= 1e38) RaiseArithmeticOverflow(to);
    const auto [end, error] =
        std::to_chars(digits.data(), digits.data() + digits.size(), real, std::chars_format::scientific, 16);
    number = Decimal::Parse(std::string_view(digits.data(), static_cast<std::size_t>(end - digits.data())))
                 .value_or(Decimal());
    if (const auto shortest = Decimal::FromDouble(real)) number = *shortest;
  } else if (from.is_exact() || from.is_integer()) {
    number = ToDecimal(value, from);
  } else if (from.is_date()) {
    if (!from.is_old_date()) RaiseNotAllowed(from, to);
    number = *Decimal::FromDouble(static_cast<double>(std::get<std::int64_t>(value)) / kDayMilliseconds);
  } else {
    RaiseConverting(from, to);
  }
  if (fit == Fit::kCompare && to.storage() == Storage::kScaled && !number.ToScaled(to.scale)) {
    const IntegerRange range = RangeOf(FieldType::kBigInt);
    return number.negative() ? range.least : range.most;
  }
  if (fit != Fit::kCompare) return FromDecimal(number, to);
  SqlType wide = to;
  if (wide.kind == FieldType::kDecimal) wide.precision = to.storage() == Storage::kScaled ? 18 : Decimal::kMaxDigits;
  if (to.storage() == Storage::kScaled) return *number.ToScaled(to.scale);
  return FromDecimal(number, wide);
}

Datum ToReal(const Datum& value, const SqlType& from, const SqlType& to) {
  if (to.kind == FieldType::kReal) {
    const auto single = static_cast<float>(std::get<double>(ToReal(value, from, FloatType())));
    if (!std::isfinite(single)) RaiseArithmeticOverflow(to);
    return static_cast<double>(single);
  }
  if (from.is_integer()) return static_cast<double>(std::get<std::int64_t>(value));
  if (from.is_float()) return std::get<double>(value);
  if (from.is_exact()) return ToDecimal(value, from).ToDouble();
  if (from.is_date() && !from.is_old_date()) RaiseNotAllowed(from, to);
  if (from.is_date()) return static_cast<double>(std::get<std::int64_t>(value)) / kDayMilliseconds;
  if (from.is_text()) {
    std::string_view text = Trim(std::get<std::string>(value));
    if (text.empty()) return 0.0;
    if (text.front() == '+') text.remove_prefix(1);
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error == std::errc{} && end == text.data() + text.size()) return number;
  }
  RaiseConverting(from, to);
}

[[noreturn]] void RaiseDateRange(const SqlType& from, const SqlType& to) {
  throw SqlError(242, "The conversion of a " + std::string(TypeNameText(from)) + " data type to a " +
                          std::string(TypeNameText(to)) + " data type resulted in an out-of-range value.");
}

std::int64_t DateOfText(std::string_view text, const SqlType& from, const SqlType& to, int style,
                        int* offset = nullptr) {
  std::optional<CivilTime> civil = ReadDateText(text, style, !to.is_old_date(), offset);
  const bool carries = civil && civil->millisecond == 1000;
  if (carries) civil->millisecond = 999;
  const std::optional<DateTime> time = civil ? DateTime::FromCivil(*civil) : std::nullopt;
  if (time) return time->milliseconds() + (carries ? 1 : 0);
  if (civil && to.is_old_date()) RaiseDateRange(from, to);
  throw SqlError(241, "Conversion failed when converting date and/or time from character string.");
}

Datum ToDate(const Datum& value, const SqlType& from, const SqlType& to, int style, Fit fit) {
  std::int64_t milliseconds = 0;
  if (from.is_date()) {
    milliseconds = std::get<std::int64_t>(value);
  } else if (from.is_text()) {
    milliseconds = DateOfText(std::get<std::string>(value), from, to, style);
  } else if (from.is_number() && to.is_old_date()) {
    const double days = std::get<double>(ToReal(value, from, FloatType()));
    if (!(days >= -53690 && days < 2958464)) RaiseArithmeticOverflow(to);
    milliseconds = static_cast<std::int64_t>(std::llround(days * kDayMilliseconds));
  } else {
    RaiseNotAllowed(from, to);
  }
  const bool as_is = fit == Fit::kCompare && from.is_date() && to.kind == FieldType::kDateTime;
  return as_is ? milliseconds : FitDate(milliseconds, from, to);
}

Datum ToMoment(const Datum& value, const SqlType& from, const SqlType& to, int style) {
  Moment moment;
  if (from.is_date()) {
    moment.utc = std::get<std::int64_t>(value);
  } else if (from.is_text()) {
    int offset = 0;
    const std::int64_t local = DateOfText(std::get<std::string>(value), from, to, style, &offset);
    moment = Moment::OfClock(local, offset);
  } else {
    RaiseNotAllowed(from, to);
  }
  return StoredMoment(FitMoment(moment, from, to));
}

std::int64_t RoundTo(std::int64_t value, std::int64_t unit) {
  const std::int64_t rest = ((value % unit) + unit) % unit;
  return value - rest + (2 * rest >= unit ? unit : 0);
}

std::string MoneyText(const Decimal& number, int style) {
  std::string text = number.Rescale(style == 2 ? 4 : 2).value_or(number).ToString();
  if (style == 1) {
    for (std::size_t point = text.find('.'); point > (text[0] == '-' ? 4U : 3U);) {
      point -= 3;
      text.insert(point, ",");
    }
  }
  return text;
}

/// Bytes as text: UTF-16 (little-endian) of national text, UTF-8 otherwise. What is neither becomes U+FFFD.
std::string TextOfBytes(std::string_view bytes, bool national) {
  if (!national) return FromUtf16(ToUtf16(bytes));
  std::u16string units;
  for (std::size_t i = 0; i < bytes.size(); i += 2) {
    const auto low = static_cast<std::uint8_t>(bytes[i]);
    const auto high = i + 1 < bytes.size() ? static_cast<std::uint8_t>(bytes[i + 1]) : std::uint8_t{0};
    units += static_cast<char16_t>(low | (high << 8));
  }
  return FromUtf16(units);
}

std::string BytesOfText(std::string_view text, bool national) {
  if (!national) return std::string(text);
  std::string bytes;
  for (const char16_t unit : ToUtf16(text)) {
    bytes += static_cast<char>(unit & 0xff);
    bytes += static_cast<char>(unit >> 8);
  }
  return bytes;
}

std::string ToText(const Datum& value, const SqlType& from, const SqlType& to, int style) {
  switch (from.storage()) {
    case Storage::kText:
      return std::get<std::string>(value);
    case Storage::kReal:
      return FormatFloat(std::get<double>(value), style);
    case Storage::kBlob:
      if (const std::string& bytes = std::get<Blob>(value).bytes; style == 1 || style == 2) {
        return (style == 1 ? "0x" : "") + HexText(bytes.data(), bytes.size());
      } else {
        return TextOfBytes(bytes, to.is_national());
      }
    case Storage::kInteger:
      if (from.is_date()) return FormatDate(std::get<std::int64_t>(value), from, style);
      return std::to_string(std::get<std::int64_t>(value));
    default:
      if (from.kind == FieldType::kMoney) return MoneyText(ToDecimal(value, from), style);
      return ToDecimal(value, from).ToString();
  }
}

Datum FitText(std::string text, const SqlType& from, const SqlType& to, Fit fit) {
  if (to.size == 0 || fit == Fit::kCompare) return text;
  const bool national = to.is_national();
  const int length = TextLength(text, national);
  if (length > to.size) {
    if (from.is_text() || from.is_binary() || from.kind == FieldType::kGuid || from.is_date() || from.has_offset()) {
      std::string_view kept = CutText(text, to.size, national);
      const bool only_blanks = text.find_first_not_of(' ', kept.size()) == std::string::npos;
      if (fit == Fit::kAssign && !only_blanks) throw SqlError(8152, "String or binary data would be truncated.");
      return std::string(kept);
    }
    if (from.is_integer() && fit == Fit::kCast) return std::string("*");
    throw SqlError(8115, "Arithmetic overflow error converting " + std::string(SourceName(from)) + " to data type " +
                             std::string(TypeNameText(to)) + ".");
  }
  if (to.kind == FieldType::kChar || to.kind == FieldType::kNChar) {
    text.append(static_cast<std::size_t>(to.size - length), ' ');
  }
  return text;
}

Datum ToBinary(const Datum& value, const SqlType& from, const SqlType& to, int style, Fit fit) {
  Blob blob;
  if (from.is_binary()) {
    blob = std::get<Blob>(value);
  } else if (from.is_text() && style != 0) {
    std::string_view hex = std::get<std::string>(value);
    if (style == 1 && hex.starts_with("0x")) hex.remove_prefix(2);
    std::optional<std::string> bytes = BytesOfHex(hex);
    if (!bytes) RaiseConverting(from, to);
    blob.bytes = std::move(*bytes);
  } else if (from.is_text()) {
    blob.bytes = BytesOfText(std::get<std::string>(value), from.is_national());
  } else if (from.is_integer()) {
    const std::size_t width = from.kind == FieldType::kBigInt     ? 8
                              : from.kind == FieldType::kSmallInt ? 2
                              : from.kind == FieldType::kInt      ? 4
                                                                  : 1;
    for (std::size_t i = width; i-- > 0;) {
      blob.bytes += static_cast<char>(static_cast<std::uint64_t>(std::get<std::int64_t>(value)) >> (8 * i));
    }
  } else {
    RaiseConverting(from, to);
  }
  const auto size = static_cast<std::size_t>(to.size);
  if (to.size != 0 && blob.bytes.size() > size) {
    if (fit == Fit::kAssign) throw SqlError(8152, "String or binary data would be truncated.");
    blob.bytes = from.is_integer() ? blob.bytes.substr(blob.bytes.size() - size) : blob.bytes.substr(0, size);
  }
  if (to.kind == FieldType::kBinary && blob.bytes.size() < size) {
    blob.bytes.insert(from.is_integer() ? 0 : blob.bytes.size(), size - blob.bytes.size(), '\0');
  }
  return blob;
}

Datum ToGuid(const Datum& value, const SqlType& from) {
  if (from.kind == FieldType::kGuid) return value;
  if (!from.is_text()) RaiseConverting(from, SqlType{FieldType::kGuid, 0, 0, 0, false});
  const std::optional<std::string> bytes = BytesOfGuid(Trim(std::get<std::string>(value)));
  if (!bytes) throw SqlError(8169, "Conversion failed when converting from a character string to uniqueidentifier.");
  return GuidText(*bytes);
}

}  // namespace

std::int64_t FitDate(std::int64_t milliseconds, const SqlType& from, const SqlType& to) {
  const std::int64_t time = ((milliseconds % kDayMilliseconds) + kDayMilliseconds) % kDayMilliseconds;
  if (to.kind == FieldType::kDate) return milliseconds - time;
  constexpr std::array<std::int64_t, 3> kUnits = {1000, 100, 10};
  const std::int64_t unit = to.scale < 3 ? kUnits[static_cast<std::size_t>(to.scale)] : 1;
  if (to.kind == FieldType::kTime) return RoundTo(time, unit) % kDayMilliseconds;
  constexpr std::int64_t kBehindLast = 2'958'464 * kDayMilliseconds;  // the year 10000
  std::int64_t first = -693'595 * kDayMilliseconds;                   // the year 1
  std::int64_t behind = kBehindLast;
  if (to.form() == DateForm::kDateTime) {
    first = -53'690 * kDayMilliseconds;  // the year 1753
    const std::int64_t ticks = (time * 3 + 5) / 10;
    milliseconds += (ticks * 10 + 1) / 3 - time;
  } else if (to.form() == DateForm::kSmallDateTime) {
    constexpr std::int64_t kMinute = 60'000;
    first = 0;
    behind = 65'536 * kDayMilliseconds;  // 2079-06-07
    // 29.999 s and more are a minute.
    milliseconds = RoundTo(milliseconds + 1, kMinute);
  } else {
    milliseconds = RoundTo(milliseconds, unit);
  }
  if (milliseconds < first || milliseconds >= behind) RaiseDateRange(from, to);
  return milliseconds;
}

void RaiseArithmeticOverflow(const SqlType& type) {
  throw SqlError(8115,
                 "Arithmetic overflow error converting expression to data type " + std::string(SourceName(type)) + ".");
}

int TextLength(std::string_view text, bool national) {
  int length = 0;
  for (std::size_t i = 0; i < text.size();) {
    const auto byte = static_cast<std::uint8_t>(text[i]);
    if (byte < 0x80) {
      ++length;
      ++i;
    } else {
      const char32_t character = NextCharacter(text, i);
      length += national ? (character > 0xffff ? 2 : 1) : 2;
    }
  }
  return length;
}

std::string_view CutText(std::string_view text, int size, bool national) {
  std::size_t end = 0;
  int length = 0;
  while (end < text.size()) {
    std::size_t next = end;
    const char32_t character = NextCharacter(text, next);
    length += character < 0x80 ? 1 : national ? (character > 0xffff ? 2 : 1) : 2;
    if (length > size) break;
    end = next;
  }
  return text.substr(0, end);
}

namespace {

Datum ConvertMoment(const Moment& moment, const SqlType& from, const SqlType& to, int style, Fit fit) {
  if (to.has_offset()) return StoredMoment(FitMoment(moment, from, to));
  if (to.is_text()) return FitText(FormatMoment(moment, from, style), from, to, fit);
  // Dates without an offset are compared as those of UTC.
  if (to.is_date()) return FitDate(fit == Fit::kCompare ? moment.utc : moment.local(), from, to);
  RaiseNotAllowed(from, to);
}

}  // namespace

Datum Convert(const Datum& value, const SqlType& from, const SqlType& to, int style, Fit fit) {
  if (std::holds_alternative<std::monostate>(value)) return {};
  if (from.has_offset()) return ConvertMoment(ReadStoredMoment(std::get<std::string>(value)), from, to, style, fit);
  if (to.has_offset()) return ToMoment(value, from, to, style);
  if (to.is_integer()) return ToInteger(value, from, to, fit);
  if (to.is_exact()) return ToExact(value, from, to, fit);
  if (to.is_float()) return ToReal(value, from, to);
  if (to.is_date()) return ToDate(value, from, to, style, fit);
  if (to.is_text()) return FitText(ToText(value, from, to, style), from, to, fit);
  if (to.is_binary()) return ToBinary(value, from, to, style, fit);
  return ToGuid(value, from);
}

}  // namespace tessarlorn::tsql
