#include "frame/text_width.h"

#include "platform/text/text.h"

namespace tessarlorn {
namespace {

std::size_t CharacterWidth(char32_t character) { return character <= 0x7F ? 1 : 2; }

}  // namespace

std::size_t TextWidth(std::string_view text) {
  std::size_t width = 0;
  for (std::size_t position = 0; position < text.size();) width += CharacterWidth(NextCharacter(text, position));
  return width;
}

std::string FitText(std::string_view text, std::size_t maximum, std::size_t minimum, PadSide pad) {
  const std::size_t width = TextWidth(text);
  if (width < minimum) {
    const std::string blanks(minimum - width, ' ');
    return pad == PadSide::kRight ? std::string(text) + blanks : blanks + std::string(text);
  }
  if (width <= maximum) return std::string(text);
  std::size_t kept = 0;
  std::size_t taken = 0;
  for (std::size_t position = 0; position < text.size(); kept = position) {
    taken += CharacterWidth(NextCharacter(text, position));
    if (taken >= maximum) break;
  }
  return std::string(text.substr(0, kept)) + "..";
}

}  // namespace tessarlorn
