// Small text tools: UTF-8 walking, case, trimming, splitting.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
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
/// ASCII letters only; for keywords and names.
bool EqualsIgnoreCase(std::string_view a, std::string_view b);
bool StartsWithIgnoreCase(std::string_view text, std::string_view prefix);
/// Position of `needle` without regard to ASCII case, or npos.
std::size_t FindIgnoreCase(std::string_view text, std::string_view needle);

/// Without blanks (U+0020) at both ends.
std::string_view Trim(std::string_view text);
/// The parts between separators; one empty part for an empty text.
std::vector<std::string_view> Split(std::string_view text, char separator);
/// `text` with every `from` replaced by `to`.
std::string ReplaceAll(std::string_view text, std::string_view from, std::string_view to);

/// Whether the byte may stand in a name or keyword of Transact-SQL that needs no quotes; every part of a character
/// beyond ASCII may.
constexpr bool IsNameCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '@' ||
         c == '#' || c == '$' || (c & 0x80) != 0;
}
/// Two digits for each byte, in capitals.
std::string HexText(const void* bytes, std::size_t size);

/// The name among `candidates` that is nearest to `name` by edits, or "" when none is near.
std::string_view Nearest(std::string_view name, const std::vector<std::string_view>& candidates);

}  // namespace tessarlorn
