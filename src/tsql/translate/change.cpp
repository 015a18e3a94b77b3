#include "tsql/translate/change.h"

#include <algorithm>
#include <utility>

#include "platform/text/text.h"
#include "tsql/translate/common/argument.h"
#include "tsql/translate/common/conversion.h"
#include "tsql/translate/common/operators.h"
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

/// The source that the target of UPDATE or DELETE names: by its alias, or else by its table's name.
const TableSource* FindTarget(const std::vector<TableSourcePtr>& from, const std::string& name) {
  const auto by_alias = [&](const TableSource& source) {
    const auto* table = std::get_if<NamedTable>(&source.node);
    const auto* derived = std::get_if<DerivedTable>(&source.node);
    return EqualsIgnoreCase(table != nullptr ? table->shown_name() : derived != nullptr ? derived->alias : "", name);
  };
  const auto by_name = [&](const TableSource& source) {
    const auto* table = std::get_if<NamedTable>(&source.node);
    return table != nullptr && EqualsIgnoreCase(table->name.name, name);
  };
  const TableSource* found = nullptr;
  for (const TableSourcePtr& source : from) found = found != nullptr ? found : FindSource(*source, by_alias);
  for (const TableSourcePtr& source : from) found = found != nullptr ? found : FindSource(*source, by_name);
  return found;
}

struct Target {
  CatalogObjectPtr table;  // null until FROM is translated when the change goes through a query
  std::string alias;
  std::string row;      // the number of the table's row, in SQL
  bool joined = false;  // FROM names more than the table
  bool named = true;    // FROM, where there is one, names the target
};

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
  target.row = QuoteName(target.alias) + "._rowid_";
  const bool alone = rows.from.empty() || (rows.from.size() == 1 && rows.from[0].get() == source);
  target.joined = target.table == nullptr || !alone;
  return target;
}

[[noreturn]] void RaiseSeveralTables(const std::string& name) {
  throw SqlError(
      4405, "View or function '" + name + "' is not updatable because the modification affects multiple base tables.");
}

/// WITH, FROM, WHERE and TOP of an UPDATE or DELETE.
struct Clauses {
  std::string with;
  Target target;
  Scope scope;
  std::string from;
  std::string where;
  std::string limit;
};

/// The FROM clause, with the target where it does not name it.
std::string FromOf(Translation& translation, const ChangedRows& rows, const Target& target, Scope& scope) {
  std::string from = TranslateFrom(translation, rows.from, scope);
  if (!rows.from.empty() && target.named) return from;
  from += from.empty() ? " FROM " : ", ";
  return from + TranslateTable(translation, {rows.table, "", ""}, scope);
}

const Source& SourceOf(const Clauses& clauses) {
  const std::vector<Source>& sources = clauses.scope.sources;
  return *std::find_if(sources.begin(), sources.end(),
                       [&](const Source& source) { return EqualsIgnoreCase(source.alias, clauses.target.alias); });
}

/// Raises 4403 where the query's rows are not those of tables.
void RequireRows(const Clauses& clauses) {
  if (!SourceOf(clauses).rows.empty()) return;
  throw SqlError(4403, "Cannot update the view or function '" + clauses.target.alias +
                           "' because it contains aggregates, or a DISTINCT or GROUP BY clause, or PIVOT or UNPIVOT "
                           "operator.");
}

/// Of a change through a query: the change is of that row of it.
void ChooseRow(Clauses& clauses, std::size_t row) {
  const BaseRow& base = SourceOf(clauses).rows.at(row);
  clauses.target.table = base.table;
  clauses.target.row = base.number;
}

/// WITH, the target and FROM.
void TranslateHead(Translation& translation, const ChangedRows& rows, Clauses& clauses) {
  clauses.target = TargetOf(translation, rows);
  translation.exposes_rows = clauses.target.table == nullptr;
  clauses.with = TranslateWith(translation, rows.with, nullptr);
  clauses.from = FromOf(translation, rows, clauses.target, clauses.scope);
  translation.exposes_rows = false;
}

