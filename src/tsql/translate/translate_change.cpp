// INSERT, UPDATE and DELETE, and the expressions that table definitions hold.
#include <algorithm>

#include "platform/text.h"
#include "tsql/syntax/parser.h"
#include "tsql/translate/translator.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

/// The table source that UPDATE's or DELETE's target names: its alias, or else its table's name.
const TableSource* FindTarget(const TableSource& source, const std::string& name) {
  if (source.kind == TableSource::Kind::kJoin) {
    const TableSource* left = FindTarget(*source.left, name);
    return left != nullptr ? left : FindTarget(*source.right, name);
  }
  if (source.kind != TableSource::Kind::kTable) return nullptr;
  const std::string& alias = source.alias.empty() ? source.table.name : source.alias;
  return EqualsIgnoreCase(alias, name) ? &source : nullptr;
}

const TableSource* FindTargetTable(const TableSource& source, const std::string& name) {
  if (source.kind == TableSource::Kind::kJoin) {
    const TableSource* left = FindTargetTable(*source.left, name);
    return left != nullptr ? left : FindTargetTable(*source.right, name);
  }
  return source.kind == TableSource::Kind::kTable && EqualsIgnoreCase(source.table.name, name) ? &source : nullptr;
}

[[noreturn]] void RaiseReadOnly(const CatalogObject& object) {
  RaiseUnsupported("Changing the view '" + object.name + "'");
}

std::string Messaged(const CatalogObject& table) { return (table.temporary ? "tempdb.dbo." : "dbo.") + table.name; }

int RequireColumn(const CatalogObject& table, const std::string& name) {
  const int position = table.FindColumn(name);
  if (position < 0) throw SqlError(207, "Invalid column name '" + name + "'.");
  return position;
}

}  // namespace

std::vector<std::pair<std::string, std::string>> Translator::Defaults(const CatalogObject& table,
                                                                      const std::vector<int>& given) {
  std::vector<std::pair<std::string, std::string>> defaults;
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    const Column& column = table.columns[i];
    if (std::find(given.begin(), given.end(), static_cast<int>(i)) != given.end()) continue;
    if (column.default_text.empty()) {
      if (column.row_key) defaults.emplace_back(column.name, Required("NULL", column, Messaged(table)));
      continue;
    }
    Scope scope;
    const ExpressionPtr expression = ParseExpressionText(column.default_text, names_);
    ++view_depth_;  // the literals are the definition's, not the statement's
    const Typed value = Value(*expression, scope);
    --view_depth_;
    defaults.emplace_back(column.name, Assign(value, column, Messaged(table)));
  }
  return defaults;
}

std::string Translator::InsertHead(const CatalogObject& table, const std::vector<int>& positions,
                                   const std::vector<std::pair<std::string, std::string>>& defaults) {
  std::string sql = "INSERT INTO " + TableSql(table) + " (";
  bool first = true;
  for (const int position : positions) {
    sql += (first ? "" : ", ") + QuoteName(table.columns[static_cast<std::size_t>(position)].name);
    first = false;
  }
  for (const auto& [name, value] : defaults) {
    sql += (first ? "" : ", ") + QuoteName(name);
    first = false;
  }
  return sql + ") ";
}

