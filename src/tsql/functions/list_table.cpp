#include "tsql/functions/list_table.h"

#include <sqlite3.h>
#include <utility>

#include "tsql/functions/sqlite_value.h"

namespace tessarlorn::tsql {
namespace {

constexpr const char* kPointerType = "tessarlorn-list";

struct ListCursor : sqlite3_vtab_cursor {
  std::shared_ptr<const ListItems> items;
  std::size_t position = 0;
};

int Connect(sqlite3* database, void*, int, const char* const*, sqlite3_vtab** table, char**) {
  const int status = sqlite3_declare_vtab(database, "CREATE TABLE x(value, list HIDDEN)");
  if (status != SQLITE_OK) return status;
  sqlite3_vtab_config(database, SQLITE_VTAB_INNOCUOUS);
  *table = std::make_unique<sqlite3_vtab>().release();
  **table = {};
  return SQLITE_OK;
}

int Disconnect(sqlite3_vtab* table) {
  const std::unique_ptr<sqlite3_vtab> owned(table);
  return SQLITE_OK;
}

int Plan(sqlite3_vtab*, sqlite3_index_info* info) {
  for (int i = 0; i < info->nConstraint; ++i) {
    const auto& constraint = info->aConstraint[i];
    if (constraint.iColumn == 1 && constraint.op == SQLITE_INDEX_CONSTRAINT_EQ && constraint.usable != 0) {
      info->aConstraintUsage[i].argvIndex = 1;
      info->aConstraintUsage[i].omit = 1;
      info->estimatedCost = 100;
      info->estimatedRows = 100;
      return SQLITE_OK;
    }
  }
  return SQLITE_CONSTRAINT;
}

int Open(sqlite3_vtab*, sqlite3_vtab_cursor** cursor) {
  *cursor = std::make_unique<ListCursor>().release();
  return SQLITE_OK;
}

int Close(sqlite3_vtab_cursor* cursor) {
  const std::unique_ptr<ListCursor> owned(static_cast<ListCursor*>(cursor));
  return SQLITE_OK;
}

int Filter(sqlite3_vtab_cursor* base, int, const char*, int count, sqlite3_value** arguments) {
  auto* cursor = static_cast<ListCursor*>(base);
  cursor->position = 0;
  const void* bound = count == 1 ? sqlite3_value_pointer(arguments[0], kPointerType) : nullptr;
  cursor->items = bound == nullptr ? nullptr : *static_cast<const std::shared_ptr<const ListItems>*>(bound);
  return SQLITE_OK;
}

int Next(sqlite3_vtab_cursor* cursor) {
  ++static_cast<ListCursor*>(cursor)->position;
  return SQLITE_OK;
}

int AtEnd(sqlite3_vtab_cursor* base) {
  const auto* cursor = static_cast<ListCursor*>(base);
  return cursor->items == nullptr || cursor->position >= cursor->items->size() ? 1 : 0;
}

int Value(sqlite3_vtab_cursor* base, sqlite3_context* context, int column) {
  const auto* cursor = static_cast<ListCursor*>(base);
  if (column == 0) SetResult(context, (*cursor->items)[cursor->position]);
  return SQLITE_OK;
}

int RowId(sqlite3_vtab_cursor* cursor, sqlite3_int64* row) {
  *row = static_cast<sqlite3_int64>(static_cast<ListCursor*>(cursor)->position);
  return SQLITE_OK;
}

sqlite3_module MakeModule() {
  sqlite3_module module{};
  module.xConnect = Connect;
  module.xDisconnect = Disconnect;
  module.xBestIndex = Plan;
  module.xOpen = Open;
  module.xClose = Close;
  module.xFilter = Filter;
  module.xNext = Next;
  module.xEof = AtEnd;
  module.xColumn = Value;
  module.xRowid = RowId;
  return module;
}

const sqlite3_module kModule = MakeModule();

}  // namespace

void RegisterListTable(sqlite3* database) { sqlite3_create_module(database, "ts_list", &kModule, nullptr); }

void BindList(sqlite3_stmt* statement, int index, std::shared_ptr<const ListItems> items) {
  auto holder = std::make_unique<std::shared_ptr<const ListItems>>(std::move(items));
  sqlite3_bind_pointer(statement, index, holder.release(), kPointerType, [](void* pointer) {
    const std::unique_ptr<std::shared_ptr<const ListItems>> owned(
        static_cast<std::shared_ptr<const ListItems>*>(pointer));
  });
}

}  // namespace tessarlorn::tsql
