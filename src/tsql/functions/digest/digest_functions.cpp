// HASHBYTES, CHECKSUM and BINARY_CHECKSUM.
#include <array>
#include <bit>

#include "platform/text/text.h"
#include "platform/unicode/collation.h"
#include "tsql/functions/digest/digest.h"
#include "tsql/functions/functions.h"
#include "tsql/functions/sqlite_value.h"

namespace tessarlorn::tsql {
namespace {

// ts_hashbytes(algorithm, bytes): NULL for an unknown algorithm
void HashBytes(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (AnyNull(arguments)) return;
  struct Algorithm {
    std::string_view name;
    std::string (*digest)(std::string_view);
  };
  constexpr std::array kAlgorithms = {Algorithm{"md5", Md5}, Algorithm{"sha", Sha1}, Algorithm{"sha1", Sha1},
                                      Algorithm{"sha2_256", Sha256}, Algorithm{"sha2_512", Sha512}};
  const std::string_view wanted = TextOf(arguments[0]);
  if (EqualsIgnoreCase(wanted, "md2") || EqualsIgnoreCase(wanted, "md4")) {
    RaiseUnsupported("HASHBYTES with " + UpperCase(wanted));
  }
  for (const Algorithm& algorithm : kAlgorithms) {
    if (!EqualsIgnoreCase(algorithm.name, wanted)) continue;
    const auto* bytes = static_cast<const char*>(sqlite3_value_blob(arguments[1]));
    const auto size = static_cast<std::size_t>(sqlite3_value_bytes(arguments[1]));
    SetResult(context, Blob{algorithm.digest(bytes == nullptr ? std::string_view{} : std::string_view(bytes, size))});
  }
}

class Checksum {
 public:
  /// FNV-1a.
  void Add(std::uint64_t number, int size) {
    constexpr std::uint32_t kPrime = 16777619;
    for (int i = 0; i < size; ++i) sum_ = (sum_ ^ static_cast<std::uint8_t>(number >> (8 * i))) * kPrime;
  }
  /// As the text compares: without regard to case, width and trailing blanks.
  void AddFolded(std::string_view text) {
    while (text.ends_with(' ')) text.remove_suffix(1);
    for (std::size_t i = 0; i < text.size();) Add(FoldCharacter(NextCharacter(text, i)), 4);
  }
  void AddBytes(std::string_view bytes) {
    for (const char byte : bytes) Add(static_cast<std::uint8_t>(byte), 1);
  }
  [[nodiscard]] std::int32_t sum() const { return static_cast<std::int32_t>(sum_); }

 private:
  std::uint32_t sum_ = 2166136261U;
};

// ts_checksum(binary, value, …): binary: texts count byte by byte
void ChecksumOf(sqlite3_context* context, Runtime&, Arguments arguments) {
  Checksum checksum;
  const bool binary = sqlite3_value_int(arguments[0]) != 0;
  for (sqlite3_value* value : arguments.subspan(1)) {
    const int kind = sqlite3_value_type(value);
    checksum.Add(static_cast<std::uint64_t>(kind), 1);
    if (kind == SQLITE_INTEGER) {
      checksum.Add(static_cast<std::uint64_t>(sqlite3_value_int64(value)), 8);
    } else if (kind == SQLITE_TEXT && !binary) {
      checksum.AddFolded(TextOf(value));
    } else if (kind == SQLITE_FLOAT) {
      // The two zeros are equal.
      checksum.Add(std::bit_cast<std::uint64_t>(sqlite3_value_double(value) + 0.0), 8);
    } else if (kind != SQLITE_NULL) {
      checksum.AddBytes(TextOf(value));
    }
  }
  sqlite3_result_int64(context, checksum.sum());
}

}  // namespace

void RegisterDigestFunctions(sqlite3* database, Runtime& runtime) {
  RegisterFunction(database, runtime, "ts_hashbytes", 2, HashBytes);
  RegisterFunction(database, runtime, "ts_checksum", -1, ChecksumOf);
}

}  // namespace tessarlorn::tsql
