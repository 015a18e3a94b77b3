// Keys and foreign keys: SQLite compares them row by row, the server when all rows of a statement stand.
#include <algorithm>

#include "platform/text/text.h"
#include "tsql/engine/definitions/table_dependents.h"
#include "tsql/engine/row_statements.h"
#include "tsql/storage/constraint_text.h"

namespace tessarlorn::tsql {
namespace {

/// While it lives SQLite does not compare foreign keys. One within another leaves it to the outer one to look at them.
class WithReferencesDeferred {
 public:
  explicit WithReferencesDeferred(SessionDatabase& database) : database_(database) {
    SqliteStatement deferred = database_.Prepare("PRAGMA defer_foreign_keys");
    deferred.Step();
    nested_ = deferred.Integer(0) != 0;
    database_.Run("PRAGMA defer_foreign_keys = ON");
  }
  WithReferencesDeferred(const WithReferencesDeferred&) = delete;
  WithReferencesDeferred& operator=(const WithReferencesDeferred&) = delete;
  ~WithReferencesDeferred() {
    if (!nested_) database_.RunQuietly("PRAGMA defer_foreign_keys = OFF");
  }

  /// Raises 547 where one is broken by now.
  void RequireNoneBroken() const {
    int open = 0;
    int unused = 0;
    sqlite3_db_status(database_.handle(), SQLITE_DBSTATUS_DEFERRED_FKS, &open, &unused, 0);
    if (open != 0 && !nested_) throw BrokenConstraint("UPDATE");
  }

 private:
  SessionDatabase& database_;
  bool nested_ = false;
};

/// While it lives rows are moved.
class MovingRows {
 public:
  explicit MovingRows(Runtime& runtime) : runtime_(runtime) { runtime_.moves_rows = true; }
  MovingRows(const MovingRows&) = delete;
  MovingRows& operator=(const MovingRows&) = delete;
  ~MovingRows() { runtime_.moves_rows = false; }

 private:
  Runtime& runtime_;
};

/// The keys of a table that refers to itself, as they were before a change, in the temporary table $keys.
void NoteKeys(SessionDatabase& database, const CatalogObject& table) {
  std::string columns;
  for (const Column& column : table.columns) columns += (columns.empty() ? "" : ", ") + QuoteName(column.name);
  database.Run("CREATE TEMP TABLE \"$keys\" AS SELECT " + columns + " FROM " + TableSql(table));
}

bool RefersToItself(const CatalogObject& table, const Constraint& constraint) {
  return constraint.kind == "F" && EqualsIgnoreCase(constraint.to, table.name);
}

/// The columns that a foreign key refers to.
std::vector<std::string> ReferencedBy(const Constraint& reference, const CatalogObject& other) {
  if (!reference.referenced.empty()) return reference.referenced;
  const Constraints constraints = ReadConstraints(other.definition);
  const Constraint* const primary = FindKind(constraints, "PK");
  return primary == nullptr ? std::vector<std::string>() : primary->columns;
}

}  // namespace

bool IsDuplicate(const SqlError& error) { return error.number() == 2601 || error.number() == 2627; }

std::int64_t RowStatements::MoveRows(const CatalogObject& table, const std::function<std::int64_t()>& collect) {
  std::string columns;
  std::string names;
  bool numbered = false;
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    const Column& column = table.columns[i];
    if (column.computed()) continue;
    columns += ", c" + std::to_string(i);
    names += ", " + QuoteName(column.name);
    numbered = numbered || column.identity || column.row_key;
  }
  const std::string to = TableSql(table);
  // A column that is the row's number brings it along.
  const std::string insert = numbered ? " (" + names.substr(2) + ") SELECT " + columns.substr(2)
                                      : " (_rowid_" + names + ") SELECT r" + columns;
  std::int64_t moved = 0;
  database_.Atomically([&] {
    const WithReferencesDeferred deferred(database_);
    database_.Run("CREATE TEMP TABLE \"$moved\" (r INTEGER PRIMARY KEY" + columns + ")");
    moved = collect();
    std::string leave = "DELETE FROM ";
    leave.append(to).append(" WHERE _rowid_ IN (SELECT r FROM temp.\"$moved\")");
    std::string come = "INSERT INTO ";
    come.append(to).append(insert).append(" FROM temp.\"$moved\"");
    {
      const MovingRows moving(database_.runtime());
      for (const std::string& sql : {leave, come}) database_.Prepare(sql).Step("UPDATE");
    }
    deferred.RequireNoneBroken();
    database_.Run("DROP TABLE temp.\"$moved\"");
  });
  return moved;
}

std::int64_t RowStatements::ApplyUpdate(const CatalogObject& table, const ChangeStage& stage) {
  try {
    SqliteStatement apply = database_.Prepare(stage.apply);
    apply.Step(stage.verb);
    return apply.changes();
  } catch (const SqlError& error) {
    if (!IsDuplicate(error)) throw;
  }
  std::string row = "\"$rows\".r";
  for (const Column& column : table.columns) {
    if (column.computed()) continue;
    const auto changed = std::find(stage.changed_columns.begin(), stage.changed_columns.end(), column.name);
    row += changed == stage.changed_columns.end()
               ? ", \"$target\"." + QuoteName(column.name)
               : ", \"$rows\".v" + std::to_string(changed - stage.changed_columns.begin());
  }
  return MoveRows(table, [&] {
    SqliteStatement collect = database_.Prepare("INSERT INTO temp.\"$moved\" SELECT " + row + " FROM temp." +
                                                QuoteName(stage.table) + " AS \"$rows\" JOIN " + TableSql(table) +
                                                " AS \"$target\" ON \"$target\"._rowid_ = " + "\"$rows\".r");
    collect.Step(stage.verb);
    return collect.changes();
  });
}

