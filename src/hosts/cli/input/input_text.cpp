#include "hosts/cli/input/input_text.h"

#include <cstddef>
#include <string_view>

#include "platform/text/text.h"
#include "platform/unicode/utf16.h"

namespace tessarlorn::cli {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kLittleEndianMark = "\xFF\xFE";
constexpr std::string_view kBigEndianMark = "\xFE\xFF";

/// @param low position of a unit's low byte, 0 or 1
std::optional<std::string> DecodeUtf16(std::string_view bytes, std::size_t low) {
  if (bytes.size() % 2 != 0) return std::nullopt;
  std::u16string units;
  units.reserve(bytes.size() / 2);
  for (std::size_t i = 0; i < bytes.size(); i += 2) {
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(bytes[i + at]); };
    units += static_cast<char16_t>(byte(low) | (byte(1 - low) << 8));
  }
  // UTF-32 begins with the same mark; its first unit behind it is zero.
  if (units.starts_with(u'\0')) return std::nullopt;
  std::string text = FromUtf16(units);
  // A lone surrogate has become another character.
  if (ToUtf16(text) != units) return std::nullopt;
  return text;
}

}  // namespace

std::optional<std::string> DecodeText(std::string bytes) {
  const std::string_view view = bytes;
  if (view.starts_with(kLittleEndianMark)) return DecodeUtf16(view.substr(kLittleEndianMark.size()), 0);
  if (view.starts_with(kBigEndianMark)) return DecodeUtf16(view.substr(kBigEndianMark.size()), 1);
  if (!IsValidUtf8(view)) return std::nullopt;
  if (view.starts_with(kUtf8Mark)) bytes.erase(0, kUtf8Mark.size());
  return bytes;
}

}  // namespace tessarlorn::cli
