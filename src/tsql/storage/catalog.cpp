#include "tsql/storage/catalog.h"

#include <algorithm>
#include <iterator>

#include "platform/text/text.h"
#include "tsql/storage/constraint_text.h"
#include "tsql/storage/sqlite_handle.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

// What "$columns".identity holds.
constexpr int kIdentity = 1;
constexpr int kRowKey = 2;
constexpr int kComputed = 3;
constexpr int kPersisted = 4;

std::int64_t CodeOf(const Column& column) {
  if (column.computed()) return column.persisted ? kPersisted : kComputed;
  return column.identity ? kIdentity : column.row_key ? kRowKey : 0;
}

constexpr std::string_view kKindNames[] = {
    "table", "view", "procedure", "function", "table function", "sequence", "filled table function", "trigger"};

constexpr const char* kCreateCatalog = R"(
CREATE TABLE IF NOT EXISTS "$objects" (
  id INTEGER PRIMARY KEY AUTOINCREMENT, name TEXT NOT NULL UNIQUE COLLATE NOCASE, kind TEXT NOT NULL,
  definition TEXT NOT NULL);
CREATE TABLE IF NOT EXISTS "$columns" (
  object INTEGER NOT NULL REFERENCES "$objects"(id), position INTEGER NOT NULL, name TEXT NOT NULL, type TEXT NOT NULL,
  nullable INTEGER NOT NULL, identity INTEGER NOT NULL, default_text TEXT NOT NULL, PRIMARY KEY (object, position)
) WITHOUT ROWID;
)";

void ReadIncrement(CatalogObject& object) {
  const int identity = object.identity_column();
  if (identity < 0 || object.definition.find("\"increment\":") == std::string::npos) return;
  const Constraints constraints = ReadConstraints(object.definition);
  if (const Constraint* noted = FindKind(constraints, "I")) {
    object.columns[static_cast<std::size_t>(identity)].increment = noted->increment;
  }
}

std::int64_t TemporaryVersion(sqlite3* database) {
  SqliteStatement version(database, "PRAGMA temp.schema_version");
  version.Step();
  return version.Integer(0);
}

}  // namespace

std::string QuoteName(std::string_view name, std::string_view prefix) { return Quoted(name, '"', '"', prefix); }

std::string QuoteText(std::string_view text) { return Quoted(text, '\'', '\''); }

std::vector<std::string> NameParts(std::string_view name) {
  std::vector<std::string> parts(1);
  char closing = '\0';
  for (std::size_t i = 0; i < name.size(); ++i) {
    const char c = name[i];
    if (closing != '\0') {
      if (c != closing) {
        parts.back() += c;
      } else if (i + 1 < name.size() && name[i + 1] == closing) {
        parts.back() += name[++i];
      } else {
        closing = '\0';
      }
    } else if (c == '.') {
      parts.emplace_back();
    } else if (c == '[' || c == '"') {
      closing = c == '[' ? ']' : '"';
    } else if (c != ' ') {
      parts.back() += c;
    }
  }
  return parts;
}

ObjectName NameOf(std::vector<std::string> parts) {
  if (parts.empty()) return {};
  std::string qualifier;
  for (std::size_t i = 0; i + 1 < parts.size(); ++i) qualifier += (i == 0 ? "" : ".") + parts[i];
  return MakeObjectName(std::move(qualifier), std::move(parts.back()));
}

void RequireThisDatabase(std::string_view database) {
  if (EqualsIgnoreCase(database, "main") || EqualsIgnoreCase(database, "tempdb")) return;
  throw SqlError(
      911, "Database '" + std::string(database) + "' does not exist. Make sure that the name is entered correctly.");
}

bool IsLocal(const ObjectName& name) {
  if (!name.schema.empty()) return true;
  const std::vector<std::string_view> parts = Split(name.qualifier, '.');
  const std::string_view schema = parts.back();
  const std::string_view database = parts.size() > 1 ? parts[parts.size() - 2] : std::string_view{};
  const bool here = database.empty() || EqualsIgnoreCase(database, name.temporary() ? "tempdb" : "main");
  return here && parts.size() <= 2 && (schema.empty() || EqualsIgnoreCase(schema, "dbo"));
}

