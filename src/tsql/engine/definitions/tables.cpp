// CREATE TABLE and ALTER TABLE.
#include <utility>

#include "tsql/engine/definitions/definitions.h"
#include "tsql/engine/definitions/table_alteration.h"
#include "tsql/translate/value.h"

namespace tessarlorn::tsql {
namespace {

[[noreturn]] void RaiseColumnTwice(const CatalogObject& table, const std::string& column) {
  throw SqlError(2705, "Column names in each table must be unique. Column name '" + column + "' in table '" +
                           table.own_name() + "' is specified more than once.");
}

}  // namespace

Column ColumnOf(const CatalogObject& table, const ColumnDefinition& definition) {
  if (table.FindColumn(definition.name) >= 0) RaiseColumnTwice(table, definition.name);
  if (definition.identity && table.identity_column() >= 0) {
    throw SqlError(2744, "Multiple identity columns specified for table '" + table.own_name() +
                             "'. Only one identity column per table is allowed.");
  }
  if (definition.identity && definition.identity_increment == 0) {
    throw SqlError(2753, "Identity column '" + definition.name + "' contains invalid INCREMENT.");
  }
  RequireCollation(definition.collation, 0);
  if (definition.computed != nullptr) {
    Column column{definition.name, IntType(), definition.nullable.value_or(true), false, ""};
    column.computed_text = definition.computed_text;
    column.persisted = definition.persisted;
    if (!column.nullable && !column.persisted) {
      throw SqlError(8183,
                     "Only UNIQUE or PRIMARY KEY constraints can be created on computed columns, while CHECK, FOREIGN "
                     "KEY, and NOT NULL constraints require that computed columns be persisted.");
    }
    return column;
  }
  Column column{definition.name, ResolveType(definition.type, false),
                definition.nullable.value_or(!definition.identity), definition.identity, definition.default_text};
  if (column.identity) column.increment = IncrementOf(definition);
  return column;
}

void Definitions::CreateTable(CatalogObject table, const Activation& activation) {
  TableMaker(database_, plans_, activation).Make(std::move(table));
}

void Definitions::CreateTable(const CreateTableStatement& statement, const Activation& activation) {
  CatalogObject table = NewObject(CatalogKind::kTable, statement.table);
  table.temporary = statement.table.temporary();
  if (statement.table.variable()) {
    table.stored_name = wanted_.statement == &statement ? wanted_.stored_name : VariableName(statement, activation);
  }
  for (const ColumnDefinition& definition : statement.elements.columns) {
    table.columns.push_back(ColumnOf(table, definition));
  }
  Constraints constraints;
  AddConstraints(constraints, table.own_name(), statement.elements);
  table.definition = WriteConstraints(constraints);
  CreateTable(std::move(table), activation);
}

void Definitions::RestartIdentity(const CatalogObject& table, const Activation& activation) {
  const Constraints constraints = ReadConstraints(table.definition);
  const Constraint* identity = FindKind(constraints, "I");
  TableMaker(database_, plans_, activation).RestartIdentity(table, identity == nullptr ? Constraint{} : *identity);
}

void Definitions::CountOn(const CatalogObject& table, const Activation& activation) {
  const Constraints constraints = ReadConstraints(table.definition);
  const Constraint* identity = FindKind(constraints, "I");
  if (identity != nullptr) TableMaker(database_, plans_, activation).CountOn(table, *identity);
}

void Definitions::AlterTable(const AlterTableStatement& statement, const Activation& activation) {
  RequireLocal(statement.table);
  const CatalogObjectPtr table = database_.catalog().Find(statement.table.name);
  if (table == nullptr || table->kind != CatalogKind::kTable) {
    throw SqlError(4902, "Cannot find the object \"" + statement.table.name +
                             "\" because it does not exist or you do not have permissions.");
  }
  TableAlteration alteration(database_, plans_, evaluator_, activation, *table);
  if (const auto* add = std::get_if<AlterTableStatement::Add>(&statement.action)) {
    alteration.Add(add->elements);
  } else if (const auto* drop = std::get_if<AlterTableStatement::Drop>(&statement.action)) {
    alteration.Drop(drop->items);
  } else {
    alteration.AlterColumn(std::get<AlterTableStatement::AlterColumn>(statement.action).column);
  }
}

}  // namespace tessarlorn::tsql
