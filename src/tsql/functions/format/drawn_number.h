// Masks of FORMAT that draw a number place by place: "#,##0.00;(#,##0.00);-".
#pragma once

#include <string>
#include <string_view>

#include "tsql/functions/format/format_number.h"

namespace tessarlorn::tsql {

std::string DrawnNumber(const DigitText& value, std::string_view mask, const Culture& culture);

/// Digits in groups of three.
std::string Grouped(const std::string& digits, std::string_view separator);

}  // namespace tessarlorn::tsql
