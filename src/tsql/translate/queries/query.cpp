#include "tsql/translate/queries/query.h"

#include <set>

#include "platform/text/text.h"
#include "tsql/translate/common/conversion.h"
#include "tsql/translate/queries/for_clause.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {

bool StoresAlike(const SqlType& a, const SqlType& b) {
  return a.storage() == b.storage() && (!a.is_exact() || a.scale == b.scale);
}

void Rename(std::vector<ResultColumn>& columns, const std::vector<std::string>& names, const std::string& owner) {
  const bool more = columns.size() > names.size();
  if (names.size() != columns.size()) {
    throw SqlError(more ? 8158 : 8159, "'" + owner + "' has " + (more ? "more" : "fewer") +
                                           " columns than were specified in the column list.");
  }
  for (std::size_t i = 0; i < names.size(); ++i) columns[i].name = names[i];
}

namespace {

/// @param number the column's, from 1
[[noreturn]] void RaiseNoName(std::size_t number, const std::string& owner, QueryOwner kind) {
  switch (kind) {
    case QueryOwner::kNewTable:
      throw SqlError(1038,
                     "An object or column name is missing or empty. For SELECT INTO statements, verify each column has "
                     "a name. For other statements, look for empty alias names. Aliases defined as \"\" or [] are not "
                     "allowed. Change the alias to a valid name.",
                     15);
    case QueryOwner::kDefinition:
      throw SqlError(4511, "Create View or Function failed because no column name was specified for column " +
                               std::to_string(number) + ".");
    default:
      throw SqlError(8155,
                     "No column name was specified for column " + std::to_string(number) + " of '" + owner + "'.");
  }
}

[[noreturn]] void RaiseNameTwice(const std::string& column, const std::string& owner, QueryOwner kind) {
  switch (kind) {
    case QueryOwner::kNewTable:
      throw SqlError(2705, "Column names in each table must be unique. Column name '" + column + "' in table '" +
                               owner + "' is specified more than once.");
    case QueryOwner::kDefinition:
      throw SqlError(4506, "Column names in each view or function must be unique. Column name '" + column +
                               "' in view or function '" + owner + "' is specified more than once.");
    default:
      throw SqlError(8156, "The column '" + column + "' was specified multiple times for '" + owner + "'.");
  }
}

}  // namespace

void CheckNames(const std::vector<ResultColumn>& columns, const std::string& owner, QueryOwner kind) {
  std::set<std::string> seen;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (columns[i].name.empty()) RaiseNoName(i + 1, owner, kind);
    if (!seen.insert(LowerCase(columns[i].name)).second) RaiseNameTwice(columns[i].name, owner, kind);
  }
}

namespace {

/// More rows than SQLite joins by UNION ALL.
std::string ManyRows(Translation& translation, const std::vector<std::vector<Typed>>& rows,
                     const std::vector<ResultColumn>& columns) {
  std::string list;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    list += (i == 0 ? "column" : ", column") + std::to_string(i + 1);
    if (!columns[i].name.empty()) list += " AS " + QuoteName(columns[i].name);
  }
  std::string sql = "SELECT " + list + " FROM (VALUES ";
  for (std::size_t r = 0; r < rows.size(); ++r) {
    sql += r == 0 ? "(" : ", (";
    for (std::size_t i = 0; i < rows[r].size(); ++i) {
      sql += (i == 0 ? "" : ", ") + Coerce(translation.parameters, rows[r][i], columns[i].type);
    }
    sql += ")";
  }
  return sql + ")";
}

}  // namespace

void RequireSameWidth(const ValueRows& values) {
  for (const auto& row : values.rows) {
    if (row.size() == values.rows[0].size()) continue;
    throw SqlError(10709, "The number of columns for each row in a table value constructor must be the same.");
  }
}

