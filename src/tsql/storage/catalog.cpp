#include "tsql/storage/catalog.h"

#include "platform/text.h"
#include "tsql/storage/sqlite_handle.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

// What "$columns".identity holds.
constexpr int kIdentity = 1;
constexpr int kRowKey = 2;

constexpr std::string_view kKindNames[] = {"table", "view", "procedure"};

constexpr const char* kCreateCatalog = R"(
CREATE TABLE IF NOT EXISTS "$objects" (
  id INTEGER PRIMARY KEY AUTOINCREMENT, name TEXT NOT NULL UNIQUE COLLATE NOCASE, kind TEXT NOT NULL,
  definition TEXT NOT NULL);
CREATE TABLE IF NOT EXISTS "$columns" (
  object INTEGER NOT NULL REFERENCES "$objects"(id), position INTEGER NOT NULL, name TEXT NOT NULL, type TEXT NOT NULL,
  nullable INTEGER NOT NULL, identity INTEGER NOT NULL, default_text TEXT NOT NULL, PRIMARY KEY (object, position)
) WITHOUT ROWID;
)";

std::string ColumnText(sqlite3_stmt* statement, int column) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
  return text == nullptr ? std::string()
                         : std::string(text, static_cast<std::size_t>(sqlite3_column_bytes(statement, column)));
}

