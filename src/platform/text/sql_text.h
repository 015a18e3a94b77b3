// What everybody reads alike who looks into Transact-SQL: blanks, comments, words, and texts between signs. Positions
// count bytes.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "platform/text/text.h"

namespace tessarlorn {

/// The length of a blank beyond ASCII at the position: no-break, ideographic, byte order mark. 0 when there is none.
std::size_t WideBlankAt(std::string_view text, std::size_t position);
/// Behind the comment whose "/*" stands at the position, with the comments within; npos when it is not closed.
std::size_t EndOfComment(std::string_view text, std::size_t position);

/// The position behind blanks and comments. A "/*" that is not closed is left.
inline std::size_t SkipBlanksAndComments(std::string_view text, std::size_t position) {
  while (position < text.size()) {
    const auto c = static_cast<unsigned char>(text[position]);
    if (c <= ' ') {
      ++position;
    } else if (c == '-' && text.substr(position).starts_with("--")) {
      position = std::min(text.find('\n', position), text.size());
    } else if (c == '/' && text.substr(position).starts_with("/*")) {
      const std::size_t end = EndOfComment(text, position);
      if (end == std::string_view::npos) return position;
      position = end;
    } else if (const std::size_t size = c < 0x80 ? 0 : WideBlankAt(text, position); size > 0) {
      position += size;
    } else {
      return position;
    }
  }
  return position;
}

/// The position behind the word that begins at it; the same when none does.
inline std::size_t SkipWord(std::string_view text, std::size_t position) {
  while (position < text.size() && IsNameCharacter(text[position]) &&
         ((text[position] & 0x80) == 0 || WideBlankAt(text, position) == 0)) {
    ++position;
  }
  return position;
}

/// The sign that ends what `open` begins: ] of [, else the same.
constexpr char ClosingSign(char open) { return open == '[' ? ']' : open; }

struct Closing {
  /// npos when there is none.
  std::size_t position;
  /// Whether it stands doubled before.
  bool doubled = false;
};

/// The first sign from `begin` on that is not doubled.
inline Closing FindClosing(std::string_view text, std::size_t begin, char sign) {
  Closing closing{begin};
  for (;;) {
    closing.position = text.find(sign, closing.position);
    if (closing.position == std::string_view::npos || closing.position + 1 == text.size() ||
        text[closing.position + 1] != sign) {
      return closing;
    }
    closing.doubled = true;
    closing.position += 2;
  }
}

/// The text with each doubled sign once.
std::string Undoubled(std::string_view text, char sign);

}  // namespace tessarlorn
