#include "tsql/translate/changes/changed_rows.h"

#include <algorithm>

#include "platform/text/text.h"
#include "tsql/translate/common/argument.h"
#include "tsql/translate/queries/query.h"
#include "tsql/translate/queries/source.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

/// The first source within another one for which `is_target` holds.
template <typename IsTarget>
const TableSource* FindSource(const TableSource& source, const IsTarget& is_target) {
  if (const auto* join = std::get_if<Join>(&source.node)) {
    const TableSource* left = FindSource(*join->left, is_target);
    return left != nullptr ? left : FindSource(*join->right, is_target);
  }
  return is_target(source) ? &source : nullptr;
}

/// How often a table of that name stands in a source under whatever alias.
int CountNamed(const TableSource& source, const std::string& name) {
  if (const auto* join = std::get_if<Join>(&source.node)) {
    return CountNamed(*join->left, name) + CountNamed(*join->right, name);
  }
  const auto* table = std::get_if<NamedTable>(&source.node);
  return table != nullptr && EqualsIgnoreCase(table->name.name, name) ? 1 : 0;
}

/// The source that the target of UPDATE or DELETE names: by its alias, or else by its table's name. Raises 8154 for a
/// name that stands twice.
const TableSource* FindTarget(const std::vector<TableSourcePtr>& from, const std::string& name) {
  const auto by_alias = [&](const TableSource& source) {
    const auto* table = std::get_if<NamedTable>(&source.node);
    const auto* derived = std::get_if<DerivedTable>(&source.node);
    const auto* function = std::get_if<TableFunction>(&source.node);
    if (function != nullptr && EqualsIgnoreCase(function->alias, name)) {
      RaiseUnsupported("A change through the function '" + name + "'");
    }
    return EqualsIgnoreCase(table != nullptr ? table->shown_name() : derived != nullptr ? derived->alias : "", name);
  };
  const auto by_name = [&](const TableSource& source) { return CountNamed(source, name) > 0; };
  const TableSource* found = nullptr;
  for (const TableSourcePtr& source : from) found = found != nullptr ? found : FindSource(*source, by_alias);
  if (found != nullptr) return found;
  int count = 0;
  for (const TableSourcePtr& source : from) count += CountNamed(*source, name);
  if (count > 1) throw SqlError(8154, "The table '" + name + "' is ambiguous.");
  for (const TableSourcePtr& source : from) found = found != nullptr ? found : FindSource(*source, by_name);
  return found;
}

bool IsCommonTable(const ChangedRows& rows, const ObjectName& name) {
  return name.qualifier.empty() && std::any_of(rows.with.begin(), rows.with.end(), [&](const CommonTable& table) {
           return EqualsIgnoreCase(table.name, name.name);
         });
}

/// The target as far as the names tell. A derived table, a common one and a view stand for rows of the tables below.
Target TargetOf(Translation& translation, const ChangedRows& rows) {
  Target target;
  const TableSource* source = FindTarget(rows.from, rows.table.name);
  const auto* named = source == nullptr ? nullptr : std::get_if<NamedTable>(&source->node);
  target.named = rows.from.empty() || source != nullptr;
  target.alias = named != nullptr ? named->shown_name() : rows.table.name;
  const bool derived = source != nullptr && named == nullptr;
  const ObjectName& name = named != nullptr ? named->name : rows.table;
  if (!derived && !IsCommonTable(rows, name)) target.table = translation.Lookup(name);
  if (target.table != nullptr && target.table->kind != CatalogKind::kTable) target.table = nullptr;
  if (target.table != nullptr) RequireTable(*target.table);
  target.through_query = target.table == nullptr;
  target.row = QuoteName(target.alias) + "._rowid_";
  const bool alone = rows.from.empty() || (rows.from.size() == 1 && rows.from[0].get() == source);
  target.joined = target.through_query || !alone;
  return target;
}

