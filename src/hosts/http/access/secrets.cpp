#include "hosts/http/access/secrets.h"

#include <array>
#include <cstdint>
#include <sodium.h>

#include "tessarlorn/error.h"

namespace tessarlorn::http {
namespace {

constexpr auto kOperations = crypto_pwhash_argon2id_OPSLIMIT_INTERACTIVE;
constexpr auto kMemory = crypto_pwhash_argon2id_MEMLIMIT_INTERACTIVE;

/// The library chooses its means once, before anything else.
void RequireLibrary() {
  static const bool ready = sodium_init() >= 0;
  if (!ready) Raise(error_number::kInternalError, "The system gives no random numbers");
}

}  // namespace

std::string RandomText() {
  RequireLibrary();
  std::array<unsigned char, 32> bytes{};
  randombytes_buf(bytes.data(), bytes.size());
  constexpr int kForm = sodium_base64_VARIANT_URLSAFE_NO_PADDING;
  std::array<char, sodium_base64_ENCODED_LEN(bytes.size(), kForm)> text{};
  sodium_bin2base64(text.data(), text.size(), bytes.data(), bytes.size(), kForm);
  sodium_memzero(bytes.data(), bytes.size());
  return text.data();
}

Bytes Sha256(std::string_view text) {
  RequireLibrary();
  Bytes hash(crypto_hash_sha256_BYTES);
  crypto_hash_sha256(hash.data(), reinterpret_cast<const unsigned char*>(text.data()), text.size());
  return hash;
}

std::string HashPassword(std::string_view password) {
  RequireLibrary();
  std::array<char, crypto_pwhash_argon2id_STRBYTES> text{};
  if (crypto_pwhash_argon2id_str(text.data(), password.data(), password.size(), kOperations, kMemory) != 0) {
    Raise(error_number::kOutOfMemory, "There is not enough memory to hash a password");
  }
  return text.data();
}

bool IsPassword(std::string_view password, const std::string& hash) {
  RequireLibrary();
  return crypto_pwhash_argon2id_str_verify(hash.c_str(), password.data(), password.size()) == 0;
}

bool IsOutdatedHash(const std::string& hash) {
  return crypto_pwhash_argon2id_str_needs_rehash(hash.c_str(), kOperations, kMemory) != 0;
}

}  // namespace tessarlorn::http
