// CREATE, ALTER and DROP: SQLite's definitions and the catalog's, together or not at all.
#include <algorithm>

#include "platform/text.h"
#include "tsql/engine/session.h"
#include "tsql/storage/constraint_text.h"
#include "tsql/syntax/parser.h"

namespace tessarlorn::tsql {
namespace {

std::string NameList(const std::vector<std::string>& names) {
  std::string sql;
  for (const std::string& name : names) sql += (sql.empty() ? "" : ", ") + QuoteName(name);
  return sql;
}

void RequireColumns(const CatalogObject& table, const std::vector<std::string>& names) {
  for (const std::string& name : names) {
    if (table.FindColumn(name) < 0) {
      throw SqlError(1911, "Column name '" + name + "' does not exist in the target table or view.");
    }
  }
}

/// Names are unique in SQLite's database, and on the server in their table.
std::string IndexSql(const CatalogObject& table, const std::string& index) {
  return (table.temporary ? "temp." : "main.") + QuoteName(table.name + "." + index);
}

/// An index that lets a key with NULLs in it stand once only, as the server does: SQLite's own take any number of them.
/// "" where no column of the key can be NULL.
std::string NullKeySql(const CatalogObject& table, const std::string& index, const std::vector<std::string>& key,
                       const std::string& condition) {
  std::string columns;
  std::string nulls;
  for (const std::string& name : key) {
    const Column& column = table.columns[static_cast<std::size_t>(table.FindColumn(name))];
    const std::string quoted = QuoteName(column.name);
    const std::string value = "ifnull(" + quoted + ", 0)" + CollationOf(column.type);
    columns.append(columns.empty() ? "" : ", ").append(quoted).append(" IS NULL, ").append(value);
    if (column.nullable) nulls.append(nulls.empty() ? "" : " OR ").append(quoted).append(" IS NULL");
  }
  if (nulls.empty()) return {};
  return "CREATE UNIQUE INDEX " + IndexSql(table, index + std::string(kNullKeySuffix)) + " ON " +
         QuoteName(table.name) + " (" + columns + ") WHERE (" + nulls + ")" +
         (condition.empty() ? "" : " AND (" + condition + ")");
}

}  // namespace

void Session::RequireUnreferenced(const CatalogObject& table, std::int32_t number, std::string_view message) {
  if (table.temporary) return;
  const StatementHandle other = Prepare(
      database_.get(),
      "SELECT 1 FROM main.sqlite_schema s, pragma_foreign_key_list(s.name) f WHERE s.type = 'table' AND lower(f.\"table\") = "
      "lower(" +
          QuoteText(table.name) + ") AND lower(s.name) <> lower(" + QuoteText(table.name) + ")",
      &runtime_);
  if (Step(other.get(), "SELECT") == SQLITE_ROW) throw SqlError(number, std::string(message));
}

void Session::Atomically(const std::function<void()>& body) {
  RunSql(database_.get(), "SAVEPOINT definition", &runtime_);
  try {
    body();
  } catch (...) {
    sqlite3_exec(database_.get(), "ROLLBACK TO definition; RELEASE definition", nullptr, nullptr, nullptr);
    catalog_.Invalidate();
    catalog_.Refresh();
    throw;
  }
  RunSql(database_.get(), "RELEASE definition", &runtime_);
}

void Session::CreateTable(CatalogObject table, const std::vector<std::string>& constraints,
                          const std::vector<std::string>& primary_key) {
  if (catalog_.Find(table.name) != nullptr) {
    throw SqlError(2714, "There is already an object named '" + table.name + "' in the database.");
  }
  const int identity = table.identity_column();
  // The row's own number in SQLite is the identity, or else a primary key of one whole number.
  int row_key = identity;
  if (row_key < 0 && primary_key.size() == 1) {
    const int key = table.FindColumn(primary_key[0]);
    const FieldType kind = table.columns[static_cast<std::size_t>(key)].type.kind;
    if (kind == FieldType::kInt || kind == FieldType::kBigInt || kind == FieldType::kSmallInt) row_key = key;
  }
  std::string sql = "CREATE TABLE " + TableSql(table) + " (";
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    const Column& column = table.columns[i];
    const bool key = std::any_of(primary_key.begin(), primary_key.end(),
                                 [&](const std::string& name) { return EqualsIgnoreCase(name, column.name); });
    if (key) table.columns[i].nullable = false;
    sql += (i == 0 ? "" : ", ") + QuoteName(column.name) + " ";
    if (static_cast<int>(i) == row_key) {
      sql += identity >= 0 ? "INTEGER PRIMARY KEY AUTOINCREMENT" : "INTEGER PRIMARY KEY NOT NULL";
      table.columns[i].row_key = identity < 0;
      continue;
    }
    sql += std::string(SqliteColumnType(column.type)) + (table.columns[i].nullable ? "" : " NOT NULL");
  }
  const bool key_stands = row_key >= 0 && primary_key.size() == 1 &&
                          EqualsIgnoreCase(primary_key[0], table.columns[static_cast<std::size_t>(row_key)].name);
  if (!primary_key.empty() && !key_stands) {
    sql += (row_key >= 0 ? ", UNIQUE (" : ", PRIMARY KEY (") + NameList(primary_key) + ")";
  }
  for (const std::string& constraint : constraints) sql += ", " + constraint;
  RunSql(database_.get(), sql + ")", &runtime_);
  catalog_.Add(std::move(table));
}

