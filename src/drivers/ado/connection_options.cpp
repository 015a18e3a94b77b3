#include "drivers/ado/connection_options.h"

#include <algorithm>

#include "drivers/ado/ado_error.h"
#include "platform/driver_options.h"
#include "platform/text/text.h"

namespace tessarlorn::ado {
namespace {

/// Where the pair ends that begins at `start`: at a ";" or at the end.
std::size_t EndOfPair(std::string_view text, std::size_t start) {
  std::size_t at = std::min(text.find_first_of("=;", start), text.size());
  if (at == text.size() || text[at] == ';') return at;
  at = text.find_first_not_of(" \t", at + 1);
  if (at == std::string_view::npos) return text.size();
  if (const char quote = text[at]; quote == '"' || quote == '\'') {
    // A doubled quote ends one part and begins the next.
    while (at < text.size() && text[at] == quote) {
      at = text.find(quote, at + 1);
      if (at == std::string_view::npos) {
        RaiseLogin(kSource, "Connection string: the quote behind " +
                                std::string(Trim(text.substr(start, text.find('=', start) - start))) +
                                "= is not closed.");
      }
      ++at;
    }
  }
  return std::min(text.find(';', at), text.size());
}

}  // namespace

ConnectionOptions ParseConnectionOptions(std::string_view text) {
  ConnectionOptions options;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = EndOfPair(text, start);
    const std::string_view pair = text.substr(start, end - start);
    start = end + 1;
    const std::size_t equals = std::min(pair.find('='), pair.size());
    const std::string_view key = Trim(pair.substr(0, equals));
    const std::string_view value = equals == pair.size() ? std::string_view() : Trim(pair.substr(equals + 1));
    if (pair.empty() || options.Take(key, value, kSource)) continue;
    options.ado_string.append(pair).append(";");
  }
  return options;
}

}  // namespace tessarlorn::ado
