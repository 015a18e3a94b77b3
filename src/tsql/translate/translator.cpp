#include "tsql/translate/translator.h"

#include <utility>

#include "tsql/translate/changes/change.h"
#include "tsql/translate/changes/changed_rows.h"
#include "tsql/translate/changes/insert.h"
#include "tsql/translate/changes/merge.h"
#include "tsql/translate/common/conversion.h"
#include "tsql/translate/common/operators.h"
#include "tsql/translate/condition.h"
#include "tsql/translate/queries/query.h"
#include "tsql/translate/value.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {

Typed Translator::Value(const Expression& expression, Scope& scope) { return TranslateValue(*this, expression, scope); }

std::string Translator::Condition(const Expression& expression, Scope& scope) {
  return TranslateCondition(*this, expression, scope);
}

TranslatedQuery Translator::QueryText(const Query& query, const Scope* parent, const SelectOptions& options) {
  return TranslateQuery(*this, query, parent, options);
}

Compiled Translator::CompileQuery(const Query& query) {
  std::vector<std::string> assigned;
  if (const Select* select = query.select()) {
    for (const SelectItem& item : select->items) {
      if (item.variable.empty()) continue;
      assigned.push_back(item.variable);
      parameters.Assign(item.variable);
    }
    if (!assigned.empty() && assigned.size() != select->items.size()) {
      throw SqlError(
          141,
          "A SELECT statement that assigns a value to a variable must not be combined with data-retrieval operations.",
          15);
    }
  }
  SelectOptions options;
  options.may_order = true;
  numbers = NumberPlace::kItems;
  TranslatedQuery text = QueryText(query, nullptr, options);
  Compiled compiled = parameters.Finish(text.sql);
  compiled.columns = std::move(text.columns);
  compiled.assigned = std::move(assigned);
  compiled.verb = "SELECT";
  for (const std::string& name : compiled.assigned) parameters.Variable(name);
  parameters.ShrinkTo(0);
  return compiled;
}

std::vector<ResultColumn> Translator::DescribeQuery(const Query& query, const std::string& definition,
                                                    const std::vector<std::string>& given) {
  SelectOptions options;
  options.may_order = definition.empty();
  options.named = true;
  options.owner = definition.empty() ? query.select()->into.name : definition;
  options.owner_kind = definition.empty() ? QueryOwner::kNewTable : QueryOwner::kDefinition;
  if (!given.empty()) options.names = &given;
  if (query.makes_table()) numbers = NumberPlace::kItems;
  std::vector<ResultColumn> columns = QueryText(query, nullptr, options).columns;
  parameters.ShrinkTo(0);
  return columns;
}

Compiled Translator::FinishValue(const std::string& sql, const SqlType& type) {
  Compiled compiled = parameters.Finish("SELECT " + sql);
  compiled.columns.push_back({"", type, true, false});
  compiled.verb = "SELECT";
  return compiled;
}

Compiled Translator::CompileCondition(const Expression& condition) {
  Scope scope;
  return FinishValue(Condition(condition, scope), BitType());
}

Compiled Translator::CompileValue(const Expression& value, const SqlType& type) {
  Scope scope;
  numbers = NumberPlace::kHere;
  const Typed typed = Value(value, scope);
  RequireImplicit(typed.type, type);
  Compiled compiled = FinishValue(Coerce(parameters, typed, type), type);
  compiled.parameter_only = typed.parameter >= 0;
  return compiled;
}

Compiled Translator::CompileCompound(const Assignment& assignment, const SqlType& type) {
  Scope scope;
  Typed variable = parameters.Variable(assignment.variable);
  const Typed sum = Arithmetic(parameters, assignment.compound.value_or(BinaryOp::kAdd), std::move(variable),
                               Value(*assignment.value, scope));
  return FinishValue(Coerce(parameters, sum, type), type);
}

Compiled Translator::CompileInsert(const InsertStatement& insert, bool identity_insert, const TranslatedQuery* given) {
  return tsql::CompileInsert(*this, insert, identity_insert, given);
}

Compiled Translator::CompileInsertInto(const CatalogObject& table, const Query& query) {
  return tsql::CompileInsertInto(*this, table, query);
}

Compiled Translator::CompileUpdate(const UpdateStatement& update, std::uint32_t line, bool collect) {
  return tsql::CompileUpdate(*this, update, line, collect);
}

Compiled Translator::CompileDelete(const DeleteStatement& statement) { return tsql::CompileDelete(*this, statement); }

Compiled Translator::CompileMerge(const MergeStatement& merge, bool identity_insert) {
  return tsql::CompileMerge(*this, merge, identity_insert);
}

std::string Translator::TranslateCheck(const CatalogObject& table, const Expression& condition) {
  Scope scope;
  scope.sources.push_back(BareSource(table.own_name(), table));
  for_table = true;
  return parameters.FinishDefinition(Condition(condition, scope));
}

Typed Translator::TranslateComputed(const CatalogObject& table, const Expression& value) {
  Scope scope;
  scope.sources.push_back(BareSource(table.own_name(), table));
  Typed typed = Value(value, scope);
  typed.sql = parameters.FinishDefinition(typed.sql);
  if (typed.type.untyped_null) typed.type = IntType();
  if (typed.type.is_integer()) typed.type.precision = 0;
  return typed;
}

std::string Translator::TranslateAssigned(const CatalogObject& table, const Column& from, const Column& to) {
  return Assigned(parameters, {QuoteName(from.name), from.type, from.nullable, -1}, to, table.shown_name());
}

}  // namespace tessarlorn::tsql
