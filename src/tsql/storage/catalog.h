// The tables, views and procedures of a database, as the embedded database keeps them in two tables of its own.
#pragma once

#include <cstdint>
#include <memory>
#include <sqlite3.h>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tsql/storage/sqlite_handle.h"
#include "tsql/syntax/ast.h"
#include "tsql/values/types.h"

namespace tessarlorn::tsql {

struct Column {
  std::string name;
  SqlType type;
  bool nullable = true;
  bool identity = false;
  /// The default as written, "" when none.
  std::string default_text;
  /// It is SQLite's own row number, which takes no NULL but makes a number of it.
  bool row_key = false;
  /// Of an identity that SQLite does not count by itself what it counts by, else 0.
  std::int64_t increment = 0;
  /// The expression of a computed column as written, "" of any other.
  std::string computed_text = {};
  /// A computed column that is stored with the row.
  bool persisted = false;
  [[nodiscard]] bool computed() const { return !computed_text.empty(); }
};

enum class CatalogKind : std::uint8_t {
  kTable,
  kView,
  kProcedure,
  kFunction,
  kTableFunction,
  kSequence,
  kFilledFunction,
  kTrigger
};

/// What default_text says of a column of a function that is a parameter, and of the value that it returns. The columns
/// of its rows have "".
constexpr std::string_view kParameterMark = "parameter";
constexpr std::string_view kReturnMark = "return";

/// A table, view, procedure, function, sequence or trigger. Not changed once it stands in the catalog: a new definition
/// is a new object.
struct CatalogObject {
  CatalogKind kind = CatalogKind::kTable;
  /// "t", or "s.t" in a schema that is not dbo.
  std::string name;
  /// That schema, "" for dbo.
  std::string schema;
  /// Of a table variable, which others of its name may stand beside: the name of SQLite's table. "" when it is `name`.
  std::string stored_name;
  bool temporary = false;
  /// Of a table; of a procedure its parameters, whose default_text is "output" when they give a value back. Of a
  /// function those of its rows, its parameters and what it returns. Of a trigger one with the table's name, see
  /// trigger_rule.h.
  std::vector<Column> columns;
  /// Of a table its constraints (see constraint_text.h), of a sequence a JSON object with type, start, increment,
  /// minimum, maximum, cycle and cache, of the others the text that creates them.
  std::string definition;
  std::int64_t id = 0;

  /// It is `inserted` or `deleted`, which a trigger sees.
  [[nodiscard]] bool shows_changes() const { return temporary && !IsTemporaryName(name); }
  /// Its name without the schema.
  [[nodiscard]] std::string own_name() const { return schema.empty() ? name : name.substr(schema.size() + 1); }
  /// "dbo.t" or "s.t".
  [[nodiscard]] std::string full_name() const { return schema.empty() ? "dbo." + name : name; }
  /// With its database before it, a table variable by its name alone.
  [[nodiscard]] std::string shown_name() const {
    if (name.starts_with('@')) return name;
    return (temporary ? "tempdb." : "main.") + full_name();
  }
  /// What SQLite's table is called.
  [[nodiscard]] const std::string& table_name() const { return stored_name.empty() ? name : stored_name; }
  /// It is a table or a view.
  [[nodiscard]] bool has_rows() const { return kind == CatalogKind::kTable || kind == CatalogKind::kView; }
  /// It is a function that gives rows.
  [[nodiscard]] bool gives_rows() const {
    return kind == CatalogKind::kTableFunction || kind == CatalogKind::kFilledFunction;
  }
  [[nodiscard]] int FindColumn(std::string_view column) const;
  [[nodiscard]] int identity_column() const;
  /// Two definitions with the same signature can serve the same compiled statements.
  [[nodiscard]] const std::string& signature() const noexcept { return signature_; }
  void Seal();

