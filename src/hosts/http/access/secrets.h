// Tokens and cookies, and the hashes that are kept of them and of passwords.
#pragma once

#include <string>
#include <string_view>

#include "tessarlorn/variant.h"

namespace tessarlorn::http {

/// 32 random bytes as base64url: 43 letters, digits, - and _.
std::string RandomText();

/// The SHA-256 of a text.
Bytes Sha256(std::string_view text);

/// Argon2id with a new salt, as one text. Takes 64 MB and about a tenth of a second.
std::string HashPassword(std::string_view password);
/// Whether the hash is that of the password. Costs as much as HashPassword.
bool IsPassword(std::string_view password, const std::string& hash);
/// Whether the hash was made with other costs than HashPassword has now.
bool IsOutdatedHash(const std::string& hash);

}  // namespace tessarlorn::http