void RequireLocal(const ObjectName& name) {
  if (!IsLocal(name)) RaiseNoObject(name);
}

void RaiseNoObject(const ObjectName& name) {
  if (name.variable()) throw SqlError(1087, "Must declare the table variable \"" + name.name + "\".", 15, 2);
  throw SqlError(208,
                 "Invalid object name '" + (name.qualifier.empty() ? "" : name.qualifier + ".") + name.name + "'.");
}

int CatalogObject::FindColumn(std::string_view column) const {
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (EqualsIgnoreCase(columns[i].name, column)) return static_cast<int>(i);
  }
  return -1;
}

int CatalogObject::identity_column() const {
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (columns[i].identity) return static_cast<int>(i);
  }
  return -1;
}

void CatalogObject::Seal() {
  signature_ =
      std::string(kKindNames[static_cast<std::size_t>(kind)]) + "\n" + schema + "\n" + stored_name + "\n" + definition;
  for (const Column& column : columns) {
    signature_ += "\n" + column.name + " " + TypeText(column.type) + (column.nullable ? " null " : " not null ") +
                  (column.identity  ? "identity "
                   : column.row_key ? "key "
                                    : "") +
                  column.default_text +
                  (column.persisted    ? " persisted as "
                   : column.computed() ? " as "
                                       : "") +
                  column.computed_text;
  }
}

std::int64_t Catalog::SchemaVersion() {
  if (!version_statement_.prepared()) version_statement_ = SqliteStatement(database_, "PRAGMA main.schema_version");
  if (holds_ == 0) version_statement_.Step();
  return version_statement_.Integer(0);
}

void Catalog::Hold() {
  // As long as the statement has not ended its reading has not either.
  const std::int64_t version = SchemaVersion();
  ++holds_;
  try {
    RefreshTo(version);
  } catch (...) {
    LetGo();
    throw;
  }
}

void Catalog::LetGo() noexcept {
  if (--holds_ == 0) version_statement_.Reset();
}

void Catalog::Refresh() {
  Hold();
  LetGo();
}

void Catalog::RefreshTemporaries() {
  if (!stale_) {
    if (!pasts_.empty() && sqlite3_get_autocommit(database_) != 0) pasts_.clear();
    return;
  }
  const std::int64_t version = TemporaryVersion(database_);
  for (auto& [key, past] : pasts_) {
    while (past.size() > 1 && past.back().version > version) past.pop_back();
    if (past.back().object == nullptr) {
      temporaries_.erase(key);
    } else {
      temporaries_[key] = past.back().object;
    }
  }
}

void Catalog::ChangeTemporary(const std::string& key, CatalogObjectPtr object) {
  Objects& objects = ObjectsLike(*this, key);
  const auto old = objects.find(key);
  if (key[0] == '#') {
    std::vector<Past>& past = pasts_[key];
    if (past.empty()) past.push_back({0, old == objects.end() ? nullptr : old->second});
    // A change of the definition alone makes no other version by itself.
    const std::int64_t version = TemporaryVersion(database_) + 1;
    RunSql(database_, "PRAGMA temp.schema_version = " + std::to_string(version));
    past.push_back({version, object});
  }
  if (object == nullptr) {
    objects.erase(key);
  } else {
    objects[key] = std::move(object);
  }
}

void Catalog::RefreshTo(std::int64_t version) {
  RefreshTemporaries();
  if (version == schema_version_ && !stale_) return;
  Load();
  schema_version_ = version;
  stale_ = false;
}

void Catalog::Make(sqlite3* database) { RunSql(database, kCreateCatalog); }

