#include "tessarlorn/variant.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <type_traits>

#include "platform/text/text.h"
#include "tessarlorn/collections.h"
#include "tessarlorn/error.h"
#include "tessarlorn/object.h"
#include "tessarlorn/recordset.h"

namespace tessarlorn {
namespace {

[[noreturn]] void RaiseInvalidUseOfNull() { Raise(error_number::kInvalidUseOfNull, "Invalid use of Null"); }

template <typename T>
constexpr bool kIsObject =
    std::is_same_v<T, std::shared_ptr<Dictionary>> || std::is_same_v<T, std::shared_ptr<Vector>> ||
    std::is_same_v<T, std::shared_ptr<Recordset>> || std::is_same_v<T, std::shared_ptr<Object>>;

/// Automation shows a double with its first 15 significant digits.
std::string DoubleText(double value) {
  constexpr int kDigitsBehindFirst = 14;
  std::array<char, 32> buffer;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::scientific,
                                 kDigitsBehindFirst)
                       .ptr;
  const std::string_view scientific(buffer.data(), static_cast<std::size_t>(end - buffer.data()));
  const std::size_t mark = scientific.find('e');
  if (mark == std::string_view::npos) return std::string(scientific);
  const bool negative = scientific.front() == '-';
  std::string digits = ReplaceAll(scientific.substr(negative ? 1 : 0, mark - (negative ? 1 : 0)), ".", "");
  digits.erase(digits.find_last_not_of('0') + 1);
  if (digits.empty()) return "0";
  int exponent = 0;
  const std::size_t sign = scientific[mark + 1] == '+' ? 2 : 1;
  std::from_chars(scientific.data() + mark + sign, end, exponent);
  const int point = exponent + 1;
  const int count = static_cast<int>(digits.size());
  if (point <= 0) {
    digits.insert(0, "0." + std::string(static_cast<std::size_t>(-point), '0'));
  } else if (point < count) {
    digits.insert(static_cast<std::size_t>(point), 1, '.');
  } else {
    digits.append(static_cast<std::size_t>(point - count), '0');
  }
  return negative ? "-" + digits : digits;
}

/// A number text as the parsers read it: without blanks, plus sign and thousands commas. Nothing when it is no number.
std::optional<std::string> PlainNumber(std::string_view text) {
  text = Trim(text);
  std::string plain;
  plain.reserve(text.size());
  std::size_t i = 0;
  if (i < text.size() && (text[i] == '-' || text[i] == '+')) {
    if (text[i] == '-') plain += '-';
    ++i;
  }
  bool digit = false;
  bool fraction = false;
  for (; i < text.size(); ++i) {
    const char c = text[i];
    if (c >= '0' && c <= '9') {
      digit = true;
      plain += c;
    } else if (c == '.' && !fraction) {
      fraction = true;
      plain += c;
    } else if (c != ',' || fraction || !digit) {
      break;
    }
  }
  if (!digit) return std::nullopt;
  if (i == text.size()) return plain;
  if (text[i] != 'e' && text[i] != 'E') return std::nullopt;
  plain += 'e';
  ++i;
  if (i < text.size() && (text[i] == '-' || text[i] == '+')) {
    if (text[i] == '-') plain += '-';
    ++i;
  }
  if (i == text.size() || text.find_first_not_of("0123456789", i) != std::string_view::npos) return std::nullopt;
  return plain.append(text.substr(i));
}

double TextToDouble(std::string_view text) {
  const std::optional<std::string> plain = PlainNumber(text);
  if (!plain) RaiseTypeMismatch();
  double value = 0;
  const auto [end, fault] = std::from_chars(plain->data(), plain->data() + plain->size(), value);
  if (fault == std::errc::result_out_of_range) {
    const std::size_t exponent = plain->find("e-");
    if (exponent == std::string::npos) RaiseOverflow();
    return 0;
  }
  return value;
}

Decimal TextToDecimal(std::string_view text) {
  const std::optional<std::string> plain = PlainNumber(text);
  if (!plain) RaiseTypeMismatch();
  const std::optional<Decimal> value = Decimal::Parse(*plain);
  if (!value) RaiseOverflow();
  return *value;
}

/// The whole number nearest to `value`, halves to the even one.
std::optional<std::int64_t> RoundHalfEven(const Decimal& value) {
  const Decimal whole = value.Truncate(0);
  const std::optional<std::int64_t> integer = whole.ToScaled(0);
  if (!integer) return std::nullopt;
  const Decimal rest = value.negative() ? *Decimal::Subtract(whole, value) : *Decimal::Subtract(value, whole);
  const std::strong_ordering order = rest <=> Decimal::FromScaled(5, 1);
  if (order < 0 || (order == 0 && *integer % 2 == 0)) return integer;
  return *integer + (value.negative() ? -1 : 1);
}

template <typename Integer>
Integer ToInteger(const Variant& variant) {
  std::optional<std::int64_t> whole;
  if (const auto* value = variant.get_if<std::int32_t>()) {
    whole = *value;
  } else if (const auto* decimal = variant.get_if<Decimal>()) {
    whole = RoundHalfEven(*decimal);
  } else {
    const double rounded = std::nearbyint(variant.ToDouble());
    if (std::abs(rounded) < 1e18) whole = static_cast<std::int64_t>(rounded);
  }
  if (!whole || *whole < std::numeric_limits<Integer>::min() || *whole > std::numeric_limits<Integer>::max()) {
    RaiseOverflow();
  }
  return static_cast<Integer>(*whole);
}

bool IsNumberLike(const Variant& variant) {
  return variant.is_number() || variant.is_empty() || variant.holds<DateTime>();
}

bool IsExact(const Variant& variant) { return !variant.holds<double>() && !variant.holds<DateTime>(); }

}  // namespace

