// Expressions and queries in SQLite's words, with their types.
#pragma once

#include <string>
#include <vector>

#include "tsql/storage/catalog.h"
#include "tsql/translate/common/compiled.h"
#include "tsql/values/types.h"

namespace tessarlorn::tsql {

/// An expression in SQLite's words, and its type.
struct Typed {
  std::string sql;
  SqlType type;
  bool nullable = true;
  /// Index of the parameter when the expression is nothing but that parameter, else -1.
  int parameter = -1;
  /// For the text of a whole number, CAST(number AS varchar): the number, else "".
  std::string number = {};
  /// It is texts joined within one pair of parentheses.
  bool joined = false;
};

/// A table whose rows stand behind those of a source, and their numbers in SQLite's words.
struct BaseRow {
  CatalogObjectPtr table;
  std::string number;
};

/// A query in SQLite's words, and its columns.
struct TranslatedQuery {
  std::string sql;
  std::vector<ResultColumn> columns;
  /// Of a query that a change goes through: the number of row i is the column RowColumn(i) behind the others.
  std::vector<BaseRow> rows = {};
};

/// The name of a column that holds the numbers of base rows.
std::string RowColumn(std::size_t row);

}  // namespace tessarlorn::tsql
