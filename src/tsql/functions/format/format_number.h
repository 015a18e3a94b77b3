// Numbers as texts by the masks of FORMAT.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "tessarlorn/decimal.h"
#include "tsql/functions/format/culture.h"

namespace tessarlorn::tsql {

/// A number as its digits: 0.digits × 10^point. `digits` may end in zeros that the type shows.
struct DigitText {
  explicit DigitText(const Decimal& value);
  /// Of the 15 digits that count.
  explicit DigitText(double value);

  bool negative = false;
  bool of_float = false;
  std::string digits;
  int point = 0;

  [[nodiscard]] bool is_zero() const { return digits.find_first_not_of('0') == std::string::npos; }
  /// Rounded to so many places, half away from zero; filled up with zeros to them.
  [[nodiscard]] DigitText Rounded(int places) const;
  /// The digits before the point, at least `least`, and those behind it.
  [[nodiscard]] std::string Whole(int least) const;
  [[nodiscard]] std::string Fraction() const;
};

/// By a mask of one letter and a precision ("N2"), or one that is drawn ("#,##0.00"). std::nullopt for a mask that
/// numbers of this kind do not have.
/// @param is_integer D and X take whole numbers only
std::optional<std::string> FormatNumber(const DigitText& value, bool is_integer, std::string_view mask,
                                        const Culture& culture);

}  // namespace tessarlorn::tsql
