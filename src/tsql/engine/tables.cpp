// CREATE TABLE and ALTER TABLE.
#include <utility>

#include "platform/text/text.h"
#include "tsql/engine/definitions.h"
#include "tsql/engine/table_maker.h"

namespace tessarlorn::tsql {
namespace {

[[noreturn]] void RaiseColumnTwice(const CatalogObject& table, const std::string& column) {
  throw SqlError(2705, "Column names in each table must be unique. Column name '" + column + "' in table '" +
                           table.name + "' is specified more than once.");
}

void AddColumnDefinition(CatalogObject& table, const ColumnDefinition& definition, std::uint32_t line) {
  if (definition.computed != nullptr) RaiseUnsupported("The computed column '" + definition.name + "'", line);
  if (table.FindColumn(definition.name) >= 0) RaiseColumnTwice(table, definition.name);
  Column column{definition.name, ResolveType(definition.type, false),
                definition.nullable.value_or(!definition.identity), definition.identity, definition.default_text};
  if (definition.identity &&
      (definition.identity_increment != 1 || definition.identity_seed < 0 || table.identity_column() >= 0)) {
    RaiseUnsupported("An identity that does not count by ones from a number above 0", line);
  }
  table.columns.push_back(std::move(column));
}

std::string ConstantText(const Datum& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return QuoteText(*text);
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return std::to_string(*whole);
  if (const auto* real = std::get_if<double>(&value)) return std::to_string(*real);
  return "NULL";
}

}  // namespace

void Definitions::CreateTable(CatalogObject table, const Activation& activation) {
  TableMaker(database_, plans_, activation).Make(std::move(table));
}

void Definitions::CreateTable(const CreateTableStatement& statement, std::uint32_t line, const Activation& activation) {
  RequireLocal(statement.table);
  CatalogObject table;
  table.name = statement.table.name;
  table.temporary = statement.table.temporary();
  if (statement.table.variable()) {
    table.stored_name = table.name + "$" + std::to_string(database_.catalog().scope_depth());
  }
  for (const ColumnDefinition& definition : statement.elements.columns) AddColumnDefinition(table, definition, line);
  Constraints constraints;
  AddConstraints(constraints, table.name, statement.elements);
  table.definition = WriteConstraints(constraints);
  CreateTable(std::move(table), activation);
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
    Constraints constraints = ReadConstraints(table.definition);
    AddConstraints(constraints, table.name, elements);
    table.definition = WriteConstraints(constraints);
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
