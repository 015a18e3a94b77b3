#include "platform/text/text.h"

#include <algorithm>
#include <iterator>
#include <numeric>

namespace tessarlorn {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kMalformed = 0xFFFFFFFF;

char AsciiLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

bool IsContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; }

/// Like NextCharacter, but a malformed byte counts as kMalformed.
char32_t Decode(std::string_view text, std::size_t& position) {
  const auto first = static_cast<unsigned char>(text[position++]);
  if (first < 0x80) return first;
  std::size_t more = 0;
  char32_t least = 0;
  char32_t character = 0;
  if (first >= 0xC2 && first < 0xE0) {
    more = 1, least = 0x80, character = first & 0x1FU;
  } else if (first >= 0xE0 && first < 0xF0) {
    more = 2, least = 0x800, character = first & 0x0FU;
  } else if (first >= 0xF0 && first < 0xF5) {
    more = 3, least = 0x10000, character = first & 0x07U;
  } else {
    return kMalformed;
  }
  if (text.size() - position < more) return kMalformed;
  for (std::size_t i = 0; i < more; ++i) {
    if (!IsContinuation(text[position + i])) return kMalformed;
    character = (character << 6) | (static_cast<unsigned char>(text[position + i]) & 0x3FU);
  }
  if (character < least || character > 0x10FFFF || (character >= 0xD800 && character < 0xE000)) return kMalformed;
  position += more;
  return character;
}

template <typename Convert>
std::string ConvertCase(std::string_view text, Convert convert) {
  std::string result(text);
  std::size_t ascii = 0;
  for (; ascii < text.size() && static_cast<unsigned char>(text[ascii]) < 0x80; ++ascii) {
    result[ascii] = static_cast<char>(convert(static_cast<char32_t>(text[ascii])));
  }
  result.resize(ascii);
  for (std::size_t position = ascii; position < text.size();) {
    const std::size_t start = position;
    const char32_t character = Decode(text, position);
    if (character == kMalformed) {
      result += text[start];
    } else {
      AppendCharacter(result, convert(character));
    }
  }
  return result;
}

/// Capitals, each with the small letter so far behind it.
struct Capitals {
  char32_t first;
  char32_t last;
  std::int32_t distance;
  /// 2 where capitals and small letters take turns.
  char32_t step = 1;

  [[nodiscard]] constexpr bool Holds(char32_t c) const { return c >= first && c <= last && (c - first) % step == 0; }
};

// Sorted.
constexpr std::array kCapitals = {
    Capitals{0x41, 0x5A, 32},       Capitals{0xC0, 0xD6, 32},       Capitals{0xD8, 0xDE, 32},
    Capitals{0x100, 0x12E, 1, 2},   Capitals{0x132, 0x136, 1, 2},   Capitals{0x139, 0x147, 1, 2},
    Capitals{0x14A, 0x176, 1, 2},   Capitals{0x178, 0x178, -121},   Capitals{0x179, 0x17D, 1, 2},
    Capitals{0x386, 0x386, 38},     Capitals{0x388, 0x38A, 37},     Capitals{0x38C, 0x38C, 64},
    Capitals{0x38E, 0x38F, 63},     Capitals{0x391, 0x3A1, 32},     Capitals{0x3A3, 0x3AB, 32},
    Capitals{0x400, 0x40F, 80},     Capitals{0x410, 0x42F, 32},     Capitals{0x460, 0x480, 1, 2},
    Capitals{0x48A, 0x4BE, 1, 2},   Capitals{0x4C1, 0x4CD, 1, 2},   Capitals{0x4D0, 0x52E, 1, 2},
    Capitals{0x1E00, 0x1E94, 1, 2}, Capitals{0x1EA0, 0x1EFE, 1, 2}, Capitals{0xFF21, 0xFF3A, 32},
};

}  // namespace

char32_t NextCharacter(std::string_view text, std::size_t& position) {
  const char32_t character = Decode(text, position);
  return character == kMalformed ? kReplacement : character;
}

void AppendCharacter(std::string& text, char32_t character) {
  const auto put = [&text](char32_t byte) { text += static_cast<char>(static_cast<unsigned char>(byte)); };
  if (character < 0x80) {
    put(character);
  } else if (character < 0x800) {
    put(0xC0 | (character >> 6));
    put(0x80 | (character & 0x3F));
  } else if (character < 0x10000) {
    put(0xE0 | (character >> 12));
    put(0x80 | ((character >> 6) & 0x3F));
    put(0x80 | (character & 0x3F));
  } else {
    put(0xF0 | (character >> 18));
    put(0x80 | ((character >> 12) & 0x3F));
    put(0x80 | ((character >> 6) & 0x3F));
    put(0x80 | (character & 0x3F));
  }
}

std::size_t Utf16Length(std::string_view text) {
  std::size_t length = 0;
  for (std::size_t position = 0; position < text.size();) length += NextCharacter(text, position) > 0xFFFF ? 2 : 1;
  return length;
}

bool IsValidUtf8(std::string_view text) {
  for (std::size_t position = 0; position < text.size();) {
    if (Decode(text, position) == kMalformed) return false;
  }
  return true;
}

