#include "tsql/engine/definitions/table_maker.h"

#include <algorithm>
#include <utility>

#include "platform/text/text.h"
#include "tsql/engine/definitions/definitions.h"
#include "tsql/engine/definitions/table_dependents.h"
#include "tsql/syntax/ast_walk.h"
#include "tsql/syntax/parser.h"

namespace tessarlorn::tsql {
namespace {

/// The column that is the row's own number in SQLite, or -1: the identity, or else a primary key of one whole number.
int RowKey(const CatalogObject& table, const Constraint* primary) {
  const int identity = table.identity_column();
  if (identity >= 0 || primary == nullptr || primary->columns.size() != 1) return identity;
  const int key = table.FindColumn(primary->columns[0]);
  const FieldType kind = table.columns[static_cast<std::size_t>(key)].type.kind;
  const bool whole = kind == FieldType::kInt || kind == FieldType::kBigInt || kind == FieldType::kSmallInt;
  return whole ? key : -1;
}

bool HasQuery(const Expression& expression) {
  bool has = As<ScalarSubquery>(expression) != nullptr || As<InQuery>(expression) != nullptr ||
             As<ExistsCondition>(expression) != nullptr || As<QuantifiedComparison>(expression) != nullptr;
  ForEachOperand(expression, [&](const Expression& operand) { has = has || HasQuery(operand); });
  return has;
}

/// Raises 8110, and 1911 for a key of a column that the table has not.
void RequireKeys(const CatalogObject& table, const Constraints& constraints) {
  const Constraint* primary = FindKind(constraints, "PK");
  for (const Constraint& constraint : constraints) {
    if (!constraint.is_key()) continue;
    RequireColumns(table, constraint.columns);
    for (const std::string& name : constraint.columns) {
      if (constraint.kind == "PK" && table.columns[static_cast<std::size_t>(table.FindColumn(name))].computed()) {
        RaiseUnsupported("A PRIMARY KEY with a computed column");
      }
    }
    if (constraint.kind == "PK" && &constraint != primary) {
      throw SqlError(8110, "Cannot add multiple PRIMARY KEY constraints to table '" + table.own_name() + "'.");
    }
  }
}

/// Where SQLite notes the last identity value of a table.
std::string SequenceOf(const CatalogObject& table) {
  return std::string(SchemaOf(table)) + ".sqlite_sequence WHERE name = " + QuoteText(table.table_name());
}

/// What the new table is called until the old one is gone.
constexpr const char* kNewTable = "$new";

/// While it lives, SQLite drops tables that others refer to. Its PRAGMA is without effect in a transaction.
class WithoutForeignKeys {
 public:
  explicit WithoutForeignKeys(sqlite3* database) : database_(database) { Set(0); }
  WithoutForeignKeys(const WithoutForeignKeys&) = delete;
  WithoutForeignKeys& operator=(const WithoutForeignKeys&) = delete;
  ~WithoutForeignKeys() { Set(1); }

