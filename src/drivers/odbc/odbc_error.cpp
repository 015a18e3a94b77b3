#include "drivers/odbc/odbc_error.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

namespace tessarlorn::odbc {
namespace {

/// Said behind the error that ended a statement; never the cause.
constexpr std::int32_t kStatementTerminated = 3621;

struct NativeMapping {
  std::int32_t native;
  std::int32_t number;
};

// By the server's number, sorted.
constexpr std::array kByNative = {
    NativeMapping{208, error_number::kNoSuchTable},       NativeMapping{220, error_number::kDataOverflow},
    NativeMapping{229, error_number::kPermissionDenied},  NativeMapping{230, error_number::kPermissionDenied},
    NativeMapping{241, error_number::kConversionFailed},  NativeMapping{242, error_number::kConversionFailed},
    NativeMapping{244, error_number::kDataOverflow},      NativeMapping{245, error_number::kConversionFailed},
    NativeMapping{248, error_number::kDataOverflow},      NativeMapping{262, error_number::kPermissionDenied},
    NativeMapping{297, error_number::kPermissionDenied},  NativeMapping{300, error_number::kPermissionDenied},
    NativeMapping{515, error_number::kConstraintBroken},  NativeMapping{517, error_number::kDataOverflow},
    NativeMapping{547, error_number::kConstraintBroken},  NativeMapping{823, error_number::kDatabaseFailure},
    NativeMapping{824, error_number::kDatabaseFailure},   NativeMapping{1105, error_number::kDatabaseFailure},
    NativeMapping{1205, error_number::kAbortedDeadlock},  NativeMapping{1222, error_number::kTimeout},
    NativeMapping{2601, error_number::kConstraintBroken}, NativeMapping{2627, error_number::kConstraintBroken},
    NativeMapping{2628, error_number::kDataOverflow},     NativeMapping{3617, error_number::kCancelled},
    NativeMapping{3906, error_number::kPermissionDenied}, NativeMapping{4060, error_number::kLoginRefused},
    NativeMapping{8114, error_number::kConversionFailed}, NativeMapping{8115, error_number::kDataOverflow},
    NativeMapping{8134, error_number::kDataOverflow},     NativeMapping{8152, error_number::kDataOverflow},
    NativeMapping{9002, error_number::kDatabaseFailure},  NativeMapping{18456, error_number::kLoginRefused},
    NativeMapping{40000, error_number::kNotSupported},
};
static_assert(std::is_sorted(kByNative.begin(), kByNative.end(),
                             [](const NativeMapping& a, const NativeMapping& b) { return a.native < b.native; }));

struct StateMapping {
  std::string_view prefix;
  std::int32_t number;
};

// By SQLSTATE, the first prefix that fits; for what the native number does not say.
constexpr std::array kByState = {
    StateMapping{"HYT", error_number::kTimeout},
    StateMapping{"HY008", error_number::kCancelled},
    StateMapping{"28000", error_number::kLoginRefused},
    StateMapping{"08001", error_number::kLoginRefused},
    StateMapping{"08004", error_number::kLoginRefused},
    StateMapping{"08", error_number::kDatabaseFailure},
    StateMapping{"42S02", error_number::kNoSuchTable},
    StateMapping{"42", error_number::kStatementError},
    StateMapping{"23", error_number::kConstraintBroken},
    StateMapping{"22018", error_number::kConversionFailed},
    StateMapping{"22007", error_number::kConversionFailed},
    StateMapping{"22", error_number::kDataOverflow},
    StateMapping{"40001", error_number::kAbortedDeadlock},
    StateMapping{"0A", error_number::kNotSupported},
};

std::optional<std::int32_t> NumberOfState(std::string_view sqlstate) {
  const auto* found = std::find_if(kByState.begin(), kByState.end(), [sqlstate](const StateMapping& mapping) {
    return sqlstate.starts_with(mapping.prefix);
  });
  if (found == kByState.end()) return std::nullopt;
  return found->number;
}

std::int32_t NumberOf(const Diagnostic& cause) {
  const auto* found =
      std::lower_bound(kByNative.begin(), kByNative.end(), cause.native,
                       [](const NativeMapping& mapping, std::int32_t native) { return mapping.native < native; });
  if (found != kByNative.end() && found->native == cause.native) return found->number;
  if (const auto number = NumberOfState(cause.sqlstate)) return *number;
  // A number of the server's own that stands nowhere is an error in the statement.
  return cause.native > 0 ? error_number::kStatementError : error_number::kDatabaseFailure;
}

Error Make(std::int32_t number, const Diagnostic& cause) {
  NativeError native;
  native.number = cause.native;
  native.sqlstate = cause.sqlstate;
  return {number, kSource, cause.text, std::move(native)};
}

}  // namespace

bool IsInformation(const Diagnostic& record) { return record.sqlstate.starts_with("01"); }

bool IsConnectionLost(const Diagnostic& record) { return record.sqlstate.starts_with("08"); }

bool GoesOn(const Diagnostic& record) {
  return record.native > 0 && !IsConnectionLost(record) && !record.sqlstate.starts_with("HYT") &&
         record.sqlstate != "HY008" && record.sqlstate != "HY010";
}

Diagnostic Cause(const std::vector<Diagnostic>& records) {
  const auto error = [](const Diagnostic& record) { return !IsInformation(record); };
  const auto cause = [&error](const Diagnostic& record) {
    return error(record) && record.native != 0 && record.native != kStatementTerminated;
  };
  auto found = std::find_if(records.begin(), records.end(), cause);
  if (found == records.end()) found = std::find_if(records.begin(), records.end(), error);
  if (found != records.end()) return *found;
  return records.empty() ? Diagnostic{"HY000", 0, "The ODBC driver failed and does not say why"} : records.front();
}

Error ToError(const Diagnostic& cause) { return Make(NumberOf(cause), cause); }

Error ToLoginError(const Diagnostic& cause) {
  const bool timeout = NumberOf(cause) == error_number::kTimeout;
  return Make(timeout ? error_number::kTimeout : error_number::kLoginRefused, cause);
}

void RaiseLogin(const std::string& description) { throw ToLoginError({"08001", 0, description}); }

}  // namespace tessarlorn::odbc
