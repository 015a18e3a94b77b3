#include "tsql/functions/format/format_number.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>

#include "platform/text/text.h"
#include "tsql/functions/format/drawn_number.h"

namespace tessarlorn::tsql {
namespace {

constexpr int kDefaultPlaces = 2;

/// Whole and fraction with the culture's signs.
std::string Plain(const DigitText& value, const Culture& culture, bool grouped) {
  std::string text = value.Whole(1);
  if (grouped) text = Grouped(text, culture.group_separator);
  const std::string fraction = value.Fraction();
  return fraction.empty() ? text : text + std::string(culture.decimal_point) + fraction;
}

/// Puts number and currency into a pattern as "($n)".
std::string Patterned(std::string_view pattern, const std::string& number, const Culture& culture) {
  std::string text;
  for (const char c : pattern) {
    if (c == 'n') {
      text += number;
    } else if (c == '$') {
      text += culture.currency;
    } else {
      text += c;
    }
  }
  return text;
}

std::string Signed(bool negative, const std::string& text) { return negative ? "-" + text : text; }

std::string Exponential(const DigitText& value, int places, int exponent_digits, char letter, const Culture& culture) {
  DigitText mantissa = value;
  const std::size_t first = std::min(mantissa.digits.find_first_not_of('0'), mantissa.digits.size());
  mantissa.digits.erase(0, first);
  int exponent = mantissa.digits.empty() ? 0 : mantissa.point - static_cast<int>(first) - 1;
  mantissa.point = 1;
  mantissa = mantissa.Rounded(places);
  if (mantissa.Whole(1).size() > 1) {
    ++exponent;
    --mantissa.point;
    mantissa = mantissa.Rounded(places);
  }
  std::array<char, 16> tail{};
  std::snprintf(tail.data(), tail.size(), "%c%c%0*d", letter, exponent < 0 ? '-' : '+', exponent_digits,
                std::abs(exponent));
  return Plain(mantissa, culture, false) + tail.data();
}

/// G: as it is, or with an exponent where a float is long. @param precision significant digits, 0 for all
std::string General(const DigitText& value, int precision, char letter, const Culture& culture) {
  DigitText shown = value;
  const int most = precision > 0 ? precision : value.of_float ? 15 : 0;
  if (precision > 0 || value.of_float) {
    shown = shown.Rounded(std::max(0, most - shown.point));
    while (!shown.Fraction().empty() && shown.digits.back() == '0') shown.digits.pop_back();
  }
  constexpr int kLeastPoint = -3;
  if (most > 0 && !value.is_zero() && (value.point > most || value.point < kLeastPoint)) {
    const auto significant = static_cast<int>(value.digits.find_last_not_of('0')) + 1;
    return Exponential(value, std::min(significant, most) - 1, 2, letter, culture);
  }
  return Plain(shown, culture, false);
}

/// X: two's complement of 32 or 64 bits.
std::string Hexadecimal(const DigitText& value, int least, bool upper) {
  const auto number =
      static_cast<long long>(std::strtoull(value.Whole(1).c_str(), nullptr, 10)) * (value.negative ? -1 : 1);
  const bool narrow = value.negative && number >= -2147483648LL;
  std::array<char, 128> text{};
  if (narrow) {
    std::snprintf(text.data(), text.size(), "%0*x", least, static_cast<unsigned>(number));
  } else {
    std::snprintf(text.data(), text.size(), "%0*llx", least, static_cast<unsigned long long>(number));
  }
  return upper ? UpperCase(text.data()) : text.data();
}

std::optional<std::string> Standard(const DigitText& value, bool is_integer, char letter, int precision,
                                    const Culture& culture) {
  const int places = precision < 0 ? kDefaultPlaces : precision;
  const DigitText rounded = value.Rounded(places);
  const bool negative = value.negative && !rounded.is_zero();
  switch (letter | 0x20) {
    case 'c':
      return Patterned(negative ? culture.negative_currency : culture.positive_currency, Plain(rounded, culture, true),
                       culture);
    case 'd':
      if (!is_integer) return std::nullopt;
      return Signed(value.negative, value.Whole(std::max(precision, 1)));
    case 'e':
      return Signed(value.negative, Exponential(value, precision < 0 ? 6 : precision, 3, letter, culture));
    case 'f':
      return Signed(negative, Plain(rounded, culture, false));
    case 'g':
      return Signed(value.negative && !value.is_zero(),
                    General(value, std::max(precision, 0), letter == 'g' ? 'e' : 'E', culture));
    case 'n':
      return Signed(negative, Plain(rounded, culture, true));
    case 'p': {
      DigitText hundredfold = value;
      hundredfold.point += 2;
      hundredfold = hundredfold.Rounded(places);
      return Signed(value.negative && !hundredfold.is_zero(),
                    Patterned(culture.percent, Plain(hundredfold, culture, true), culture));
    }
    case 'r':
      if (!value.of_float) return std::nullopt;
      return Signed(value.negative, General(value, 0, 'E', culture));
    case 'x':
      if (!is_integer) return std::nullopt;
      return Hexadecimal(value, std::max(precision, 1), letter == 'X');
    default:
      return std::nullopt;
  }
}

}  // namespace

DigitText::DigitText(const Decimal& value) : negative(value.negative()) {
  digits = value.ToString();
  std::erase(digits, '-');
  const std::size_t dot = std::min(digits.find('.'), digits.size());
  point = static_cast<int>(dot);
  std::erase(digits, '.');
  const std::size_t zeros = std::min(digits.find_first_not_of('0'), dot);
  digits.erase(0, zeros);
  point -= static_cast<int>(zeros);
}

DigitText::DigitText(double value) : negative(value < 0), of_float(true) {
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "%.14e", negative ? -value : value);
  const std::string_view written(text.data());
  const std::size_t e = written.find('e');
  digits = written.substr(0, e);
  std::erase(digits, '.');
  point = std::atoi(written.data() + e + 1) + 1;
  digits.resize(std::max<std::size_t>(digits.find_last_not_of('0') + 1, 1));
  if (is_zero()) point = 1;
}

