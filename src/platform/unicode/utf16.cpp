#include "platform/unicode/utf16.h"

#include "platform/text/text.h"

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

void AppendUtf16(std::string& text, std::u16string_view units) {
  constexpr std::size_t kMostBytesOfUnit = 3;
  const std::size_t before = text.size();
  text.resize(before + units.size() * kMostBytesOfUnit);
  char* out = text.data() + before;
  const auto put = [&out](char32_t bits) { *out++ = static_cast<char>(bits); };
  for (std::size_t i = 0; i < units.size(); ++i) {
    char32_t character = units[i];
    if (character < 0x80) {
      put(character);
      continue;
    }
    if (character >= 0xd800 && character < 0xe000) {
      const bool pair = character < 0xdc00 && i + 1 < units.size() && units[i + 1] >= 0xdc00 && units[i + 1] < 0xe000;
      character = pair ? 0x10000 + ((character - 0xd800) << 10) + (units[++i] - 0xdc00U) : 0xfffd;
    }
    if (character < 0x800) {
      put(0xc0 | (character >> 6));
    } else {
      if (character < 0x10000) {
        put(0xe0 | (character >> 12));
      } else {
        put(0xf0 | (character >> 18));
        put(0x80 | ((character >> 12) & 0x3f));
      }
      put(0x80 | ((character >> 6) & 0x3f));
    }
    put(0x80 | (character & 0x3f));
  }
  text.resize(static_cast<std::size_t>(out - text.data()));
}

std::string FromUtf16(std::u16string_view units) {
  std::string text;
  AppendUtf16(text, units);
  text.shrink_to_fit();
  return text;
}

}  // namespace tessarlorn