void TranslateRowsOf(Translation& translation, const ChangedRows& rows, Clauses& clauses) {
  if (rows.where != nullptr) clauses.where = " WHERE " + translation.Condition(*rows.where, clauses.scope);
  if (rows.top != nullptr) clauses.limit = " LIMIT " + IntArgument(translation, *rows.top, clauses.scope);
}

class UpdateTranslator {
 public:
  UpdateTranslator(Translation& translation, const UpdateStatement& update, std::uint32_t line)
      : translation_(translation), parameters_(translation.parameters), update_(update), line_(line) {}

  Compiled Translate(bool collect);

 private:
  void AddAssignment(const Assignment& assignment);
  void AddColumn(const Assignment& assignment, const Column& column, Typed value);
  void AddVariable(const Assignment& assignment, Typed value);
  /// The column of the table that an assignment is to. Raises 207, 4405 and 4406.
  const Column& ColumnOf(const Assignment& assignment);
  /// A column of the row as it is.
  [[nodiscard]] std::string Old(const Column& column) const;
  /// The clauses behind the select list of a query over the rows.
  [[nodiscard]] std::string Tail() const;
  [[nodiscard]] Compiled AssignOnly();
  [[nodiscard]] Compiled Collect();
  [[nodiscard]] std::string Direct() const;
  [[nodiscard]] std::string Indirect() const;

  Translation& translation_;
  Parameters& parameters_;
  const UpdateStatement& update_;
  std::uint32_t line_;
  Clauses clauses_;
  bool through_query_ = false;
  int row_ = -1;                                           // of the query that the change goes through
  std::vector<std::pair<std::string, std::string>> sets_;  // column, value
  std::string variables_;                                  // ", name, value" for ts_setvar
};

void UpdateTranslator::AddAssignment(const Assignment& assignment) {
  Typed value = translation_.Value(*assignment.value, clauses_.scope);
  if (assignment.column.empty()) {
    AddVariable(assignment, std::move(value));
    return;
  }
  AddColumn(assignment, ColumnOf(assignment), std::move(value));
}

const Column& UpdateTranslator::ColumnOf(const Assignment& assignment) {
  std::string name = assignment.column.back();
  if (through_query_) {
    const std::string& alias = clauses_.target.alias;
    const std::vector<SourceColumn>& columns = SourceOf(clauses_).columns;
    const auto found = std::find_if(columns.begin(), columns.end(),
                                    [&](const SourceColumn& column) { return EqualsIgnoreCase(column.name, name); });
    if (found == columns.end()) RaiseNoColumn(name);
    if (found->row < 0) {
      throw SqlError(4406, "Update or insert of view or function '" + alias +
                               "' failed because it contains a derived or constant field.");
    }
    if (clauses_.target.table != nullptr && row_ != found->row) RaiseSeveralTables(alias);
    row_ = found->row;
    ChooseRow(clauses_, static_cast<std::size_t>(row_));
    name = found->base;
  }
  const CatalogObject& table = *clauses_.target.table;
  return table.columns[static_cast<std::size_t>(RequireColumn(table, name))];
}

std::string UpdateTranslator::Old(const Column& column) const {
  const std::string name = QuoteName(column.name);
  if (!through_query_) return QuoteName(clauses_.target.alias) + "." + name;
  return "(SELECT " + name + " FROM " + TableSql(*clauses_.target.table) + " WHERE _rowid_ = " + clauses_.target.row +
         ")";
}

