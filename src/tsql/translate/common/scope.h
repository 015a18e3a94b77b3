// What names mean in a query: the sources of its FROM with their columns, and those of the queries around it.
#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tsql/storage/catalog.h"
#include "tsql/syntax/ast.h"
#include "tsql/translate/common/typed.h"

namespace tessarlorn::tsql {

struct SourceColumn {
  std::string name;
  SqlType type;
  bool nullable = true;
  std::string sql = {};   // "" where SqlOf makes it of the name
  int row = -1;           // as of ResultColumn
  std::string base = {};  // likewise
};

struct Source {
  std::string alias;
  /// Of a table without an alias, which is called "s.t" then: the schema, "" for dbo.
  std::string schema = {};
  bool exposed = false;     // it is called as its table is
  std::string prefix = {};  // of the columns' names in SQL: "\"t\"."
  /// Empty for those of `table` as they stand: a query names few of a table's many.
  std::vector<SourceColumn> columns;
  CatalogObjectPtr table;     // a base table, else null
  bool optional = false;      // the table is the inner side of an outer join
  std::vector<BaseRow> rows;  // of a change through a query: what its columns come from

  [[nodiscard]] std::size_t size() const { return HasOwnColumns() ? columns.size() : table->columns.size(); }
  [[nodiscard]] SourceColumn At(std::size_t i) const;
  /// The first column from `begin` on of that name, or size().
  [[nodiscard]] std::size_t Find(const std::string& name, std::size_t begin = 0) const;
  /// Its columns, to be changed.
  [[nodiscard]] std::vector<SourceColumn>& OwnColumns();
  [[nodiscard]] bool HasOwnColumns() const { return table == nullptr || !columns.empty(); }
};

struct Scope {
  const Scope* parent = nullptr;
  std::vector<Source> sources;
  /// The first that a name can mean: a condition of a join does not see what stands before its comma.
  std::size_t visible_from = 0;
  /// Only grouped columns may stand outside aggregates.
  bool check_grouping = false;
  std::string clause = "select list";
  /// An aggregate here is error 147.
  bool no_aggregates = false;
  /// A function with OVER may stand here; elsewhere it is error 4108.
  bool windows = false;
  /// Where not null, columns of this scope are noted in it and read from the sorted rows of an assigning SELECT.
  std::vector<std::string>* captured = nullptr;
  std::set<std::string> group_columns;      // resolved SQL
  std::set<std::string> group_expressions;  // as MeaningOf has them
  /// Those of both that the grouping set has not: NULL outside aggregates.
  std::set<std::string> absent;
  bool optional_view = false;  // a view on the inner side of an outer join
};

/// What a column of the source is in SQL.
std::string SqlOf(const Source& source, const SourceColumn& column);
/// Raises 1011 for an alias that is there already.
void AddSource(Scope& scope, Source source);
/// A table's own columns under that alias, without a qualifier in their SQL.
Source BareSource(std::string alias, const CatalogObject& table);
/// What a name means. Raises 207, 209, 4104, and 8120 for a column that is not grouped.
Typed FindColumn(const ColumnReference& column, const Scope& scope, bool in_aggregate);
/// The columns of one level that a select item is made of, in its order, each with the index of its source: one for a
/// name, all for `*`, none for what is computed.
std::vector<std::pair<std::size_t, SourceColumn>> ColumnsOf(const Expression& item, const Scope& scope);
/// Adds the columns that `*` or `t.*` stands for. Raises 107, 263 and 8120.
void ExpandStar(const Star& star, const Scope& scope, std::vector<Typed>& values, std::vector<ResultColumn>& columns);

}  // namespace tessarlorn::tsql