void Session::CreateTable(const Statement& statement, Scope& scope) {
  RequireLocal(statement.table);
  CatalogObject table;
  table.name = statement.table.name;
  table.temporary = statement.table.temporary();
  std::vector<std::string> primary_key;
  std::vector<std::string> constraints;
  std::vector<std::vector<std::string>> unique;
  for (const ColumnDefinition& definition : statement.column_definitions) {
    if (definition.computed != nullptr)
      RaiseUnsupported("The computed column '" + definition.name + "'", statement.line);
    if (table.FindColumn(definition.name) >= 0) {
      throw SqlError(2705, "Column names in each table must be unique. Column name '" + definition.name +
                               "' in table '" + table.name + "' is specified more than once.");
    }
    Column column{definition.name, ResolveType(definition.type, false),
                  definition.nullable.value_or(!definition.identity), definition.identity, definition.default_text};
    if (definition.identity &&
        (definition.identity_increment != 1 || definition.identity_seed < 0 || table.identity_column() >= 0)) {
      RaiseUnsupported("An identity that does not count by ones from a number above 0", statement.line);
    }
    table.columns.push_back(std::move(column));
    if (definition.primary_key) primary_key.push_back(definition.name);
    if (definition.unique) unique.push_back({definition.name});
  }
  for (const TableConstraint& constraint : statement.constraints) {
    if (constraint.kind == TableConstraint::Kind::kPrimaryKey) {
      RequireColumns(table, constraint.columns);
      if (!primary_key.empty())
        throw SqlError(8110, "Cannot add multiple PRIMARY KEY constraints to table '" + table.name + "'.");
      primary_key = constraint.columns;
    } else if (constraint.kind == TableConstraint::Kind::kUnique) {
      RequireColumns(table, constraint.columns);
      unique.push_back(constraint.columns);
    } else if (constraint.kind == TableConstraint::Kind::kForeignKey) {
      constraints.push_back(
          "FOREIGN KEY (" + NameList(constraint.columns) + ") REFERENCES " + QuoteName(constraint.references.name) +
          (constraint.referenced_columns.empty() ? "" : " (" + NameList(constraint.referenced_columns) + ")"));
    }
  }
  const auto add_check = [&](const ExpressionPtr& check, const std::string& text) {
    if (check == nullptr) return;
    // Read anew by itself: in the batch a list of literals is one token, whose items are not the definition's.
    const ExpressionPtr condition = ParseExpressionText(text, names_);
    constraints.push_back("CHECK (" + MakeTranslator(scope).TranslateCheck(table, *condition) + ")");
  };
  for (const ColumnDefinition& definition : statement.column_definitions) {
    add_check(definition.check, definition.check_text);
  }
  for (const TableConstraint& constraint : statement.constraints) add_check(constraint.check, constraint.check_text);
  for (const std::vector<std::string>& key : unique) constraints.push_back("UNIQUE (" + NameList(key) + ")");
  AddConstraints(table.definition, statement);
  Atomically([&] {
    CreateTable(table, constraints, primary_key);
    for (std::size_t i = 0; i < unique.size(); ++i) {
      const CatalogObjectPtr made = catalog_.Get(table.name);
      const std::string sql = NullKeySql(*made, std::string(kUniqueKeyPrefix) + std::to_string(i + 1), unique[i], "");
      if (!sql.empty()) RunSql(database_.get(), sql, &runtime_);
    }
    for (const ColumnDefinition& definition : statement.column_definitions) {
      if (!definition.identity || definition.identity_seed == 1) continue;
      RunSql(database_.get(),
             std::string("INSERT INTO ") + (table.temporary ? "temp" : "main") + ".sqlite_sequence VALUES (" +
                 QuoteText(table.name) + ", " + std::to_string(definition.identity_seed - 1) + ")",
             &runtime_);
    }
  });
}