 private:
  std::string signature_;
};

using CatalogObjectPtr = std::shared_ptr<const CatalogObject>;

/// What stands as the kind of a schema. Its name has a point behind it: a table may have the same.
constexpr std::string_view kSchemaKind = "schema";

/// What the name of an index ends with that stands beside a unique one, for the keys with NULLs.
constexpr std::string_view kNullKeySuffix = "$null";
/// What its name begins with where it stands beside a UNIQUE constraint.
constexpr std::string_view kUniqueKeyPrefix = "$unique";

/// `name` in double quotes, as SQLite reads it.
std::string QuoteName(std::string_view name, std::string_view prefix = {});
/// The parts of "main.dbo.[a b]", without their brackets or quotes; at least one.
std::vector<std::string> NameParts(std::string_view name);
/// The name that such parts are of, "" for none.
ObjectName NameOf(std::vector<std::string> parts);
/// `text` in single quotes.
std::string QuoteText(std::string_view text);

/// There is one database, "main"; its temporary tables stand in "tempdb". Raises 911 for any other name.
void RequireThisDatabase(std::string_view database);
/// Whether no other database and none of the server's schemas is named.
bool IsLocal(const ObjectName& name);
/// Raises 208 for one that is not.
void RequireLocal(const ObjectName& name);
/// Raises 208, or 1087 for a table variable.
[[noreturn]] void RaiseNoObject(const ObjectName& name);

class Catalog {
 public:
  /// Makes the tables that the catalog is kept in, where they are not there yet.
  static void Make(sqlite3* database);

  explicit Catalog(sqlite3* database) : database_(database) {}

  /// Reads the catalog anew when another connection may have changed it. Raises what SQLite reports.
  void Refresh();
  /// The same for this connection's temporary tables, which nobody else changes: no lock of others is waited for.
  void RefreshTemporaries();
  /// Refreshes, and keeps what was read true until LetGo: SQLite shows the same commit to all statements between.
  void Hold();
  void LetGo() noexcept;
  /// What was read may be wrong, as after a rollback: the next Refresh reads all of it anew.
  void Invalidate() noexcept { stale_ = true; }

  /// The object of that name without regard to case, or nullptr. `#name` is a temporary table of this connection,
  /// `@name` a table variable of the innermost scope.
  [[nodiscard]] CatalogObjectPtr Find(std::string_view name) const;
  /// The same of a name that may be qualified: only one that is not can mean the rows of a trigger.
  [[nodiscard]] CatalogObjectPtr Find(const ObjectName& name) const;
  /// The table or view. Raises 208, or 1087 for a table variable, when there is none.
  [[nodiscard]] CatalogObjectPtr Get(std::string_view name) const;

  /// Writes a definition; the SQLite table itself is the caller's business. Raises 2714 when the name is taken.
  void Add(CatalogObject object);
  /// Puts a definition in the place of the one of the same name, whose number it keeps.
  void Replace(CatalogObject object);
  void Remove(std::string_view name);

  // catalog_changes.cpp
  /// Keeps of an index what SQLite does not know: the columns of INCLUDE, and the condition as it was written.
  void NoteIndex(const CatalogObject& table, const std::string& index, const std::vector<std::string>& included,
                 const std::string& condition);
  /// Changes the name in what is noted of an index. @param to "" forgets the index
  void RenameIndex(const CatalogObject& table, std::string_view from, std::string_view to);
  /// Changes names in the definitions of all objects that keep them apart from texts. The SQLite table itself is the
  /// caller's business, and so is Refresh.
  void RenameObject(const CatalogObject& object, std::string_view to);
  void RenameColumn(const CatalogObject& table, std::string_view from, std::string_view to);

  // catalog_schemas.cpp
  /// Raises 2714 when there is one, or one of the server's, of that name.
  void AddSchema(const std::string& name);
  /// Raises 15150 and 15151, and 3729 while something stands in it.
  void RemoveSchema(const std::string& name);
  /// What the text of an object means by a name without a schema: what its own schema has, or else dbo.
  /// @param schema the object's, "" for dbo and for a batch
  [[nodiscard]] std::string Meant(const ObjectName& name, const std::string& schema) const;
  /// The name that a schema was created with, or nullptr. None of the server's is found.
  [[nodiscard]] const std::string* FindSchema(std::string_view name) const;

