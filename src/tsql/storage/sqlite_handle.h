// SQLite's handles with owners, and its failures as errors with SQL Server's numbers.
#pragma once

#include <memory>
#include <sqlite3.h>
#include <string>
#include <string_view>

#include "tsql/functions/runtime.h"

namespace tessarlorn::tsql {

struct CloseDatabase {
  void operator()(sqlite3* database) const noexcept { sqlite3_close_v2(database); }
};
struct FinalizeStatement {
  void operator()(sqlite3_stmt* statement) const noexcept { sqlite3_finalize(statement); }
};
using DatabaseHandle = std::unique_ptr<sqlite3, CloseDatabase>;
using StatementHandle = std::unique_ptr<sqlite3_stmt, FinalizeStatement>;

/// Raises the error that `status` means: what a row function raised (`runtime`, may be null), else a broken constraint
/// (515, 547, 2601, 2627), a lock that was not given (1222), a full disk (1105), a damaged file (824), an I/O failure
/// (823), a read-only file (3906), an interrupted batch (3617).
/// @param verb "INSERT", "UPDATE" or "DELETE" for the wording of broken constraints.
[[noreturn]] void RaiseSqlite(sqlite3* database, int status, Runtime* runtime, std::string_view verb = "INSERT");

/// Prepares a statement that is kept. Raises as RaiseSqlite.
StatementHandle Prepare(sqlite3* database, std::string_view sql, Runtime* runtime = nullptr);
/// Runs statements without parameters. Raises as RaiseSqlite.
void RunSql(sqlite3* database, const std::string& sql, Runtime* runtime = nullptr);

}  // namespace tessarlorn::tsql
