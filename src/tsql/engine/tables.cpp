// CREATE TABLE and ALTER TABLE.
#include <algorithm>
#include <utility>

#include "platform/text/text.h"
#include "tsql/engine/definitions.h"
#include "tsql/storage/constraint_text.h"
#include "tsql/syntax/parser.h"

namespace tessarlorn::tsql {
namespace {

std::string NameList(const std::vector<std::string>& names) {
  std::string sql;
  for (const std::string& name : names) sql += (sql.empty() ? "" : ", ") + QuoteName(name);
  return sql;
}

bool Contains(const std::vector<std::string>& names, const std::string& wanted) {
  return std::any_of(names.begin(), names.end(),
                     [&](const std::string& name) { return EqualsIgnoreCase(name, wanted); });
}

[[noreturn]] void RaiseColumnTwice(const CatalogObject& table, const std::string& column) {
  throw SqlError(2705, "Column names in each table must be unique. Column name '" + column + "' in table '" +
                           table.name + "' is specified more than once.");
}

/// The column that is the row's own number in SQLite, or -1: the identity, or else a primary key of one whole number.
int RowKey(const CatalogObject& table, const std::vector<std::string>& primary_key) {
  const int identity = table.identity_column();
  if (identity >= 0 || primary_key.size() != 1) return identity;
  const int key = table.FindColumn(primary_key[0]);
  const FieldType kind = table.columns[static_cast<std::size_t>(key)].type.kind;
  const bool whole = kind == FieldType::kInt || kind == FieldType::kBigInt || kind == FieldType::kSmallInt;
  return whole ? key : -1;
}

void AddColumnDefinition(NewTable& made, const ColumnDefinition& definition, std::uint32_t line) {
  CatalogObject& table = made.table;
  if (definition.computed != nullptr) RaiseUnsupported("The computed column '" + definition.name + "'", line);
  if (table.FindColumn(definition.name) >= 0) RaiseColumnTwice(table, definition.name);
  Column column{definition.name, ResolveType(definition.type, false),
                definition.nullable.value_or(!definition.identity), definition.identity, definition.default_text};
  if (definition.identity &&
      (definition.identity_increment != 1 || definition.identity_seed < 0 || table.identity_column() >= 0)) {
    RaiseUnsupported("An identity that does not count by ones from a number above 0", line);
  }
  table.columns.push_back(std::move(column));
  if (definition.primary_key) made.primary_key.push_back(definition.name);
  if (definition.unique) made.unique.push_back({definition.name});
}

/// Keys of the table; its checks are added when all of its columns stand.
void AddKey(NewTable& made, const TableConstraint& constraint) {
  std::visit(Overloaded{
                 [&](const PrimaryKeyRule& key) {
                   RequireColumns(made.table, key.columns);
                   if (!made.primary_key.empty()) {
                     throw SqlError(8110,
                                    "Cannot add multiple PRIMARY KEY constraints to table '" + made.table.name + "'.");
                   }
                   made.primary_key = key.columns;
                 },
                 [&](const UniqueRule& key) {
                   RequireColumns(made.table, key.columns);
                   made.unique.push_back(key.columns);
                 },
                 [&](const ForeignKeyRule& key) {
                   made.constraints.push_back(
                       "FOREIGN KEY (" + NameList(key.columns) + ") REFERENCES " + QuoteName(key.references.name) +
                       (key.referenced_columns.empty() ? "" : " (" + NameList(key.referenced_columns) + ")"));
                 },
                 [](const CheckRule&) {},
                 [](const DefaultRule&) {},
             },
             constraint.rule);
}

/// The text of a table's CHECK. DEFAULT … FOR, which only ALTER TABLE takes, fails as the condition that it is not.
const std::string* CheckOf(const TableConstraint& constraint) {
  if (const auto* check = std::get_if<CheckRule>(&constraint.rule)) return &check->text;
  const auto* rule = std::get_if<DefaultRule>(&constraint.rule);
  return rule == nullptr || rule->value == nullptr ? nullptr : &rule->text;
}

std::string ConstantText(const Datum& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return QuoteText(*text);
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return std::to_string(*whole);
  if (const auto* real = std::get_if<double>(&value)) return std::to_string(*real);
  return "NULL";
}

}  // namespace

void Definitions::CreateTable(NewTable made) {
  CatalogObject& table = made.table;
  if (database_.catalog().Find(table.name) != nullptr) {
    throw SqlError(2714, "There is already an object named '" + table.name + "' in the database.");
  }
  const bool counts = table.identity_column() >= 0;
  const int row_key = RowKey(table, made.primary_key);
  std::string sql = "CREATE TABLE " + TableSql(table) + " (";
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    Column& column = table.columns[i];
    if (Contains(made.primary_key, column.name)) column.nullable = false;
    sql += (i == 0 ? "" : ", ") + QuoteName(column.name) + " ";
    if (static_cast<int>(i) == row_key) {
      sql += counts ? "INTEGER PRIMARY KEY AUTOINCREMENT" : "INTEGER PRIMARY KEY NOT NULL";
      column.row_key = !counts;
      continue;
    }
    sql += std::string(SqliteColumnType(column.type)) + (column.nullable ? "" : " NOT NULL");
  }
  const bool key_stands = row_key >= 0 && made.primary_key.size() == 1 &&
                          EqualsIgnoreCase(made.primary_key[0], table.columns[static_cast<std::size_t>(row_key)].name);
  if (!made.primary_key.empty() && !key_stands) {
    sql += (row_key >= 0 ? ", UNIQUE (" : ", PRIMARY KEY (") + NameList(made.primary_key) + ")";
  }
  for (const std::string& constraint : made.constraints) sql += ", " + constraint;
  if (!database_.TakeLeft(table.table_name())) database_.Run(sql + ")");
  database_.catalog().Add(std::move(table));
}

