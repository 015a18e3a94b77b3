#include "drivers/odbc/connection_options.h"

#include <algorithm>
#include <array>

#include "drivers/odbc/odbc_error.h"
#include "platform/driver_options.h"
#include "platform/session_string.h"
#include "platform/text/text.h"

namespace tessarlorn::odbc {
namespace {

/// In braces only where ODBC would read the value otherwise: not every ODBC driver halves the braces that are doubled
/// within.
std::string ValueText(const std::string& value) {
  const bool plain = value.find(';') == std::string::npos && !value.starts_with('{') && Trim(value) == value;
  return plain ? value : Quoted(value, '{', '}');
}

/// What is wrong with a connection string, without any part of it but a key that is surely one: a password with ";" in
/// it that stands in no braces looks like further keys.
std::string DescriptionOf(const PairsFault& fault) {
  constexpr std::array<std::string_view, 10> kKnownKeys = {
      "Driver", "DSN", "Server", "Port", "Database", "UID", "PWD", "Password", "LoginTimeout", "StatementTimeout"};
  const bool known = std::any_of(kKnownKeys.begin(), kKnownKeys.end(),
                                 [&fault](std::string_view key) { return EqualsIgnoreCase(key, fault.key); });
  return "Connection string: " + (known ? fault.description
                                        : "it is no list of Key=value pairs with different keys. A value that holds "
                                          "\";\" stands in braces.");
}

bool IsPartOfWord(std::string_view text, std::size_t at) {
  return at < text.size() && IsNameCharacter(text[at]) && (text[at] & 0x80) == 0;
}

}  // namespace

std::string ConnectionOptions::WithoutPassword(std::string_view text) const {
  std::string result;
  for (std::size_t at = 0;;) {
    const std::size_t found = password.empty() ? std::string_view::npos : text.find(password, at);
    result += text.substr(at, found - at);
    if (found == std::string_view::npos) return result;
    at = found + password.size();
    const bool whole = !(found > 0 && IsPartOfWord(text, found - 1)) && !IsPartOfWord(text, at);
    result += whole ? "***" : std::string_view(password);
  }
}

ConnectionOptions ParseConnectionOptions(std::string_view text) {
  const auto pairs = ReadPairs(text);
  if (const auto* fault = std::get_if<PairsFault>(&pairs)) RaiseLogin(kSource, DescriptionOf(*fault));
  ConnectionOptions options;
  for (const auto& [key, value] : std::get<Pairs>(pairs)) {
    if (options.Take(key, value, kSource)) continue;
    if (EqualsIgnoreCase(key, "PWD") || EqualsIgnoreCase(key, "Password")) options.password = value;
    options.odbc_string += key + "=" + ValueText(value) + ";";
  }
  return options;
}

}  // namespace tessarlorn::odbc