void UpdateTranslator::AddColumn(const Assignment& assignment, const Column& column, Typed value) {
  if (column.identity) throw SqlError(8102, "Cannot update identity column '" + column.name + "'.");
  if (assignment.compound) {
    value = Arithmetic(parameters_, *assignment.compound, {Old(column), column.type, column.nullable, -1},
                       std::move(value));
  }
  for (const auto& [name, sql] : sets_) {
    if (EqualsIgnoreCase(name, column.name)) RaiseColumnTwice(column.name);
  }
  sets_.emplace_back(column.name, Assigned(parameters_, value, column, ShownName(*clauses_.target.table)));
  if (assignment.variable.empty()) return;
  const Typed stored{sets_.back().second, column.type, true, -1};
  variables_ += ", " + QuoteText(assignment.variable) + ", " +
                Coerce(parameters_, stored, parameters_.VariableType(assignment.variable));
  parameters_.Variable(assignment.variable);
}

void UpdateTranslator::AddVariable(const Assignment& assignment, Typed value) {
  const SqlType type = parameters_.VariableType(assignment.variable);
  if (assignment.compound) {
    value = Arithmetic(parameters_, *assignment.compound, parameters_.Variable(assignment.variable), std::move(value));
  }
  parameters_.Variable(assignment.variable);
  variables_ += ", " + QuoteText(assignment.variable) + ", " + Coerce(parameters_, value, type);
}

std::string UpdateTranslator::Tail() const {
  const std::string present =
      clauses_.target.joined ? (clauses_.where.empty() ? " WHERE " : " AND ") + clauses_.target.row + " IS NOT NULL"
                             : "";
  return clauses_.from + clauses_.where + present + clauses_.limit;
}

// Only variables: each row that the condition meets assigns them.
Compiled UpdateTranslator::AssignOnly() {
  if (!update_.rows.output.empty()) RaiseUnsupported("OUTPUT of an UPDATE that changes no column", line_);
  return parameters_.Finish(clauses_.with + "SELECT ts_setvar(1" + variables_ + ")" + clauses_.from + clauses_.where);
}

Compiled UpdateTranslator::Collect() {
  std::string row = clauses_.target.row;
  for (const Column& column : clauses_.target.table->columns) {
    const auto set =
        std::find_if(sets_.begin(), sets_.end(), [&](const auto& entry) { return entry.first == column.name; });
    row += ", " + (set != sets_.end() ? set->second : Old(column));
  }
  return parameters_.Finish(clauses_.with + "INSERT OR IGNORE INTO temp.\"$moved\" SELECT " + row + Tail());
}

std::string UpdateTranslator::Direct() const {
  std::string sql = "UPDATE " + TableSql(*clauses_.target.table) + " AS " + QuoteName(clauses_.target.alias) + " SET ";
  for (std::size_t i = 0; i < sets_.size(); ++i)
    sql += (i == 0 ? "" : ", ") + QuoteName(sets_[i].first) + " = " + sets_[i].second;
  return sql + clauses_.where;
}

// The rows are found by a query of their own.
std::string UpdateTranslator::Indirect() const {
  std::string sql = clauses_.with + "UPDATE " + TableSql(*clauses_.target.table) + " AS \"$target\" SET ";
  std::string rows = "SELECT " + clauses_.target.row + " AS r";
  for (std::size_t i = 0; i < sets_.size(); ++i) {
    const std::string name = "v" + std::to_string(i);
    sql += (i == 0 ? "" : ", ") + QuoteName(sets_[i].first) + " = \"$rows\"." + name;
    rows += ", " + sets_[i].second + " AS " + name;
  }
  return sql + " FROM (" + rows + Tail() + ") AS \"$rows\" WHERE \"$target\"._rowid_ = \"$rows\".r";
}

bool IsDeleted(const Expression& expression) {
  const auto* column = As<ColumnReference>(expression);
  const auto* star = As<Star>(expression);
  return EqualsIgnoreCase(column != nullptr ? column->parts[0] : star != nullptr ? star->table : "", "deleted");
}

