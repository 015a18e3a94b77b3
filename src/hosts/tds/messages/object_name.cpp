#include "hosts/tds/messages/object_name.h"

#include "platform/text.h"

namespace tessarlorn::tds {

std::optional<std::string> TakeName(std::string_view text, std::size_t& position) {
  std::string quoted;
  std::size_t& i = position;
  for (;;) {
    std::string part;
    if (i < text.size() && (text[i] == '[' || text[i] == '"')) {
      const char close = text[i] == '[' ? ']' : '"';
      for (++i; i < text.size(); ++i) {
        if (text[i] == close && (i + 1 == text.size() || text[i + 1] != close)) break;
        if (text[i] == close) ++i;
        part += text[i];
      }
      if (i++ >= text.size()) return std::nullopt;
    } else {
      while (i < text.size() && IsNameCharacter(text[i])) part += text[i++];
    }
    if (!part.empty()) quoted += "[" + ReplaceAll(part, "]", "]]") + "]";
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