void Session::AlterTable(const Statement& statement, Scope& scope) {
  RequireLocal(statement.table);
  const CatalogObjectPtr old = catalog_.Find(statement.table.name);
  if (old == nullptr || old->kind != CatalogKind::kTable) {
    throw SqlError(4902, "Cannot find the object \"" + statement.table.name +
                             "\" because it does not exist or you do not have permissions.");
  }
  CatalogObject table = *old;
  const std::string name = TableSql(table);
  if (statement.alter == Statement::Alter::kAddColumns) {
    Atomically([&] {
      for (const ColumnDefinition& definition : statement.column_definitions) {
        if (definition.identity || definition.primary_key || definition.unique || definition.check != nullptr ||
            definition.computed != nullptr) {
          RaiseUnsupported("ALTER TABLE … ADD with anything but a type, NULL or NOT NULL, and a default",
                           statement.line);
        }
        if (table.FindColumn(definition.name) >= 0) {
          throw SqlError(2705, "Column names in each table must be unique. Column name '" + definition.name +
                                   "' in table '" + table.name + "' is specified more than once.");
        }
        Column column{definition.name, ResolveType(definition.type, false), definition.nullable.value_or(true), false,
                      definition.default_text};
        std::string sql = "ALTER TABLE " + name + " ADD COLUMN " + QuoteName(column.name) + " " +
                          std::string(SqliteColumnType(column.type));
        if (definition.default_value != nullptr && !column.nullable) {
          const Datum value = Evaluate(*definition.default_value, column.type, scope);
          const auto* text = std::get_if<std::string>(&value);
          const auto* whole = std::get_if<std::int64_t>(&value);
          const auto* real = std::get_if<double>(&value);
          sql += " NOT NULL DEFAULT " + (text != nullptr    ? QuoteText(*text)
                                         : whole != nullptr ? std::to_string(*whole)
                                         : real != nullptr  ? std::to_string(*real)
                                                            : "NULL");
        } else if (!column.nullable) {
          throw SqlError(
              4901,
              "ALTER TABLE only allows columns to be added that can contain nulls, or have a DEFAULT definition specified. Column '" +
                  column.name + "' cannot be added to non-empty table '" + table.name + "'.");
        }
        RunSql(database_.get(), sql, &runtime_);
        table.columns.push_back(std::move(column));
      }
      AddConstraints(table.definition, statement);
      catalog_.Replace(table);
    });
    return;
  }
  if (statement.alter == Statement::Alter::kDropColumn) {
    Atomically([&] {
      RequireColumns(table, statement.columns);
      for (const std::string& column : statement.columns) {
        RunSql(database_.get(), "ALTER TABLE " + name + " DROP COLUMN " + QuoteName(column), &runtime_);
        table.columns.erase(table.columns.begin() + table.FindColumn(column));
      }
      catalog_.Replace(table);
    });
    return;
  }
  RaiseUnsupported("This form of ALTER TABLE", statement.line);
}

void Session::DropTable(const CatalogObject& table) {
  const std::string name = table.name;
  RequireUnreferenced(table, 3726,
                      "Could not drop object '" + name + "' because it is referenced by a FOREIGN KEY constraint.");
  if (table.kind == CatalogKind::kTable) RunSql(database_.get(), "DROP TABLE " + TableSql(table), &runtime_);
  catalog_.Remove(name);
}

void Session::DropObjects(const Statement& statement) {
  const CatalogKind kind = statement.object_kind == Statement::ObjectKind::kTable  ? CatalogKind::kTable
                           : statement.object_kind == Statement::ObjectKind::kView ? CatalogKind::kView
                                                                                   : CatalogKind::kProcedure;
  for (const ObjectName& name : statement.tables) {
    RequireLocal(name);
    const CatalogObjectPtr object = catalog_.Find(name.name);
    if (object == nullptr || object->kind != kind) {
      if (statement.if_exists) continue;
      const char* word = kind == CatalogKind::kTable ? "table" : kind == CatalogKind::kView ? "view" : "procedure";
      throw SqlError(3701,
                     std::string("Cannot drop the ") + word + " '" + name.name +
                         "', because it does not exist or you do not have permission.",
                     11);
    }
    Atomically([&] { DropTable(*object); });
  }
}

void Session::DropTemporaryTables(const std::vector<std::string>& but) {
  for (const std::string& name : catalog_.TemporaryTables()) {
    if (std::find(but.begin(), but.end(), name) != but.end()) continue;
    if (const CatalogObjectPtr table = catalog_.Find(name)) DropTable(*table);
  }
}

