#include "drivers/odbc/connection_options.h"

#include <charconv>

#include "drivers/odbc/odbc_error.h"
#include "platform/session_string.h"
#include "platform/text.h"

namespace tessarlorn::odbc {
namespace {

int ReadSeconds(std::string_view key, std::string_view value) {
  int seconds = 0;
  const auto [end, fault] = std::from_chars(value.data(), value.data() + value.size(), seconds);
  if (fault != std::errc{} || end != value.data() + value.size() || seconds < 0 || seconds > 86400) {
    RaiseLogin(std::string(key) + " in the connection string is '" + std::string(value) +
               "'; a number of seconds from 0 to 86400 is wanted.");
  }
  return seconds;
}

/// In braces where ODBC would read the value otherwise.
std::string Quoted(const std::string& value) {
  const bool plain = value.find_first_of("[]{}(),;?*=!@") == std::string::npos && Trim(value) == value;
  return plain ? value : "{" + ReplaceAll(value, "}", "}}") + "}";
}

std::vector<std::pair<std::string, std::string>> ReadPairs(std::string_view text) {
  try {
    return ParsePairs(text);
  } catch (const Error& error) {
    // A password with ";" in it that stands in no braces looks like a key: the text must not repeat it.
    if (error.description().find("\"=\"") == std::string::npos) RaiseLogin(error.description());
    RaiseLogin("The connection string has a part without \"=\"; a value that holds \";\" stands in braces.");
  }
}

}  // namespace

std::string ConnectionOptions::WithoutPassword(std::string_view text) const {
  return password.empty() ? std::string(text) : ReplaceAll(text, password, "***");
}

ConnectionOptions ParseConnectionOptions(std::string_view text) {
  ConnectionOptions options;
  for (const auto& [key, value] : ReadPairs(text)) {
    if (EqualsIgnoreCase(key, "LoginTimeout")) {
      options.login_timeout = ReadSeconds(key, value);
    } else if (EqualsIgnoreCase(key, "StatementTimeout")) {
      options.statement_timeout = ReadSeconds(key, value);
    } else {
      if (EqualsIgnoreCase(key, "PWD") || EqualsIgnoreCase(key, "Password")) options.password = value;
      options.odbc_string += key + "=" + Quoted(value) + ";";
    }
  }
  return options;
}

}  // namespace tessarlorn::odbc
