// How wide a terminal shows text: two columns for the wide characters of East Asia.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tessarlorn::cli {

/// Columns of the text: 2 for a wide character, none for a combining one, 1 for any other.
std::size_t DisplayWidth(std::string_view text);

/// The text, or its beginning with ".." behind it that takes at most `width` columns. @pre width >= 2
std::string CutToWidth(std::string_view text, std::size_t width);

/// The text broken at blanks into lines of at most `width` columns, each behind `indent` blanks and ended by a line
/// break. A word that is wider stands on a line of its own.
std::string Wrapped(std::string_view text, std::size_t indent, std::size_t width);

}  // namespace tessarlorn::cli
