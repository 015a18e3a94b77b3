#include "platform/text/guid_text.h"

#include <array>

#include "platform/text/text.h"

namespace tessarlorn {
namespace {

constexpr std::size_t kTextSize = 36;
constexpr std::array<std::size_t, 4> kDashes = {8, 13, 18, 23};

}  // namespace

std::string GuidText(std::string_view bytes) {
  std::string text = HexText(bytes.data(), bytes.size());
  for (const std::size_t dash : kDashes) text.insert(dash, 1, '-');
  return text;
}

std::optional<std::string> BytesOfGuid(std::string_view text) {
  text = WithoutBraces(text);
  if (text.size() != kTextSize) return std::nullopt;
  std::string digits;
  std::size_t begin = 0;
  for (const std::size_t dash : kDashes) {
    if (text[dash] != '-') return std::nullopt;
    digits += text.substr(begin, dash - begin);
    begin = dash + 1;
  }
  return BytesOfHex(digits.append(text.substr(begin)));
}

std::string_view WithoutBraces(std::string_view text) {
  return text.starts_with('{') && text.ends_with('}') ? text.substr(1, text.size() - 2) : text;
}

}  // namespace tessarlorn
