// The text forms in which numbers and dates are spliced into SQL.
#pragma once

#include <string>
#include <string_view>

#include "tessarlorn/variant.h"

namespace tessarlorn {

/// "##########0.##": at least one integer digit, at most two decimals rounded half away from zero, no thousands
/// separators and no point without a decimal behind it. Raises 13 for a missing (empty) value and for a text that is no
/// number, 94 for null.
std::string FormatAmount(const Variant& value);

/// "YYYY-MM-DD HH:mm:ss" for a date and for a text that reads as one; any other value's own text.
std::string FormatDateTime(const Variant& value);

/// The number with which a text begins, behind blanks, in plain digits; "0" when it begins with none. Raises 6 when it
/// has more than 38 digits.
std::string LeadingNumber(std::string_view text);

}  // namespace tessarlorn