std::string Definitions::CheckText(const CatalogObject& table, const std::string& text, const Activation& activation) {
  // Read anew by itself: in the batch a list of literals is one token, whose items are not the definition's.
  const ExpressionPtr condition = ParseExpressionText(text, database_.names());
  return "CHECK (" + plans_.MakeTranslator(activation).TranslateCheck(table, *condition) + ")";
}

void Definitions::CreateTable(const CreateTableStatement& statement, std::uint32_t line, const Activation& activation) {
  RequireLocal(statement.table);
  NewTable made;
  made.table.name = statement.table.name;
  made.table.temporary = statement.table.temporary();
  if (statement.table.variable()) {
    made.table.stored_name =
        wanted_.statement == &statement ? wanted_.stored_name : VariableName(statement, activation);
  }
  const TableElements& elements = statement.elements;
  for (const ColumnDefinition& definition : elements.columns) AddColumnDefinition(made, definition, line);
  for (const TableConstraint& constraint : elements.constraints) AddKey(made, constraint);
  for (const ColumnDefinition& definition : elements.columns) {
    if (definition.check != nullptr) {
      made.constraints.push_back(CheckText(made.table, definition.check_text, activation));
    }
  }
  for (const TableConstraint& constraint : elements.constraints) {
    const std::string* check = CheckOf(constraint);
    if (check != nullptr) made.constraints.push_back(CheckText(made.table, *check, activation));
  }
  for (const std::vector<std::string>& key : made.unique) made.constraints.push_back("UNIQUE (" + NameList(key) + ")");
  AddConstraints(made.table.definition, made.table.name, elements);
  const bool is_left = database_.HasLeft(made.table.table_name());
  database_.Atomically([&] {
    CreateTable(made);
    const CatalogObjectPtr table = database_.catalog().Get(made.table.name);
    for (std::size_t i = 0; i < made.unique.size(); ++i) {
      const std::string sql =
          NullKeySql(*table, std::string(kUniqueKeyPrefix) + std::to_string(i + 1), made.unique[i], "");
      if (!sql.empty() && !is_left) database_.Run(sql);
    }
    for (const ColumnDefinition& definition : elements.columns) {
      if (!definition.identity || definition.identity_seed == 1) continue;
      database_.Run(std::string("INSERT INTO ") + (table->temporary ? "temp" : "main") + ".sqlite_sequence VALUES (" +
                    QuoteText(table->table_name()) + ", " + std::to_string(definition.identity_seed - 1) + ")");
    }
  });
}