Compiled Translator::CompileInsert(const Statement& statement, bool identity_insert, const TranslatedQuery* given) {
  const std::string with = With(statement.with, nullptr);
  const CatalogObjectPtr table = Lookup(statement.table);
  if (table->kind != CatalogKind::kTable) RaiseReadOnly(*table);
  const int identity = table->identity_column();
  std::vector<int> positions;
  for (const std::string& name : statement.columns) {
    const int position = RequireColumn(*table, name);
    if (std::find(positions.begin(), positions.end(), position) != positions.end()) {
      throw SqlError(264, "The column name '" + name +
                              "' is specified more than once in the SET clause or column list of an INSERT.");
    }
    positions.push_back(position);
  }
  if (statement.columns.empty()) {
    for (int i = 0; i < static_cast<int>(table->columns.size()); ++i) {
      if (i != identity || identity_insert) positions.push_back(i);
    }
  }
  const bool names_identity = std::find(positions.begin(), positions.end(), identity) != positions.end();
  if (identity >= 0 && names_identity && !identity_insert) {
    throw SqlError(544, "Cannot insert explicit value for identity column in table '" + table->name +
                            "' when IDENTITY_INSERT is set to OFF.");
  }
  if (statement.default_values) positions.clear();
  const auto defaults = Defaults(*table, positions);
  const std::string head = with + InsertHead(*table, positions, defaults);
  const auto finish = [&](const std::string& sql) {
    Compiled compiled = FinishChange(statement, *table, "inserted", sql);
    compiled.verb = "INSERT";
    if (identity >= 0) compiled.identity_table = table->name;
    return compiled;
  };
  if (statement.default_values) {
    if (defaults.empty()) return finish("INSERT INTO " + TableSql(*table) + " DEFAULT VALUES");
    std::string sql = head + "VALUES (";
    for (std::size_t i = 0; i < defaults.size(); ++i) sql += (i == 0 ? "" : ", ") + defaults[i].second;
    return finish(sql + ")");
  }
  const auto check_count = [&](std::size_t count) {
    if (count == positions.size()) return;
    if (statement.columns.empty()) {
      throw SqlError(213, "Column name or number of supplied values does not match table definition.");
    }
    const bool query = given == nullptr && statement.query->select != nullptr;
    if (positions.size() > count) {
      throw SqlError(query ? 120 : 109,
                     query ? "The select list for the INSERT statement contains fewer items than the insert list. "
                             "The number of SELECT values must match the number of INSERT columns."
                           : "There are more columns in the INSERT statement than values specified in the "
                             "VALUES clause. The number of values in the VALUES clause must match the number "
                             "of columns specified in the INSERT statement.",
                     15);
    }
    throw SqlError(query ? 121 : 110,
                   query ? "The select list for the INSERT statement contains more items than the insert list. "
                           "The number of SELECT values must match the number of INSERT columns."
                         : "There are fewer columns in the INSERT statement than values specified in the "
                           "VALUES clause. The number of values in the VALUES clause must match the number "
                           "of columns specified in the INSERT statement.",
                   15);
  };
  const bool plain =
      given == nullptr && statement.query->select == nullptr && statement.query->set_operator == SetOperator::kNone;
  if (plain) {
    const Query& query = *statement.query;
    Scope scope;
    std::string sql = head + "VALUES ";
    for (std::size_t r = 0; r < query.rows.size(); ++r) {
      check_count(query.rows[r].size());
      sql += r == 0 ? "(" : ", (";
      for (std::size_t i = 0; i < positions.size(); ++i) {
        const Column& column = table->columns[static_cast<std::size_t>(positions[i])];
        const Expression& value = *query.rows[r][i];
        const bool use_default = value.kind == Expression::Kind::kColumn && value.parts.size() == 1 &&
                                 EqualsIgnoreCase(value.parts[0], "default");
        if (i > 0) sql += ", ";
        if (use_default) {
          std::vector<int> others;
          for (int other = 0; other < static_cast<int>(table->columns.size()); ++other) {
            if (other != positions[i]) others.push_back(other);
          }
          const auto own = Defaults(*table, others);
          const auto found =
              std::find_if(own.begin(), own.end(), [&](const auto& entry) { return entry.first == column.name; });
          sql += found == own.end() ? "NULL" : found->second;
        } else {
          sql += Assign(Value(value, scope), column, Messaged(*table));
        }
      }
      for (std::size_t i = 0; i < defaults.size(); ++i) {
        // Each row takes the parameters of the first row's defaults.
        sql += (positions.empty() && i == 0 ? "" : ", ") + defaults[i].second;
      }
      sql += ")";
    }
    return finish(sql);
  }
  const TranslatedQuery rows = given != nullptr ? *given : QueryText(*statement.query, nullptr, Ordered());
  check_count(rows.columns.size());
  // The query stands inside, so that its columns can be converted by name whatever it is made of.
  std::string list;
  std::string values;
  for (std::size_t i = 0; i < positions.size(); ++i) {
    const std::string name = "c" + std::to_string(i);
    list += (i == 0 ? "" : ", ") + name;
    const Typed column{name, rows.columns[i].type, true, -1};
    values +=
        (i == 0 ? "" : ", ") + Assign(column, table->columns[static_cast<std::size_t>(positions[i])], Messaged(*table));
  }
  for (const auto& [name, value] : defaults) values += ", " + value;
  return finish(head + "SELECT " + values + " FROM (WITH i(" + list + ") AS (" + rows.sql + ") SELECT * FROM i)");
}

Compiled Translator::CompileInsertInto(const CatalogObject& table, const Query& query) {
  std::string columns;
  for (const Column& column : table.columns) columns += (columns.empty() ? "" : ", ") + QuoteName(column.name);
  TranslatedQuery rows = QueryText(query, nullptr, Ordered());
  Compiled compiled = Finish("INSERT INTO " + TableSql(table) + " (" + columns + ") " + rows.sql);
  compiled.verb = "INSERT";
  if (table.identity_column() >= 0) compiled.identity_table = table.name;
  return compiled;
}

