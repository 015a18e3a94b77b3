#include "tsql/translate/queries/pivot.h"

#include <algorithm>
#include <utility>

#include "platform/text/text.h"
#include "tsql/translate/common/conversion.h"
#include "tsql/translate/common/meaning.h"
#include "tsql/translate/common/operators.h"
#include "tsql/translate/queries/query.h"
#include "tsql/translate/queries/source.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

bool IsNamed(const std::vector<std::string>& names, const std::string& name) {
  return std::any_of(names.begin(), names.end(),
                     [&](const std::string& known) { return EqualsIgnoreCase(known, name); });
}

/// All columns of the sources but some.
std::vector<SourceColumn> Others(const Scope& scope, const std::vector<std::string>& but) {
  std::vector<SourceColumn> columns;
  for (const Source& source : scope.sources) {
    for (std::size_t i = 0; i < source.size(); ++i) {
      SourceColumn column = source.At(i);
      if (IsNamed(but, column.name)) continue;
      column.sql = SqlOf(source, column);
      columns.push_back(std::move(column));
    }
  }
  return columns;
}

Typed ColumnOf(const Scope& scope, const std::string& name) { return FindColumn({name}, scope, true); }

}  // namespace

TranslatedQuery TranslatePivot(Translation& translation, const PivotTable& pivot, const Scope* parent) {
  Scope scope;
  scope.parent = parent;
  const std::string from = " FROM " + TranslateSource(translation, *pivot.source, scope);
  const auto* call = As<FunctionCall>(*pivot.aggregate);
  const auto* argument =
      call == nullptr || call->arguments.size() != 1 ? nullptr : As<ColumnReference>(*call->arguments[0]);
  if (argument == nullptr || !HasAggregate(*pivot.aggregate))
    RaiseUnsupported("PIVOT of anything but an aggregate of a column");
  TranslatedQuery query;
  std::string list;
  std::string keys;
  for (const SourceColumn& column : Others(scope, {pivot.name, argument->name})) {
    const Typed value{column.sql, column.type, column.nullable, -1};
    keys += (keys.empty() ? " GROUP BY " : ", ") + Collated(value);
    list += (list.empty() ? "" : ", ") + column.sql + " AS " + QuoteName(column.name);
    query.columns.push_back({column.name, column.type, column.nullable});
  }
  const Typed name = ColumnOf(scope, pivot.name);
  for (const std::string& wanted : pivot.columns) {
    // The aggregate takes the rows of the value only.
    const Typed constant = translation.parameters.Constant(wanted, NVarCharType(4000));
    const std::string is_wanted = Compared(translation.parameters, CompareOp::kEqual, name, constant);
    Scope its_rows = scope;
    for (Source& source : its_rows.sources) {
      for (SourceColumn& column : source.OwnColumns()) {
        if (!EqualsIgnoreCase(column.name, argument->name)) continue;
        column.sql = "CASE WHEN " + is_wanted + " THEN " + SqlOf(source, column) + " END";
        column.nullable = true;
      }
    }
    const Typed value = translation.Value(*pivot.aggregate, its_rows);
    list += (list.empty() ? "" : ", ") + value.sql + " AS " + QuoteName(wanted);
    query.columns.push_back({wanted, value.type, true});
  }
  CheckNames(query.columns, pivot.alias);
  query.sql = "SELECT " + list + from + (keys.empty() ? " HAVING count(*) > 0" : keys);
  return query;
}

TranslatedQuery TranslateUnpivot(Translation& translation, const UnpivotTable& unpivot, const Scope* parent) {
  Scope scope;
  scope.parent = parent;
  const std::string from = " FROM " + TranslateSource(translation, *unpivot.source, scope);
  TranslatedQuery query;
  std::string others;
  for (const SourceColumn& column : Others(scope, unpivot.columns)) {
    others += column.sql + " AS " + QuoteName(column.name) + ", ";
    query.columns.push_back({column.name, column.type, column.nullable});
  }
  const SqlType type = ColumnOf(scope, unpivot.columns.at(0)).type;
  for (const std::string& column : unpivot.columns) {
    const Typed value = ColumnOf(scope, column);
    if (value.type != type) {
      throw SqlError(8167, "The type of column \"" + column +
                               "\" conflicts with the type of other columns specified in the UNPIVOT list.");
    }
    query.sql.append(query.sql.empty() ? "SELECT " : " UNION ALL SELECT ").append(others).append(value.sql);
    query.sql.append(" AS ").append(QuoteName(unpivot.value)).append(", ").append(QuoteText(column));
    query.sql.append(" AS ").append(QuoteName(unpivot.name)).append(from);
    query.sql.append(" WHERE ").append(value.sql).append(" IS NOT NULL");
  }
  query.columns.push_back({unpivot.value, type, false});
  query.columns.push_back({unpivot.name, NVarCharType(128), false});
  CheckNames(query.columns, unpivot.alias);
  return query;
}

}  // namespace tessarlorn::tsql
