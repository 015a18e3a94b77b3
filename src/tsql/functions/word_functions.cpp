// Text functions that look at the single characters: TRIM, TRANSLATE, PARSENAME, SOUNDEX, DIFFERENCE, STRING_ESCAPE.
#include <algorithm>
#include <string>
#include <vector>

#include "platform/text/sql_text.h"
#include "platform/text/text.h"
#include "platform/unicode/collation.h"
#include "tsql/functions/functions.h"
#include "tsql/functions/sqlite_value.h"

namespace tessarlorn::tsql {
namespace {

std::u32string CharactersOf(std::string_view text) {
  std::u32string characters;
  for (std::size_t i = 0; i < text.size();) characters += NextCharacter(text, i);
  return characters;
}

std::u32string FoldedCharacters(std::string_view text) {
  std::u32string characters = CharactersOf(text);
  std::transform(characters.begin(), characters.end(), characters.begin(), FoldCharacter);
  return characters;
}

constexpr int kLeftSide = 1;
constexpr int kRightSide = 2;

// ts_trim(text[, signs])
template <int kSides>
void TrimSides(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (AnyNull(arguments)) return;
  std::string_view text = TextOf(arguments[0]);
  const std::u32string signs = arguments.size() > 1 ? FoldedCharacters(TextOf(arguments[1])) : U" ";
  const auto trims = [&](std::string_view character) {
    std::size_t at = 0;
    return signs.find(FoldCharacter(NextCharacter(character, at))) != std::u32string::npos;
  };
  while ((kSides & kLeftSide) != 0 && !text.empty() && trims(text)) {
    std::size_t behind = 0;
    NextCharacter(text, behind);
    text.remove_prefix(behind);
  }
  while ((kSides & kRightSide) != 0 && !text.empty()) {
    std::size_t last = text.size() - 1;
    while (last > 0 && (static_cast<unsigned char>(text[last]) & 0xC0) == 0x80) --last;
    if (!trims(text.substr(last))) break;
    text = text.substr(0, last);
  }
  SetText(context, text);
}

// ts_translate(text, from, to)
void Translate(sqlite3_context* context, Runtime& runtime, Arguments arguments) {
  if (AnyNull(arguments)) return;
  const std::u32string from = FoldedCharacters(TextOf(arguments[1]));
  const std::u32string to = CharactersOf(TextOf(arguments[2]));
  if (from.size() != to.size()) {
    throw SqlError(9828,
                   "The second and third arguments of the TRANSLATE built-in function must contain an equal number of "
                   "characters.");
  }
  const std::string_view text = TextOf(arguments[0]);
  runtime.memory.Require(text.size() * 4);
  std::string result;
  for (std::size_t i = 0; i < text.size();) {
    const char32_t character = NextCharacter(text, i);
    const std::size_t place = from.find(FoldCharacter(character));
    AppendCharacter(result, place == std::u32string::npos ? character : to[place]);
  }
  SetText(context, result);
}

/// The parts of a name, the last one first; none for a text that is no name.
std::vector<std::string> NameParts(std::string_view name) {
  std::vector<std::string> parts;
  for (std::size_t at = 0; at <= name.size();) {
    const char open = at < name.size() ? name[at] : '\0';
    std::size_t end = std::min(name.find('.', at), name.size());
    if (open == '[' || open == '"') {
      const Closing closing = FindClosing(name, at + 1, ClosingSign(open));
      if (closing.position == std::string_view::npos) return {};
      parts.insert(parts.begin(), Undoubled(name.substr(at + 1, closing.position - at - 1), ClosingSign(open)));
      end = closing.position + 1;
      if (end < name.size() && name[end] != '.') return {};
    } else {
      parts.insert(parts.begin(), std::string(name.substr(at, end - at)));
    }
    at = end + 1;
  }
  constexpr std::size_t kMostParts = 4;
  return parts.size() > kMostParts ? std::vector<std::string>{} : parts;
}

// ts_parsename(name, part): counted from the end
void ParseName(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (AnyNull(arguments)) return;
  const std::vector<std::string> parts = NameParts(TextOf(arguments[0]));
  const std::int64_t wanted = sqlite3_value_int64(arguments[1]);
  if (wanted < 1 || wanted > static_cast<std::int64_t>(parts.size())) return;
  const std::string& part = parts[static_cast<std::size_t>(wanted - 1)];
  if (!part.empty()) SetText(context, part);
}

/// The first letter, and the classes of the consonants behind it in three digits. Letters of one class count once,
/// with an H or W between them as well.
std::string Soundex(std::string_view text) {
  //                                   ABCDEFGHIJKLMNOPQRSTUVWXYZ
  constexpr std::string_view kClasses = "01230120022455012623010202";
  constexpr std::size_t kLength = 4;
  std::string code;
  char previous = '0';
  for (const char c : text) {
    const bool letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    if (!letter) break;
    const char upper = static_cast<char>(c & ~0x20);
    const char digit = kClasses[static_cast<std::size_t>(upper - 'A')];
    if (code.empty()) {
      code += upper;
    } else if (digit != '0' && digit != previous && code.size() < kLength) {
      code += digit;
    }
    if (upper != 'H' && upper != 'W') previous = digit;
  }
  return code.empty() ? "0000" : code + std::string(kLength - code.size(), '0');
}

// ts_soundex(text)
void SoundexOf(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (!IsNull(arguments[0])) SetText(context, Soundex(TextOf(arguments[0])));
}

// ts_difference(a, b): how many of the four signs are the same
void Difference(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (AnyNull(arguments)) return;
  const std::string a = Soundex(TextOf(arguments[0]));
  const std::string b = Soundex(TextOf(arguments[1]));
  int same = 0;
  for (std::size_t i = 0; i < a.size(); ++i) same += a[i] == b[i] ? 1 : 0;
  sqlite3_result_int(context, same);
}

// ts_string_escape(text, kind)
void StringEscape(sqlite3_context* context, Runtime& runtime, Arguments arguments) {
  if (AnyNull(arguments)) return;
  if (!EqualsIgnoreCase(TextOf(arguments[1]), "json")) {
    throw SqlError(13610, "The argument 2 of the \"STRING_ESCAPE\" must be a string literal 'json'.");
  }
  runtime.memory.Require(TextOf(arguments[0]).size() * 6);
  SetText(context, EscapedForJson(TextOf(arguments[0])));
}

}  // namespace

std::string EscapedForJson(std::string_view text) {
  constexpr std::string_view kSigns = "\"\\/\b\f\n\r\t";
  constexpr std::string_view kLetters = "\"\\/bfnrt";
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string escaped;
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    if (const std::size_t place = kSigns.find(c); place != std::string_view::npos) {
      escaped += {'\\', kLetters[place]};
    } else if (code < 0x20) {
      escaped += {'\\', 'u', '0', '0', kDigits[code >> 4], kDigits[code & 15]};
    } else {
      escaped += c;
    }
  }
  return escaped;
}

void RegisterWordFunctions(sqlite3* database, Runtime& runtime) {
  RegisterFunction(database, runtime, "ts_ltrim", -1, TrimSides<kLeftSide>);
  RegisterFunction(database, runtime, "ts_rtrim", -1, TrimSides<kRightSide>);
  RegisterFunction(database, runtime, "ts_trim", -1, TrimSides<kLeftSide | kRightSide>);
  RegisterFunction(database, runtime, "ts_translate", 3, Translate);
  RegisterFunction(database, runtime, "ts_parsename", 2, ParseName);
  RegisterFunction(database, runtime, "ts_soundex", 1, SoundexOf);
  RegisterFunction(database, runtime, "ts_difference", 2, Difference);
  RegisterFunction(database, runtime, "ts_string_escape", 2, StringEscape);
}

}  // namespace tessarlorn::tsql
