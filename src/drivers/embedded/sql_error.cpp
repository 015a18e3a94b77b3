#include "drivers/embedded/sql_error.h"

#include <algorithm>
#include <array>

namespace tessarlorn::embedded {
namespace {

struct Mapping {
  std::int32_t native;
  std::int32_t number;
  const char* sqlstate;
};

// Sorted by native number. A number that does not stand here is an error in the statement.
constexpr std::array kMappings = {
    Mapping{207, error_number::kStatementError, "42S22"},    Mapping{208, error_number::kNoSuchTable, "42S02"},
    Mapping{220, error_number::kDataOverflow, "22003"},      Mapping{241, error_number::kConversionFailed, "22007"},
    Mapping{242, error_number::kDataOverflow, "22007"},      Mapping{244, error_number::kDataOverflow, "22003"},
    Mapping{245, error_number::kConversionFailed, "22018"},  Mapping{248, error_number::kDataOverflow, "22003"},
    Mapping{515, error_number::kConstraintBroken, "23000"},  Mapping{517, error_number::kDataOverflow, "22007"},
    Mapping{547, error_number::kConstraintBroken, "23000"},  Mapping{823, error_number::kDatabaseFailure, "HY000"},
    Mapping{824, error_number::kDatabaseFailure, "HY000"},   Mapping{1105, error_number::kDatabaseFailure, "HY000"},
    Mapping{1205, error_number::kAbortedDeadlock, "40001"},  Mapping{1222, error_number::kTimeout, "HYT00"},
    Mapping{2601, error_number::kConstraintBroken, "23000"}, Mapping{2627, error_number::kConstraintBroken, "23000"},
    Mapping{2628, error_number::kStatementError, "22001"},   Mapping{3617, error_number::kCancelled, "HY008"},
    Mapping{3906, error_number::kPermissionDenied, "42000"}, Mapping{4060, error_number::kLoginRefused, "08004"},
    Mapping{8114, error_number::kConversionFailed, "22018"}, Mapping{8115, error_number::kDataOverflow, "22003"},
    Mapping{8134, error_number::kDataOverflow, "22012"},     Mapping{8152, error_number::kStatementError, "22001"},
    Mapping{40000, error_number::kNotSupported, "0A000"},
};

}  // namespace

bool SqlError::ends_statement_only() const noexcept {
  if (ends_batch_) return false;
  switch (number_) {
    case 220:
    case 512:
    case 515:
    case 547:
    case 2601:
    case 2627:
    case 2628:
    case 2812:
    case 3701:
    case 8115:
    case 8134:
    case 8152:
    case 50000:
      return true;
    default:
      return false;
  }
}

Error ToError(const SqlError& error) {
  const auto* found =
      std::lower_bound(kMappings.begin(), kMappings.end(), error.number(),
                       [](const Mapping& mapping, std::int32_t number) { return mapping.native < number; });
  const bool known = found != kMappings.end() && found->native == error.number();
  return {known ? found->number : error_number::kStatementError, "TessarLorn embedded database", error.what(),
          NativeError{error.number(), known ? found->sqlstate : "42000", error.severity(), error.state(),
                      std::max(1, static_cast<int>(error.line()))}};
}

void RaiseSyntax(std::string_view near, bool keyword, std::uint32_t line) {
  SqlError error(keyword ? 156 : 102,
                 std::string(keyword ? "Incorrect syntax near the keyword '" : "Incorrect syntax near '") +
                     std::string(near) + "'.",
                 15);
  error.set_line(line);
  throw error;
}

void RaiseUnsupported(std::string_view feature, std::uint32_t line) {
  SqlError error(40000, std::string(feature) + " is not supported by the embedded database.");
  error.set_line(line);
  throw error;
}

}  // namespace tessarlorn::embedded