Compiled Translator::FinishChange(const Statement& statement, const CatalogObject& table, const char* rows,
                                  std::string sql) {
  Scope scope;
  Source source;
  source.alias = rows;
  for (const Column& column : table.columns) {
    source.columns.push_back({column.name, column.type, column.nullable, QuoteName(column.name)});
  }
  scope.sources.push_back(std::move(source));
  std::vector<Typed> values;
  std::vector<ResultColumn> columns;
  for (const SelectItem& item : statement.output) {
    const Expression& expression = *item.expression;
    if (statement.kind == Statement::Kind::kUpdate && !expression.parts.empty() &&
        EqualsIgnoreCase(expression.parts[0], "deleted")) {
      RaiseUnsupported("OUTPUT deleted of an UPDATE", statement.line);
    }
    if (expression.kind == Expression::Kind::kStar) {
      ExpandStar(expression, scope, values, columns);
      continue;
    }
    scope.no_aggregates = true;
    values.push_back(Value(expression, scope));
    const bool named = item.alias.empty() && expression.kind == Expression::Kind::kColumn;
    columns.push_back({named ? expression.parts.back() : item.alias, values.back().type, values.back().nullable});
  }
  for (std::size_t i = 0; i < values.size(); ++i) sql += (i == 0 ? " RETURNING " : ", ") + values[i].sql;
  Compiled compiled = Finish(std::move(sql));
  compiled.columns = std::move(columns);
  return compiled;
}

Translator::Target Translator::ChangeTarget(const Statement& statement) {
  Target target;
  const TableSource* found = nullptr;
  for (const TableSourcePtr& source : statement.from) {
    if (found == nullptr) found = FindTarget(*source, statement.table.name);
  }
  for (const TableSourcePtr& source : statement.from) {
    if (found == nullptr) found = FindTargetTable(*source, statement.table.name);
  }
  if (found != nullptr) {
    target.table = Lookup(found->table);
    target.alias = found->alias.empty() ? found->table.name : found->alias;
    target.joined = statement.from.size() > 1 || statement.from[0]->kind != TableSource::Kind::kTable;
  } else {
    target.table = Lookup(statement.table);
    target.alias = statement.table.name;
    target.joined = !statement.from.empty();
    if (target.joined)
      RaiseUnsupported("A FROM clause that does not name the table '" + statement.table.name + "'", statement.line);
  }
  if (target.table->kind != CatalogKind::kTable) RaiseReadOnly(*target.table);
  return target;
}

std::string Translator::ChangeSources(const Statement& statement, Scope& scope) {
  if (!statement.from.empty()) return From(statement.from, scope);
  TableSource source;
  source.table = statement.table;
  return " FROM " + SourceText(source, scope, false);
}

Compiled Translator::CompileUpdate(const Statement& statement, bool collect) {
  const std::string with = With(statement.with, nullptr);
  const Target target = ChangeTarget(statement);
  const bool indirect = target.joined || statement.top != nullptr || !statement.with.empty();
  for (const Assignment& assignment : statement.assignments) {
    if (!assignment.variable.empty()) live_variables_.insert(assignment.variable);
  }
  Scope scope;
  const std::string from = ChangeSources(statement, scope);
  const std::string alias = QuoteName(target.alias);
  std::vector<std::pair<std::string, std::string>> sets;  // column, value
  std::string variables;                                  // ", name, value" for ts_setvar
  for (const Assignment& assignment : statement.assignments) {
    Typed value = Value(*assignment.value, scope);
    const int position = assignment.column.empty() ? -1 : RequireColumn(*target.table, assignment.column.back());
    if (position >= 0) {
      const Column& column = target.table->columns[static_cast<std::size_t>(position)];
      if (column.identity) throw SqlError(8102, "Cannot update identity column '" + column.name + "'.");
      if (assignment.is_compound) {
        value = BinaryOf(assignment.compound, {alias + "." + QuoteName(column.name), column.type, column.nullable, -1},
                         std::move(value));
      }
      for (const auto& [name, sql] : sets) {
        if (EqualsIgnoreCase(name, column.name)) {
          throw SqlError(264, "The column name '" + column.name +
                                  "' is specified more than once in the SET clause or column list of an INSERT.");
        }
      }
      sets.emplace_back(column.name, Assign(value, column, Messaged(*target.table)));
      if (!assignment.variable.empty()) {
        const Typed stored{sets.back().second, column.type, true, -1};
        variables +=
            ", " + QuoteText(assignment.variable) + ", " + Coerce(stored, frame_.Get(assignment.variable).type);
        VariableValue(assignment.variable);
      }
    } else {
      const SqlType type = frame_.Get(assignment.variable).type;
      if (assignment.is_compound)
        value = BinaryOf(assignment.compound, VariableValue(assignment.variable), std::move(value));
      VariableValue(assignment.variable);
      variables += ", " + QuoteText(assignment.variable) + ", " + Coerce(value, type);
    }
  }
  const std::string where = statement.where == nullptr ? "" : " WHERE " + Condition(*statement.where, scope);
  std::string sql;
  if (sets.empty()) {
    // Only variables: each row that the condition meets assigns them.
    if (!statement.output.empty()) RaiseUnsupported("OUTPUT of an UPDATE that changes no column", statement.line);
    Compiled compiled = Finish(with + "SELECT ts_setvar(1" + variables + ")" + from + where);
    compiled.verb = "UPDATE";
    return compiled;
  }
  if (!variables.empty()) sets[0].second = "ts_setvar(" + sets[0].second + variables + ")";
  const std::string limit = statement.top == nullptr ? "" : " LIMIT " + IntArgument(*statement.top, scope);
  const std::string present =
      target.joined ? (where.empty() ? " WHERE " : " AND ") + alias + "._rowid_ IS NOT NULL" : "";
  if (collect) {
    std::string row = alias + "._rowid_";
    for (const Column& column : target.table->columns) {
      const auto set =
          std::find_if(sets.begin(), sets.end(), [&](const auto& entry) { return entry.first == column.name; });
      row += ", " + (set != sets.end() ? set->second : alias + "." + QuoteName(column.name));
    }
    Compiled compiled =
        Finish(with + "INSERT OR IGNORE INTO temp.\"$moved\" SELECT " + row + from + where + present + limit);
    compiled.verb = "UPDATE";
    return compiled;
  }
  if (!indirect) {
    sql = "UPDATE " + TableSql(*target.table) + " AS " + alias + " SET ";
    for (std::size_t i = 0; i < sets.size(); ++i)
      sql += (i == 0 ? "" : ", ") + QuoteName(sets[i].first) + " = " + sets[i].second;
    sql += where;
  } else {
    sql = with + "UPDATE " + TableSql(*target.table) + " AS \"$target\" SET ";
    std::string rows = "SELECT " + alias + "._rowid_ AS r";
    for (std::size_t i = 0; i < sets.size(); ++i) {
      const std::string name = "v" + std::to_string(i);
      sql += (i == 0 ? "" : ", ") + QuoteName(sets[i].first) + " = \"$rows\"." + name;
      rows += ", " + sets[i].second + " AS " + name;
    }
    sql += " FROM (" + rows + from + where + present + limit + ") AS \"$rows\" WHERE \"$target\"._rowid_ = \"$rows\".r";
  }
  Compiled compiled = FinishChange(statement, *target.table, "inserted", std::move(sql));
  compiled.verb = "UPDATE";
  return compiled;
}

