// SQLite's database and statements with owners, and its failures as errors with SQL Server's numbers.
#pragma once

#include <cstdint>
#include <memory>
#include <sqlite3.h>
#include <string>
#include <string_view>
#include <vector>

#include "tsql/functions/list_table.h"
#include "tsql/functions/runtime.h"
#include "tsql/values/datum.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {

struct CloseDatabase {
  void operator()(sqlite3* database) const noexcept { sqlite3_close_v2(database); }
};
using DatabaseHandle = std::unique_ptr<sqlite3, CloseDatabase>;

/// Raises the error that `status` means: what a row function raised (`runtime`, may be null), else a broken constraint
/// (515, 547, 2601, 2627), a lock that was not given (1222), a full disk (1105), a damaged file (824), an I/O failure
/// (823), a read-only file (3906), an interrupted batch (3617).
/// @param verb "INSERT", "UPDATE" or "DELETE" for the wording of broken constraints.
[[noreturn]] void RaiseSqlite(sqlite3* database, int status, Runtime* runtime, std::string_view verb = "INSERT");

/// 547 as far as SQLite tells: not which table it is about, and of foreign keys not which one is broken.
class BrokenConstraint : public SqlError {
 public:
  /// @param check the name of a CHECK, "" for a foreign key
  explicit BrokenConstraint(std::string_view verb, const std::string& check = {});
  [[nodiscard]] const std::string& verb() const noexcept { return verb_; }
  [[nodiscard]] const std::string& check() const noexcept { return check_; }

 private:
  std::string verb_;
  std::string check_;
};

/// 2601 or 2627 as far as SQLite tells: without the value of the key.
class DuplicateKey : public SqlError {
 public:
  struct Key {
    std::string table;                 // as SQLite has it
    std::vector<std::string> columns;  // none where they are not known
  };
  DuplicateKey(std::int32_t number, const std::string& message, Key key);
  [[nodiscard]] const Key& key() const noexcept { return key_; }

 private:
  Key key_;
};

/// Runs statements without parameters. Raises as RaiseSqlite.
void RunSql(sqlite3* database, const std::string& sql, Runtime* runtime = nullptr);

/// A prepared statement. Parameters are counted from 1, columns from 0. All functions raise as RaiseSqlite.
class SqliteStatement {
 public:
  /// Makes a statement ready for its next use when the block is left, whichever way.
  class Use {
   public:
    explicit Use(SqliteStatement& statement) : statement_(statement) {}
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;
    ~Use() { statement_.Reset(); }

   private:
    SqliteStatement& statement_;
  };

  SqliteStatement() = default;
  /// Prepares a statement that is kept. @param runtime outlives it; may be null
  SqliteStatement(sqlite3* database, std::string_view sql, Runtime* runtime = nullptr);
  [[nodiscard]] bool prepared() const noexcept { return handle_ != nullptr; }

  void BindInteger(int parameter, std::int64_t value);
  void BindText(int parameter, std::string_view text);
  void BindValue(int parameter, const Datum& value);
  /// A list for ts_list(?); the statement shares it until it is bound anew.
  void BindList(int parameter, std::shared_ptr<const ListItems> items);
  /// A text that outlives the statement's use.
  void BindStaticText(int parameter, std::string_view text);

  /// Whether there is a next row. What it raises leaves the statement ready for its next use.
  /// @param verb for the wording of broken constraints
  bool Step(std::string_view verb = "INSERT") {
    if (runtime_ != nullptr) runtime_->BeginStep();
    const int status = sqlite3_step(handle_.get());
    if (status != SQLITE_ROW && status != SQLITE_DONE) Fail(status, verb);
    return status == SQLITE_ROW;
  }
  void Reset() noexcept { sqlite3_reset(handle_.get()); }

  /// SQLITE_NULL, SQLITE_INTEGER, SQLITE_FLOAT, SQLITE_TEXT or SQLITE_BLOB.
  [[nodiscard]] int Kind(int column) const { return sqlite3_column_type(handle_.get(), column); }
  [[nodiscard]] std::int64_t Integer(int column) const { return sqlite3_column_int64(handle_.get(), column); }
  [[nodiscard]] double Real(int column) const { return sqlite3_column_double(handle_.get(), column); }
  /// Of a text or binary, as long as the row is the current one.
  [[nodiscard]] std::string_view Bytes(int column) const {
    const void* const bytes = sqlite3_column_blob(handle_.get(), column);
    return bytes == nullptr ? std::string_view{} : std::string_view(static_cast<const char*>(bytes), Size(column));
  }
  /// The length of Bytes.
  [[nodiscard]] std::size_t Size(int column) const {
    return static_cast<std::size_t>(sqlite3_column_bytes(handle_.get(), column));
  }
  [[nodiscard]] std::string Text(int column) const { return std::string(Bytes(column)); }
  [[nodiscard]] Datum Value(int column) const;

  /// How many rows the last change on the connection changed.
  [[nodiscard]] std::int64_t changes() const { return sqlite3_changes64(sqlite3_db_handle(handle_.get())); }
  /// It changes no table: a query, for SQLite.
  [[nodiscard]] bool reads_only() const { return sqlite3_stmt_readonly(handle_.get()) != 0; }

 private:
  [[noreturn]] void Fail(int status, std::string_view verb);

  struct Finalize {
    void operator()(sqlite3_stmt* statement) const noexcept { sqlite3_finalize(statement); }
  };
  std::unique_ptr<sqlite3_stmt, Finalize> handle_;
  Runtime* runtime_ = nullptr;
};

}  // namespace tessarlorn::tsql