void BindText(sqlite3_stmt* statement, int index, std::string_view text) {
  sqlite3_bind_text64(statement, index, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

/// Steps to the next row; false at the end.
bool Step(sqlite3* database, sqlite3_stmt* statement) {
  const int status = sqlite3_step(statement);
  if (status != SQLITE_ROW && status != SQLITE_DONE) RaiseSqlite(database, status, nullptr);
  return status == SQLITE_ROW;
}

}  // namespace

std::string QuoteName(std::string_view name) { return "\"" + ReplaceAll(name, "\"", "\"\"") + "\""; }

std::string QuoteText(std::string_view text) { return "'" + ReplaceAll(text, "'", "''") + "'"; }

void RequireThisDatabase(std::string_view database) {
  if (EqualsIgnoreCase(database, "main") || EqualsIgnoreCase(database, "tempdb")) return;
  throw SqlError(
      911, "Database '" + std::string(database) + "' does not exist. Make sure that the name is entered correctly.");
}

void RequireLocal(const ObjectName& name) {
  const std::vector<std::string_view> parts = Split(name.qualifier, '.');
  const std::string_view schema = parts.back();
  const std::string_view database = parts.size() > 1 ? parts[parts.size() - 2] : std::string_view{};
  const bool here = database.empty() || EqualsIgnoreCase(database, name.temporary() ? "tempdb" : "main");
  if (here && parts.size() <= 2 && (schema.empty() || EqualsIgnoreCase(schema, "dbo"))) return;
  throw SqlError(208, "Invalid object name '" + name.qualifier + "." + name.name + "'.");
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
  signature_ = std::string(kKindNames[static_cast<std::size_t>(kind)]) + "\n" + definition;
  for (const Column& column : columns) {
    signature_ += "\n" + column.name + " " + TypeText(column.type) + (column.nullable ? " null " : " not null ") +
                  (column.identity  ? "identity "
                   : column.row_key ? "key "
                                    : "") +
                  column.default_text;
  }
}

std::int64_t Catalog::SchemaVersion() {
  if (version_statement_ == nullptr) version_statement_ = Prepare(database_, "PRAGMA main.schema_version");
  sqlite3_stmt* statement = version_statement_.get();
  if (holds_ > 0) return sqlite3_column_int64(statement, 0);
  const int status = sqlite3_step(statement);
  if (status != SQLITE_ROW) {
    sqlite3_reset(statement);
    RaiseSqlite(database_, status, nullptr);
  }
  return sqlite3_column_int64(statement, 0);
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
  if (--holds_ == 0) sqlite3_reset(version_statement_.get());
}

void Catalog::Refresh() {
  Hold();
  LetGo();
}

void Catalog::RefreshTo(std::int64_t version) {
  if (stale_) {
    std::erase_if(temporaries_, [this](const auto& entry) {
      const StatementHandle statement =
          Prepare(database_, "SELECT 1 FROM sqlite_temp_schema WHERE type='table' AND lower(name)=?1");
      BindText(statement.get(), 1, entry.first);
      return !Step(database_, statement.get());
    });
  }
  if (version == schema_version_ && !stale_) return;
  Load();
  schema_version_ = version;
  stale_ = false;
}

void Catalog::Make(sqlite3* database) { RunSql(database, kCreateCatalog); }

void Catalog::Load() {
  objects_.clear();
  ++generation_;
  const StatementHandle objects = Prepare(database_, R"(SELECT id, name, kind, definition FROM "$objects")");
  std::unordered_map<std::int64_t, CatalogObject> read;
  while (Step(database_, objects.get())) {
    CatalogObject object;
    object.id = sqlite3_column_int64(objects.get(), 0);
    object.name = ColumnText(objects.get(), 1);
    const std::string kind = ColumnText(objects.get(), 2);
    object.kind = kind == kKindNames[1]   ? CatalogKind::kView
                  : kind == kKindNames[2] ? CatalogKind::kProcedure
                                          : CatalogKind::kTable;
    object.definition = ColumnText(objects.get(), 3);
    read.emplace(object.id, std::move(object));
  }
  const StatementHandle columns = Prepare(
      database_,
      R"(SELECT object, name, type, nullable, identity, default_text FROM "$columns" ORDER BY object, position)");
  while (Step(database_, columns.get())) {
    Column column;
    column.name = ColumnText(columns.get(), 1);
    column.type = ParseTypeText(ColumnText(columns.get(), 2));
    column.nullable = sqlite3_column_int(columns.get(), 3) != 0;
    const int key = sqlite3_column_int(columns.get(), 4);
    column.identity = key == kIdentity;
    column.row_key = key == kRowKey;
    column.default_text = ColumnText(columns.get(), 5);
    const auto owner = read.find(sqlite3_column_int64(columns.get(), 0));
    if (owner != read.end()) owner->second.columns.push_back(std::move(column));
  }
  for (auto& [id, object] : read) {
    object.Seal();
    std::string key = LowerCase(object.name);
    objects_.emplace(std::move(key), std::make_shared<const CatalogObject>(std::move(object)));
  }
}

CatalogObjectPtr Catalog::Find(std::string_view name) const {
  const auto& objects = !name.empty() && name[0] == '#' ? temporaries_ : objects_;
  const auto found = objects.find(LowerCase(name));
  return found == objects.end() ? nullptr : found->second;
}

CatalogObjectPtr Catalog::Get(std::string_view name) const {
  CatalogObjectPtr object = Find(name);
  if (object == nullptr || object->kind == CatalogKind::kProcedure) {
    throw SqlError(208, "Invalid object name '" + std::string(name) + "'.");
  }
  return object;
}

void Catalog::Add(CatalogObject object) {
  if (Find(object.name) != nullptr) {
    throw SqlError(2714, "There is already an object named '" + object.name + "' in the database.");
  }
  Replace(std::move(object));
}

void Catalog::Replace(CatalogObject object) {
  object.Seal();
  ++generation_;
  const std::string key = LowerCase(object.name);
  if (object.temporary) {
    object.id = next_temporary_id_--;
    temporaries_[key] = std::make_shared<const CatalogObject>(std::move(object));
    return;
  }
  Remove(object.name);
  Write(object);
  object.id = sqlite3_last_insert_rowid(database_);
  for (std::size_t i = 0; i < object.columns.size(); ++i) {
    const Column& column = object.columns[i];
    const StatementHandle insert = Prepare(database_, R"(INSERT INTO "$columns" VALUES (?1,?2,?3,?4,?5,?6,?7))");
    sqlite3_bind_int64(insert.get(), 1, object.id);
    sqlite3_bind_int64(insert.get(), 2, static_cast<std::int64_t>(i) + 1);
    BindText(insert.get(), 3, column.name);
    BindText(insert.get(), 4, TypeText(column.type));
    sqlite3_bind_int(insert.get(), 5, column.nullable ? 1 : 0);
    sqlite3_bind_int(insert.get(), 6, column.identity ? kIdentity : column.row_key ? kRowKey : 0);
    BindText(insert.get(), 7, column.default_text);
    Step(database_, insert.get());
  }
  objects_[key] = std::make_shared<const CatalogObject>(std::move(object));
}

void Catalog::Write(const CatalogObject& object) {
  const StatementHandle insert =
      Prepare(database_, R"(INSERT INTO "$objects" (name, kind, definition) VALUES (?1,?2,?3))");
  BindText(insert.get(), 1, object.name);
  BindText(insert.get(), 2, kKindNames[static_cast<std::size_t>(object.kind)]);
  BindText(insert.get(), 3, object.definition);
  Step(database_, insert.get());
  // Views and procedures are no SQLite objects: the version says to other connections that something changed.
  if (object.kind != CatalogKind::kTable) {
    CountUp();
  }
}

void Catalog::CountUp() {
  const std::int64_t version = SchemaVersion();
  if (holds_ == 0) sqlite3_reset(version_statement_.get());
  RunSql(database_, "PRAGMA main.schema_version = " + std::to_string(version + 1));
}

void Catalog::Remove(std::string_view name) {
  ++generation_;
  const std::string key = LowerCase(name);
  if (!key.empty() && key[0] == '#') {
    temporaries_.erase(key);
    return;
  }
  const auto found = objects_.find(key);
  if (found == objects_.end()) return;
  for (const char* sql : {R"(DELETE FROM "$columns" WHERE object = ?1)", R"(DELETE FROM "$objects" WHERE id = ?1)"}) {
    const StatementHandle statement = Prepare(database_, sql);
    sqlite3_bind_int64(statement.get(), 1, found->second->id);
    Step(database_, statement.get());
  }
  if (found->second->kind != CatalogKind::kTable) {
    CountUp();
  }
  objects_.erase(found);
}

std::vector<std::string> Catalog::TemporaryTables() const {
  std::vector<std::string> names;
  for (const auto& [key, object] : temporaries_) names.push_back(object->name);
  return names;
}

}  // namespace tessarlorn::tsql