Compiled Translator::CompileDelete(const Statement& statement) {
  const std::string with = With(statement.with, nullptr);
  const Target target = ChangeTarget(statement);
  Scope scope;
  const std::string from = ChangeSources(statement, scope);
  const std::string where = statement.where == nullptr ? "" : " WHERE " + Condition(*statement.where, scope);
  const std::string limit = statement.top == nullptr ? "" : " LIMIT " + IntArgument(*statement.top, scope);
  std::string sql = with + "DELETE FROM " + TableSql(*target.table);
  if (target.joined || !limit.empty()) {
    sql += " WHERE _rowid_ IN (SELECT " + QuoteName(target.alias) + "._rowid_" + from + where + limit + ")";
  } else {
    sql += " AS " + QuoteName(target.alias) + where;
  }
  Compiled compiled = FinishChange(statement, *target.table, "deleted", std::move(sql));
  compiled.verb = "DELETE";
  return compiled;
}

std::string Translator::TranslateCheck(const CatalogObject& table, const Expression& condition) {
  Scope scope;
  Source source;
  source.alias = table.name;
  for (const Column& column : table.columns) {
    source.columns.push_back({column.name, column.type, column.nullable, QuoteName(column.name)});
  }
  scope.sources.push_back(std::move(source));
  std::string sql = Condition(condition, scope);
  // SQLite allows no parameters in a definition: each constant is written where its parameter stands.
  for (std::size_t i = parameters_.size(); i-- > 0;) {
    const BoundParameter& parameter = parameters_[i];
    if (parameter.source != BoundParameter::Source::kConstant)
      RaiseUnsupported("A CHECK constraint that is not made of columns and constants");
    const Datum value = Convert(parameter.constant, parameter.from, parameter.to, parameter.style, parameter.fit);
    std::string text = "NULL";
    if (const auto* integer = std::get_if<std::int64_t>(&value)) text = std::to_string(*integer);
    if (const auto* real = std::get_if<double>(&value)) text = std::to_string(*real);
    if (const auto* words = std::get_if<std::string>(&value)) text = QuoteText(*words);
    if (std::holds_alternative<Blob>(value)) RaiseUnsupported("A CHECK constraint on a long decimal");
    const std::string mark = "?" + std::to_string(i + 1);
    for (std::size_t at = sql.find(mark); at != std::string::npos; at = sql.find(mark, at + text.size())) {
      sql.replace(at, mark.size(), text);
    }
  }
  parameters_.clear();
  return sql;
}

}  // namespace tessarlorn::tsql
