// Digests of bytes: MD5, SHA-1 and SHA-2.
#pragma once

#include <string>
#include <string_view>

namespace tessarlorn::tsql {

std::string Md5(std::string_view bytes);     // 16 bytes
std::string Sha1(std::string_view bytes);    // 20 bytes
std::string Sha256(std::string_view bytes);  // 32 bytes
std::string Sha512(std::string_view bytes);  // 64 bytes

}  // namespace tessarlorn::tsql
