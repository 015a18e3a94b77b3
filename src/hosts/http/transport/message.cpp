#include "hosts/http/transport/message.h"

#include <algorithm>
#include <optional>

#include "platform/text/text.h"

namespace tessarlorn::http {
namespace {

/// Without its escapes; nothing when one is bad.
std::optional<std::string> Decoded(std::string_view text, bool plus_is_blank) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%') {
      const auto byte = BytesOfHex(text.substr(i + 1, 2));
      if (!byte || byte->size() != 1 || byte->front() == '\0') return std::nullopt;
      result += static_cast<char>(byte->front());
      i += 2;
    } else {
      result += plus_is_blank && text[i] == '+' ? ' ' : text[i];
    }
  }
  if (!IsValidUtf8(result)) return std::nullopt;
  return result;
}

}  // namespace

std::string_view HeaderOf(const Headers& headers, std::string_view name) {
  const auto found = std::find_if(headers.begin(), headers.end(),
                                  [name](const auto& header) { return EqualsIgnoreCase(header.first, name); });
  return found == headers.end() ? std::string_view() : std::string_view(found->second);
}

const char* FaultOfHeaders(const Headers& headers, bool old) {
  const auto count = [&headers](std::string_view name) {
    return std::count_if(headers.begin(), headers.end(),
                         [name](const auto& header) { return EqualsIgnoreCase(header.first, name); });
  };
  const auto lengths = count("Content-Length");
  if (lengths > 1 || HeaderOf(headers, "Content-Length").find(',') != std::string_view::npos) {
    return "it has two Content-Lengths";
  }
  if (const auto encodings = count("Transfer-Encoding"); encodings > 0) {
    if (lengths > 0) return "it has Content-Length and Transfer-Encoding";
    if (encodings > 1 || old || !EqualsIgnoreCase(HeaderOf(headers, "Transfer-Encoding"), "chunked")) {
      return "its Transfer-Encoding is not chunked";
    }
  }
  const auto hosts = count("Host");
  return hosts > 1 || (hosts == 0 && !old) ? "it has no Host, or two" : nullptr;
}

const std::string* Target::Find(std::string_view name) const {
  const auto found = std::find_if(query.begin(), query.end(), [name](const auto& pair) { return pair.first == name; });
  return found == query.end() ? nullptr : &found->second;
}

bool ReadTarget(std::string_view text, Target& target) {
  // The absolute form names the host once more.
  if (const std::size_t scheme = text.find("://"); !text.starts_with('/') && scheme != std::string_view::npos) {
    const std::size_t path = text.find_first_of("/?", scheme + 3);
    text = path == std::string_view::npos ? std::string_view("/") : text.substr(path);
  }
  const std::size_t mark = text.find('?');
  const std::optional<std::string> path = Decoded(text.substr(0, mark), false);
  if (!path) return false;
  target.path = *path;
  if (mark == std::string_view::npos) return true;
  for (const std::string_view pair : Split(text.substr(mark + 1), '&')) {
    if (pair.empty()) continue;
    const std::size_t equals = pair.find('=');
    const std::optional<std::string> name = Decoded(pair.substr(0, equals), true);
    const std::optional<std::string> value =
        Decoded(equals == std::string_view::npos ? "" : pair.substr(equals + 1), true);
    if (!name || !value) return false;
    target.query.emplace_back(*name, *value);
  }
  return true;
}

}  // namespace tessarlorn::http
