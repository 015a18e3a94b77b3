// Measuring and fitting texts for displays in which a character outside ASCII takes two columns.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tessarlorn {

/// Columns that the text takes: 1 for each character up to U+007F, 2 for any other.
std::size_t TextWidth(std::string_view text);

enum class PadSide : std::uint8_t { kLeft, kRight };

/// A narrower text is padded with blanks to `minimum` columns; of a wider one than `maximum` the beginning that stays
/// below `maximum` columns is kept and ".." added; any other is unchanged.
std::string FitText(std::string_view text, std::size_t maximum, std::size_t minimum, PadSide pad);

}  // namespace tessarlorn
