// One login over ODBC: its handles, opened and closed together.
#pragma once

#include <memory>
#include <vector>

#include "drivers/odbc/connection_options.h"
#include "drivers/odbc/odbc_handle.h"
#include "drivers/odbc/result_reader.h"
#include "tessarlorn/connection.h"

namespace tessarlorn::odbc {

/// A login with its one statement. It knows no transactions and never connects again.
class OdbcLink {
 public:
  /// Logs in. Raises 0x80040E4D or, for a time-out, 0x80040E31.
  explicit OdbcLink(const ConnectionOptions& options);
  OdbcLink(const OdbcLink&) = delete;
  OdbcLink& operator=(const OdbcLink&) = delete;
  /// Logs out without asking the server, which rolls back what is open.
  ~OdbcLink();

  /// Runs a batch to its end. The first error is raised behind it; `sink` gets what comes before.
  /// @param prints it may send messages behind rows
  void Run(SqlCommand& command, bool first_only, bool prints, BatchSink& sink);
  /// Has the server reset the session before the next batch. False when the ODBC driver cannot.
  bool ResetWithNextBatch() noexcept;

  /// Makes what follows a part of a distributed transaction, which somebody else ends. Raises what the ODBC driver says
  /// when it cannot.
  void Enlist(void* transaction);

  /// Whether the connection was lost, as far as is known without asking the server.
  [[nodiscard]] bool lost() const noexcept;
  [[nodiscard]] SQLHSTMT statement() const noexcept { return statement_.get(); }

 private:
  /// Reports messages and raises errors of a call on the statement.
  SQLRETURN Check(SQLRETURN result);
  [[noreturn]] void RaiseCause(const std::vector<Diagnostic>& records);

  Handle environment_;
  Handle connection_;
  Handle statement_;
  BatchSink* sink_ = nullptr;
  bool lost_ = false;
  bool goes_on_ = true;
  bool enlisted_ = false;
  CheckResult check_ = [this](SQLRETURN result) { return Check(result); };
  std::unique_ptr<ResultReader> reader_;
};

}  // namespace tessarlorn::odbc