void Session::CreateIndex(const Statement& statement, Scope& scope) {
  RequireLocal(statement.table);
  const CatalogObjectPtr table = catalog_.Get(statement.table.name);
  if (table->kind != CatalogKind::kTable) RaiseUnsupported("An index on a view", statement.line);
  std::string columns;
  std::vector<std::string> key;
  for (const OrderItem& item : statement.order) {
    const std::string& column = item.expression->parts.back();
    RequireColumns(*table, {column});
    key.push_back(column);
    columns += (columns.empty() ? "" : ", ") + QuoteName(column) + (item.descending ? " DESC" : "");
  }
  std::string sql = std::string(statement.flag ? "CREATE UNIQUE INDEX " : "CREATE INDEX ") +
                    IndexSql(*table, statement.text) + " ON " + QuoteName(table->name) + " (" + columns + ")";
  const std::string condition =
      statement.where == nullptr ? "" : MakeTranslator(scope).TranslateCheck(*table, *statement.where);
  if (!condition.empty()) sql += " WHERE " + condition;
  const StatementHandle there = Prepare(database_.get(),
                                        std::string("SELECT 1 FROM ") + (table->temporary ? "temp" : "main") +
                                            ".sqlite_schema WHERE type = 'index' AND lower(name) = lower(" +
                                            QuoteText(table->name + "." + statement.text) + ")",
                                        &runtime_);
  if (Step(there.get(), "SELECT") == SQLITE_ROW) {
    throw SqlError(1913, "The operation failed because an index or statistics with name '" + statement.text +
                             "' already exists on table '" + table->name + "'.");
  }
  const std::string nulls = statement.flag ? NullKeySql(*table, statement.text, key, condition) : "";
  Atomically([&] {
    RunSql(database_.get(), sql, &runtime_);
    if (!nulls.empty()) RunSql(database_.get(), nulls, &runtime_);
  });
}

void Session::DropIndex(const Statement& statement) {
  const CatalogObjectPtr table = catalog_.Get(statement.table.name);
  const StatementHandle there = Prepare(database_.get(),
                                        std::string("SELECT 1 FROM ") + (table->temporary ? "temp" : "main") +
                                            ".sqlite_schema WHERE type = 'index' AND lower(name) = lower(" +
                                            QuoteText(table->name + "." + statement.text) + ")",
                                        &runtime_);
  if (Step(there.get(), "SELECT") != SQLITE_ROW) {
    if (statement.if_exists) return;
    throw SqlError(3701,
                   "Cannot drop the index '" + table->name + "." + statement.text +
                       "', because it does not exist or you do not have permission.",
                   11);
  }
  sqlite3_reset(there.get());
  RunSql(database_.get(), "DROP INDEX " + IndexSql(*table, statement.text), &runtime_);
  RunSql(database_.get(), "DROP INDEX IF EXISTS " + IndexSql(*table, statement.text + std::string(kNullKeySuffix)),
         &runtime_);
}

void Session::CreateView(const Statement& statement, Scope& scope) {
  RequireLocal(statement.table);
  CatalogObject view;
  view.kind = CatalogKind::kView;
  view.name = statement.table.name;
  view.definition = statement.source_text;
  for (const std::string& column : statement.columns) view.columns.push_back({column, IntType(), true, false, ""});
  MakeTranslator(scope).DescribeQuery(*statement.query, false);
  const CatalogObjectPtr old = catalog_.Find(view.name);
  const bool replaces = statement.flag && old != nullptr && old->kind == CatalogKind::kView;
  Atomically([&] { replaces ? catalog_.Replace(std::move(view)) : catalog_.Add(std::move(view)); });
}

void Session::CreateProcedure(const Statement& statement) {
  RequireLocal(statement.table);
  CatalogObject procedure;
  procedure.kind = CatalogKind::kProcedure;
  procedure.name = statement.table.name;
  procedure.definition = statement.source_text;
  for (const Parameter& parameter : statement.parameters) {
    procedure.columns.push_back(
        {parameter.name, ResolveType(parameter.type, false), true, false, parameter.output ? "output" : ""});
  }
  const CatalogObjectPtr old = catalog_.Find(procedure.name);
  const bool replaces = statement.flag && old != nullptr && old->kind == CatalogKind::kProcedure;
  Atomically([&] { replaces ? catalog_.Replace(std::move(procedure)) : catalog_.Add(std::move(procedure)); });
}

}  // namespace tessarlorn::tsql
