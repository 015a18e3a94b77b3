#include "hosts/tds/messages/object_name.h"

#include "platform/text/sql_text.h"

namespace tessarlorn::tds {

std::optional<std::string> TakeName(std::string_view text, std::size_t& position) {
  std::string quoted;
  std::size_t& i = position;
  for (;;) {
    std::string part;
    if (i < text.size() && (text[i] == '[' || text[i] == '"')) {
      const char close = ClosingSign(text[i]);
      const std::size_t begin = i + 1;
      const std::size_t end = FindClosing(text, begin, close).position;
      if (end == std::string_view::npos) return std::nullopt;
      part = Undoubled(text.substr(begin, end - begin), close);
      i = end + 1;
    } else {
      const std::size_t begin = i;
      i = SkipWord(text, begin);
      part = text.substr(begin, i - begin);
    }
    if (!part.empty()) quoted += Quoted(part, '[', ']');
    if (i >= text.size() || text[i] != '.') {
      if (part.empty()) return std::nullopt;
      return quoted;
    }
    ++i;
    // What is left out before the first part says nothing: ..sp_columns.
    if (!quoted.empty()) quoted += '.';
  }
}

}  // namespace tessarlorn::tds
