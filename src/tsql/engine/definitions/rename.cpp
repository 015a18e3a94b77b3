// sp_rename: objects, constraints, columns and indexes.
#include <algorithm>

#include "platform/text/text.h"
#include "tsql/engine/definitions/definitions.h"
#include "tsql/engine/definitions/table_dependents.h"
#include "tsql/engine/definitions/table_maker.h"
#include "tsql/storage/system_view_parts.h"

namespace tessarlorn::tsql {
namespace {

SqlError RenameError(std::int32_t number, const std::string& text) { return {number, text, 11}; }

[[noreturn]] void RaiseTaken(const std::string& name, const char* kind) {
  throw RenameError(15335, "Error: The new name '" + name + "' is already in use as a " + kind +
                               " name and would cause a duplicate that is not permitted.");
}

[[noreturn]] void RaiseWrongKind(const char* kind) {
  throw RenameError(15248, std::string("Either the parameter @objname is ambiguous or the claimed @objtype (") + kind +
                               ") is wrong.");
}

[[noreturn]] void RaiseInUse(const std::string& name) {
  throw RenameError(
      15336, "Object '" + name + "' cannot be renamed because the object participates in enforced dependencies.");
}

[[noreturn]] void RaiseInUse(const CatalogObject& table, const std::string& column) {
  RaiseInUse(table.name + "." + column);
}

}  // namespace

void Definitions::Rename(const std::string& object, const std::string& new_name, const std::string& kind) {
  std::vector<std::string> parts = NameParts(object);
  const std::string last = parts.back();
  const bool is_column = EqualsIgnoreCase(kind, "COLUMN");
  const bool is_index = EqualsIgnoreCase(kind, "INDEX");
  if (!is_column && !is_index && !kind.empty() && !EqualsIgnoreCase(kind, "OBJECT")) {
    throw RenameError(15249, "Error: Explicit @objtype '" + kind + "' is unrecognized.");
  }
  if (new_name.empty() || (!is_column && !is_index && IsTemporaryName(new_name))) {
    throw RenameError(15224,
                      "Error: The value for the @newname parameter contains invalid characters or violates a basic "
                      "restriction (" +
                          new_name + ").");
  }
  if (is_column || is_index) parts.pop_back();
  database_.catalog().Refresh();
  const ObjectName name = NameOf(std::move(parts));
  const CatalogObjectPtr owner = database_.catalog().Find(name.name);
  const bool found = owner != nullptr && IsLocal(name) && !owner->temporary;
  database_.Atomically([&] {
    if (is_column || is_index) {
      if (!found || owner->kind != CatalogKind::kTable) RaiseWrongKind(is_column ? "COLUMN" : "INDEX");
      is_column ? RenameColumn(*owner, last, new_name) : RenameIndex(*owner, last, new_name);
    } else {
      if (owner == nullptr && IsLocal(name) && RenameConstraint(name.schema, name.own_name(), new_name)) return;
      if (!found) {
        throw RenameError(15225, "No item by the name of '" + object +
                                     "' could be found in the current database 'main', " +
                                     "given that @itemtype was input as '" + (kind.empty() ? "(null)" : kind) + "'.");
      }
      const std::string moved = (owner->schema.empty() ? "" : owner->schema + ".") + new_name;
      if (database_.catalog().Find(moved) != nullptr) RaiseTaken(new_name, "object");
      RequireOwnName(owner->schema, moved);
      if (!BoundTo(database_, *owner).empty()) RaiseInUse(object);
      Move(*owner, moved);
    }
    database_.catalog().Refresh();
  });
}

void Definitions::Move(const CatalogObject& object, const std::string& new_name) {
  if (object.kind == CatalogKind::kTable) {
    database_.Run("ALTER TABLE " + TableSql(object) + " RENAME TO " + QuoteName(new_name));
    MoveIndexes(new_name, object.name + ".", new_name + ".");
  }
  database_.catalog().RenameObject(object, new_name);
}

bool Definitions::RenameConstraint(const std::string& schema, const std::string& constraint,
                                   const std::string& new_name) {
  SqliteStatement found =
      database_.Prepare("SELECT owner, position FROM (" + kConstraints +
                        ") WHERE kind IN ('PK', 'UQ', 'F', 'C', 'D') AND lower(name) = lower(" + QuoteText(constraint) +
                        ") AND lower(schema_name) = lower(" + QuoteText(schema.empty() ? "dbo" : schema) + ")");
  if (!found.Step("SELECT")) return false;
  const CatalogObjectPtr table = database_.catalog().Get(found.Text(0));
  const auto position = static_cast<std::size_t>(found.Integer(1));
  found.Reset();
  if (IsNameTaken(database_, schema, new_name)) RaiseTaken(new_name, "object");
  Constraints constraints = ReadConstraints(table->definition);
  Constraint& renamed = constraints.at(position);
  renamed.name = new_name;
  CatalogObject changed = *table;
  changed.definition = WriteConstraints(constraints);
  if (renamed.kind != "C") {
    database_.catalog().Replace(std::move(changed));
    return true;
  }
  // SQLite's table has the names of its conditions, too.
  Plan plan;
  Frame frame;
  const Activation activation{&frame, &plan, {}, {}, nullptr};
  TableMaker maker(database_, plans_, activation);
  maker.RequireNoted(*table);
  maker.Rebuild(*table, std::move(changed), {});
  return true;
}

void Definitions::RenameColumn(const CatalogObject& table, const std::string& column, const std::string& new_name) {
  if (table.FindColumn(column) < 0) RaiseWrongKind("COLUMN");
  if (table.FindColumn(new_name) >= 0) RaiseTaken(new_name, "COLUMN");
  // A condition is kept as it was written.
  SqliteStatement texts = database_.Prepare("SELECT value ->> '$.text' FROM json_each(" +
                                            QuoteText(table.definition.empty() ? "[]" : table.definition) +
                                            ") WHERE value ->> '$.kind' IN ('C', 'IX') AND value ->> '$.text' <> ''");
  while (texts.Step("SELECT")) {
    if (NamesColumn(database_, texts.Text(0), column)) {
      RaiseInUse(table, column);
    }
  }
  for (const Column& other : table.columns) {
    if (other.computed() && NamesColumn(database_, other.computed_text, column)) RaiseInUse(table, column);
  }
  if (!BoundTo(database_, table, column).empty()) RaiseInUse(table, column);
  database_.Run("ALTER TABLE " + TableSql(table) + " RENAME COLUMN " + QuoteName(column) + " TO " +
                QuoteName(new_name));
  database_.catalog().RenameColumn(table, column, new_name);
}

void Definitions::RenameIndex(const CatalogObject& table, const std::string& index, const std::string& new_name) {
  if (!IndexExists(table, index)) {
    if (!HasKey(table.definition, index)) RaiseWrongKind("INDEX");
    RenameConstraint(table.schema, index, new_name);
    return;
  }
  if (IndexExists(table, new_name)) RaiseTaken(new_name, "INDEX");
  const std::string from = table.name + "." + index;
  const std::string to = table.name + "." + new_name;
  MoveIndexes(table.name, from, to, true);
  MoveIndexes(table.name, from + std::string(kNullKeySuffix), to + std::string(kNullKeySuffix), true);
  database_.catalog().RenameIndex(table, index, new_name);
}

void Definitions::MoveIndexes(const std::string& table, const std::string& from, const std::string& to, bool whole) {
  // SQLite renames no index: each is made once more.
  std::vector<std::pair<std::string, std::string>> indexes;
  const std::string part = whole ? "name" : "substr(name, 1, length(" + QuoteText(from) + "))";
  SqliteStatement found = database_.Prepare(
      "SELECT name, sql FROM main.sqlite_schema WHERE type = 'index' AND sql IS NOT NULL AND tbl_name = " +
      QuoteText(table) + " COLLATE NOCASE AND lower(" + part + ") = lower(" + QuoteText(from) + ")");
  while (found.Step("SELECT")) indexes.emplace_back(found.Text(0), found.Text(1));
  found.Reset();
  for (const auto& [name, sql] : indexes) {
    const std::string new_name = whole ? to : to + name.substr(from.size());
    std::string made = sql;
    made.replace(made.find(QuoteName(name)), QuoteName(name).size(), QuoteName(new_name));
    database_.Run(made.replace(made.find("INDEX "), 6, "INDEX main."));
    database_.Run("DROP INDEX main." + QuoteName(name));
  }
}

}  // namespace tessarlorn::tsql
