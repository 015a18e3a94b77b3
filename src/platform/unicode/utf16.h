// UTF-8 to UTF-16 and back, for the edges where text is counted or passed in UTF-16 units.
#pragma once

#include <string>
#include <string_view>

namespace tessarlorn {

/// Malformed bytes become U+FFFD.
std::u16string ToUtf16(std::string_view text);
/// Lone surrogates become U+FFFD.
void AppendUtf16(std::string& text, std::u16string_view units);
/// The same as a text of its own.
std::string FromUtf16(std::u16string_view units);

}  // namespace tessarlorn