 private:
  void Set(int on) { sqlite3_db_config(database_, SQLITE_DBCONFIG_ENABLE_FKEY, on, nullptr); }
  sqlite3* database_;
};

}  // namespace

std::string NameList(const std::vector<std::string>& names) {
  std::string sql;
  for (const std::string& name : names) sql += (sql.empty() ? "" : ", ") + QuoteName(name);
  return sql;
}

std::string_view SchemaOf(const CatalogObject& table) { return table.temporary ? "temp" : "main"; }

std::string TableMaker::CheckSql(const CatalogObject& table, const Constraint& check) {
  // Read anew by itself: in the batch a list of literals is one token, whose items are not the definition's.
  const ExpressionPtr condition = ParseExpressionText(check.text, database_.names());
  return plans_.MakeTranslator(activation_).TranslateCheck(table, *condition);
}

std::string TableMaker::ConstraintSql(const CatalogObject& table, const Constraint& constraint) {
  if (constraint.kind == "C") {
    return ", CONSTRAINT " + QuoteName(constraint.name) + " CHECK (" + CheckSql(table, constraint) + ")";
  }
  if (constraint.kind == "UQ") return ", UNIQUE (" + NameList(constraint.columns) + ")";
  if (constraint.kind != "F") return {};
  return ", FOREIGN KEY (" + NameList(constraint.columns) + ") REFERENCES " + QuoteName(constraint.to) +
         (constraint.referenced.empty() ? "" : " (" + NameList(constraint.referenced) + ")");
}

Typed TableMaker::Computed(const CatalogObject& table, const Column& column) {
  const ExpressionPtr value = ParseExpressionText(column.computed_text, database_.names());
  if (HasQuery(*value)) {
    throw SqlError(1046, "Subqueries are not allowed in this context. Only scalar expressions are allowed.", 15);
  }
  return plans_.MakeTranslator(activation_).TranslateComputed(table, *value);
}

void TableMaker::SettleComputed(CatalogObject& table) {
  for (Column& column : table.columns) {
    if (!column.computed()) continue;
    for (const Column& other : table.columns) {
      if (!other.computed() || !NamesColumn(database_, column.computed_text, other.name)) continue;
      throw SqlError(1759, "Computed column '" + other.name + "' in table '" + table.own_name() +
                               "' is not allowed to be used in another computed-column definition.");
    }
    column.type = Computed(table, column).type;
  }
}

std::string TableMaker::ColumnSql(const CatalogObject& table, const Column& column) {
  std::string sql = QuoteName(column.name) + " " + std::string(SqliteColumnType(column.type));
  if (column.computed()) {
    sql += " GENERATED ALWAYS AS (" + Computed(table, column).sql + (column.persisted ? ") STORED" : ") VIRTUAL");
  }
  return sql + (column.nullable ? "" : " NOT NULL");
}

std::string TableMaker::Definition(CatalogObject& table, const std::string& name) {
  const Constraints constraints = ReadConstraints(table.definition);
  RequireKeys(table, constraints);
  const Constraint* primary = FindKind(constraints, "PK");
  const int identity = table.identity_column();
  const int row_key = RowKey(table, primary);
  const bool counts = identity >= 0 && table.columns[static_cast<std::size_t>(identity)].increment == 0;
  if (identity >= 0 && !counts) MakeSequences(table);
  std::string sql = "CREATE TABLE " + std::string(SchemaOf(table)) + "." + QuoteName(name) + " (";
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    Column& column = table.columns[i];
    if (primary != nullptr && primary->HasColumn(column.name)) column.nullable = false;
    column.row_key = static_cast<int>(i) == row_key && !column.identity;
    sql += i == 0 ? "" : ", ";
    if (static_cast<int>(i) == row_key) {
      sql += QuoteName(column.name) + (counts ? " INTEGER PRIMARY KEY AUTOINCREMENT" : " INTEGER PRIMARY KEY NOT NULL");
    } else {
      sql += ColumnSql(table, column);
    }
  }
  const bool key_stands = primary != nullptr && row_key >= 0 && primary->columns.size() == 1 &&
                          primary->HasColumn(table.columns[static_cast<std::size_t>(row_key)].name);
  if (primary != nullptr && !key_stands) {
    sql += (row_key >= 0 ? ", UNIQUE (" : ", PRIMARY KEY (") + NameList(primary->columns) + ")";
  }
  for (const Constraint& constraint : constraints) sql += ConstraintSql(table, constraint);
  return sql + ")";
}

void TableMaker::MakeKeyIndexes(const CatalogObject& table) {
  int number = 0;
  for (const Constraint& constraint : ReadConstraints(table.definition)) {
    if (constraint.kind != "UQ") continue;
    const std::string index = std::string(kUniqueKeyPrefix) + std::to_string(++number);
    const std::string sql = NullKeySql(table, index, constraint.columns, "");
    if (!sql.empty()) database_.Run(sql);
  }
}

void TableMaker::MakeSequences(const CatalogObject& table) {
  const std::string schema(SchemaOf(table));
  if (!FirstText("SELECT 1 FROM " + schema + ".sqlite_schema WHERE name = 'sqlite_sequence'").empty()) return;
  database_.Run("CREATE TABLE " + schema + ".\"$counted\" (n INTEGER PRIMARY KEY AUTOINCREMENT); DROP TABLE " + schema +
                ".\"$counted\"");
}

void TableMaker::RestartIdentity(const CatalogObject& table, const Constraint& identity, std::int64_t rows) {
  database_.Run("DELETE FROM " + SequenceOf(table));
  const std::int64_t increment = identity.increment == 0 ? 1 : identity.increment;
  // SQLite counts on from what stands there; what counts otherwise begins with its seed where nothing stands.
  if (rows == 0 && (identity.increment != 0 || identity.seed == 1)) return;
  database_.Run("INSERT INTO " + std::string(SchemaOf(table)) + ".sqlite_sequence VALUES (" +
                QuoteText(table.table_name()) + ", " + std::to_string(identity.seed + (rows - 1) * increment) + ")");
}

void TableMaker::CountOn(const CatalogObject& table, const Constraint& identity) {
  if (identity.increment == 0) return;
  const std::string farthest = std::string(identity.increment < 0 ? "min(" : "max(") + NameList(identity.columns) + ")";
  database_.Run("DELETE FROM " + SequenceOf(table) + "; INSERT INTO " + std::string(SchemaOf(table)) +
                ".sqlite_sequence SELECT " + QuoteText(table.table_name()) + ", " + farthest + " FROM " +
                TableSql(table) + " HAVING count(*) > 0");
}