Compiled UpdateTranslator::Translate(bool collect) {
  const ChangedRows& rows = update_.rows;
  TranslateHead(translation_, rows, clauses_);
  through_query_ = clauses_.target.table == nullptr;
  if (through_query_) RequireRows(clauses_);
  for (const Assignment& assignment : update_.assignments) {
    if (!assignment.variable.empty()) parameters_.Assign(assignment.variable);
  }
  for (const Assignment& assignment : update_.assignments) AddAssignment(assignment);
  TranslateRowsOf(translation_, rows, clauses_);
  if (!sets_.empty() && !variables_.empty()) sets_[0].second = "ts_setvar(" + sets_[0].second + variables_ + ")";
  Compiled compiled;
  if (sets_.empty()) {
    compiled = AssignOnly();
  } else if (collect) {
    compiled = Collect();
  } else {
    for (const SelectItem& item : rows.output) {
      if (IsDeleted(*item.expression)) RaiseUnsupported("OUTPUT deleted of an UPDATE", line_);
    }
    const bool indirect = clauses_.target.joined || rows.top != nullptr || !rows.with.empty();
    compiled =
        FinishChange(translation_, rows.output, *clauses_.target.table, "inserted", indirect ? Indirect() : Direct());
  }
  compiled.verb = "UPDATE";
  if (!sets_.empty()) compiled.changed_table = clauses_.target.table->name;
  return compiled;
}

}  // namespace

Compiled CompileUpdate(Translation& translation, const UpdateStatement& update, std::uint32_t line, bool collect) {
  return UpdateTranslator(translation, update, line).Translate(collect);
}

Compiled CompileDelete(Translation& translation, const DeleteStatement& statement) {
  const ChangedRows& rows = statement.rows;
  Clauses clauses;
  TranslateHead(translation, rows, clauses);
  if (clauses.target.table == nullptr) {
    RequireRows(clauses);
    if (SourceOf(clauses).rows.size() != 1) RaiseSeveralTables(clauses.target.alias);
    ChooseRow(clauses, 0);
  }
  TranslateRowsOf(translation, rows, clauses);
  const std::string alias = QuoteName(clauses.target.alias);
  std::string sql = clauses.with + "DELETE FROM " + TableSql(*clauses.target.table);
  if (clauses.target.joined || !clauses.limit.empty()) {
    sql += " WHERE _rowid_ IN (SELECT " + clauses.target.row + clauses.from + clauses.where + clauses.limit + ")";
  } else {
    sql += " AS " + alias + clauses.where;
  }
  Compiled compiled = FinishChange(translation, rows.output, *clauses.target.table, "deleted", std::move(sql));
  compiled.verb = "DELETE";
  compiled.changed_table = clauses.target.table->name;
  return compiled;
}

Compiled FinishChange(Translation& translation, const std::vector<SelectItem>& output, const CatalogObject& table,
                      const char* rows, std::string sql) {
  Scope scope;
  scope.sources.push_back(BareSource(rows, table));
  std::vector<Typed> values;
  std::vector<ResultColumn> columns;
  for (const SelectItem& item : output) {
    const Expression& expression = *item.expression;
    if (const auto* star = As<Star>(expression)) {
      ExpandStar(*star, scope, values, columns);
      continue;
    }
    scope.no_aggregates = true;
    values.push_back(translation.Value(expression, scope));
    const auto* column = As<ColumnReference>(expression);
    const bool named = item.alias.empty() && column != nullptr;
    columns.push_back({named ? column->name() : item.alias, values.back().type, values.back().nullable});
  }
  for (std::size_t i = 0; i < values.size(); ++i) sql += (i == 0 ? " RETURNING " : ", ") + values[i].sql;
  Compiled compiled = translation.parameters.Finish(sql);
  compiled.columns = std::move(columns);
  return compiled;
}

void RequireTable(const CatalogObject& object) {
  if (object.kind != CatalogKind::kTable) RaiseUnsupported("Changing the view '" + object.name + "'");
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

std::string ShownName(const CatalogObject& table) { return (table.temporary ? "tempdb.dbo." : "dbo.") + table.name; }

}  // namespace tessarlorn::tsql
