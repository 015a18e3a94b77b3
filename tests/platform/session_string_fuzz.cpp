#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/session_string.h"
#include "platform/text/text.h"
#include "tessarlorn/error.h"

namespace {

using namespace tessarlorn;

/// The pairs as a list whose values all stand in braces.
std::string Write(const std::vector<std::pair<std::string, std::string>>& pairs) {
  std::string text;
  for (const auto& [key, value] : pairs) text += key + "={" + ReplaceAll(value, "}", "}}") + "};";
  return text;
}

void ReadPairs(std::string_view text) {
  const auto pairs = ParsePairs(text);
  if (ParsePairs(Write(pairs)) != pairs) std::abort();
}

void ReadSession(std::string_view text) {
  if (ParseSessionString(text).database.empty()) std::abort();
}

template <typename Read>
void Expect(const Read& read, std::string_view text) {
  try {
    read(text);
  } catch (const Error& error) {
    if (error.number() != error_number::kLoginRefused) std::abort();
  }
}

}  // namespace

// Any text is either refused as a login or read to pairs that, written out, are read to the same pairs.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  Expect(ReadPairs, text);
  Expect(ReadSession, text);
  return 0;
}
