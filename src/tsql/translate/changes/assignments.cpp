#include "tsql/translate/changes/assignments.h"

#include <algorithm>

#include "platform/text/text.h"
#include "tsql/syntax/parser.h"
#include "tsql/translate/common/conversion.h"
#include "tsql/translate/common/operators.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {

void Assignments::Translate(const std::vector<Assignment>& assignments) {
  for (const Assignment& assignment : assignments) {
    if (!assignment.variable.empty()) parameters_.Assign(assignment.variable);
  }
  for (const Assignment& assignment : assignments) Add(assignment);
  if (!sets_.empty() && !variables_.empty()) sets_[0].second = "ts_setvar(" + sets_[0].second + variables_ + ")";
}

void Assignments::Add(const Assignment& assignment) {
  if (assignment.column.empty()) {
    AddVariable(assignment, translation_.Value(*assignment.value, clauses_.scope));
  } else {
    AddColumn(assignment, ColumnOf(assignment), *assignment.value);
  }
}

const Column& Assignments::ColumnOf(const Assignment& assignment) {
  std::string name = assignment.column.back();
  if (clauses_.target.through_query) {
    const std::string& alias = clauses_.target.alias;
    const Source& source = SourceOf(clauses_);
    const std::size_t position = source.Find(name);
    if (position == source.size()) RaiseNoColumn(name);
    const SourceColumn found = source.At(position);
    if (found.row < 0) {
      throw SqlError(4406, "Update or insert of view or function '" + alias +
                               "' failed because it contains a derived or constant field.");
    }
    if (row_ >= 0 && row_ != found.row) RaiseSeveralTables(alias);
    row_ = found.row;
    ChooseRow(clauses_, static_cast<std::size_t>(row_));
    name = found.base;
  }
  const CatalogObject& table = *clauses_.target.table;
  return table.columns[static_cast<std::size_t>(RequireColumn(table, name))];
}

void Assignments::AddColumn(const Assignment& assignment, const Column& column, const Expression& value) {
  RequireChangeable(column);
  if (column.identity) throw SqlError(8102, "Cannot update identity column '" + column.name + "'.");
  for (const auto& [name, sql] : sets_) {
    if (EqualsIgnoreCase(name, column.name)) RaiseColumnTwice(column.name);
  }
  const CatalogObject& table = *clauses_.target.table;
  if (As<DefaultValue>(value) != nullptr) {
    sets_.emplace_back(column.name, DefaultSql(translation_, table, column));
  } else {
    const NumbersAt numbers(translation_, NumberPlace::kHere);
    Typed typed = translation_.Value(value, clauses_.scope);
    if (assignment.compound) {
      typed = Arithmetic(parameters_, *assignment.compound, {clauses_.Old(column), column.type, column.nullable, -1},
                         std::move(typed));
    }
    sets_.emplace_back(column.name, Assigned(parameters_, typed, column, table.shown_name()));
  }
  if (assignment.variable.empty()) return;
  const Typed stored{sets_.back().second, column.type, true, -1};
  variables_ += ", " + QuoteText(assignment.variable) + ", " +
                Coerce(parameters_, stored, parameters_.VariableType(assignment.variable));
  parameters_.Variable(assignment.variable);
}

void Assignments::AddVariable(const Assignment& assignment, Typed value) {
  const SqlType type = parameters_.VariableType(assignment.variable);
  if (assignment.compound) {
    value = Arithmetic(parameters_, *assignment.compound, parameters_.Variable(assignment.variable), std::move(value));
  }
  parameters_.Variable(assignment.variable);
  variables_ += ", " + QuoteText(assignment.variable) + ", " + Coerce(parameters_, value, type);
}

std::string DefaultSql(Translation& translation, const CatalogObject& table, const Column& column) {
  if (column.default_text.empty()) {
    return column.nullable ? "NULL" : Required("NULL", column, table.shown_name());
  }
  Scope scope;
  const InSchema in_schema(translation, "");
  const ExpressionPtr expression = ParseExpressionText(column.default_text, translation.names);
  const Parameters::InDefinition in_definition(translation.parameters);
  const NumbersAt numbers(translation, NumberPlace::kHere);
  return Assigned(translation.parameters, translation.Value(*expression, scope), column, table.shown_name());
}

}  // namespace tessarlorn::tsql
