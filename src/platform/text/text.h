// Small text tools: UTF-8 walking, case, trimming, splitting, numbers, digits of bytes.
#pragma once

#include <array>
#include <charconv>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace tessarlorn {

/// The character that begins at `position`, which moves behind it; a malformed byte counts as U+FFFD.
char32_t NextCharacter(std::string_view text, std::size_t& position);
void AppendCharacter(std::string& text, char32_t character);
/// Number of UTF-16 units that the text takes.
std::size_t Utf16Length(std::string_view text);
/// Whether the text is well-formed UTF-8: no overlong form, no surrogate.
bool IsValidUtf8(std::string_view text);

/// Simple case of one character: ASCII, Latin, Greek, Cyrillic and full-width letters.
char32_t ToUpper(char32_t character);
char32_t ToLower(char32_t character);
std::string UpperCase(std::string_view text);
std::string LowerCase(std::string_view text);
/// EqualsIgnoreCase for texts of one length.
bool EqualsOfOneLength(std::string_view a, std::string_view b);
/// ASCII letters only; for keywords and names.
inline bool EqualsIgnoreCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && EqualsOfOneLength(a, b);
}
bool StartsWithIgnoreCase(std::string_view text, std::string_view prefix);
/// Position of `needle` without regard to ASCII case, or npos.
std::size_t FindIgnoreCase(std::string_view text, std::string_view needle);

/// Without blanks (U+0020) at both ends.
std::string_view Trim(std::string_view text);
/// The parts between separators; one empty part for an empty text.
std::vector<std::string_view> Split(std::string_view text, char separator);
/// `text` with every `from` replaced by `to`.
std::string ReplaceAll(std::string_view text, std::string_view from, std::string_view to);
/// The text between two signs behind a prefix. `close` is doubled within the text.
std::string Quoted(std::string_view text, char open, char close, std::string_view prefix = {});
/// The text with a blank for each control character, so that it stays on its line.
std::string OnOneLine(std::string_view text);

/// The number, when the whole text is one from `least` to `most`: digits, and a minus before them where the type has
/// one.
template <std::integral Number>
std::optional<Number> WholeNumber(std::string_view text, Number least = std::numeric_limits<Number>::min(),
                                  Number most = std::numeric_limits<Number>::max()) {
  Number number{};
  const char* const last = text.data() + text.size();
  const auto [end, fault] = std::from_chars(text.data(), last, number);
  if (fault != std::errc{} || end != last || number < least || number > most) return std::nullopt;
  return number;
}

inline constexpr std::array<bool, 256> kNameCharacters = [] {
  std::array<bool, 256> table{};
  for (const char sign : {'_', '@', '#', '$'}) table[sign] = true;
  for (int digit = '0'; digit <= '9'; ++digit) table[digit] = true;
  for (int letter = 'a'; letter <= 'z'; ++letter) table[letter] = table[letter - 'a' + 'A'] = true;
  for (int beyond_ascii = 0x80; beyond_ascii <= 0xFF; ++beyond_ascii) table[beyond_ascii] = true;
  return table;
}();
/// Whether the byte may stand in a name or keyword of Transact-SQL that needs no quotes; every part of a character
/// beyond ASCII may.
constexpr bool IsNameCharacter(char c) { return kNameCharacters[static_cast<unsigned char>(c)]; }
/// Two digits for each byte, in capitals.
std::string HexText(const void* bytes, std::size_t size);
/// The bytes of such digits, in capitals or not. Nothing for any other text.
std::optional<std::string> BytesOfHex(std::string_view digits);

/// The name among `candidates` that is nearest to `name` by edits, or "" when none is near.
std::string_view Nearest(std::string_view name, const std::vector<std::string_view>& candidates);

/// "; did you mean X?" with the candidate that is nearest to `name`, `otherwise` when none is near.
std::string DidYouMean(std::string_view name, const std::vector<std::string_view>& candidates,
                       const std::string& otherwise = "");

}  // namespace tessarlorn
