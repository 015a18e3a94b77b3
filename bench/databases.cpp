#include "bench/databases.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <filesystem>
#include <fstream>
#include <strings.h>

#include "samples/seed.h"
#include "schema/schema_files.h"
#include "tessarlorn/connection.h"
#include "tessarlorn/error.h"

namespace tessarlorn::bench {
namespace {

std::filesystem::path data_folder;

int CompareAscii(void*, int a_size, const void* a, int b_size, const void* b) {
  const int order = strncasecmp(static_cast<const char*>(a), static_cast<const char*>(b),
                                static_cast<std::size_t>(std::min(a_size, b_size)));
  return order != 0 ? order : a_size - b_size;
}

void Check(sqlite3* database, int status) {
  if (status != SQLITE_OK && status != SQLITE_DONE && status != SQLITE_ROW)
    Raise(error_number::kDatabaseFailure, sqlite3_errmsg(database));
}

}  // namespace

Host& TheHost() {
  static Host host;
  return host;
}

void SetDataFolder(const std::string& folder) {
  data_folder = folder;
  std::filesystem::create_directories(data_folder);
}

std::string SampleFile(int orders) {
  // Other files when the schema changes.
  static const std::string kSchema = [] {
    std::string text;
    for (const SchemaFile& schema_file : SchemaFiles()) text += schema_file.text;
    return std::to_string(std::hash<std::string>{}(text) % 100000);
  }();
  const std::filesystem::path file = data_folder / ("orders-" + std::to_string(orders) + "-" + kSchema + ".db");
  if (std::filesystem::exists(file)) return file.string();
  const std::string making = file.string() + ".making";
  for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(making + suffix);
  {
    const auto connection = TheHost().OpenConnection("Embedded=" + making + ";Synchronous=Normal;MaxMemory=8192");
    ApplySchema(*connection);
    cli::Seed(*connection, {orders, 1}, [](int, int) {});
  }
  std::filesystem::rename(making, file);
  return file.string();
}

std::string SampleCopy(int orders, const std::string& name) {
  const std::string copy = (data_folder / (name + ".db")).string();
  for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(copy + suffix);
  std::filesystem::copy_file(SampleFile(orders), copy);
  return copy;
}

std::string Dsn(const std::string& file, const std::string& options) {
  return "Connect={Embedded=" + file + options + "};User=16394;Language=CHS;Client=10.0.0.5";
}

std::string KeyList(int count) {
  std::string keys;
  for (int i = 1; i <= count; ++i) keys += (i == 1 ? "" : ",") + std::to_string(i);
  return keys;
}

Sqlite OpenSqlite(const std::string& file) {
  sqlite3* opened = nullptr;
  const int status =
      sqlite3_open_v2(file.c_str(), &opened, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
  Sqlite database(opened);
  Check(opened, status);
  sqlite3_create_collation_v2(opened, "TSQL", SQLITE_UTF8, nullptr, CompareAscii, nullptr);
  RunSqlite(opened, "PRAGMA temp_store = MEMORY; PRAGMA cache_size = -65536; PRAGMA synchronous = FULL");
  return database;
}

SqliteStatement PrepareSqlite(sqlite3* database, const std::string& sql) {
  sqlite3_stmt* statement = nullptr;
  Check(database, sqlite3_prepare_v3(database, sql.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr));
  return SqliteStatement(statement);
}

void RunSqlite(sqlite3* database, const std::string& sql) {
  Check(database, sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr));
}

SqliteUpsert::SqliteUpsert(sqlite3* database, const std::string& find, const std::string& update,
                           const std::string& insert)
    : find_(PrepareSqlite(database, find)),
      update_(PrepareSqlite(database, update)),
      insert_(PrepareSqlite(database, insert)) {}

sqlite3_stmt* SqliteUpsert::Choose() {
  sqlite3_stmt* const change = sqlite3_step(find_.get()) == SQLITE_ROW ? update_.get() : insert_.get();
  sqlite3_reset(find_.get());
  return change;
}

void SqliteUpsert::Finish(sqlite3_stmt* change) {
  const int status = sqlite3_step(change);
  if (status != SQLITE_DONE) Raise(error_number::kDatabaseFailure, sqlite3_errstr(status));
  sqlite3_reset(change);
}

int ReadAll(sqlite3_stmt* statement) {
  int rows = 0;
  const int width = sqlite3_column_count(statement);
  std::size_t sum = 0;
  while (sqlite3_step(statement) == SQLITE_ROW) {
    ++rows;
    for (int i = 0; i < width; ++i) {
      switch (sqlite3_column_type(statement, i)) {
        case SQLITE_INTEGER:
          sum += static_cast<std::size_t>(sqlite3_column_int64(statement, i));
          break;
        case SQLITE_FLOAT:
          sum += static_cast<std::size_t>(sqlite3_column_double(statement, i));
          break;
        case SQLITE_TEXT:
          sum += std::string(reinterpret_cast<const char*>(sqlite3_column_text(statement, i)),
                             static_cast<std::size_t>(sqlite3_column_bytes(statement, i)))
                     .size();
          break;
        case SQLITE_BLOB:
          sum += static_cast<std::size_t>(sqlite3_column_bytes(statement, i));
          break;
        default:
          break;
      }
    }
  }
  sqlite3_reset(statement);
  benchmark::DoNotOptimize(sum);
  return rows;
}

}  // namespace tessarlorn::bench
