// Values from JSON: nested Dictionaries and Vectors, numbers exact.
#pragma once

#include <string_view>

#include "tessarlorn/variant.h"

namespace tessarlorn {

/// Levels of objects and arrays that a JSON text may have.
inline constexpr std::size_t kMostJsonLevels = 64;

/// An object becomes a Dictionary, an array a Vector, null Null. A whole number becomes a Long when it fits, any other
/// number a Decimal of the same digits. Raises WrongCall, led by "name:line:column: " (both from 1, columns in
/// characters), for text that is no JSON, a key that an object has twice, too many levels, and a number of more than
/// 38 digits.
Variant ReadJson(std::string_view text, std::string_view name);

}  // namespace tessarlorn
