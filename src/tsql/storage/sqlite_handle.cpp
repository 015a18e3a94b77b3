#include "tsql/storage/sqlite_handle.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include "platform/server_messages.h"
#include "platform/text/text.h"
#include "tsql/functions/sqlite_value.h"
#include "tsql/storage/catalog.h"
#include "tsql/storage/constraint_text.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

/// "UNIQUE constraint failed: t.a, t.b" or "… failed: index 't.i'": what stands behind the colon.
std::string_view Detail(std::string_view message) {
  const std::size_t colon = message.find(": ");
  return colon == std::string_view::npos ? std::string_view{} : message.substr(colon + 2);
}

/// What SQLite calls the table of "t.a" or "s.t.a, s.t.b": a point may stand in its name.
std::string TablePart(sqlite3* database, std::string_view column) {
  SqliteStatement longest(database, R"(SELECT name FROM main."$objects" WHERE kind = 'table'
 AND name || '.' = substr(?1, 1, length(name) + 1) ORDER BY length(name) DESC)");
  longest.BindText(1, column);
  return IsTemporaryName(column) || !longest.Step() ? std::string(column.substr(0, column.find('.'))) : longest.Text(0);
}

/// What stands behind the table's name.
std::string ColumnPart(std::string_view column, std::string_view table) {
  return std::string(column.substr(std::min(column.size(), table.size() + 1)));
}

/// Columns with their tables, a table variable by the name that it was declared with: @t for "@t$2".
std::string Shown(std::string_view columns) {
  std::string shown;
  bool hidden = false;
  for (const char c : columns) {
    hidden = columns[0] == '@' && (c == '$' || (hidden && c >= '0' && c <= '9'));
    if (!hidden) shown += c;
  }
  return shown;
}

/// Its name as messages have it: "dbo.t" or "s.t".
std::string FullName(sqlite3* database, const std::string& table) {
  SqliteStatement schema(database, R"(SELECT 1 FROM main."$objects" WHERE kind = 'schema'
 AND name = substr(?1, 1, instr(?1, '.')))");
  schema.BindText(1, table);
  return schema.Step() ? table : "dbo." + Shown(table);
}

/// The same with its database before it, a table variable by its name alone.
std::string ShownName(sqlite3* database, const std::string& table) {
  if (table.starts_with('@')) return Shown(table);
  return (IsTemporaryName(table) ? "tempdb." : "main.") + FullName(database, table);
}

/// The index, with its table's name before a point, whose columns are "t.a, t.b"; "" for those of constraints.
std::string IndexOf(sqlite3* database, const std::string& columns) {
  const std::string table = TablePart(database, columns);
  SqliteStatement statement(database, R"(SELECT l.name FROM pragma_index_list(?1) l
 WHERE l."unique" AND l.origin = 'c' AND ?2 = (SELECT group_concat(?1 || '.' || name, ', ')
  FROM (SELECT name FROM pragma_index_info(l.name) ORDER BY seqno)))");
  statement.BindText(1, table);
  statement.BindText(2, columns);
  return statement.Step() ? statement.Text(0) : std::string();
}

Constraints ConstraintsOf(const Runtime* runtime, const std::string& table) {
  if (runtime == nullptr || !runtime->table_definition) return {};
  return ReadConstraints(runtime->table_definition(Shown(table)));
}

/// The key with the columns "t.a, t.b", or that the index "$unique2" stands beside; nullptr for none.
const Constraint* KeyOf(const Constraints& constraints, const std::string& table, std::string_view key) {
  int number = 0;
  for (const Constraint& constraint : constraints) {
    if (!constraint.is_key()) continue;
    if (constraint.kind == "UQ" && key == std::string(kUniqueKeyPrefix) + std::to_string(++number)) return &constraint;
    std::string columns;
    for (const std::string& name : constraint.columns) {
      columns.append(columns.empty() ? "" : ", ").append(table).append(".").append(name);
    }
    if (EqualsIgnoreCase(columns, key)) return &constraint;
  }
  return nullptr;
}

[[noreturn]] void RaiseBrokenKey(const char* kind, const std::string& name, const std::string& object,
                                 DuplicateKey::Key key) {
  throw DuplicateKey(2627,
                     std::string("Violation of ") + kind + " KEY constraint" + name +
                         ". Cannot insert duplicate key in object '" + object + "'.",
                     std::move(key));
}