void Catalog::Load() {
  objects_.clear();
  schemas_.clear();
  triggers_.clear();
  ++generation_;
  SqliteStatement objects(database_, R"(SELECT id, name, kind, definition FROM "$objects")");
  std::unordered_map<std::int64_t, CatalogObject> read;
  while (objects.Step()) {
    CatalogObject object;
    object.id = objects.Integer(0);
    object.name = objects.Text(1);
    if (objects.Text(2) == kSchemaKind) {
      object.name.pop_back();
      schemas_[LowerCase(object.name)] = object.name;
      continue;
    }
    const auto kind = std::find(std::begin(kKindNames), std::end(kKindNames), objects.Text(2));
    if (kind != std::end(kKindNames)) object.kind = static_cast<CatalogKind>(kind - std::begin(kKindNames));
    object.definition = objects.Text(3);
    read.emplace(object.id, std::move(object));
  }
  SqliteStatement columns(
      database_,
      R"(SELECT object, name, type, nullable, identity, default_text FROM "$columns" ORDER BY object, position)");
  while (columns.Step()) {
    Column column;
    column.name = columns.Text(1);
    column.type = ParseTypeText(columns.Text(2));
    column.nullable = columns.Integer(3) != 0;
    column.identity = columns.Integer(4) == kIdentity;
    column.row_key = columns.Integer(4) == kRowKey;
    column.persisted = columns.Integer(4) == kPersisted;
    const bool computed = column.persisted || columns.Integer(4) == kComputed;
    (computed ? column.computed_text : column.default_text) = columns.Text(5);
    const auto owner = read.find(columns.Integer(0));
    if (owner != read.end()) owner->second.columns.push_back(std::move(column));
  }
  for (auto& [id, object] : read) {
    ReadIncrement(object);
    FindSchemaOf(object);
    object.Seal();
    std::string key = LowerCase(object.name);
    Keep(std::move(key), std::move(object));
  }
}

void Catalog::Keep(std::string key, CatalogObject object) {
  auto kept = std::make_shared<const CatalogObject>(std::move(object));
  if (kept->kind == CatalogKind::kTrigger) {
    const auto place = std::upper_bound(
        triggers_.begin(), triggers_.end(), kept,
        [](const CatalogObjectPtr& one, const CatalogObjectPtr& other) { return one->id < other->id; });
    triggers_.insert(place, kept);
  }
  objects_[std::move(key)] = std::move(kept);
}

CatalogObjectPtr Catalog::Find(std::string_view name) const {
  if (CatalogObjectPtr rows = FindTriggerRows(name)) return rows;
  return FindStored(name);
}

CatalogObjectPtr Catalog::Find(const ObjectName& name) const {
  return name.qualifier.empty() ? Find(std::string_view(name.name)) : FindStored(name.name);
}

CatalogObjectPtr Catalog::FindStored(std::string_view name) const {
  const Objects& objects = ObjectsLike(*this, name);
  const auto found = objects.find(LowerCase(name));
  return found == objects.end() ? nullptr : found->second;
}

CatalogObjectPtr Catalog::Get(std::string_view name) const {
  CatalogObjectPtr object = Find(name);
  if (object == nullptr || !object->has_rows()) {
    RaiseNoObject({"", std::string(name)});
  }
  return object;
}

void Catalog::Add(CatalogObject object) {
  if (Find(object.name) != nullptr) {
    throw SqlError(2714, "There is already an object named '" + object.own_name() + "' in the database.");
  }
  Replace(std::move(object));
}

void Catalog::Replace(CatalogObject object) {
  object.Seal();
  ++generation_;
  const std::string key = LowerCase(object.name);
  if (object.temporary) {
    object.id = next_temporary_id_--;
    ChangeTemporary(key, std::make_shared<const CatalogObject>(std::move(object)));
    return;
  }
  if (const auto old = objects_.find(key); old != objects_.end()) object.id = old->second->id;
  Remove(object.name);
  Write(object);
  object.id = sqlite3_last_insert_rowid(database_);
  for (std::size_t i = 0; i < object.columns.size(); ++i) {
    const Column& column = object.columns[i];
    SqliteStatement insert(database_, R"(INSERT INTO "$columns" VALUES (?1,?2,?3,?4,?5,?6,?7))");
    insert.BindInteger(1, object.id);
    insert.BindInteger(2, static_cast<std::int64_t>(i) + 1);
    insert.BindText(3, column.name);
    insert.BindText(4, TypeText(column.type));
    insert.BindInteger(5, std::int64_t{column.nullable ? 1 : 0});
    insert.BindInteger(6, CodeOf(column));
    insert.BindText(7, column.computed() ? column.computed_text : column.default_text);
    insert.Step();
  }
  Keep(key, std::move(object));
}

