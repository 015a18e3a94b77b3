#include "hosts/cli/console/system_text.h"

#include <cstdlib>
#ifdef _WIN32
#include <memory>
#include <string_view>
#include <windows.h>
// After the header above.
#include <shellapi.h>

#include "platform/unicode/utf16.h"
#endif

namespace tessarlorn::cli {

#ifdef _WIN32

namespace {

std::string ToUtf8(std::wstring_view text) {
  return FromUtf16({reinterpret_cast<const char16_t*>(text.data()), text.size()});
}

}  // namespace

// Those of the main function have lost what the system's code page does not know.
std::vector<std::string> CommandWords(std::span<const char* const> given) {
  int count = 0;
  const std::unique_ptr<LPWSTR, decltype(&LocalFree)> words(CommandLineToArgvW(GetCommandLineW(), &count), &LocalFree);
  if (words == nullptr) return {given.begin(), given.end()};
  std::vector<std::string> texts;
  for (const LPWSTR word : std::span(words.get(), static_cast<std::size_t>(count))) texts.push_back(ToUtf8(word));
  return texts;
}

std::string EnvironmentVariable(const char* name) {
  const std::string_view ascii(name);
  const wchar_t* const value = _wgetenv(std::wstring(ascii.begin(), ascii.end()).c_str());
  return value == nullptr ? "" : ToUtf8(value);
}

#else

std::vector<std::string> CommandWords(std::span<const char* const> given) { return {given.begin(), given.end()}; }

std::string EnvironmentVariable(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

#endif

}  // namespace tessarlorn::cli
