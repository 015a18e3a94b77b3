#include "tsql/values/sql_error.h"

#include <algorithm>
#include <array>

#include "platform/server_messages.h"

namespace tessarlorn::tsql {
namespace {

struct State {
  std::int32_t native;
  const char* sqlstate;
};

// Sorted by native number. A number that does not stand here is an error in the statement.
constexpr std::array kStates = {
    State{207, "42S22"},   State{208, "42S02"},  State{220, "22003"},  State{241, "22007"},  State{242, "22007"},
    State{244, "22003"},   State{245, "22018"},  State{248, "22003"},  State{515, "23000"},  State{517, "22007"},
    State{547, "23000"},   State{823, "HY000"},  State{824, "HY000"},  State{1105, "HY000"}, State{1205, "40001"},
    State{1222, "HYT00"},  State{2601, "23000"}, State{2627, "23000"}, State{2628, "22001"}, State{3617, "HY008"},
    State{4060, "08004"},  State{8114, "22018"}, State{8115, "22003"}, State{8134, "22012"}, State{8152, "22001"},
    State{40000, "0A000"},
};

}  // namespace

bool SqlError::ends_statement_only() const noexcept {
  if (ends_batch_ || takes_back_) return false;
  switch (number_) {
    case 220:
    case 266:
    case 512:
    case 515:
    case 544:
    case 545:
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

bool SqlError::takes_transaction_back() const noexcept {
  constexpr std::array kConversions = {241, 242, 244, 245, 248, 295, 1205, 8114, 8169};
  if (takes_back_) return true;
  return !ends_batch_ && std::find(kConversions.begin(), kConversions.end(), number_) != kConversions.end();
}

Error ToError(const SqlError& error) {
  const auto* found = std::lower_bound(kStates.begin(), kStates.end(), error.number(),
                                       [](const State& state, std::int32_t number) { return state.native < number; });
  const bool known = found != kStates.end() && found->native == error.number();
  return {NumberOfServerError(error.number()).value_or(error_number::kStatementError), "TessarLorn embedded database",
          error.what(),
          NativeError{error.number(), known ? found->sqlstate : "42000", error.severity(), error.state(),
                      std::max(1, static_cast<int>(error.line())), error.procedure()}};
}

SqlError InnerError() {
  return {server_message::kInternalError, "Internal error: the embedded database could not run the statement.", 16};
}

SqlError NoNumbersHere() {
  return {11719,
          "NEXT VALUE FOR function is not allowed in check constraints, default objects, computed columns, views, "
          "user-defined functions, user-defined aggregates, user-defined table types, sub-queries, common table "
          "expressions, derived tables or return statements.",
          15};
}

SqlError Cancelled() { return {3617, "The statement was cancelled.", 11}; }

SqlError OutOfMemory(std::size_t megabytes) {
  return {server_message::kOutOfMemory,
          "There is insufficient memory to run this query" +
              (megabytes == 0 ? "." : ": it may take " + std::to_string(megabytes) + " MB."),
          17};
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
  SqlError error(server_message::kNotSupported, std::string(feature) + " is not supported by the embedded database.");
  error.set_line(line);
  throw error;
}

}  // namespace tessarlorn::tsql
