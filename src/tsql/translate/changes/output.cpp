#include "tsql/translate/changes/output.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/text/text.h"
#include "tsql/syntax/ast_walk.h"

namespace tessarlorn::tsql {
namespace {

constexpr std::array kActions = {"UPDATE", "DELETE", "INSERT"};

/// The name before a column or a star, "" for none.
std::string QualifierOf(const Expression& expression) {
  if (const auto* star = As<Star>(expression)) return star->table;
  const auto* column = As<ColumnReference>(expression);
  return column == nullptr ? "" : column->qualifier;
}

bool HasOther(const Expression& expression, const char* rows) {
  const std::string qualifier = QualifierOf(expression);
  bool other = !qualifier.empty() && !EqualsIgnoreCase(qualifier, rows);
  ForEachOperand(expression, [&](const Expression& operand) { other = other || HasOther(operand, rows); });
  return other;
}

void AddOutput(Translation& translation, const SelectItem& item, Scope& scope, std::vector<Typed>& values,
               std::vector<ResultColumn>& columns) {
  scope.no_aggregates = true;
  values.push_back(translation.Value(*item.expression, scope));
  const auto* column = As<ColumnReference>(*item.expression);
  const bool named = item.alias.empty() && column != nullptr;
  columns.push_back({named ? column->name : item.alias, values.back().type, values.back().nullable});
}

/// The rows that OUTPUT names, with the columns of the target: those of the table, or of the query that stands for it.
/// @param value a column of the table in SQL
template <typename Value>
Source RowsOf(const char* name, const Clauses& clauses, const Value& value) {
  const CatalogObject& table = *clauses.target.table;
  Source source;
  source.alias = name;
  if (!clauses.target.through_query) {
    for (const Column& column : table.columns) {
      source.columns.push_back({column.name, column.type, true, value(column)});
    }
    return source;
  }
  const Source& target = SourceOf(clauses);
  for (std::size_t i = 0; i < target.size(); ++i) {
    const SourceColumn shown = target.At(i);
    if (shown.row != clauses.target.base_row) continue;
    const Column& column = table.columns[static_cast<std::size_t>(table.FindColumn(shown.base))];
    source.columns.push_back({shown.name, column.type, true, value(column)});
  }
  return source;
}

}  // namespace

Compiled FinishChange(Translation& translation, const Output& output, const CatalogObject& table, const char* rows,
                      std::string sql) {
  Scope scope;
  scope.sources.push_back(BareSource(rows, table));
  std::vector<Typed> values;
  std::vector<ResultColumn> columns;
  for (const SelectItem& item : output.items) {
    if (const auto* star = As<Star>(*item.expression)) {
      ExpandStar(*star, scope, values, columns);
    } else {
      AddOutput(translation, item, scope, values, columns);
    }
  }
  for (std::size_t i = 0; i < values.size(); ++i) sql += (i == 0 ? " RETURNING " : ", ") + values[i].sql;
  Compiled compiled = translation.parameters.Finish(sql);
  compiled.columns = std::move(columns);
  return compiled;
}

bool AsksForMore(const Output& output, const char* rows) {
  return std::any_of(output.items.begin(), output.items.end(),
                     [&](const SelectItem& item) { return HasOther(*item.expression, rows); });
}

std::string StagedChange::OutputOf(Kind kind, const Clauses& clauses, const std::string& key,
                                   std::vector<std::string>& captured) {
  if (output_.items.empty()) return {};
  const CatalogObject& table = *clauses.target.table;
  const auto none = [](const Column& /*column*/) { return std::string("NULL"); };
  // What was there before is noted with the row; what is there then is read from it.
  Scope before;
  before.sources = clauses.scope.sources;
  before.captured = &captured;
  Scope after;
  after.parent = &before;
  if (kind == Kind::kInsert) {
    after.sources.push_back(RowsOf("deleted", clauses, none));
  } else {
    before.sources.push_back(RowsOf("deleted", clauses, [&](const Column& column) { return clauses.Old(column); }));
  }
  const auto now = [](const Column& column) { return "\"$new\"." + QuoteName(column.name); };
  after.sources.push_back(kind == Kind::kDelete ? RowsOf("inserted", clauses, none) : RowsOf("inserted", clauses, now));
  std::vector<Typed> values;
  std::vector<ResultColumn> columns;
  for (const SelectItem& item : output_.items) {
    const auto* star = As<Star>(*item.expression);
    const auto* name = As<ColumnReference>(*item.expression);
    if (name != nullptr && name->qualifier.empty() && EqualsIgnoreCase(name->name, "$action")) {
      values.push_back({QuoteText(kActions[static_cast<std::size_t>(kind)]), NVarCharType(10), false, -1});
      columns.push_back({item.alias.empty() ? "$action" : item.alias, NVarCharType(10), false});
      continue;
    }
    if (star == nullptr) {
      AddOutput(translation_, item, after, values, columns);
      continue;
    }
    const bool is_after = std::any_of(after.sources.begin(), after.sources.end(), [&](const Source& source) {
      return EqualsIgnoreCase(source.alias, star->table);
    });
    std::vector<Typed> stars;
    ExpandStar(*star, is_after ? after : before, stars, columns);
    for (Typed& value : stars) {
      if (!is_after) {
        captured.push_back(value.sql);
        value.sql = "\"$row\".c" + std::to_string(captured.size());
      }
      values.push_back(std::move(value));
    }
  }
  std::string sql = "SELECT ";
  for (std::size_t i = 0; i < values.size(); ++i) sql += (i == 0 ? "" : ", ") + values[i].sql;
  sql += " FROM temp." + QuoteName(compiled_.stages.back().table) + " AS \"$row\"";
  if (kind != Kind::kDelete) {
    sql += " LEFT JOIN " + TableSql(table) + " AS \"$new\" ON \"$new\"._rowid_ = \"$row\"." + key;
  }
  compiled_.columns = std::move(columns);
  return sql;
}

void StagedChange::Add(Kind kind, const Clauses& clauses, const std::string& row,
                       const std::vector<std::pair<std::string, std::string>>& values, const std::string& apply) {
  ChangeStage& stage = compiled_.stages.emplace_back();
  stage.table = "$changed" + std::to_string(compiled_.stages.size());
  stage.verb = kActions[static_cast<std::size_t>(kind)];
  std::string key = "r";
  std::string list = row;
  stage.columns = kind == Kind::kInsert ? "r INTEGER" : "r INTEGER PRIMARY KEY";
  const CatalogObject& table = *clauses.target.table;
  for (std::size_t i = 0; i < values.size(); ++i) {
    const std::string name = "v" + std::to_string(i);
    stage.columns += ", " + name;
    list += ", " + values[i].second;
    // A new key is a new row number.
    const bool is_number = table.columns[static_cast<std::size_t>(table.FindColumn(values[i].first))].row_key;
    if (is_number && kind == Kind::kUpdate) key = name;
  }
  std::vector<std::string> captured;
  const std::string output = OutputOf(kind, clauses, key, captured);
  for (std::size_t i = 0; i < captured.size(); ++i) {
    stage.columns += ", c" + std::to_string(i + 1);
    list += ", " + captured[i];
  }
  if (!output.empty()) outputs_ += (outputs_.empty() ? "" : " UNION ALL ") + output;
  stage.apply = ReplaceAll(apply, "{rows}", "temp." + QuoteName(stage.table));
  stage.gives_numbers = kind == Kind::kInsert && !output.empty();
  for (std::size_t i = 0; kind == Kind::kUpdate && i < values.size(); ++i) {
    stage.changed_columns.push_back(values[i].first);
  }
  if (kind == Kind::kInsert && table.identity_column() >= 0) stage.identity_table = table.table_name();
  collects_.push_back(clauses.with + (once_ ? "INSERT" : "INSERT OR IGNORE") + " INTO temp." + QuoteName(stage.table) +
                      " SELECT " + list + clauses.Tail());
}

void StagedChange::Update(const Clauses& clauses, const std::vector<std::pair<std::string, std::string>>& sets) {
  std::string apply = "UPDATE " + TableSql(*clauses.target.table) + " AS \"$target\" SET ";
  for (std::size_t i = 0; i < sets.size(); ++i) {
    apply += (i == 0 ? "" : ", ") + QuoteName(sets[i].first) + " = \"$rows\".v" + std::to_string(i);
  }
  Add(Kind::kUpdate, clauses, clauses.target.row, sets,
      apply + " FROM {rows} AS \"$rows\" WHERE \"$target\"._rowid_ = \"$rows\".r");
}

void StagedChange::Delete(const Clauses& clauses) {
  Add(Kind::kDelete, clauses, clauses.target.row, {},
      "DELETE FROM " + TableSql(*clauses.target.table) + " WHERE _rowid_ IN (SELECT r FROM {rows})");
}

void StagedChange::Insert(const Clauses& clauses, const std::vector<std::pair<std::string, std::string>>& values) {
  std::string columns;
  std::string list;
  for (std::size_t i = 0; i < values.size(); ++i) {
    columns += (i == 0 ? "" : ", ") + QuoteName(values[i].first);
    list += (i == 0 ? "v" : ", v") + std::to_string(i);
  }
  const std::string table = TableSql(*clauses.target.table);
  const std::string names = values.empty() ? "" : " (" + columns + ")";
  Add(Kind::kInsert, clauses, "NULL", values,
      "INSERT INTO " + table + names + " SELECT " + list + " FROM {rows} WHERE true");
}

Compiled StagedChange::Finish() {
  for (std::size_t i = 0; i < collects_.size(); ++i) {
    compiled_.stages[i].collect = std::make_unique<Compiled>(translation_.parameters.Part(collects_[i]));
    compiled_.stages[i].collect->verb = compiled_.stages[i].verb;
  }
  Compiled finished = translation_.parameters.Finish(outputs_);
  compiled_.sql = std::move(finished.sql);
  compiled_.parameters = std::move(finished.parameters);
  compiled_.rows_once = once_;
  return std::move(compiled_);
}

}  // namespace tessarlorn::tsql
