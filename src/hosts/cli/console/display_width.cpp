#include "hosts/cli/console/display_width.h"

#include <algorithm>
#include <array>

#include "platform/text/text.h"

namespace tessarlorn::cli {
namespace {

struct Range {
  char32_t first;
  char32_t last;
};

constexpr std::array kWide = {Range{0x1100, 0x115F},   Range{0x2E80, 0x303E},   Range{0x3041, 0x4DBF},
                              Range{0x4E00, 0xA4CF},   Range{0xA960, 0xA97F},   Range{0xAC00, 0xD7A3},
                              Range{0xF900, 0xFAFF},   Range{0xFE30, 0xFE6F},   Range{0xFF01, 0xFF60},
                              Range{0xFFE0, 0xFFE6},   Range{0x1F300, 0x1F64F}, Range{0x1F680, 0x1F6FF},
                              Range{0x1F900, 0x1F9FF}, Range{0x20000, 0x3FFFD}};
constexpr std::array kCombining = {Range{0x300, 0x36F}, Range{0x1AB0, 0x1AFF}, Range{0x200B, 0x200F},
                                   Range{0x20D0, 0x20FF}, Range{0xFE00, 0xFE0F}};

template <typename Ranges>
bool Within(const Ranges& ranges, char32_t character) {
  return std::any_of(ranges.begin(), ranges.end(),
                     [&](const Range& range) { return character >= range.first && character <= range.last; });
}

std::size_t CharacterWidth(char32_t character) {
  if (character < 0x300) return 1;
  if (Within(kCombining, character)) return 0;
  return Within(kWide, character) ? 2 : 1;
}

}  // namespace

std::size_t DisplayWidth(std::string_view text) {
  std::size_t width = 0;
  for (std::size_t position = 0; position < text.size();) width += CharacterWidth(NextCharacter(text, position));
  return width;
}

std::string CutToWidth(std::string_view text, std::size_t width) {
  if (DisplayWidth(text) <= width) return std::string(text);
  std::size_t kept = 0;
  std::size_t taken = 0;
  for (std::size_t position = 0; position < text.size(); kept = position) {
    taken += CharacterWidth(NextCharacter(text, position));
    if (taken > width - 2) break;
  }
  return std::string(text.substr(0, kept)) + "..";
}

std::string Wrapped(std::string_view text, std::size_t indent, std::size_t width) {
  std::string wrapped;
  std::size_t column = 0;
  for (const std::string_view word : Split(text, ' ')) {
    const std::size_t word_width = DisplayWidth(word);
    if (column > 0 && column + 1 + word_width > width) {
      wrapped += '\n';
      column = 0;
    }
    if (column == 0) {
      wrapped.append(indent, ' ');
      column = indent;
    } else {
      wrapped += ' ';
      ++column;
    }
    wrapped += word;
    column += word_width;
  }
  return wrapped + '\n';
}

}  // namespace tessarlorn::cli
