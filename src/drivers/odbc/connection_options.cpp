#include "drivers/odbc/connection_options.h"

#include "drivers/common/server_batches.h"
#include "drivers/odbc/odbc_error.h"
#include "platform/session_string.h"
#include "platform/text.h"

namespace tessarlorn::odbc {
namespace {

/// In braces only where ODBC would read the value otherwise: not every ODBC driver halves the braces that are doubled
/// within.
std::string Quoted(const std::string& value) {
  const bool plain = value.find(';') == std::string::npos && !value.starts_with('{') && Trim(value) == value;
  return plain ? value : "{" + ReplaceAll(value, "}", "}}") + "}";
}

/// What is wrong with a connection string, without any part of it but a key that is surely one: a password with ";" in
/// it that stands in no braces looks like further keys.
std::string WithoutUnknownKeys(const std::string& fault) {
  for (const std::string_view key :
       {"Driver", "DSN", "Server", "Port", "Database", "UID", "PWD", "Password", "LoginTimeout", "StatementTimeout"}) {
    for (const auto& [before, behind] :
         {std::pair{"The key ", " is doubled"}, std::pair{"The brace behind ", "= is not closed"},
          std::pair{"Text behind the closing brace of ", ""}}) {
      std::string text = before;
      text.append(key).append(behind);
      if (EqualsIgnoreCase(fault, "Session string: " + text)) return "Connection string: " + text;
    }
  }
  return "Connection string: it is no list of Key=value pairs with different keys. A value that holds \";\" stands in "
         "braces.";
}

bool IsPartOfWord(std::string_view text, std::size_t at) {
  return at < text.size() && IsNameCharacter(text[at]) && (text[at] & 0x80) == 0;
}

std::vector<std::pair<std::string, std::string>> ReadPairs(std::string_view text) {
  try {
    return ParsePairs(text);
  } catch (const Error& error) {
    RaiseLogin(WithoutUnknownKeys(error.description()));
  }
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
  ConnectionOptions options;
  for (const auto& [key, value] : ReadPairs(text)) {
    if (options.Take(key, value, kSource)) continue;
    if (EqualsIgnoreCase(key, "PWD") || EqualsIgnoreCase(key, "Password")) options.password = value;
    options.odbc_string += key + "=" + Quoted(value) + ";";
  }
  return options;
}

}  // namespace tessarlorn::odbc