  [[nodiscard]] std::vector<std::string> TemporaryTables() const;

  [[nodiscard]] bool has_triggers() const { return !triggers_.empty(); }
  /// Those of a table, the oldest first.
  [[nodiscard]] std::vector<CatalogObjectPtr> TriggersOf(std::string_view table) const;
  /// A trigger begins: until LeaveTrigger its body sees the tables `inserted` and `deleted`, and what it calls does
  /// not.
  void EnterTrigger(CatalogObject inserted, CatalogObject deleted);
  void LeaveTrigger();

  /// A batch or procedure body begins: it sees none of its caller's table variables.
  void EnterScope();
  /// The scope ends. @return its table variables, which are no objects any longer
  std::vector<CatalogObjectPtr> LeaveScope();
  /// How many scopes there are, one around the other.
  [[nodiscard]] std::size_t scope_depth() const { return scopes_.size(); }
  /// Those of all scopes, and the rows of triggers.
  [[nodiscard]] std::vector<CatalogObjectPtr> TableVariables() const;
  /// Grows whenever a definition changes.
  [[nodiscard]] std::uint64_t generation() const noexcept { return generation_; }

 private:
  /// The rows that a trigger sees.
  struct TriggerRows {
    CatalogObjectPtr inserted;
    CatalogObjectPtr deleted;
    std::size_t scope;  // around the trigger's own
  };

  void Load();
  [[nodiscard]] CatalogObjectPtr FindStored(std::string_view name) const;
  /// Notes of which schema an object is.
  void FindSchemaOf(CatalogObject& object) const;
  /// Those rows when the name is that of one of the two tables, or nullptr.
  [[nodiscard]] CatalogObjectPtr FindTriggerRows(std::string_view name) const;
  /// Makes the schema's version another one, for what is no object of SQLite's.
  void CountUp();
  void RefreshTo(std::int64_t version);
  /// Runs a change of the catalog's own tables with the texts as ?1, ?2 and ?3.
  void Update(const std::string& sql, std::string_view first, std::string_view second, std::string_view third = {});
  /// Puts `changed` in the place of each constraint j of the tables that `which` holds for, both SQL.
  void ChangeConstraints(const std::string& changed, const std::string& which, std::string_view first,
                         std::string_view second, std::string_view third = {});
  using Objects = std::unordered_map<std::string, CatalogObjectPtr>;  // by lower-case name
  /// Those among which an object of such a name stands.
  template <typename Self>
  static auto& ObjectsLike(Self& self, std::string_view name) {
    if (!IsTemporaryName(name)) return self.objects_;
    return name[0] == '#' ? self.temporaries_ : self.scopes_.back();
  }
  std::int64_t SchemaVersion();
  /// Puts a temporary table in the place of its former definition; null for none.
  void ChangeTemporary(const std::string& key, CatalogObjectPtr object);
  void Write(const CatalogObject& object);
  /// Puts an object that stands in the file among those that are known.
  void Keep(std::string key, CatalogObject object);

  sqlite3* database_;
  SqliteStatement version_statement_;
  int holds_ = 0;
  std::unordered_map<std::string, std::string> schemas_;  // names by lower-case names
  Objects objects_;
  Objects temporaries_;
  /// What a temporary table was from a version of SQLite's temporary schema on; null where it was dropped.
  struct Past {
    std::int64_t version = 0;
    CatalogObjectPtr object;
  };
  /// A rollback makes a temporary table what it was. By lower-case name, as long as a transaction is open.
  std::unordered_map<std::string, std::vector<Past>> pasts_;
  std::vector<Objects> scopes_ = std::vector<Objects>(1);  // of table variables
  std::vector<CatalogObjectPtr> triggers_;                 // by their numbers
  std::vector<TriggerRows> trigger_rows_;                  // of the triggers that run, innermost last
  std::int64_t schema_version_ = -1;
  bool stale_ = false;
  std::uint64_t generation_ = 0;
  std::int64_t next_temporary_id_ = -1;
};

}  // namespace tessarlorn::tsql