/// @param key as of KeyOf
/// @param detail what SQLite says of it
[[noreturn]] void RaiseBrokenKey(const Runtime* runtime, const std::string& table, const std::string& object,
                                 std::string_view key, const std::string& detail) {
  const Constraints constraints = ConstraintsOf(runtime, table);
  const Constraint* const broken = KeyOf(constraints, table, key);
  if (broken == nullptr) RaiseBrokenKey("UNIQUE", detail.empty() ? "" : " on '" + Shown(detail) + "'", object, {});
  RaiseBrokenKey(broken->kind == "PK" ? "PRIMARY" : "UNIQUE", " '" + broken->name + "'", object,
                 {table, broken->columns});
}

/// @param index with its table's name before a point
std::vector<std::string> ColumnsOfIndex(sqlite3* database, const std::string& index) {
  SqliteStatement names(database, "SELECT name FROM pragma_index_info(?1) ORDER BY seqno");
  names.BindText(1, index);
  std::vector<std::string> columns;
  while (names.Step()) columns.push_back(names.Text(0));
  return columns;
}

[[noreturn]] void RaiseDuplicate(sqlite3* database, const Runtime* runtime, const std::string& detail) {
  // Of an index on expressions SQLite names the index, "index 't.i'", else the columns.
  constexpr std::string_view kNamed = "index '";
  std::string index = detail.starts_with(kNamed) ? detail.substr(kNamed.size(), detail.size() - kNamed.size() - 1)
                                                 : IndexOf(database, detail);
  if (index.ends_with(kNullKeySuffix)) index.resize(index.size() - kNullKeySuffix.size());
  const std::string table = TablePart(database, index.empty() ? detail : index);
  const std::string name = ColumnPart(index, table);
  const std::string object = FullName(database, table);
  if (index.empty()) RaiseBrokenKey(runtime, table, object, detail, detail);
  if (name.starts_with(kUniqueKeyPrefix)) RaiseBrokenKey(runtime, table, object, name, "");
  throw DuplicateKey(2601,
                     "Cannot insert duplicate key row in object '" + object + "' with unique index '" + name + "'.",
                     {table, ColumnsOfIndex(database, index)});
}

bool IsDiskFull(int fault) {
#ifdef _WIN32
  // ERROR_HANDLE_DISK_FULL, ERROR_DISK_FULL
  return fault == 39 || fault == 112;
#else
  return fault == ENOSPC || fault == EFBIG || fault == EDQUOT;
#endif
}

/// Whether a write failed because a file cannot grow. SQLite knows that of some writes, and of a file the last failure.
bool IsDiskFull(sqlite3* database, int status) {
  if (database == nullptr) return false;
  if (IsDiskFull(sqlite3_system_errno(database))) return true;
  if (status != SQLITE_IOERR_WRITE) return false;
  for (const int which : {SQLITE_FCNTL_FILE_POINTER, SQLITE_FCNTL_JOURNAL_POINTER}) {
    sqlite3_file* file = nullptr;
    int fault = 0;
    if (sqlite3_file_control(database, "main", which, &file) == SQLITE_OK && file != nullptr &&
        file->pMethods != nullptr && file->pMethods->xFileControl(file, SQLITE_FCNTL_LAST_ERRNO, &fault) == SQLITE_OK &&
        IsDiskFull(fault)) {
      return true;
    }
  }
  return false;
}

/// Whether the database's file could grow: then what is full is the space of a session, for temporary tables and for
/// rows on their way.
bool HasRoom(sqlite3* database) {
  constexpr std::uintmax_t kRoom = std::uintmax_t{64} << 20;
  const char* const file = database == nullptr ? nullptr : sqlite3_db_filename(database, "main");
  if (file == nullptr) return false;
  std::error_code failed;
  const std::filesystem::space_info space = std::filesystem::space(std::filesystem::u8path(file), failed);
  return !failed && space.available > kRoom;
}

