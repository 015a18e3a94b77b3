#include "platform/utf16.h"

#include "platform/text.h"

namespace tessarlorn {

std::u16string ToUtf16(std::string_view text) {
  std::u16string units;
  units.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    const char32_t character = NextCharacter(text, i);
    if (character > 0xffff) {
      units += static_cast<char16_t>(0xd7c0 + (character >> 10));
      units += static_cast<char16_t>(0xdc00 + (character & 0x3ff));
    } else {
      units += static_cast<char16_t>(character);
    }
  }
  return units;
}

std::string FromUtf16(std::u16string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t character = text[i];
    if (character >= 0xd800 && character < 0xe000) {
      const bool pair = character < 0xdc00 && i + 1 < text.size() && text[i + 1] >= 0xdc00 && text[i + 1] < 0xe000;
      character = pair ? 0x10000 + ((character - 0xd800) << 10) + (text[++i] - 0xdc00U) : 0xfffd;
    }
    AppendCharacter(result, character);
  }
  return result;
}

}  // namespace tessarlorn
