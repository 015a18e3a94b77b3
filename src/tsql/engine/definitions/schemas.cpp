// CREATE, ALTER and DROP SCHEMA, and the schemas of what is made.
#include "platform/text/text.h"
#include "tsql/engine/definitions/definitions.h"

namespace tessarlorn::tsql {

void Definitions::CreateSchema(const CreateSchemaStatement& statement) {
  database_.Atomically([&] {
    database_.catalog().AddSchema(statement.name);
    database_.catalog().Refresh();
  });
}

void Definitions::DropSchema(const DropSchemaStatement& statement) {
  const bool known = IsServerSchema(statement.name) || database_.catalog().FindSchema(statement.name) != nullptr;
  if (statement.if_exists && !known) return;
  database_.Atomically([&] {
    database_.catalog().RemoveSchema(statement.name);
    database_.catalog().Refresh();
  });
}

void Definitions::RequireOwnName(const std::string& schema, const std::string& name) {
  if (!schema.empty() || database_.catalog().FindSchema(name.substr(0, name.find('.'))) == nullptr) return;
  if (name.find('.') != std::string::npos) RaiseUnsupported("The name '" + name + "' in dbo, beside a schema");
}

CatalogObject Definitions::NewObject(CatalogKind kind, const ObjectName& name) {
  RequireLocal(name);
  CatalogObject object;
  object.kind = kind;
  object.name = name.name;
  RequireOwnName(name.schema, name.name);
  if (name.schema.empty()) return object;
  const std::string* schema = database_.catalog().FindSchema(name.schema);
  if (schema == nullptr) {
    throw SqlError(2760, "The specified schema name \"" + name.schema +
                             "\" either does not exist or you do not have permission to use it.");
  }
  object.schema = *schema;
  object.name = *schema + "." + name.own_name();
  return object;
}

void Definitions::Transfer(const TransferStatement& statement) {
  Catalog& catalog = database_.catalog();
  const bool to_dbo = EqualsIgnoreCase(statement.schema, "dbo");
  const std::string* schema = catalog.FindSchema(statement.schema);
  const auto missing = [](const std::string& what) {
    return SqlError(15151, "Cannot " + what + "', because it does not exist or you do not have permission.");
  };
  if (schema == nullptr && !to_dbo) throw missing("alter the schema '" + statement.schema);
  const CatalogObjectPtr object = catalog.Find(statement.object.name);
  if (!IsLocal(statement.object) || object == nullptr || object->temporary) {
    throw missing("find the object '" + statement.object.own_name());
  }
  if (object->kind == CatalogKind::kTrigger) RaiseUnsupported("ALTER SCHEMA … TRANSFER of a trigger");
  const std::string prefix = to_dbo ? "" : *schema + ".";
  if (object->schema == (to_dbo ? "" : *schema)) return;
  std::vector<CatalogObjectPtr> moved = {object};
  for (const CatalogObjectPtr& trigger : catalog.TriggersOf(object->name)) moved.push_back(trigger);
  for (const CatalogObjectPtr& one : moved) {
    const std::string name = one->own_name();
    if (catalog.Find(prefix + name) != nullptr) {
      throw SqlError(15530, "The object with name \"" + name + "\" already exists.");
    }
  }
  database_.Atomically([&] {
    for (const CatalogObjectPtr& one : moved) Move(*one, prefix + one->own_name());
    catalog.Refresh();
  });
}

}  // namespace tessarlorn::tsql