[[noreturn]] void RaiseConstraint(sqlite3* database, int status, const Runtime* runtime, std::string_view message,
                                  std::string_view verb) {
  const std::string detail(Detail(message));
  const std::string table = TablePart(database, detail);
  const std::string object = FullName(database, table);
  switch (status) {
    case SQLITE_CONSTRAINT_NOTNULL:
      throw SqlError(515, "Cannot insert the value NULL into column '" + ColumnPart(detail, table) + "', table '" +
                              ShownName(database, table) + "'; column does not allow nulls. " + std::string(verb) +
                              " fails.");
    case SQLITE_CONSTRAINT_PRIMARYKEY:
    case SQLITE_CONSTRAINT_ROWID:
      if (const Constraints known = ConstraintsOf(runtime, table); KeyOf(known, table, detail) == nullptr) {
        RaiseBrokenKey("PRIMARY", " 'PK_" + object.substr(object.find('.') + 1) + "'", object, {});
      }
      RaiseBrokenKey(runtime, table, object, detail, detail);
    case SQLITE_CONSTRAINT_UNIQUE:
      RaiseDuplicate(database, runtime, detail);
    default:
      throw BrokenConstraint(verb, status == SQLITE_CONSTRAINT_CHECK ? detail : "");
  }
}

/// The database as messages name it.
struct ShownDatabase {
  explicit ShownDatabase(sqlite3* database) {
    constexpr std::string_view kInMemory = "/tessarlorn-";
    const char* file = database == nullptr ? nullptr : sqlite3_db_filename(database, "main");
    in_memory = file != nullptr && std::string_view(file).starts_with(kInMemory);
    name = file == nullptr || *file == '\0' ? "in memory"
           : in_memory                      ? "':memory:" + std::string(file).substr(kInMemory.size()) + "'"
                                            : std::string("'") + file + "'";
  }
  std::string name;
  bool in_memory = false;
};

[[noreturn]] void RaiseReadOnly(sqlite3* database, int status, const std::string& name) {
  // The database may be written, but the file of locks had no room (see OpenDatabase).
  if (status == SQLITE_READONLY && database != nullptr && sqlite3_db_readonly(database, "main") == 0) {
    throw SqlError(1105,
                   "Could not allocate space in the database " + name +
                       ": the disk was full when it was opened. Free space and open it again.",
                   17);
  }
  throw SqlError(3906, "Failed to update the database " + name + " because it is read-only.");
}

[[noreturn]] void RaiseOther(const std::string& message) {
  if (message == "integer overflow")
    throw SqlError(8115, "Arithmetic overflow error converting expression to data type bigint.");
  if (message == "parser stack overflow" || message.starts_with("Expression tree is too large")) {
    throw SqlError(8631,
                   "Internal error: Server stack limit has been reached. Please look for potentially deep nesting in "
                   "your query, and try to simplify it.",
                   17);
  }
  if (message == "at most 64 tables in a join") {
    throw SqlError(
        8623,
        "The query processor ran out of internal resources and could not produce a query plan. This is a rare "
        "event and only expected for extremely complex queries or queries that reference a very large number "
        "of tables or partitions. Please simplify the query.");
  }
  if (message.find("non-deterministic") != std::string::npos) {
    RaiseUnsupported("A computed column, a CHECK constraint or an index of what is not deterministic");
  }
  if (message == "no query solution") {
    throw SqlError(
        8622,
        "Query processor could not produce a query plan because of the hints defined in this query. Resubmit "
        "the query without specifying any hints and without using SET FORCEPLAN.");
  }
  constexpr std::string_view kNoIndex = "no such index: ";
  if (message.starts_with(kNoIndex)) {
    const std::string_view index = std::string_view(message).substr(kNoIndex.size());
    const std::size_t dot = index.find('.');
    throw SqlError(308, "Index '" + std::string(index.substr(dot + 1)) + "' on table '" +
                            std::string(index.substr(0, dot)) + "' (specified in the FROM clause) does not exist.");
  }
  throw SqlError(server_message::kInternalError, "The embedded database could not run the statement: " + message + ".");
}

}  // namespace