/// The FROM clause, with the target where it does not name it.
std::string FromOf(Translation& translation, const ChangedRows& rows, const Target& target, Scope& scope) {
  std::string from = TranslateFrom(translation, rows.from, scope);
  if (!rows.from.empty() && target.named) return from;
  from += from.empty() ? " FROM " : ", ";
  return from + TranslateTable(translation, {rows.table, "", ""}, scope);
}

/// Raises 4403 where the query's rows are not those of tables.
void RequireRows(const Clauses& clauses) {
  if (!clauses.target.through_query || !SourceOf(clauses).rows.empty()) return;
  throw SqlError(4403, "Cannot update the view or function '" + clauses.target.alias +
                           "' because it contains aggregates, or a DISTINCT or GROUP BY clause, or PIVOT or UNPIVOT "
                           "operator.");
}

}  // namespace

const Source& SourceOf(const Clauses& clauses) {
  const std::vector<Source>& sources = clauses.scope.sources;
  return *std::find_if(sources.begin(), sources.end(),
                       [&](const Source& source) { return EqualsIgnoreCase(source.alias, clauses.target.alias); });
}

void ChooseRow(Clauses& clauses, std::size_t row) {
  const BaseRow& base = SourceOf(clauses).rows.at(row);
  clauses.target.table = base.table;
  clauses.target.row = base.number;
  clauses.target.base_row = static_cast<int>(row);
}

void TranslateHead(Translation& translation, const ChangedRows& rows, Clauses& clauses) {
  clauses.target = TargetOf(translation, rows);
  translation.exposes_rows = clauses.target.through_query;
  clauses.with = TranslateWith(translation, rows.with, nullptr);
  clauses.from = FromOf(translation, rows, clauses.target, clauses.scope);
  translation.exposes_rows = false;
  RequireRows(clauses);
}

void TranslateRowsOf(Translation& translation, const ChangedRows& rows, Clauses& clauses) {
  if (rows.where != nullptr) clauses.where = " WHERE " + translation.Condition(*rows.where, clauses.scope);
  if (rows.top != nullptr)
    clauses.limit = " LIMIT " + RowLimitArgument(translation, *rows.top, clauses.scope, RowLimit::kTop);
}

std::string Clauses::Tail() const {
  const std::string present = target.joined ? (where.empty() ? " WHERE " : " AND ") + target.row + " IS NOT NULL" : "";
  return from + where + present + limit;
}

std::string Clauses::Old(const Column& column) const {
  const std::string name = QuoteName(column.name);
  if (!target.through_query) return QuoteName(target.alias) + "." + name;
  return "(SELECT " + name + " FROM " + TableSql(*target.table) + " WHERE _rowid_ = " + target.row + ")";
}

void RequireTable(const CatalogObject& object) {
  if (object.shows_changes()) throw SqlError(286, "The logical tables INSERTED and DELETED cannot be updated.");
  if (object.kind != CatalogKind::kTable) RaiseUnsupported("Inserting into the view '" + object.name + "'");
}

void RequireChangeable(const Column& column) {
  if (!column.computed()) return;
  throw SqlError(
      271, "The column \"" + column.name +
               "\" cannot be modified because it is either a computed column or is the result of a UNION operator.");
}

int RequireColumn(const CatalogObject& table, const std::string& name) {
  const int position = table.FindColumn(name);
  if (position < 0) RaiseNoColumn(name);
  return position;
}

void RaiseNoColumn(const std::string& name) { throw SqlError(207, "Invalid column name '" + name + "'."); }

void RaiseColumnTwice(const std::string& name) {
  throw SqlError(
      264, "The column name '" + name + "' is specified more than once in the SET clause or column list of an INSERT.");
}

void RaiseSeveralTables(const std::string& name) {
  throw SqlError(
      4405, "View or function '" + name + "' is not updatable because the modification affects multiple base tables.");
}

}  // namespace tessarlorn::tsql
