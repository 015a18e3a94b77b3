#include "tsql/translate/changes/change.h"

#include <algorithm>

#include "tsql/translate/changes/assignments.h"
#include "tsql/translate/changes/output.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

using Sets = std::vector<std::pair<std::string, std::string>>;

std::string WholeRows(const Clauses& clauses, const Sets& sets) {
  std::string row = clauses.target.row;
  for (const Column& column : clauses.target.table->columns) {
    if (column.computed()) continue;
    const auto set =
        std::find_if(sets.begin(), sets.end(), [&](const auto& entry) { return entry.first == column.name; });
    row += ", " + (set != sets.end() ? set->second : clauses.Old(column));
  }
  return clauses.with + "INSERT OR IGNORE INTO temp.\"$moved\" SELECT " + row + clauses.Tail();
}

std::string DirectUpdate(const Clauses& clauses, const Sets& sets) {
  std::string sql = "UPDATE " + TableSql(*clauses.target.table) + " AS " + QuoteName(clauses.target.alias) + " SET ";
  for (std::size_t i = 0; i < sets.size(); ++i)
    sql += (i == 0 ? "" : ", ") + QuoteName(sets[i].first) + " = " + sets[i].second;
  return sql + clauses.where;
}

// The rows are found by a query of their own.
std::string IndirectUpdate(const Clauses& clauses, const Sets& sets) {
  std::string sql = clauses.with + "UPDATE " + TableSql(*clauses.target.table) + " AS \"$target\" SET ";
  std::string rows = "SELECT " + clauses.target.row + " AS r";
  for (std::size_t i = 0; i < sets.size(); ++i) {
    const std::string name = "v" + std::to_string(i);
    sql += (i == 0 ? "" : ", ") + QuoteName(sets[i].first) + " = \"$rows\"." + name;
    rows += ", " + sets[i].second + " AS " + name;
  }
  return sql + " FROM (" + rows + clauses.Tail() + ") AS \"$rows\" WHERE \"$target\"._rowid_ = \"$rows\".r";
}

std::string DeleteText(const Clauses& clauses) {
  const std::string sql = clauses.with + "DELETE FROM " + TableSql(*clauses.target.table);
  if (!clauses.target.joined && clauses.limit.empty()) {
    return sql + " AS " + QuoteName(clauses.target.alias) + clauses.where;
  }
  return sql + " WHERE _rowid_ IN (SELECT " + clauses.target.row + clauses.from + clauses.where + clauses.limit + ")";
}

}  // namespace

Compiled CompileUpdate(Translation& translation, const UpdateStatement& update, std::uint32_t line, bool collect) {
  const ChangedRows& rows = update.rows;
  Clauses clauses;
  TranslateHead(translation, rows, clauses);
  Assignments assignments(translation, clauses);
  assignments.Translate(update.assignments);
  TranslateRowsOf(translation, rows, clauses);
  const Sets& sets = assignments.sets();
  Compiled compiled;
  if (sets.empty()) {
    // Only variables: each row that the condition meets assigns them.
    if (!rows.output.items.empty()) RaiseUnsupported("OUTPUT of an UPDATE that changes no column", line);
    compiled = translation.parameters.Finish(clauses.with + "SELECT ts_setvar(1" + assignments.variables() + ")" +
                                             clauses.from + clauses.where);
  } else if (collect) {
    compiled = translation.parameters.Finish(WholeRows(clauses, sets));
  } else if (AsksForMore(rows.output, "inserted") || (clauses.target.through_query && !rows.output.items.empty())) {
    StagedChange change(translation, rows.output);
    change.Update(clauses, sets);
    compiled = change.Finish();
  } else {
    const bool indirect = clauses.target.joined || rows.top != nullptr || !rows.with.empty();
    compiled = FinishChange(translation, rows.output, *clauses.target.table, "inserted",
                            indirect ? IndirectUpdate(clauses, sets) : DirectUpdate(clauses, sets));
  }
  compiled.verb = "UPDATE";
  if (!sets.empty()) compiled.changed_table = clauses.target.table->name;
  return compiled;
}

Compiled CompileDelete(Translation& translation, const DeleteStatement& statement) {
  const ChangedRows& rows = statement.rows;
  Clauses clauses;
  TranslateHead(translation, rows, clauses);
  if (clauses.target.through_query) {
    if (SourceOf(clauses).rows.size() != 1) RaiseSeveralTables(clauses.target.alias);
    ChooseRow(clauses, 0);
  }
  TranslateRowsOf(translation, rows, clauses);
  Compiled compiled;
  if (AsksForMore(rows.output, "deleted") || (clauses.target.through_query && !rows.output.items.empty())) {
    StagedChange change(translation, rows.output);
    change.Delete(clauses);
    compiled = change.Finish();
  } else {
    compiled = FinishChange(translation, rows.output, *clauses.target.table, "deleted", DeleteText(clauses));
  }
  compiled.verb = "DELETE";
  compiled.changed_table = clauses.target.table->name;
  return compiled;
}

}  // namespace tessarlorn::tsql
