// Tokens of programs: they are made, listed and revoked.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "tessarlorn/connection.h"

namespace tessarlorn::http {

/// A new token of a user, which nobody can read again: "tl_" and 43 characters. Raises 5 naming what is at fault: an
/// unknown user, a name that is taken or is none.
/// @param days until it expires, from 1; nothing for never
std::string AddToken(Connection& connection, std::string_view name, std::string_view user, std::optional<int> days);

/// Raises 5 when the user has no such token.
void RevokeToken(Connection& connection, std::string_view name, std::string_view user);

/// User, Token, Made, Expires, Used, Expired; times are UTC. @param user "" for all
RecordsetPtr ListTokens(Connection& connection, std::string_view user);

}  // namespace tessarlorn::http