void TableMaker::Make(CatalogObject table) {
  Catalog& catalog = database_.catalog();
  SettleComputed(table);
  if (catalog.Find(table.name) != nullptr) {
    throw SqlError(2714, "There is already an object named '" + table.own_name() + "' in the database.");
  }
  const bool is_left = database_.HasLeft(table.table_name());
  database_.Atomically([&] {
    const std::string definition = Definition(table, table.table_name());
    if (!database_.TakeLeft(table.table_name())) database_.Run(definition);
    catalog.Add(table);
    if (!is_left) MakeKeyIndexes(table);
    const Constraints constraints = ReadConstraints(table.definition);
    if (const Constraint* identity = FindKind(constraints, "I")) RestartIdentity(table, *identity);
  });
}

std::string TableMaker::FirstText(const std::string& sql) {
  SqliteStatement statement = database_.Prepare(sql);
  return statement.Step("SELECT") ? statement.Text(0) : std::string();
}

void TableMaker::RequireNoted(const CatalogObject& table) {
  const Constraints constraints = ReadConstraints(table.definition);
  const std::string of_table =
      "(" + QuoteText(table.table_name()) + ", " + QuoteText(std::string(SchemaOf(table))) + ")";
  const auto lacks = [&](std::string_view kind, const std::string& found) {
    return FindKind(constraints, kind) == nullptr && !FirstText("SELECT 1 FROM " + found + " LIMIT 1").empty();
  };
  const bool has_row_key =
      std::any_of(table.columns.begin(), table.columns.end(), [](const Column& column) { return column.row_key; });
  const bool unnoted = (has_row_key && FindKind(constraints, "PK") == nullptr) ||
                       (table.identity_column() >= 0 && FindKind(constraints, "I") == nullptr) ||
                       (FindKind(constraints, "PK") == nullptr &&
                        lacks("UQ", "pragma_index_list" + of_table + " WHERE origin <> 'c'")) ||
                       lacks("F", "pragma_foreign_key_list" + of_table) ||
                       lacks("C", std::string(SchemaOf(table)) + ".sqlite_schema WHERE type = 'table' AND name = " +
                                      QuoteText(table.table_name()) + " AND instr(sql, 'CHECK (') > 0");
  if (unnoted)
    RaiseUnsupported("Changing the table '" + table.name + "', whose constraints an earlier version did not note,");
}

void TableMaker::CopyRows(const CatalogObject& table, const CatalogObject& changed,
                          const std::map<std::string, std::string>& values) {
  std::string columns;
  std::string list;
  bool numbered = false;
  for (const Column& column : changed.columns) {
    numbered = numbered || column.identity || column.row_key;
    const auto given = values.find(column.name);
    const int old = table.FindColumn(column.name);
    if (column.computed() || (given == values.end() && old < 0)) continue;
    columns += ", " + QuoteName(column.name);
    list +=
        ", " + (given != values.end() ? given->second : QuoteName(table.columns[static_cast<std::size_t>(old)].name));
  }
  // A column that is the row's number brings it along.
  if (!numbered) {
    columns += ", _rowid_";
    list += ", _rowid_";
  }
  database_.Run("INSERT INTO " + std::string(SchemaOf(table)) + "." + QuoteName(kNewTable) + " (" + columns.substr(2) +
                ") SELECT " + list.substr(2) + " FROM " + TableSql(table) + " ORDER BY _rowid_");
}

void TableMaker::Rebuild(const CatalogObject& table, CatalogObject changed,
                         const std::map<std::string, std::string>& values) {
  const WithoutForeignKeys without(database_.handle());
  database_.Atomically([&] {
    const std::string schema(SchemaOf(table));
    const std::string name = QuoteText(table.table_name());
    std::vector<std::string> indexes;
    {
      SqliteStatement found = database_.Prepare("SELECT sql FROM " + schema +
                                                ".sqlite_schema WHERE type = 'index' AND"
                                                " tbl_name = " +
                                                name +
                                                " AND sql IS NOT NULL AND substr(name, length(tbl_name)"
                                                " + 2) NOT LIKE '$unique%'");
      while (found.Step("SELECT")) indexes.push_back(found.Text(0));
    }
    const bool counted = table.identity_column() >= 0;
    const std::string last = counted ? FirstText("SELECT seq FROM " + SequenceOf(table)) : "";
    if (counted) database_.Run("DELETE FROM " + SequenceOf(table));
    database_.Run(Definition(changed, kNewTable));
    CopyRows(table, changed, values);
    database_.Run("DROP TABLE " + TableSql(table));
    database_.Run("ALTER TABLE " + schema + "." + QuoteName(kNewTable) + " RENAME TO " + QuoteName(table.table_name()));
    for (std::string sql : indexes) database_.Run(sql.insert(sql.find("INDEX ") + 6, schema + "."));
    MakeKeyIndexes(changed);
    if (counted && changed.identity_column() >= 0) {
      database_.Run("DELETE FROM " + SequenceOf(table));
      if (!last.empty()) {
        database_.Run("INSERT INTO " + schema + ".sqlite_sequence VALUES (" + name + ", " + last + ")");
      }
    }
    database_.catalog().Replace(std::move(changed));
  });
}

}  // namespace tessarlorn::tsql
