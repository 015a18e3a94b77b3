#include "drivers/common/server_batches.h"

#include <charconv>
#include <string>
#include <system_error>

#include "platform/text.h"
#include "tessarlorn/error.h"

namespace tessarlorn {
namespace {

[[noreturn]] void RaiseAs(std::string_view driver, std::int32_t native, const std::string& description) {
  throw Error(error_number::kStatementError, std::string(driver), description, {.number = native, .sqlstate = "42000"});
}

}  // namespace

std::int32_t NumberSink::Number(std::string_view driver) const {
  if (!number_) {
    throw Error(error_number::kDatabaseFailure, std::string(driver),
                "The server does not answer how many transactions are open.", {.sqlstate = "HY000"});
  }
  return *number_;
}

void RaiseTransactionOpen(std::string_view driver) {
  RaiseAs(driver, 3988, "New transaction is not allowed because there is another transaction open.");
}

void RaiseNoTransaction(std::string_view driver) {
  RaiseAs(driver, 3902,
          "The COMMIT TRANSACTION request has no corresponding BEGIN TRANSACTION: the transaction was ended before.");
}

void RefuseNul(std::string_view batch, std::string_view driver) {
  if (batch.find('\0') == std::string_view::npos) return;
  RaiseAs(driver, 0, "The batch has a character U+0000 in it and was not sent.");
}

bool TimeOuts::Take(std::string_view key, std::string_view value, std::string_view driver) {
  const bool login = EqualsIgnoreCase(key, "LoginTimeout");
  if (!login && !EqualsIgnoreCase(key, "StatementTimeout")) return false;
  constexpr int kMostSeconds = 86400;
  int seconds = 0;
  const char* const last = value.data() + value.size();
  const auto [end, fault] = std::from_chars(value.data(), last, seconds);
  if (fault != std::errc{} || end != last || seconds < 0 || seconds > kMostSeconds) {
    throw Error(error_number::kLoginRefused, std::string(driver),
                std::string(key) + " in the connection string is no number of seconds from 0 to 86400.",
                {.sqlstate = "08001"});
  }
  (login ? login_timeout : statement_timeout) = seconds;
  return true;
}

}  // namespace tessarlorn
