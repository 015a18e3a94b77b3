// Which rows of which table a change is of.
#pragma once

#include <cstddef>
#include <string>

#include "tsql/syntax/statement.h"
#include "tsql/translate/common/translation.h"

namespace tessarlorn::tsql {

/// The target of an UPDATE, DELETE or MERGE.
struct Target {
  CatalogObjectPtr table;  // of a change through a query null until its row is chosen
  std::string alias;
  std::string row;             // the number of the table's row, in SQL
  bool through_query = false;  // it is a view, a derived table or a common one
  int base_row = -1;           // of that query: which of its base rows is changed
  bool joined = false;         // FROM names more than the table
  bool named = true;           // FROM, where there is one, names the target
};

/// WITH, FROM, WHERE and TOP of a change.
struct Clauses {
  std::string with;
  Target target;
  Scope scope;
  std::string from;
  std::string where;
  std::string limit;

  /// What stands behind the select list of a query over the rows.
  [[nodiscard]] std::string Tail() const;
  /// A column of the table's row as it is.
  [[nodiscard]] std::string Old(const Column& column) const;
};

/// WITH, the target and FROM. Raises 4403 for a query whose rows are not those of tables.
void TranslateHead(Translation& translation, const ChangedRows& rows, Clauses& clauses);
/// WHERE and TOP.
void TranslateRowsOf(Translation& translation, const ChangedRows& rows, Clauses& clauses);
/// The source that the target is.
const Source& SourceOf(const Clauses& clauses);
/// The change through a query is of that one of its base rows.
void ChooseRow(Clauses& clauses, std::size_t row);

/// Raises 271 for a computed column.
void RequireChangeable(const Column& column);
/// Raises for a view, into which nothing is inserted here, and 286 for the rows that a trigger sees.
void RequireTable(const CatalogObject& object);
/// The place of a column. Raises 207.
int RequireColumn(const CatalogObject& table, const std::string& name);
/// Raises 207.
[[noreturn]] void RaiseNoColumn(const std::string& name);
/// Raises 264.
[[noreturn]] void RaiseColumnTwice(const std::string& name);
/// Raises 4405.
[[noreturn]] void RaiseSeveralTables(const std::string& name);

}  // namespace tessarlorn::tsql
