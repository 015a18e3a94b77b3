#include "tsql/translate/queries/ranked_top.h"

#include "tsql/translate/common/argument.h"
#include "tsql/translate/common/conversion.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

std::string Name(const char* kind, std::size_t i) { return kind + std::to_string(i); }

/// The rows with their values as c0, c1, … and the keys that are no column as k0, k1, …
std::string Rows(const CutSelect& cut) {
  std::string sql = cut.select.distinct ? "SELECT DISTINCT " : "SELECT ";
  for (std::size_t i = 0; i < cut.values.size(); ++i) {
    sql += (i == 0 ? "" : ", ") + Collated(cut.values[i]) + " AS " + Name("c", i);
  }
  for (std::size_t i = 0; i < cut.keys.size(); ++i) {
    if (cut.keys[i].column == OrderKey::kNoColumn) sql += ", " + cut.keys[i].sql + " AS " + Name("k", i);
  }
  return sql + cut.rest;
}

std::string Ranks(const CutSelect& cut) {
  std::string sql;
  for (std::size_t i = 0; i < cut.keys.size(); ++i) {
    const OrderKey& key = cut.keys[i];
    sql += sql.empty() ? "ORDER BY " : ", ";
    sql += key.column == OrderKey::kNoColumn ? Name("k", i) : Name("c", key.column);
    sql += key.collation + (key.descending ? " DESC" : "");
  }
  return (cut.select.top_with_ties ? "rank() OVER (" : "row_number() OVER (") + sql + ")";
}

std::string Percent(Translation& translation, const Select& select, Scope& scope) {
  if (const auto* literal = As<Literal>(*select.top)) {
    translation.parameters.Pin(*literal);
    if (std::stod(literal->text) > 100) throw SqlError(1031, "Percent values must be between 0 and 100.", 15);
  }
  return FloatArgument(translation, *select.top, scope);
}

}  // namespace

std::string TranslateRankedTop(Translation& translation, const CutSelect& cut, Scope& scope) {
  const Select& select = cut.select;
  if (select.top_with_ties && cut.keys.empty()) {
    throw SqlError(1062, "The TOP N WITH TIES clause is not allowed without a corresponding ORDER BY clause.", 15);
  }
  std::string sql = "SELECT ";
  for (std::size_t i = 0; i < cut.columns.size(); ++i) {
    sql += (i == 0 ? "" : ", ") + Name("c", i) + " AS " + QuoteName(cut.columns[i].name);
  }
  sql += " FROM (SELECT *, " + Ranks(cut) + " AS r, COUNT(*) OVER () AS n FROM (" + Rows(cut) + ")) WHERE ";
  if (!select.top_percent) {
    if (const auto* literal = As<Literal>(*select.top)) translation.parameters.Pin(*literal);
    return sql + "r <= " + RowLimitArgument(translation, *select.top, scope, RowLimit::kTop) + " ORDER BY r";
  }
  // A part of a row counts as a row.
  return sql + "(r - 1) * 100.0 < n * " + Percent(translation, select, scope) + " ORDER BY r";
}

}  // namespace tessarlorn::tsql
