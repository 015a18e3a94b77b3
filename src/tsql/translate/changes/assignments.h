// The SET clause of an UPDATE.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tsql/translate/changes/changed_rows.h"

namespace tessarlorn::tsql {

class Assignments {
 public:
  /// @param clauses their target's row is chosen by the columns that are set, when the change goes through a query
  Assignments(Translation& translation, Clauses& clauses)
      : translation_(translation), parameters_(translation.parameters), clauses_(clauses) {}

  /// Raises 207, 264, 4405, 4406, 8102.
  void Translate(const std::vector<Assignment>& assignments);
  /// Columns of the table and their new values, in SQL. The first one assigns the variables, too.
  [[nodiscard]] const std::vector<std::pair<std::string, std::string>>& sets() const { return sets_; }
  /// ", name, value" of each variable, as ts_setvar takes them.
  [[nodiscard]] const std::string& variables() const { return variables_; }

 private:
  void Add(const Assignment& assignment);
  void AddColumn(const Assignment& assignment, const Column& column, const Expression& value);
  void AddVariable(const Assignment& assignment, Typed value);
  const Column& ColumnOf(const Assignment& assignment);

  Translation& translation_;
  Parameters& parameters_;
  Clauses& clauses_;
  int row_ = -1;  // of the query that the change goes through
  std::vector<std::pair<std::string, std::string>> sets_;
  std::string variables_;
};

/// The default of a column, as a new row gets it. "NULL" where it has none.
std::string DefaultSql(Translation& translation, const CatalogObject& table, const Column& column);

}  // namespace tessarlorn::tsql