void RaiseSqlite(sqlite3* database, int status, Runtime* runtime, std::string_view verb) {
  if (runtime != nullptr && runtime->error) {
    const SqlError error = *runtime->error;
    runtime->error.reset();
    throw error;
  }
  const std::string message = database == nullptr ? sqlite3_errstr(status) : sqlite3_errmsg(database);
  const int extended = database == nullptr ? status : sqlite3_extended_errcode(database);
  const ShownDatabase shown(database);
  const std::string& name = shown.name;
  int kind = status & 0xff;
  if ((kind == SQLITE_IOERR || kind == SQLITE_CANTOPEN) && IsDiskFull(database, extended)) kind = SQLITE_FULL;
  switch (kind) {
    case SQLITE_CONSTRAINT:
      RaiseConstraint(database, extended, runtime, message, verb);
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      throw SqlError(1222, "Lock request time out period exceeded: the database " + name + " is in use.");
    case SQLITE_FULL:
      if (shown.in_memory || ((status & 0xff) == SQLITE_FULL && HasRoom(database))) throw OutOfMemory();
      throw SqlError(1105, "Could not allocate space in the database " + name + ": the disk is full.", 17);
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
      throw SqlError(824, "The database " + name + " is damaged or is no database: " + message + ".", 24);
    case SQLITE_IOERR:
      throw SqlError(823, "Reading or writing the database " + name + " failed: " + message + ".", 24);
    case SQLITE_READONLY:
      RaiseReadOnly(database, extended, name);
    case SQLITE_CANTOPEN:
      throw SqlError(server_message::kCannotOpenDatabase, "Cannot open the database " + name + ": " + message + ".",
                     11);
    case SQLITE_INTERRUPT:
      throw Cancelled();
    case SQLITE_NOMEM:
      throw OutOfMemory();
    case SQLITE_TOOBIG:
      if (message == sqlite3_errstr(SQLITE_TOOBIG)) throw OutOfMemory();
      throw SqlError(8631, "The value or the statement is too large: " + message + ".", 17);
    default:
      RaiseOther(message);
  }
}

BrokenConstraint::BrokenConstraint(std::string_view verb, const std::string& check)
    : SqlError(547, "The " + std::string(verb) + " statement conflicted with the " +
                        (check.empty() ? "FOREIGN KEY constraint." : "CHECK constraint \"" + check + "\".")),
      verb_(verb),
      check_(check) {}

DuplicateKey::DuplicateKey(std::int32_t number, const std::string& message, Key key)
    : SqlError(number, message, 14), key_(std::move(key)) {}

void RunSql(sqlite3* database, const std::string& sql, Runtime* runtime) {
  const int status = sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr);
  if (status != SQLITE_OK) RaiseSqlite(database, status, runtime);
}

SqliteStatement::SqliteStatement(sqlite3* database, std::string_view sql, Runtime* runtime) : runtime_(runtime) {
  sqlite3_stmt* statement = nullptr;
  const int status = sqlite3_prepare_v3(database, sql.data(), static_cast<int>(sql.size()), SQLITE_PREPARE_PERSISTENT,
                                        &statement, nullptr);
  if (status != SQLITE_OK) RaiseSqlite(database, status, runtime);
  handle_.reset(statement);
}

void SqliteStatement::BindInteger(int parameter, std::int64_t value) {
  sqlite3_bind_int64(handle_.get(), parameter, value);
}

void SqliteStatement::BindText(int parameter, std::string_view text) {
  sqlite3_bind_text64(handle_.get(), parameter, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

void SqliteStatement::BindValue(int parameter, const Datum& value) {
  if (const auto* integer = std::get_if<std::int64_t>(&value)) {
    sqlite3_bind_int64(handle_.get(), parameter, *integer);
  } else if (const auto* real = std::get_if<double>(&value)) {
    sqlite3_bind_double(handle_.get(), parameter, *real);
  } else if (const auto* text = std::get_if<std::string>(&value)) {
    BindText(parameter, *text);
  } else if (const auto* blob = std::get_if<Blob>(&value)) {
    // No address, no value: an empty binary is one, and not NULL.
    sqlite3_bind_blob64(handle_.get(), parameter, blob->bytes.empty() ? "" : blob->bytes.data(), blob->bytes.size(),
                        SQLITE_TRANSIENT);
  } else {
    sqlite3_bind_null(handle_.get(), parameter);
  }
}

void SqliteStatement::BindList(int parameter, std::shared_ptr<const ListItems> items) {
  tsql::BindList(handle_.get(), parameter, std::move(items));
}

void SqliteStatement::BindStaticText(int parameter, std::string_view text) {
  sqlite3_bind_text64(handle_.get(), parameter, text.data(), text.size(), SQLITE_STATIC, SQLITE_UTF8);
}

void SqliteStatement::Fail(int status, std::string_view verb) {
  sqlite3_reset(handle_.get());
  RaiseSqlite(sqlite3_db_handle(handle_.get()), status, runtime_, verb);
}

Datum SqliteStatement::Value(int column) const { return ToDatum(sqlite3_column_value(handle_.get(), column)); }

}  // namespace tessarlorn::tsql
