#include "tsql/engine/state/session_database.h"

#include <algorithm>

#include "tsql/engine/state/catalog_functions.h"
#include "tsql/functions/functions.h"
#include "tsql/functions/list_table.h"
#include "tsql/functions/row_table.h"
#include "tsql/storage/database_file.h"

namespace tessarlorn::tsql {

SessionDatabase::SessionDatabase(DatabaseHandle database, std::size_t memory_limit)
    : runtime_(memory_limit), handle_(std::move(database)), catalog_(handle_.get()) {
  // A value is copied three times on its way from a function to a row.
  constexpr std::size_t kCopies = 4;
  constexpr std::size_t kMostOfSqlite = 1'000'000'000;
  constexpr int kMostOperations = 10'000'000;
  sqlite3_limit(handle(), SQLITE_LIMIT_LENGTH, static_cast<int>(std::min(kMostOfSqlite, memory_limit / kCopies)));
  sqlite3_limit(handle(), SQLITE_LIMIT_VDBE_OP, kMostOperations);
  constexpr int kOperationsOfALook = 10'000;
  sqlite3_progress_handler(
      handle(), kOperationsOfALook, [](void* runtime) { return static_cast<Runtime*>(runtime)->Interrupts() ? 1 : 0; },
      &runtime_);
  runtime_.text_order = TextOrderOf(handle());
  runtime_.table_definition = [this](std::string_view table) {
    const CatalogObjectPtr object = catalog_.Find(table);
    return object == nullptr || object->kind != CatalogKind::kTable ? std::string() : object->definition;
  };
  RegisterFunctions(handle(), runtime_);
  RegisterListTable(handle());
  RegisterRowTable(handle(), runtime_);
  RegisterCatalogFunctions(handle(), catalog_, runtime_);
}

void SessionDatabase::RunQuietly(const std::string& sql) noexcept {
  sqlite3_exec(handle(), sql.c_str(), nullptr, nullptr, nullptr);
}

bool SessionDatabase::changing() const {
  if (runtime_.function_depth == 0) return false;
  for (sqlite3_stmt* statement = sqlite3_next_stmt(handle(), nullptr); statement != nullptr;
       statement = sqlite3_next_stmt(handle(), statement)) {
    if (sqlite3_stmt_busy(statement) != 0 && sqlite3_stmt_readonly(statement) == 0) return true;
  }
  return false;
}

bool SessionDatabase::TakeLeft(const std::string& table) {
  if (left_.erase(table) == 0) return false;
  Run("DELETE FROM temp." + QuoteName(table));
  // There is no such table before the first identity.
  RunQuietly("DELETE FROM temp.sqlite_sequence WHERE name = " + QuoteText(table));
  return true;
}

void SessionDatabase::DropLeft() noexcept {
  for (const std::string& table : left_) RunQuietly("DROP TABLE IF EXISTS temp." + QuoteName(table));
  left_.clear();
}

void SessionDatabase::Atomically(const std::function<void()>& body) {
  // Within a change it is all or nothing by that.
  if (changing()) return body();
  Run("SAVEPOINT definition");
  try {
    body();
  } catch (...) {
    RunQuietly("ROLLBACK TO definition; RELEASE definition");
    catalog_.Invalidate();
    catalog_.Refresh();
    throw;
  }
  Run("RELEASE definition");
}

}  // namespace tessarlorn::tsql
