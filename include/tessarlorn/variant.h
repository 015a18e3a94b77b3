// One value of any of automation's types, with automation's conversions.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "tessarlorn/date_time.h"
#include "tessarlorn/decimal.h"

namespace tessarlorn {

class Dictionary;
class Object;
class Recordset;
class Vector;

/// Database null; converting it to anything but text fails with "Invalid use of Null".
struct Null {
  friend constexpr bool operator==(Null, Null) = default;
};

using Bytes = std::vector<std::uint8_t>;

/// The type in which clients have a value that the component keeps in another one: kByte for an Integer, kSingle for a
/// Double, kCurrency for a Decimal, kLongLong for a Long or a Decimal.
enum class ClientType : std::uint8_t { kSame, kByte, kSingle, kCurrency, kLongLong };

/// Automation's value: empty, null, Boolean, 16- and 32-bit integer, double, exact decimal, date-time, text (UTF-8),
/// binary, or an object. Objects are shared; everything else is a value.
///
/// The `To…` conversions follow automation: empty is 0, "" and False; True is -1; a text that is no number raises 13
/// "Type mismatch"; a number that does not fit raises 6 "Overflow"; fractions round half to even; null raises 94
/// "Invalid use of Null".
class Variant {
 public:
  using Value = std::variant<std::monostate, Null, bool, std::int16_t, std::int32_t, double, Decimal, DateTime,
                             std::string, Bytes, std::shared_ptr<Dictionary>, std::shared_ptr<Vector>,
                             std::shared_ptr<Recordset>, std::shared_ptr<Object>>;

  Variant() = default;
  Variant(Null value) : value_(value) {}
  Variant(bool value) : value_(value) {}
  Variant(std::int16_t value) : value_(value) {}
  Variant(std::int32_t value) : value_(value) {}
  /// 32-bit integer when it fits, else decimal.
  Variant(std::int64_t value);
  Variant(double value) : value_(value) {}
  Variant(Decimal value) : value_(value) {}
  Variant(DateTime value) : value_(value) {}
  Variant(std::string value) : value_(std::move(value)) {}
  Variant(std::string_view value) : value_(std::string(value)) {}
  Variant(const char* value) : value_(std::string(value)) {}
  Variant(Bytes value) : value_(std::move(value)) {}
  /// Copied: the Variant shares its own copy.
  Variant(Dictionary value);
  Variant(Vector value);
  Variant(std::shared_ptr<Dictionary> value) : value_(std::move(value)) {}
  Variant(std::shared_ptr<Vector> value) : value_(std::move(value)) {}
  Variant(std::shared_ptr<Recordset> value) : value_(std::move(value)) {}
  Variant(std::shared_ptr<Object> value) : value_(std::move(value)) {}

  [[nodiscard]] bool is_empty() const noexcept { return std::holds_alternative<std::monostate>(value_); }
  [[nodiscard]] bool is_null() const noexcept { return std::holds_alternative<Null>(value_); }
  /// A Boolean, integer, double, decimal (not a text that holds a number).
  [[nodiscard]] bool is_number() const noexcept;
  [[nodiscard]] bool is_object() const noexcept;
  template <typename T>
  [[nodiscard]] bool holds() const noexcept {
    return std::holds_alternative<T>(value_);
  }
  template <typename T>
  [[nodiscard]] const T* get_if() const noexcept {
    return std::get_if<T>(&value_);
  }
  [[nodiscard]] const Value& value() const noexcept { return value_; }
  /// Counts where the value is handed out to a client, and nowhere else.
  [[nodiscard]] ClientType client_type() const noexcept { return client_type_; }
  [[nodiscard]] Variant WithClientType(ClientType type) && {
    client_type_ = type;
    return std::move(*this);
  }
  /// "Empty", "Null", "Boolean", "Integer", "Long", "Double", "Decimal", "Date", "String", "Byte()", "Dictionary", …
  [[nodiscard]] std::string_view type_name() const noexcept;

  /// Text form: numbers in plain digits with a point, True/False, dates as `YYYY-MM-DD HH:MM:SS`.
  [[nodiscard]] std::string ToText() const;
  [[nodiscard]] bool ToBool() const;
  [[nodiscard]] std::int16_t ToInt16() const;
  [[nodiscard]] std::int32_t ToInt32() const;
  [[nodiscard]] double ToDouble() const;
  [[nodiscard]] Decimal ToDecimal() const;
  [[nodiscard]] DateTime ToDateTime() const;
  /// The object, or nothing when the value is no such object.
  [[nodiscard]] std::shared_ptr<Dictionary> ToDictionary() const noexcept;
  [[nodiscard]] std::shared_ptr<Vector> ToVector() const noexcept;
  [[nodiscard]] std::shared_ptr<Recordset> ToRecordset() const noexcept;

  /// Automation's `=`: numbers by value whatever their type, a text against a number as number, texts to the letter.
  /// Raises 13 "Type mismatch" when a text that is no number meets a number.
  [[nodiscard]] bool Equals(const Variant& other) const;

 private:
  Value value_;
  ClientType client_type_ = ClientType::kSame;
};

/// Automation's numeric test: a number, or a text that reads as one (blanks, sign, point, exponent, thousands commas).
bool IsNumeric(const Variant& value);

}  // namespace tessarlorn