Variant::Variant(std::int64_t value) {
  if (value >= std::numeric_limits<std::int32_t>::min() && value <= std::numeric_limits<std::int32_t>::max()) {
    value_ = static_cast<std::int32_t>(value);
  } else {
    value_ = Decimal(value);
  }
}

Variant::Variant(Dictionary value) : value_(std::make_shared<Dictionary>(std::move(value))) {}

Variant::Variant(Vector value) : value_(std::make_shared<Vector>(std::move(value))) {}

bool Variant::is_number() const noexcept {
  return holds<bool>() || holds<std::int16_t>() || holds<std::int32_t>() || holds<double>() || holds<Decimal>();
}

bool Variant::is_object() const noexcept {
  return std::visit([](const auto& value) { return kIsObject<std::decay_t<decltype(value)>>; }, value_);
}

std::string_view Variant::type_name() const noexcept {
  constexpr std::array<std::string_view, std::variant_size_v<Value>> kNames = {
      "Empty", "Null",   "Boolean", "Integer",    "Long",   "Double",    "Decimal",
      "Date",  "String", "Byte()",  "Dictionary", "Vector", "Recordset", "Object"};
  const bool nothing = std::visit(
      [](const auto& value) {
        if constexpr (kIsObject<std::decay_t<decltype(value)>>) {
          return value == nullptr;
        } else {
          return false;
        }
      },
      value_);
  return nothing ? "Nothing" : kNames[value_.index()];
}

std::string Variant::ToText() const {
  return std::visit(
      [](const auto& value) -> std::string {
        using T = std::decay_t<decltype(value)>;
        if constexpr (std::is_same_v<T, std::monostate> || std::is_same_v<T, Null>) {
          return {};
        } else if constexpr (std::is_same_v<T, bool>) {
          return value ? "True" : "False";
        } else if constexpr (std::is_same_v<T, std::int16_t> || std::is_same_v<T, std::int32_t>) {
          return std::to_string(value);
        } else if constexpr (std::is_same_v<T, double>) {
          return DoubleText(value);
        } else if constexpr (std::is_same_v<T, Decimal> || std::is_same_v<T, DateTime>) {
          return value.ToString();
        } else if constexpr (std::is_same_v<T, std::string>) {
          return value;
        } else {
          RaiseTypeMismatch();
        }
      },
      value_);
}

