#include "drivers/odbc/odbc_error.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/server_messages.h"

namespace tessarlorn::odbc {
namespace {

constexpr std::int32_t kLoginFailed = 18456;
/// Errors behind which the server ends the connection: a shutdown, and a session that was killed.
constexpr std::array kEndings = {6005, 596};

constexpr std::string_view kNoReason = "The ODBC driver failed and does not say why";

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
  if (const auto number = NumberOfServerError(cause.native)) return *number;
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

bool IsConnectionLost(const Diagnostic& record) {
  return record.sqlstate.starts_with("08") ||
         std::find(kEndings.begin(), kEndings.end(), record.native) != kEndings.end();
}

bool GoesOn(const Diagnostic& record) {
  return record.native > 0 && !IsConnectionLost(record) && !record.sqlstate.starts_with("HYT") &&
         record.sqlstate != "HY008" && record.sqlstate != "HY010";
}

Diagnostic Cause(const std::vector<Diagnostic>& records) {
  const auto error = [](const Diagnostic& record) { return !IsInformation(record); };
  const auto cause = [&error](const Diagnostic& record) {
    return error(record) && record.native != 0 && record.native != server_message::kStatementTerminated.number;
  };
  auto found = std::find_if(records.begin(), records.end(), cause);
  if (found == records.end()) found = std::find_if(records.begin(), records.end(), error);
  if (found != records.end()) return *found;
  return records.empty() ? Diagnostic{"HY000", 0, std::string(kNoReason)} : records.front();
}

Diagnostic LoginCause(const std::vector<Diagnostic>& records) {
  std::vector<Diagnostic> others = records;
  std::erase_if(others, [](const Diagnostic& record) { return record.native == kLoginFailed; });
  const Diagnostic other = Cause(others);
  return other.native > 0 && !IsInformation(other) ? other : Cause(records);
}

Diagnostic OfLostConnection(Diagnostic cause) {
  if (cause.sqlstate.starts_with("HYT") || cause.sqlstate == "HY008") return cause;
  const bool says_why =
      !IsInformation(cause) && cause.text != kNoReason && cause.text != "Unknown error" && !cause.text.empty();
  if (!cause.sqlstate.starts_with("08")) cause.sqlstate = "08S01";
  if (cause.native == 0) {
    cause.text = says_why ? "The connection to the server was lost: " + cause.text
                          : std::string("The connection to the server was lost");
  }
  return cause;
}

Error ToError(const Diagnostic& cause) { return Make(NumberOf(cause), cause); }

Error ToLoginError(const Diagnostic& cause) {
  const bool timeout = NumberOf(cause) == error_number::kTimeout;
  return Make(timeout ? error_number::kTimeout : error_number::kLoginRefused, cause);
}

void RaiseCancelled() { throw ToError({"HY008", 0, "The batch was cancelled."}); }

}  // namespace tessarlorn::odbc
