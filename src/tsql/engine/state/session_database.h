// The database of a session, as its parts share it.
#pragma once

#include <cstddef>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "tsql/functions/runtime.h"
#include "tsql/storage/catalog.h"
#include "tsql/storage/sqlite_handle.h"
#include "tsql/syntax/token.h"

namespace tessarlorn::tsql {

/// The connection, its catalog, and what row functions and translated statements need while a batch runs.
class SessionDatabase {
 public:
  /// @param memory_limit bytes that a batch may take, see MemoryBudget
  SessionDatabase(DatabaseHandle database, std::size_t memory_limit);

  [[nodiscard]] sqlite3* handle() const { return handle_.get(); }
  /// Runs statements without parameters.
  void Run(const std::string& sql) { RunSql(handle_.get(), sql, &runtime_); }
  /// Runs what must not fail loudly, as on the way out of an error.
  void RunQuietly(const std::string& sql) noexcept;
  [[nodiscard]] SqliteStatement Prepare(std::string_view sql) { return {handle_.get(), sql, &runtime_}; }
  /// Whether SQLite is in no transaction.
  [[nodiscard]] bool idle() const { return sqlite3_get_autocommit(handle_.get()) != 0; }
  /// All that `body` does to SQLite and the catalog, or nothing.
  void Atomically(const std::function<void()>& body);

  /// Whether a statement of SQLite's that changes something runs, and calls the function that is running.
  [[nodiscard]] bool changing() const;
  // Temporary tables that are left to the next who makes them: SQLite drops none while a statement runs.
  void Leave(const std::string& table) { left_.insert(table); }
  [[nodiscard]] bool HasLeft(const std::string& table) const { return left_.contains(table); }
  /// Empties the table when it is left. @return whether it is
  bool TakeLeft(const std::string& table);
  /// Drops them, when nothing runs.
  void DropLeft() noexcept;

  [[nodiscard]] Runtime& runtime() { return runtime_; }
  [[nodiscard]] NameTable& names() { return names_; }
  [[nodiscard]] Catalog& catalog() { return catalog_; }

 private:
  Runtime runtime_;
  DatabaseHandle handle_;
  NameTable names_;
  Catalog catalog_;
  std::set<std::string> left_;
};

}  // namespace tessarlorn::tsql
