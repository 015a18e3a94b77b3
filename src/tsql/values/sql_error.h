// Errors of the embedded database, with SQL Server's numbers and wording.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "tessarlorn/error.h"

namespace tessarlorn::tsql {

/// An error on its way through the executor: SQL Server's number, severity, state and text.
class SqlError : public std::runtime_error {
 public:
  SqlError(std::int32_t number, const std::string& message, int severity = 16, int state = 1)
      : std::runtime_error(message), number_(number), severity_(severity), state_(state) {}
  [[nodiscard]] std::int32_t number() const noexcept { return number_; }
  [[nodiscard]] int severity() const noexcept { return severity_; }
  [[nodiscard]] int state() const noexcept { return state_; }
  [[nodiscard]] std::uint32_t line() const noexcept { return line_; }
  /// The procedure that it was raised in, "" for a batch.
  [[nodiscard]] const std::string& procedure() const noexcept { return procedure_; }
  /// The place of the statement; the innermost one, which comes first, stays.
  void set_line(std::uint32_t line, std::string_view procedure = {}) {
    if (line_ != 0) return;
    line_ = line;
    procedure_ = procedure;
  }
  /// The depth of calls at which a text was not understood (a syntax error, an unknown name), -1 for all other errors.
  /// Only a TRY of a caller catches such an error, and the caller's batch goes on.
  [[nodiscard]] int misunderstood_at() const noexcept { return misunderstood_at_; }
  void set_misunderstood_at(int depth) {
    if (misunderstood_at_ < 0) misunderstood_at_ = depth;
  }
  /// The same error as THROW raises it: it ends the batch, whatever its number.
  [[nodiscard]] SqlError EndingBatch() const {
    SqlError error = *this;
    error.ends_batch_ = true;
    return error;
  }
  /// Inside TRY it leaves a transaction that cannot be committed: a failed conversion, a missing object.
  [[nodiscard]] bool ends_transaction() const noexcept {
    return takes_back_ || (number_ < 50000 && !ends_statement_only());
  }
  /// Outside TRY it takes the open transaction back: a failed conversion.
  [[nodiscard]] bool takes_transaction_back() const noexcept;
  /// It was raised under SET XACT_ABORT ON.
  void set_takes_transaction_back() noexcept { takes_back_ = true; }
  /// Ends the statement only; the batch goes on (a broken constraint, a division by zero). Others end the batch.
  [[nodiscard]] bool ends_statement_only() const noexcept;

 private:
  std::int32_t number_;
  int severity_;
  int state_;
  std::uint32_t line_ = 0;
  std::string procedure_;
  bool ends_batch_ = false;
  bool takes_back_ = false;
  int misunderstood_at_ = -1;
};

/// The driver's one table: SQL Server's number to the number that OLE DB gives, and SQLSTATE.
Error ToError(const SqlError& error);

/// For what should never happen: a fault of the engine's own. The statement fails, the session goes on.
SqlError InnerError();
/// 11719: NEXT VALUE FOR where only the rows of a statement's own query have a place.
SqlError NoNumbersHere();
/// 3617
SqlError Cancelled();
/// 701. @param megabytes how many were allowed, 0 where the machine has no more
SqlError OutOfMemory(std::size_t megabytes = 0);
[[noreturn]] void RaiseSyntax(std::string_view near, bool keyword, std::uint32_t line);
/// A feature that is refused by name: "<feature> is not supported by the embedded database."
[[noreturn]] void RaiseUnsupported(std::string_view feature, std::uint32_t line = 0);

}  // namespace tessarlorn::tsql
