#include "tsql/functions/list_table.h"

#include <sqlite3.h>
#include <utility>

#include "tsql/functions/sqlite_value.h"
#include "tsql/functions/table_module.h"

namespace tessarlorn::tsql {
namespace {

constexpr const char* kPointerType = "tessarlorn-list";

/// The items of a bound list.
class ListRows {
 public:
  static constexpr int kColumns = 1;
  static constexpr int kUsualRows = 100;

  static std::string Columns() { return "value, list HIDDEN"; }
  void Set(std::span<sqlite3_value*> arguments) {
    const void* bound = sqlite3_value_pointer(arguments[0], kPointerType);
    items_ = bound == nullptr ? nullptr : *static_cast<const std::shared_ptr<const ListItems>*>(bound);
  }
  [[nodiscard]] std::size_t size() const { return items_ == nullptr ? 0 : items_->size(); }
  void Give(sqlite3_context* context, std::size_t row, std::size_t /*column*/) const {
    SetResult(context, (*items_)[row]);
  }

 private:
  std::shared_ptr<const ListItems> items_;
};

}  // namespace

void RegisterListTable(sqlite3* database) { TableModule<ListRows>::Register(database, "ts_list"); }

void BindList(sqlite3_stmt* statement, int index, std::shared_ptr<const ListItems> items) {
  auto holder = std::make_unique<std::shared_ptr<const ListItems>>(std::move(items));
  sqlite3_bind_pointer(statement, index, holder.release(), kPointerType, [](void* pointer) {
    const std::unique_ptr<std::shared_ptr<const ListItems>> owned(
        static_cast<std::shared_ptr<const ListItems>*>(pointer));
  });
}

}  // namespace tessarlorn::tsql
