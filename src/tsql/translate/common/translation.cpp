#include "tsql/translate/common/translation.h"

#include <algorithm>

#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {

CatalogObjectPtr Translation::Lookup(const ObjectName& name) {
  RequireLocal(name);
  CatalogObjectPtr object = catalog.Find(name.name);
  const bool known = std::any_of(dependencies.objects.begin(), dependencies.objects.end(),
                                 [&](const Dependencies::Object& entry) { return entry.name == name.name; });
  if (!known) dependencies.objects.push_back({name.name, object});
  if (object == nullptr || !object->has_rows()) {
    RaiseNoObject(name);
  }
  return object;
}

std::string RowColumn(std::size_t row) { return "\"$row" + std::to_string(row) + "\""; }

std::string TableSql(const CatalogObject& table) {
  return (table.temporary ? "temp." : "main.") + QuoteName(table.table_name());
}

}  // namespace tessarlorn::tsql
