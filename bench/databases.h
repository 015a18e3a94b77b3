// The sample databases of the benchmarks, and SQLite's own view of them.
#pragma once

#include <memory>
#include <sqlite3.h>
#include <string>
#include <string_view>

#include "tessarlorn/host.h"

namespace tessarlorn::bench {

/// Has the drivers that main() adds.
Host& TheHost();

/// Where the databases are kept; made when it is not there.
void SetDataFolder(const std::string& folder);

/// A file with the schema and that many orders, made on first use. Only for reading.
std::string SampleFile(int orders);
/// A copy of it for a benchmark that writes.
std::string SampleCopy(int orders, const std::string& name);
/// The session string of the administrator for a file; `options` as ";Synchronous=Normal".
std::string Dsn(const std::string& file, const std::string& options = {});
/// "1,2,3,…", the first keys of the sample orders.
std::string KeyList(int count);

struct CloseSqlite {
  void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
};
struct FinalizeSqlite {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Sqlite = std::unique_ptr<sqlite3, CloseSqlite>;
using SqliteStatement = std::unique_ptr<sqlite3_stmt, FinalizeSqlite>;

/// Opens a file with SQLite alone; the collation of the text columns compares ASCII letters without case.
Sqlite OpenSqlite(const std::string& file);
SqliteStatement PrepareSqlite(sqlite3* database, const std::string& sql);
void RunSqlite(sqlite3* database, const std::string& sql);
/// Steps to the end, reading every column of every row. Answers the number of rows.
int ReadAll(sqlite3_stmt* statement);

/// A row that is looked for, and changed or inserted, by statements that are prepared once. All three take the same
/// parameters by the same numbers, the first ones being the key.
class SqliteUpsert {
 public:
  SqliteUpsert(sqlite3* database, const std::string& find, const std::string& update, const std::string& insert);
  /// Each value is an int or a text. @param keys how many of them are the key
  template <typename... Values>
  void Run(int keys, const Values&... values) {
    int number = 0;
    (BindKey(++number, keys, values), ...);
    sqlite3_stmt* const change = Choose();
    number = 0;
    (Bind(change, ++number, values), ...);
    Finish(change);
  }

 private:
  static void Bind(sqlite3_stmt* statement, int number, int value) { sqlite3_bind_int(statement, number, value); }
  static void Bind(sqlite3_stmt* statement, int number, std::string_view value) {
    sqlite3_bind_text(statement, number, value.data(), static_cast<int>(value.size()), SQLITE_STATIC);
  }
  template <typename Value>
  void BindKey(int number, int keys, const Value& value) {
    if (number <= keys) Bind(find_.get(), number, value);
  }
  sqlite3_stmt* Choose();
  static void Finish(sqlite3_stmt* change);

  SqliteStatement find_;
  SqliteStatement update_;
  SqliteStatement insert_;
};

}  // namespace tessarlorn::bench
