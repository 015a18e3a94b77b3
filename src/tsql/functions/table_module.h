// Table-valued functions of SQLite, made of a class for the rows of one call.
#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <span>
#include <sqlite3.h>
#include <string>

namespace tessarlorn::tsql {

/// `Rows` has
/// - `static std::string Columns()`: those of the table, then the arguments with HIDDEN;
/// - `static constexpr int kColumns`: how many stand before the arguments;
/// - `static constexpr int kUsualRows`: what the planner reckons with;
/// - `void Set(std::span<sqlite3_value*>)`: takes the arguments of a call, of which the first is always there;
/// - `std::size_t size() const`;
/// - `void Give(sqlite3_context*, std::size_t row, std::size_t column) const`.
template <typename Rows>
class TableModule {
 public:
  static void Register(sqlite3* database, const char* name) {
    static const sqlite3_module module = Make();
    sqlite3_create_module(database, name, &module, nullptr);
  }

 private:
  struct Cursor : sqlite3_vtab_cursor {
    Rows rows;
    std::size_t position = 0;
  };

  static sqlite3_module Make() {
    sqlite3_module module{};
    module.xConnect = [](sqlite3* database, void*, int, const char* const*, sqlite3_vtab** table, char**) {
      const int status = sqlite3_declare_vtab(database, ("CREATE TABLE x(" + Rows::Columns() + ")").c_str());
      if (status != SQLITE_OK) return status;
      sqlite3_vtab_config(database, SQLITE_VTAB_INNOCUOUS);
      *table = std::make_unique<sqlite3_vtab>().release();
      **table = {};
      return SQLITE_OK;
    };
    module.xDisconnect = [](sqlite3_vtab* table) {
      const std::unique_ptr<sqlite3_vtab> owned(table);
      return SQLITE_OK;
    };
    module.xBestIndex = Plan;
    module.xOpen = [](sqlite3_vtab*, sqlite3_vtab_cursor** cursor) {
      *cursor = std::make_unique<Cursor>().release();
      return SQLITE_OK;
    };
    module.xClose = [](sqlite3_vtab_cursor* cursor) {
      const std::unique_ptr<Cursor> owned(Of(cursor));
      return SQLITE_OK;
    };
    module.xFilter = [](sqlite3_vtab_cursor* cursor, int, const char*, int count, sqlite3_value** arguments) {
      Of(cursor)->position = 0;
      try {
        Of(cursor)->rows.Set({arguments, static_cast<std::size_t>(count)});
      } catch (const std::bad_alloc&) {
        return SQLITE_NOMEM;
      }
      return SQLITE_OK;
    };
    module.xNext = [](sqlite3_vtab_cursor* cursor) {
      ++Of(cursor)->position;
      return SQLITE_OK;
    };
    module.xEof = [](sqlite3_vtab_cursor* cursor) { return Of(cursor)->position < Of(cursor)->rows.size() ? 0 : 1; };
    module.xColumn = [](sqlite3_vtab_cursor* cursor, sqlite3_context* context, int column) {
      if (column < Rows::kColumns) {
        Of(cursor)->rows.Give(context, Of(cursor)->position, static_cast<std::size_t>(column));
      }
      return SQLITE_OK;
    };
    module.xRowid = [](sqlite3_vtab_cursor* cursor, sqlite3_int64* row) {
      *row = static_cast<sqlite3_int64>(Of(cursor)->position);
      return SQLITE_OK;
    };
    return module;
  }

  static Cursor* Of(sqlite3_vtab_cursor* cursor) { return static_cast<Cursor*>(cursor); }

  /// The arguments have to be known first.
  static int Plan(sqlite3_vtab*, sqlite3_index_info* info) {
    bool called = false;
    for (int i = 0; i < info->nConstraint; ++i) {
      const auto& constraint = info->aConstraint[i];
      const int argument = constraint.iColumn - Rows::kColumns;
      if (argument < 0 || constraint.op != SQLITE_INDEX_CONSTRAINT_EQ) continue;
      if (constraint.usable == 0) return SQLITE_CONSTRAINT;
      info->aConstraintUsage[i].argvIndex = argument + 1;
      info->aConstraintUsage[i].omit = 1;
      called = true;
    }
    if (!called) return SQLITE_CONSTRAINT;
    info->estimatedCost = Rows::kUsualRows;
    info->estimatedRows = Rows::kUsualRows;
    return SQLITE_OK;
  }
};

}  // namespace tessarlorn::tsql
