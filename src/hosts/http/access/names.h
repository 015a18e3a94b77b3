// Names of users, tokens and roles, and what is said when one is at fault.
#pragma once

#include <string>
#include <string_view>

#include "tessarlorn/sql_command.h"

namespace tessarlorn::http {

/// Whether it may name a user, a token or a role: 1 to 64 UTF-16 units of well-formed UTF-8, without a comma or a
/// control character, and no blank at either end.
bool IsName(std::string_view text);

/// Raises 5 unless it is one. @param what "user", "token" or "role"
void RequireName(std::string_view what, std::string_view text);

/// @pre IsName(text), or it is empty
SqlParameter NameParameter(const char* parameter, std::string_view text);

/// Raises 5.
[[noreturn]] void RaiseInvalid(const std::string& why);

}  // namespace tessarlorn::http
