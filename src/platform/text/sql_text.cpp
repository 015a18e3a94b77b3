#include "platform/text/sql_text.h"

namespace tessarlorn {

std::size_t WideBlankAt(std::string_view text, std::size_t position) {
  const std::string_view rest = text.substr(position);
  for (const std::string_view blank : {"\xC2\xA0", "\xE3\x80\x80", "\xEF\xBB\xBF"}) {
    if (rest.starts_with(blank)) return blank.size();
  }
  return 0;
}

std::size_t EndOfComment(std::string_view text, std::size_t position) {
  int depth = 0;
  while (position < text.size()) {
    const std::string_view rest = text.substr(position);
    if (rest.starts_with("/*")) {
      ++depth;
      position += 2;
    } else if (rest.starts_with("*/")) {
      position += 2;
      if (--depth == 0) return position;
    } else {
      ++position;
    }
  }
  return std::string_view::npos;
}

std::string Undoubled(std::string_view text, char sign) {
  return ReplaceAll(text, std::string(2, sign), std::string(1, sign));
}

}  // namespace tessarlorn
