#include "serve/users.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/rand.h>
#include <optional>
#include <vector>

#include "platform/error.h"
#include "platform/text.h"

namespace tessarlorn::serve {
namespace {

constexpr std::string_view kScheme = "pbkdf2-sha256";
constexpr int kMostIterations = 10'000'000;
constexpr std::size_t kSaltSize = 16;
constexpr std::size_t kHashSize = 32;

using Hash = std::array<unsigned char, kHashSize>;

std::optional<std::vector<unsigned char>> FromHex(std::string_view text) {
  if (text.size() % 2 != 0) return std::nullopt;
  std::vector<unsigned char> bytes;
  for (std::size_t i = 0; i < text.size(); i += 2) {
    unsigned char byte = 0;
    const char* const end = text.data() + i + 2;
    if (const auto [last, error] = std::from_chars(text.data() + i, end, byte, 16);
        error != std::errc{} || last != end) {
      return std::nullopt;
    }
    bytes.push_back(byte);
  }
  return bytes;
}

Hash Derive(std::string_view password, const std::vector<unsigned char>& salt, int iterations) {
  Hash hash{};
  if (PKCS5_PBKDF2_HMAC(password.data(), static_cast<int>(password.size()), salt.data(), static_cast<int>(salt.size()),
                        iterations, EVP_sha256(), static_cast<int>(hash.size()), hash.data()) != 1) {
    Raise(error_number::kInternalError, "The password could not be hashed");
  }
  return hash;
}

struct StoredHash {
  int iterations = 0;
  std::vector<unsigned char> salt;
  std::vector<unsigned char> hash;
};

std::optional<StoredHash> ReadHash(std::string_view text) {
  const std::vector<std::string_view> parts = Split(text, '$');
  if (parts.size() != 4 || parts[0] != kScheme) return std::nullopt;
  StoredHash stored;
  const char* const end = parts[1].data() + parts[1].size();
  const auto [last, error] = std::from_chars(parts[1].data(), end, stored.iterations);
  const auto salt = FromHex(parts[2]);
  const auto hash = FromHex(parts[3]);
  if (error != std::errc{} || last != end || stored.iterations < 1 || stored.iterations > kMostIterations || !salt ||
      salt->empty() || !hash || hash->size() != kHashSize) {
    return std::nullopt;
  }
  stored.salt = *salt;
  stored.hash = *hash;
  return stored;
}

std::string_view WithoutReturn(std::string_view line) {
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

std::string HashPassword(std::string_view password, int iterations) {
  std::vector<unsigned char> salt(kSaltSize);
  if (RAND_bytes(salt.data(), static_cast<int>(salt.size())) != 1) {
    Raise(error_number::kInternalError, "The system gives no random numbers");
  }
  const Hash hash = Derive(password, salt, iterations);
  return std::string(kScheme) + "$" + std::to_string(iterations) + "$" + HexText(salt.data(), salt.size()) + "$" +
         HexText(hash.data(), hash.size());
}

}  // namespace

Users Users::Read(const std::string& file) {
  const auto refuse = [&file](const std::string& why) {
    Raise(error_number::kInvalidArgument, "The users' file " + file + " " + why);
  };
  std::ifstream in(file);
  if (!in) refuse(std::string("cannot be read: ") + std::strerror(errno));
  std::error_code unknown;
  const auto rights = std::filesystem::status(file, unknown).permissions();
  if ((rights & (std::filesystem::perms::group_write | std::filesystem::perms::others_write)) !=
      std::filesystem::perms::none) {
    refuse("may be written by others than its owner");
  }
  Users users;
  std::string line;
  for (int number = 1; std::getline(in, line); ++number) {
    const std::string_view text = WithoutReturn(line);
    if (Trim(text).empty() || text.starts_with('#')) continue;
    const std::size_t colon = text.find(':');
    if (colon == 0 || colon == std::string_view::npos || !ReadHash(text.substr(colon + 1))) {
      refuse("has no user and hash in line " + std::to_string(number));
    }
    if (!users.hashes_.emplace(LowerCase(text.substr(0, colon)), text.substr(colon + 1)).second) {
      refuse("has a user twice: line " + std::to_string(number));
    }
  }
  if (users.hashes_.empty()) refuse("has no user");
  return users;
}

bool Users::Check(std::string_view name, std::string_view password) const {
  const auto found = hashes_.find(LowerCase(name));
  static const std::string other = HashPassword("", kHashIterations);
  const bool known = found != hashes_.end();
  const StoredHash stored = *ReadHash(known ? found->second : other);
  const Hash hash = Derive(password, stored.salt, stored.iterations);
  return CRYPTO_memcmp(hash.data(), stored.hash.data(), hash.size()) == 0 && known;
}

void AddUser(const std::string& file, std::string_view name, std::string_view password, int iterations) {
  const bool plain =
      std::none_of(name.begin(), name.end(), [](char c) { return c == ':' || static_cast<unsigned char>(c) < ' '; });
  if (name.empty() || !plain || name.front() == '#' || !IsValidUtf8(name)) {
    Raise(error_number::kInvalidArgument,
          "'" + std::string(name) + "' is no name of a user: it is empty, begins with # or has a colon");
  }
  if (password.empty()) Raise(error_number::kInvalidArgument, "The password is empty");
  std::vector<std::string> lines;
  std::error_code unknown;
  if (std::filesystem::exists(file, unknown)) {
    std::ifstream in(file);
    if (!in) Raise(error_number::kInvalidArgument, "The users' file " + file + " cannot be read");
    for (std::string line; std::getline(in, line);) {
      if (!EqualsIgnoreCase(line.substr(0, line.find(':')), name)) lines.emplace_back(WithoutReturn(line));
    }
  }
  lines.push_back(std::string(name) + ":" + HashPassword(password, iterations));
  const auto refuse = [&file] {
    Raise(error_number::kInvalidArgument, "The users' file " + file + " cannot be written: " + std::strerror(errno));
  };
  // The new file takes the old one's place whole, and nobody else may read it meanwhile.
  const std::string fresh = file + ".new";
  {
    std::ofstream out(fresh, std::ios::trunc);
    if (!out) refuse();
    std::filesystem::permissions(fresh, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write,
                                 unknown);
    for (const std::string& line : lines) out << line << '\n';
    out.flush();
    if (!out) refuse();
  }
  std::filesystem::rename(fresh, file, unknown);
  if (unknown) {
    errno = unknown.value();
    refuse();
  }
}

}  // namespace tessarlorn::serve
