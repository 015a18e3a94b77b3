// The schemas of a database beside dbo and those of the server.
#include "platform/text/text.h"
#include "tsql/storage/catalog.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

constexpr std::int64_t kFirstSchema = 5;  // those before it are the server's

}  // namespace

const std::string* Catalog::FindSchema(std::string_view name) const {
  const auto found = schemas_.find(LowerCase(name));
  return found == schemas_.end() ? nullptr : &found->second;
}

std::string Catalog::Meant(const ObjectName& name, const std::string& schema) const {
  const bool open = !schema.empty() && name.qualifier.empty() && name.schema.empty() && !name.temporary();
  if (!open) return name.name;
  std::string own = schema + "." + name.name;
  return Find(own) == nullptr ? name.name : own;
}

void Catalog::FindSchemaOf(CatalogObject& object) const {
  const std::size_t dot = object.name.find('.');
  if (dot == std::string::npos) return;
  if (const std::string* schema = FindSchema(std::string_view(object.name).substr(0, dot))) object.schema = *schema;
}

void Catalog::AddSchema(const std::string& name) {
  if (IsServerSchema(name) || FindSchema(name) != nullptr) {
    throw SqlError(2714, "There is already an object named '" + name + "' in the database.");
  }
  if (name.find('.') != std::string::npos) RaiseUnsupported("A schema with a point in its name");
  const std::string key = LowerCase(name) + ".";
  for (const auto& [other, object] : objects_) {
    if (other.starts_with(key)) RaiseUnsupported("A schema beside the object '" + object->name + "' of dbo");
  }
  SqliteStatement insert(database_, R"(INSERT INTO "$objects" (name, kind, definition)
 SELECT ?1, ?2, coalesce(max(CAST(definition AS INTEGER)) + 1, ?3) FROM "$objects" WHERE kind = ?2)");
  insert.BindText(1, name + ".");
  insert.BindText(2, kSchemaKind);
  insert.BindInteger(3, kFirstSchema);
  insert.Step();
  CountUp();
  Invalidate();
}

void Catalog::RemoveSchema(const std::string& name) {
  if (IsServerSchema(name)) throw SqlError(15150, "Cannot drop the schema '" + name + "'.");
  const std::string* schema = FindSchema(name);
  if (schema == nullptr) {
    throw SqlError(15151,
                   "Cannot drop the schema '" + name + "', because it does not exist or you do not have permission.");
  }
  CatalogObjectPtr oldest;
  for (const auto& [key, object] : objects_) {
    if (object->schema == *schema && (oldest == nullptr || object->id < oldest->id)) oldest = object;
  }
  if (oldest != nullptr) {
    throw SqlError(3729, "Cannot drop schema '" + *schema + "' because it is being referenced by object '" +
                             oldest->own_name() + "'.");
  }
  SqliteStatement removal(database_, R"(DELETE FROM "$objects" WHERE name = ?1 || '.' AND kind = ?2)");
  removal.BindText(1, *schema);
  removal.BindText(2, kSchemaKind);
  removal.Step();
  CountUp();
  Invalidate();
}

}  // namespace tessarlorn::tsql
