// Passwords that are typed, or come from standard input.
#pragma once

#include <string>

namespace tessarlorn::cli {

/// Reads a line of standard input. On a terminal it asks for the password on standard error, twice, and does not show
/// what is typed. Raises UsageError when the two differ.
/// @param user whose password it is
std::string ReadNewPassword(const std::string& user);

}  // namespace tessarlorn::cli
