// How text compares: without regard to case, trailing blanks, and the width of letters.
#pragma once

#include <string_view>

namespace tessarlorn {

/// Less than, equal to or greater than 0. Characters are compared by their lower-case code points, full-width forms as
/// the narrow ones.
int CompareText(std::string_view a, std::string_view b);

/// The character as the comparison sees it.
char32_t FoldCharacter(char32_t character);

/// LIKE with %, _, [set], [^set] and an escape character (0 for none).
bool MatchesLike(std::string_view text, std::string_view pattern, char32_t escape);

}  // namespace tessarlorn