bool Variant::ToBool() const {
  if (const auto* value = get_if<bool>()) return *value;
  if (const auto* value = get_if<Decimal>()) return !value->is_zero();
  if (const auto* text = get_if<std::string>()) {
    if (EqualsIgnoreCase(Trim(*text), "True")) return true;
    if (EqualsIgnoreCase(Trim(*text), "False")) return false;
  }
  return ToDouble() != 0;
}

std::int16_t Variant::ToInt16() const { return ToInteger<std::int16_t>(*this); }

std::int32_t Variant::ToInt32() const { return ToInteger<std::int32_t>(*this); }

double Variant::ToDouble() const {
  return std::visit(
      [](const auto& value) -> double {
        using T = std::decay_t<decltype(value)>;
        if constexpr (std::is_same_v<T, std::monostate>) {
          return 0;
        } else if constexpr (std::is_same_v<T, Null>) {
          RaiseInvalidUseOfNull();
        } else if constexpr (std::is_same_v<T, bool>) {
          return value ? -1 : 0;
        } else if constexpr (std::is_arithmetic_v<T>) {
          return value;
        } else if constexpr (std::is_same_v<T, Decimal>) {
          return value.ToDouble();
        } else if constexpr (std::is_same_v<T, DateTime>) {
          return value.ToAutomation();
        } else if constexpr (std::is_same_v<T, std::string>) {
          return TextToDouble(value);
        } else {
          RaiseTypeMismatch();
        }
      },
      value_);
}

Decimal Variant::ToDecimal() const {
  if (const auto* value = get_if<Decimal>()) return *value;
  if (const auto* text = get_if<std::string>()) return TextToDecimal(*text);
  if (holds<double>() || holds<DateTime>()) {
    const std::optional<Decimal> value = Decimal::FromDouble(ToDouble());
    if (!value) RaiseOverflow();
    return *value;
  }
  return Decimal(std::int64_t{ToInt32()});
}

DateTime Variant::ToDateTime() const {
  if (const auto* value = get_if<DateTime>()) return *value;
  if (const auto* text = get_if<std::string>()) {
    const std::optional<DateTime> value = Trim(*text).empty() ? std::nullopt : DateTime::Parse(*text);
    if (value) return *value;
  }
  const std::optional<DateTime> value = DateTime::FromAutomation(ToDouble());
  if (!value) RaiseOverflow();
  return *value;
}

std::shared_ptr<Dictionary> Variant::ToDictionary() const noexcept {
  const auto* value = get_if<std::shared_ptr<Dictionary>>();
  return value ? *value : nullptr;
}

std::shared_ptr<Vector> Variant::ToVector() const noexcept {
  const auto* value = get_if<std::shared_ptr<Vector>>();
  return value ? *value : nullptr;
}

std::shared_ptr<Recordset> Variant::ToRecordset() const noexcept {
  const auto* value = get_if<std::shared_ptr<Recordset>>();
  return value ? *value : nullptr;
}

bool Variant::Equals(const Variant& other) const {
  if (is_null() || other.is_null()) return false;
  const auto* text = get_if<std::string>();
  const auto* other_text = other.get_if<std::string>();
  if (text && other_text) return *text == *other_text;
  if (text || other_text) {
    const Variant& rest = text ? other : *this;
    const Variant& read = text ? *this : other;
    if (rest.is_empty()) return (text ? text : other_text)->empty();
    if (rest.holds<bool>()) return rest.ToBool() == read.ToBool();
    if (rest.holds<DateTime>()) return rest.ToDateTime() == read.ToDateTime();
    if (!rest.is_number()) RaiseTypeMismatch();
    return rest.holds<double>() ? rest.ToDouble() == read.ToDouble() : rest.ToDecimal() == read.ToDecimal();
  }
  if (IsNumberLike(*this) && IsNumberLike(other) && !(holds<DateTime>() && other.holds<DateTime>())) {
    if (IsExact(*this) && IsExact(other)) return ToDecimal() == other.ToDecimal();
    return ToDouble() == other.ToDouble();
  }
  if (value_.index() != other.value_.index()) RaiseTypeMismatch();
  return value_ == other.value_;
}

bool IsNumeric(const Variant& value) {
  if (const auto* text = value.get_if<std::string>()) return PlainNumber(*text).has_value();
  return value.is_number() || value.is_empty();
}

}  // namespace tessarlorn