void Catalog::Write(const CatalogObject& object) {
  SqliteStatement insert(database_, R"(INSERT INTO "$objects" (name, kind, definition, id)
 VALUES (?1, ?2, ?3, nullif(?4, 0)))");
  insert.BindText(1, object.name);
  insert.BindText(2, kKindNames[static_cast<std::size_t>(object.kind)]);
  insert.BindText(3, object.definition);
  insert.BindInteger(4, object.id);
  insert.Step();
  // Where no SQLite object changes, the version says to other connections that something did.
  if (object.kind != CatalogKind::kTable || object.id != 0) CountUp();
}

void Catalog::CountUp() {
  const std::int64_t version = SchemaVersion();
  if (holds_ == 0) version_statement_.Reset();
  RunSql(database_, "PRAGMA main.schema_version = " + std::to_string(version + 1));
}

void Catalog::Remove(std::string_view name) {
  ++generation_;
  const std::string key = LowerCase(name);
  if (IsTemporaryName(key)) {
    ChangeTemporary(key, nullptr);
    return;
  }
  const auto found = objects_.find(key);
  if (found == objects_.end()) return;
  for (const char* sql : {R"(DELETE FROM "$columns" WHERE object = ?1)", R"(DELETE FROM "$objects" WHERE id = ?1)"}) {
    SqliteStatement statement(database_, sql);
    statement.BindInteger(1, found->second->id);
    statement.Step();
  }
  if (found->second->kind != CatalogKind::kTable) CountUp();
  std::erase(triggers_, found->second);
  objects_.erase(found);
}

std::vector<std::string> Catalog::TemporaryTables() const {
  std::vector<std::string> names;
  for (const auto& [key, object] : temporaries_) names.push_back(object->name);
  return names;
}

void Catalog::EnterScope() {
  // A statement that was compiled for the caller's variables is another one here.
  if (!scopes_.back().empty()) ++generation_;
  scopes_.emplace_back();
}

std::vector<CatalogObjectPtr> Catalog::LeaveScope() {
  std::vector<CatalogObjectPtr> tables;
  for (auto& [key, table] : scopes_.back()) tables.push_back(std::move(table));
  scopes_.pop_back();
  if (!tables.empty() || !scopes_.back().empty()) ++generation_;
  return tables;
}

std::vector<CatalogObjectPtr> Catalog::TableVariables() const {
  std::vector<CatalogObjectPtr> tables;
  for (const Objects& scope : scopes_) {
    for (const auto& [key, table] : scope) tables.push_back(table);
  }
  for (const TriggerRows& rows : trigger_rows_) tables.insert(tables.end(), {rows.inserted, rows.deleted});
  return tables;
}

std::vector<CatalogObjectPtr> Catalog::TriggersOf(std::string_view table) const {
  std::vector<CatalogObjectPtr> found;
  for (const CatalogObjectPtr& trigger : triggers_) {
    if (EqualsIgnoreCase(trigger->columns[0].name, table)) found.push_back(trigger);
  }
  return found;
}

void Catalog::EnterTrigger(CatalogObject inserted, CatalogObject deleted) {
  inserted.Seal();
  deleted.Seal();
  ++generation_;
  trigger_rows_.push_back({std::make_shared<const CatalogObject>(std::move(inserted)),
                           std::make_shared<const CatalogObject>(std::move(deleted)), scopes_.size()});
}

void Catalog::LeaveTrigger() {
  ++generation_;
  trigger_rows_.pop_back();
}

CatalogObjectPtr Catalog::FindTriggerRows(std::string_view name) const {
  if (trigger_rows_.empty() || scopes_.size() > trigger_rows_.back().scope + 1) return nullptr;
  const TriggerRows& rows = trigger_rows_.back();
  if (EqualsIgnoreCase(name, rows.inserted->name)) return rows.inserted;
  return EqualsIgnoreCase(name, rows.deleted->name) ? rows.deleted : nullptr;
}

}  // namespace tessarlorn::tsql
