#include "frame/formats.h"

#include <algorithm>

#include "platform/text/text.h"
#include "tessarlorn/error.h"

namespace tessarlorn {

std::string FormatAmount(const Variant& value) {
  if (value.is_empty()) RaiseTypeMismatch();
  const std::optional<Decimal> rounded = value.ToDecimal().Rescale(2);
  if (!rounded) RaiseOverflow();
  return rounded->Trimmed().ToString();
}

std::string FormatDateTime(const Variant& value) {
  if (const auto* text = value.get_if<std::string>()) {
    const std::optional<DateTime> date = Trim(*text).empty() ? std::nullopt : DateTime::Parse(*text);
    return date ? date->ToString() : *text;
  }
  return value.ToText();
}

std::string LeadingNumber(std::string_view text) {
  text = Trim(text);
  const auto skip_digits = [text](std::size_t from) {
    return std::min(text.find_first_not_of("0123456789", from), text.size());
  };
  const std::size_t sign = text.starts_with('-') || text.starts_with('+') ? 1 : 0;
  std::size_t end = skip_digits(sign);
  std::size_t digits = end - sign;
  if (end < text.size() && text[end] == '.') {
    const std::size_t behind = skip_digits(end + 1);
    digits += behind - end - 1;
    end = behind;
  }
  if (digits == 0) return "0";
  if (end < text.size() && (text[end] == 'e' || text[end] == 'E')) {
    std::size_t exponent = end + 1;
    if (exponent < text.size() && (text[exponent] == '-' || text[exponent] == '+')) ++exponent;
    if (skip_digits(exponent) > exponent) end = skip_digits(exponent);
  }
  const std::optional<Decimal> number = Decimal::Parse(text.substr(0, end));
  if (!number) RaiseOverflow();
  return number->Trimmed().ToString();
}

}  // namespace tessarlorn
