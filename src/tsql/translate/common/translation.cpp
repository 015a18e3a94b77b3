#include "tsql/translate/common/translation.h"

#include <algorithm>

#include "platform/text/text.h"
#include "tsql/storage/system_views.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {

CatalogObjectPtr Translation::Noted(const ObjectName& name) {
  CatalogObjectPtr object = catalog.Find(name);
  const bool known = std::any_of(dependencies.objects.begin(), dependencies.objects.end(),
                                 [&](const Dependencies::Object& entry) { return entry.name == name.name; });
  if (!known) dependencies.objects.push_back({name.name, object});
  return object;
}

CatalogObjectPtr Translation::Note(const ObjectName& name) {
  RequireLocal(name);
  // Made later, what stands in its own schema is meant from then on.
  const bool open = !schema.empty() && name.qualifier.empty() && name.schema.empty() && !name.temporary();
  if (open) Noted({"", schema + "." + name.name});
  return Noted({name.qualifier, catalog.Meant(name, schema)});
}

CatalogObjectPtr Translation::Lookup(const ObjectName& name) {
  CatalogObjectPtr object = Note(name);
  if (object != nullptr && object->has_rows()) return object;
  if (object != nullptr && object->gives_rows()) {
    throw SqlError(216, "Parameters were not supplied for the function '" + name.name + "'.");
  }
  RaiseNoObject(name);
}

CatalogObjectPtr Translation::FindFunction(const ObjectName& name) {
  const bool of_dbo = name.schema.empty() && EqualsIgnoreCase(SchemaHere(name.qualifier), "dbo");
  if (!of_dbo && name.schema.empty()) return nullptr;
  CatalogObjectPtr object = Note(of_dbo ? ObjectName{"dbo", name.name} : name);
  return object != nullptr && object->kind == CatalogKind::kFunction ? object : nullptr;
}

std::string RowColumn(std::size_t row) { return "\"$row" + std::to_string(row) + "\""; }

std::string TableSql(const CatalogObject& table) {
  return QuoteName(table.table_name(), table.temporary ? "temp." : "main.");
}

}  // namespace tessarlorn::tsql
