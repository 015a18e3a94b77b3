#include "drivers/common/server_batches.h"

#include <string>

#include "platform/driver_options.h"
#include "platform/server_messages.h"
#include "platform/text/text.h"
#include "tessarlorn/error.h"

namespace tessarlorn {
namespace {

[[noreturn]] void RaiseAs(std::string_view driver, const server_message::Known& message) {
  throw Error(error_number::kStatementError, std::string(driver), message.text, {message.number, "42000"});
}

}  // namespace

std::int32_t NumberSink::Number(std::string_view driver) const {
  if (!number_) {
    throw Error(error_number::kDatabaseFailure, std::string(driver),
                "The server does not answer how many transactions are open.", {.sqlstate = "HY000"});
  }
  return *number_;
}

void RaiseTransactionOpen(std::string_view driver) { RaiseAs(driver, server_message::kTransactionOpen); }

void RaiseNoTransaction(std::string_view driver) { RaiseAs(driver, server_message::kTransactionEnded); }

void RefuseNul(std::string_view batch, std::string_view driver) {
  if (batch.find('\0') == std::string_view::npos) return;
  RaiseAs(driver, {0, "The batch has a character U+0000 in it and was not sent."});
}

bool TimeOuts::Take(std::string_view key, std::string_view value, std::string_view driver) {
  constexpr int kMostSeconds = 86400;
  constexpr NumberOption kLogin{"LoginTimeout", 0, kMostSeconds, "seconds"};
  constexpr NumberOption kStatement{"StatementTimeout", 0, kMostSeconds, "seconds"};
  const bool login = EqualsIgnoreCase(key, kLogin.key);
  if (!login && !EqualsIgnoreCase(key, kStatement.key)) return false;
  (login ? login_timeout : statement_timeout) = (login ? kLogin : kStatement).Read(value, driver);
  return true;
}

}  // namespace tessarlorn