std::optional<SqlError> RowStatements::TryAgain(const std::function<void()>& body) {
  const Transaction::Trial trial(transaction_);
  Frame& frame = *database_.runtime().frame;
  const Frame before = frame;
  std::optional<SqlError> raised;
  try {
    database_.Atomically([&] {
      std::vector<TakenRows> taken;
      const Results::Taking taking(results_, taken);
      try {
        body();
      } catch (const SqlError& error) {
        raised = error;
      }
      throw InnerError();
    });
  } catch (const SqlError&) {
    frame = before;
  }
  return raised;
}

void RowStatements::RaiseBroken(const BrokenConstraint& broken, const Changed& changed,
                                const std::function<void()>& change) {
  const CatalogObjectPtr table = database_.catalog().Find(changed.table);
  if (table == nullptr) throw BrokenConstraint(broken);
  const std::string verb(changed.merges ? "MERGE" : broken.verb());
  for (const Constraint& check : ReadConstraints(table->definition)) {
    if (check.kind == "C" && check.name == broken.check())
      throw Conflict(verb, "CHECK", check.name, *table, check.columns);
  }
  if (!broken.check().empty()) throw BrokenConstraint(broken);
  const WithReferencesDeferred deferred(database_);
  const std::optional<SqlError> named = TryAgain([&] {
    const Constraints constraints = ReadConstraints(table->definition);
    if (std::any_of(constraints.begin(), constraints.end(),
                    [&](const Constraint& constraint) { return RefersToItself(*table, constraint); })) {
      NoteKeys(database_, *table);
    }
    change();
    RequireReferences(*table, verb);
  });
  if (named) throw SqlError(*named);
  throw BrokenConstraint(broken);
}

void RowStatements::RaiseDuplicate(const DuplicateKey& duplicate, const Changed& changed,
                                   const std::function<void()>& change) {
  const CatalogObjectPtr table = database_.catalog().Find(changed.table);
  const DuplicateKey::Key& key = duplicate.key();
  // SQLite makes no trigger while a change runs that calls a function.
  const bool noted = table != nullptr && table->table_name() == key.table && database_.runtime().function_depth == 0;
  const std::string value = noted ? DuplicateValue(*table, key.columns, change) : "";
  if (value.empty()) throw DuplicateKey(duplicate);
  throw SqlError(duplicate.number(), duplicate.what() + (" The duplicate key value is (" + value) + ").", 14);
}

std::string RowStatements::DuplicateValue(const CatalogObject& table, const std::vector<std::string>& columns,
                                          const std::function<void()>& change) {
  std::vector<Datum>& noted = database_.runtime().noted_key;
  noted.clear();
  std::string values;
  for (const std::string& column : columns) values += (values.empty() ? "NEW." : ", NEW.") + QuoteName(column);
  if (values.empty()) return {};
  const std::optional<SqlError> raised = TryAgain([&] {
    // The row that fails is the last one whose key is noted.
    for (const std::string_view event : {"INSERT", "UPDATE"}) {
      std::string trigger = "CREATE TEMP TRIGGER \"$key of ";
      trigger.append(event).append("\" BEFORE ").append(event).append(" ON ").append(TableSql(table));
      trigger.append(" BEGIN SELECT ts_note_key(").append(values).append("); END");
      database_.Run(trigger);
    }
    change();
  });
  const bool again = raised && IsDuplicate(*raised) && noted.size() == columns.size();
  return again ? KeyText(table, columns, noted) : "";
}

void RowStatements::RequireReferences(const CatalogObject& table, const std::string& verb) {
  Catalog& catalog = database_.catalog();
  for (const Constraint& reference : ReadConstraints(table.definition)) {
    if (reference.kind != "F") continue;
    const CatalogObjectPtr other = catalog.Find(reference.to);
    if (other == nullptr) continue;
    const std::vector<std::string> referenced = ReferencedBy(reference, *other);
    if (!HasBrokenReference(database_, table, reference, *other, referenced)) continue;
    if (!RefersToItself(table, reference)) throw Conflict(verb, "FOREIGN KEY", reference.name, *other, referenced);
    // Where a row had the key before, the one that lost it is to blame.
    const bool lost = HasBrokenReference(database_, table, reference, table, referenced, "temp.\"$keys\"");
    throw Conflict(verb, lost ? "SAME TABLE REFERENCE" : "FOREIGN KEY SAME TABLE", reference.name, table,
                   lost ? reference.columns : referenced);
  }
  for (const IncomingReference& incoming : ReferencesTo(database_, table)) {
    const CatalogObjectPtr from = catalog.Find(incoming.table);
    if (from == nullptr) continue;
    for (const Constraint& reference : ReadConstraints(from->definition)) {
      if (reference.kind != "F" || reference.name != incoming.name) continue;
      if (!HasBrokenReference(database_, *from, reference, table, incoming.referenced)) continue;
      throw Conflict(verb, "REFERENCE", reference.name, *from, reference.columns);
    }
  }
}

}  // namespace tessarlorn::tsql