char32_t ToUpper(char32_t c) {
  if (c < 0x80) return c >= 'a' && c <= 'z' ? c - 32 : c;
  constexpr char32_t kSigma = 0x3A3;
  constexpr char32_t kFinalSigma = 0x3C2;
  if (c == kFinalSigma) return kSigma;
  const auto* found = std::find_if(kCapitals.begin(), kCapitals.end(),
                                   [c](const Capitals& capitals) { return capitals.Holds(c - capitals.distance); });
  return found == kCapitals.end() ? c : c - found->distance;
}

char32_t ToLower(char32_t c) {
  if (c < 0x80) return c >= 'A' && c <= 'Z' ? c + 32 : c;
  const auto* behind =
      std::upper_bound(kCapitals.begin(), kCapitals.end(), c,
                       [](char32_t sought, const Capitals& capitals) { return sought < capitals.first; });
  const Capitals& capitals = *std::prev(behind);
  return capitals.Holds(c) ? c + capitals.distance : c;
}

std::string UpperCase(std::string_view text) {
  return ConvertCase(text, [](char32_t c) { return ToUpper(c); });
}

std::string LowerCase(std::string_view text) {
  return ConvertCase(text, [](char32_t c) { return ToLower(c); });
}

bool EqualsOfOneLength(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return AsciiLower(x) == AsciiLower(y); });
}

bool StartsWithIgnoreCase(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && EqualsIgnoreCase(text.substr(0, prefix.size()), prefix);
}

std::size_t FindIgnoreCase(std::string_view text, std::string_view needle) {
  const auto found = std::search(text.begin(), text.end(), needle.begin(), needle.end(),
                                 [](char x, char y) { return AsciiLower(x) == AsciiLower(y); });
  return found == text.end() && !needle.empty() ? std::string_view::npos
                                                : static_cast<std::size_t>(found - text.begin());
}

std::string_view Trim(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(' ');
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  for (std::size_t end = text.find(separator); end != std::string_view::npos; end = text.find(separator)) {
    parts.push_back(text.substr(0, end));
    text.remove_prefix(end + 1);
  }
  parts.push_back(text);
  return parts;
}

std::string ReplaceAll(std::string_view text, std::string_view from, std::string_view to) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t found = text.find(from); !from.empty() && found != std::string_view::npos; found = text.find(from)) {
    result.append(text.substr(0, found)).append(to);
    text.remove_prefix(found + from.size());
  }
  return result.append(text);
}

std::string Quoted(std::string_view text, char open, char close, std::string_view prefix) {
  std::string quoted;
  quoted.reserve(prefix.size() + text.size() + 2);
  quoted += prefix;
  quoted += open;
  for (;;) {
    const std::size_t end = text.find(close);
    quoted += text.substr(0, end);
    quoted += close;
    if (end == std::string_view::npos) return quoted;
    quoted += close;
    text.remove_prefix(end + 1);
  }
}

std::string OnOneLine(std::string_view text) {
  std::string line;
  line.reserve(text.size());
  for (std::size_t position = 0; position < text.size();) {
    const char32_t character = NextCharacter(text, position);
    const bool control = character < 0x20 || (character >= 0x7F && character < 0xA0);
    AppendCharacter(line, control ? U' ' : character);
  }
  return line;
}

std::string HexText(const void* bytes, std::size_t size) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  const auto* const begin = static_cast<const unsigned char*>(bytes);
  std::string text;
  text.reserve(size * 2);
  std::for_each(begin, begin + size, [&](unsigned char byte) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  });
  return text;
}

std::optional<std::string> BytesOfHex(std::string_view digits) {
  if (digits.size() % 2 != 0) return std::nullopt;
  std::string bytes;
  bytes.reserve(digits.size() / 2);
  for (; !digits.empty(); digits.remove_prefix(2)) {
    unsigned char byte = 0;
    const char* const last = digits.data() + 2;
    if (std::from_chars(digits.data(), last, byte, 16).ptr != last) return std::nullopt;
    bytes += static_cast<char>(byte);
  }
  return bytes;
}

std::string_view Nearest(std::string_view name, const std::vector<std::string_view>& candidates) {
  std::string_view nearest;
  std::size_t least = std::max<std::size_t>(1, name.size() / 3) + 1;
  std::vector<std::size_t> row;
  for (const std::string_view candidate : candidates) {
    row.resize(candidate.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (const char letter : name) {
      std::size_t diagonal = row[0]++;
      for (std::size_t j = 0; j < candidate.size(); ++j) {
        const std::size_t replaced = diagonal + (AsciiLower(letter) == AsciiLower(candidate[j]) ? 0 : 1);
        diagonal = row[j + 1];
        row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
      }
    }
    if (row.back() < least) {
      least = row.back();
      nearest = candidate;
    }
  }
  return nearest;
}

std::string DidYouMean(std::string_view name, const std::vector<std::string_view>& candidates,
                       const std::string& otherwise) {
  const std::string_view nearest = Nearest(name, candidates);
  return nearest.empty() ? otherwise : "; did you mean " + std::string(nearest) + "?";
}

}  // namespace tessarlorn
