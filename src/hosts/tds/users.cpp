#include "hosts/tds/users.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/rand.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "hosts/listening/listening.h"
#include "platform/text/text.h"
#include "tessarlorn/error.h"

namespace tessarlorn::tds {
namespace {

constexpr std::string_view kScheme = "pbkdf2-sha256";
constexpr int kMostIterations = 10'000'000;
constexpr std::size_t kSaltSize = 16;
constexpr std::size_t kHashSize = 32;

using Hash = std::array<unsigned char, kHashSize>;

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
  const auto iterations = WholeNumber<int>(parts[1], 1, kMostIterations);
  const auto salt = BytesOfHex(parts[2]);
  const auto hash = BytesOfHex(parts[3]);
  if (!iterations || !salt || salt->empty() || !hash || hash->size() != kHashSize) return std::nullopt;
  return StoredHash{*iterations, {salt->begin(), salt->end()}, {hash->begin(), hash->end()}};
}

[[noreturn]] void Refuse(const std::string& file, const std::string& why) {
  Raise(error_number::kInvalidArgument, "The users' file " + file + " " + why);
}

[[noreturn]] void RefuseBySystem(const std::string& file, const std::string& what) {
  Refuse(file, what + ": " + std::strerror(errno));
}

/// The file's lines, nothing when there is no file.
std::optional<std::vector<std::string>> ReadLines(const std::string& file) {
  const Descriptor in(open(file.c_str(), O_RDONLY | O_CLOEXEC));
  if (in.get() < 0 && errno == ENOENT) return std::nullopt;
  struct stat status {};
  if (in.get() < 0 || fstat(in.get(), &status) != 0) RefuseBySystem(file, "cannot be read");
  if ((status.st_mode & (S_IWGRP | S_IWOTH)) != 0) Refuse(file, "may be written by others than its owner");
  if (status.st_uid != geteuid() && status.st_uid != 0) Refuse(file, "belongs to another user of this machine");
  std::string text;
  std::array<char, 4096> buffer;
  ssize_t size = 0;
  while ((size = read(in.get(), buffer.data(), buffer.size())) > 0) {
    text.append(buffer.data(), static_cast<std::size_t>(size));
  }
  if (size < 0) RefuseBySystem(file, "cannot be read");
  if (text.ends_with('\n')) text.pop_back();
  std::vector<std::string> lines;
  for (std::string_view line : Split(text, '\n')) {
    if (line.ends_with('\r')) line.remove_suffix(1);
    lines.emplace_back(line);
  }
  return lines;
}

/// Makes the file, which nobody else may read or have laid in the way.
void WriteFresh(const std::string& file, std::string_view text) {
  unlink(file.c_str());
  const Descriptor out(open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
  if (out.get() < 0) RefuseBySystem(file, "cannot be written");
  while (!text.empty()) {
    const ssize_t size = write(out.get(), text.data(), text.size());
    if (size < 0) RefuseBySystem(file, "cannot be written");
    text.remove_prefix(static_cast<std::size_t>(size));
  }
  if (fsync(out.get()) != 0) RefuseBySystem(file, "cannot be written");
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
  const std::optional<std::vector<std::string>> lines = ReadLines(file);
  if (!lines) RefuseBySystem(file, "cannot be read");
  Users users;
  for (std::size_t i = 0; i < lines->size(); ++i) {
    const std::string_view text = (*lines)[i];
    if (Trim(text).empty() || text.starts_with('#')) continue;
    const std::size_t colon = text.find(':');
    if (colon == 0 || colon == std::string_view::npos || !ReadHash(text.substr(colon + 1))) {
      Refuse(file, "has no user and hash in line " + std::to_string(i + 1));
    }
    if (!users.hashes_.emplace(LowerCase(text.substr(0, colon)), text.substr(colon + 1)).second) {
      Refuse(file, "has a user twice: line " + std::to_string(i + 1));
    }
  }
  if (users.hashes_.empty()) Refuse(file, "has no user");
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
  std::string text;
  for (const std::string& line : ReadLines(file).value_or(std::vector<std::string>())) {
    if (!EqualsIgnoreCase(line.substr(0, line.find(':')), name)) text += line + "\n";
  }
  text += std::string(name) + ":" + HashPassword(password, iterations) + "\n";
  // The new file takes the old one's place whole.
  const std::string fresh = file + ".new";
  WriteFresh(fresh, text);
  if (std::rename(fresh.c_str(), file.c_str()) != 0) RefuseBySystem(file, "cannot be written");
}

}  // namespace tessarlorn::tds