void Definitions::AlterTable(const AlterTableStatement& statement, std::uint32_t line, const Activation& activation) {
  RequireLocal(statement.table);
  const CatalogObjectPtr table = database_.catalog().Find(statement.table.name);
  if (table == nullptr || table->kind != CatalogKind::kTable) {
    throw SqlError(4902, "Cannot find the object \"" + statement.table.name +
                             "\" because it does not exist or you do not have permissions.");
  }
  if (const auto* add = std::get_if<AlterTableStatement::AddColumns>(&statement.action)) {
    AddColumns(*table, add->elements, line, activation);
  } else if (const auto* drop = std::get_if<AlterTableStatement::DropColumns>(&statement.action)) {
    DropColumns(*table, drop->columns);
  } else {
    const bool column = std::holds_alternative<AlterTableStatement::AlterColumn>(statement.action);
    const bool adds = std::holds_alternative<AlterTableStatement::AddConstraints>(statement.action);
    RaiseUnsupported(column ? "ALTER COLUMN" : adds ? "ADD CONSTRAINT" : "DROP CONSTRAINT", line);
  }
}

void Definitions::AddColumns(CatalogObject table, const TableElements& elements, std::uint32_t line,
                             const Activation& activation) {
  database_.Atomically([&] {
    for (const ColumnDefinition& definition : elements.columns) {
      table.columns.push_back(AddColumn(table, definition, line, activation));
    }
    AddConstraints(table.definition, table.name, elements);
    database_.catalog().Replace(table);
  });
}

Column Definitions::AddColumn(const CatalogObject& table, const ColumnDefinition& definition, std::uint32_t line,
                              const Activation& activation) {
  if (definition.identity || definition.primary_key || definition.unique || definition.check != nullptr ||
      definition.computed != nullptr) {
    RaiseUnsupported("ALTER TABLE … ADD with anything but a type, NULL or NOT NULL, and a default", line);
  }
  if (table.FindColumn(definition.name) >= 0) RaiseColumnTwice(table, definition.name);
  Column column{definition.name, ResolveType(definition.type, false), definition.nullable.value_or(true), false,
                definition.default_text};
  std::string sql = "ALTER TABLE " + TableSql(table) + " ADD COLUMN " + QuoteName(column.name) + " " +
                    std::string(SqliteColumnType(column.type));
  if (!column.nullable) {
    if (definition.default_value == nullptr) {
      throw SqlError(
          4901,
          "ALTER TABLE only allows columns to be added that can contain nulls, or have a DEFAULT definition specified. Column '" +
              column.name + "' cannot be added to non-empty table '" + table.name + "'.");
    }
    sql += " NOT NULL DEFAULT " + ConstantText(evaluator_.Value(*definition.default_value, column.type, activation));
  }
  database_.Run(sql);
  return column;
}

void Definitions::DropColumns(CatalogObject table, const std::vector<std::string>& columns) {
  database_.Atomically([&] {
    RequireColumns(table, columns);
    for (const std::string& column : columns) {
      database_.Run("ALTER TABLE " + TableSql(table) + " DROP COLUMN " + QuoteName(column));
      table.columns.erase(table.columns.begin() + table.FindColumn(column));
    }
    database_.catalog().Replace(table);
  });
}

}  // namespace tessarlorn::tsql