DigitText DigitText::Rounded(int places) const {
  DigitText rounded = *this;
  if (rounded.point < 0) {
    rounded.digits.insert(0, static_cast<std::size_t>(-rounded.point), '0');
    rounded.point = 0;
  }
  const std::size_t kept = static_cast<std::size_t>(rounded.point) + static_cast<std::size_t>(places);
  const bool up = rounded.digits.size() > kept && rounded.digits[kept] >= '5';
  rounded.digits.resize(kept, '0');
  if (!up) return rounded;
  std::size_t i = kept;
  while (i > 0 && rounded.digits[i - 1] == '9') rounded.digits[--i] = '0';
  if (i > 0) {
    ++rounded.digits[i - 1];
  } else {
    rounded.digits.insert(rounded.digits.begin(), '1');
    ++rounded.point;
  }
  return rounded;
}

std::string DigitText::Whole(int least) const {
  std::string text;
  if (point > 0) {
    text = digits.substr(0, static_cast<std::size_t>(point));
    text.resize(static_cast<std::size_t>(point), '0');
    text.erase(0, std::min(text.find_first_not_of('0'), text.size()));
  }
  const auto wanted = static_cast<std::size_t>(least);
  return text.size() < wanted ? std::string(wanted - text.size(), '0') + text : text;
}

std::string DigitText::Fraction() const {
  if (point >= static_cast<int>(digits.size())) return {};
  if (point >= 0) return digits.substr(static_cast<std::size_t>(point));
  return std::string(static_cast<std::size_t>(-point), '0') + digits;
}

std::optional<std::string> FormatNumber(const DigitText& value, bool is_integer, std::string_view mask,
                                        const Culture& culture) {
  if (mask.empty()) mask = "G";
  const bool letter = (mask[0] >= 'A' && mask[0] <= 'Z') || (mask[0] >= 'a' && mask[0] <= 'z');
  const std::string_view precision = mask.substr(1);
  constexpr std::size_t kMostDigits = 2;
  const bool standard =
      letter && precision.size() <= kMostDigits && precision.find_first_not_of("0123456789") == std::string_view::npos;
  if (!standard) return DrawnNumber(value, mask, culture);
  const int places = precision.empty() ? -1 : std::atoi(std::string(precision).c_str());
  return Standard(value, is_integer, mask[0], places, culture);
}

}  // namespace tessarlorn::tsql
