// A statement as the translator leaves it: the SQL for SQLite, where its parameters come from, and what it answers.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tsql/storage/catalog.h"
#include "tsql/storage/sqlite_handle.h"
#include "tsql/values/datum.h"
#include "tsql/values/types.h"

namespace tessarlorn::tsql {

/// One parameter `?n` of a compiled statement.
struct BoundParameter {
  enum class Source : std::uint8_t {
    kLiteral,   // the statement's literal number `index`
    kList,      // the statement's list number `index`, every item converted to `to`
    kVariable,  // `name`
    kSystem,    // `name`: "getdate", "@@rowcount", "error_message" …
    kConstant,  // `constant`
  };
  Source source = Source::kConstant;
  int index = 0;
  int style = 0;
  Fit fit = Fit::kCast;
  SqlType from;
  SqlType to;
  std::string name;
  Datum constant;
  /// For Fit::kAssign: the column that gets the value.
  std::string table;
  std::string column;
};

struct ResultColumn {
  std::string name;
  SqlType type;
  bool nullable = true;
  bool identity = false;
  /// Of an identity, as of Constraint.
  std::int64_t seed = 1;
  std::int64_t increment = 0;
  /// Of a query that a change goes through: which of its rows the value is of, -1 for a computed one, and the column.
  int row = -1;
  std::string base = {};
};

struct Compiled;

/// A part of a change in stages: it notes rows in a temporary table, and changes them when all parts have done so.
struct ChangeStage {
  std::string table;    // the temporary one, in SQLite's words without quotes
  std::string columns;  // as CREATE TABLE takes them: r is the number of a row
  std::unique_ptr<Compiled> collect;
  std::string apply;                         // without parameters
  std::string_view verb;                     // as of Compiled
  bool gives_numbers = false;                // it inserts row by row, and notes the numbers that they get
  std::string identity_table;                // as of Compiled
  std::vector<std::string> changed_columns;  // of an update: those that get v0, v1 …
};

struct Compiled {
  std::string sql;
  std::vector<BoundParameter> parameters;
  /// Columns of the rows that it gives back; none for a change.
  std::vector<ResultColumn> columns;
  /// SELECT @v = …: the variable of each column.
  std::vector<std::string> assigned;
  /// The value is that of the only parameter; SQLite is not asked.
  bool parameter_only = false;
  /// What a value is converted to.
  std::optional<SqlType> target;
  /// For the wording of errors: "INSERT", "UPDATE", "DELETE".
  std::string_view verb = "INSERT";
  /// The table that gives identity values, "" for none.
  std::string identity_table;
  /// The table whose rows it changes, "" for none.
  std::string changed_table;

  /// A change in stages: `sql` gives back what its OUTPUT asks for, behind them.
  std::vector<ChangeStage> stages;
  /// A row that stages take twice is error 8672.
  bool rows_once = false;

  SqliteStatement statement;  // prepared on first use
};

/// What a compiled statement was made from; it can serve again while all of that is the same.
struct Dependencies {
  struct Object {
    std::string name;
    CatalogObjectPtr object;  // null when there was none
  };
  struct Variable {
    std::string name;
    SqlType type;
  };
  /// A literal whose value went into the translation (TOP's number, a position in ORDER BY, a style).
  struct Pinned {
    int literal = 0;
    std::string text;
  };
  std::vector<Object> objects;
  std::vector<Variable> variables;
  std::vector<Pinned> pinned;
};

}  // namespace tessarlorn::tsql