TranslatedQuery TranslateRows(Translation& translation, const ValueRows& values, const Scope* parent,
                              const SelectOptions& options) {
  Scope scope;
  scope.parent = parent;
  TranslatedQuery result;
  std::vector<std::vector<Typed>> rows;
  RequireSameWidth(values);
  for (const auto& row : values.rows) {
    rows.emplace_back();
    for (std::size_t i = 0; i < row.size(); ++i) {
      rows.back().push_back(translation.Value(*row[i], scope));
      if (rows.size() == 1) result.columns.push_back({"", NullType(), false, false});
      result.columns[i].type = CommonType(result.columns[i].type, rows.back()[i].type);
      result.columns[i].nullable = result.columns[i].nullable || rows.back()[i].nullable;
    }
  }
  for (std::size_t i = 0; i < result.columns.size(); ++i) {
    result.columns[i].name = options.names != nullptr && i < options.names->size() ? (*options.names)[i] : "";
  }
  if (options.named) CheckNames(result.columns, options.owner, options.owner_kind);
  constexpr std::size_t kMostOfUnion = 500;
  if (rows.size() > kMostOfUnion) {
    result.sql = ManyRows(translation, rows, result.columns);
    return result;
  }
  for (std::size_t r = 0; r < rows.size(); ++r) {
    result.sql += r == 0 ? "SELECT " : " UNION ALL SELECT ";
    for (std::size_t i = 0; i < rows[r].size(); ++i) {
      if (i > 0) result.sql += ", ";
      result.sql += Coerce(translation.parameters, rows[r][i], result.columns[i].type);
      if (r == 0 && !result.columns[i].name.empty()) result.sql += " AS " + QuoteName(result.columns[i].name);
    }
  }
  return result;
}

std::string TranslateWith(Translation& translation, const std::vector<CommonTable>& tables, const Scope* parent) {
  std::string sql;
  const NumbersAt numbers(translation, NumberPlace::kNowhere);
  for (const CommonTable& table : tables) {
    SelectOptions options;
    options.named = true;
    options.owner = table.name;
    if (!table.columns.empty()) options.names = &table.columns;
    const SetOperation* set = table.query->set();
    const bool may_recurse = set != nullptr && set->op == SetOperator::kUnionAll;
    if (may_recurse) {
      // The first part gives the columns that the second may read under the table's own name.
      const std::size_t parameters = translation.parameters.size();
      const TranslatedQuery anchor = translation.QueryText(*set->left, parent, options);
      translation.parameters.ShrinkTo(parameters);
      translation.common_tables.push_back({table.name, anchor.columns});
    }
    const TranslatedQuery body = translation.QueryText(*table.query, parent, options);
    if (may_recurse) translation.common_tables.pop_back();
    translation.common_tables.push_back({table.name, body.columns, body.rows});
    sql += (sql.empty() ? "WITH " : ", ") + QuoteName(table.name) + "(";
    for (std::size_t i = 0; i < body.columns.size(); ++i) sql += (i == 0 ? "" : ", ") + QuoteName(body.columns[i].name);
    for (std::size_t i = 0; i < body.rows.size(); ++i) sql += ", " + RowColumn(i);
    sql += ") AS (" + body.sql + ")";
  }
  return sql.empty() ? sql : sql + " ";
}

TranslatedQuery TranslateQuery(Translation& translation, const Query& query, const Scope* parent,
                               const SelectOptions& options) {
  const bool limited =
      query.offset != nullptr || (query.select() != nullptr && query.select()->top != nullptr) || query.for_clause;
  if (!options.may_order && !query.order_by.empty() && !limited) {
    throw SqlError(1033,
                   "The ORDER BY clause is invalid in views, inline functions, derived tables, subqueries, and common "
                   "table expressions, unless TOP, OFFSET or FOR XML is also specified.",
                   15);
  }
  const std::size_t outer_tables = translation.common_tables.size();
  const std::string with = TranslateWith(translation, query.with, parent);
  SelectOptions own;
  own.may_order = true;
  // The columns of a text are those of its rows, under names that may be none.
  const SelectOptions& wanted = query.for_clause ? own : options;
  TranslatedQuery result =
      std::visit(Overloaded{
                     [&](const Select& select) { return TranslateSelect(translation, query, select, parent, wanted); },
                     [&](const ValueRows& values) { return TranslateRows(translation, values, parent, wanted); },
                     [&](const SetOperation& set) { return TranslateSet(translation, query, set, parent, wanted); },
                 },
                 query.body);
  result.sql = with + result.sql;
  translation.common_tables.resize(outer_tables);
  if (query.for_clause) {
    const bool renamed = options.names != nullptr && options.names->size() == 1;
    result = TranslateForClause(translation, query, std::move(result), renamed ? options.names->front() : "");
  }
  return result;
}

}  // namespace tessarlorn::tsql
