// The translator: Transact-SQL's syntax trees to SQL that SQLite runs with the same meaning.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tsql/syntax/statement.h"
#include "tsql/translate/common/translation.h"

namespace tessarlorn::tsql {

/// Translates one statement. Every value is typed as SQL Server types it; conversions that SQL Server makes by itself
/// stand in the SQLite text as calls, or are made once when a parameter is bound. Names are resolved here, so that the
/// errors 207, 208, 209, 4104, 8120, 8155, 8156 and their like are raised before anything runs.
class Translator final : private Translation {
 public:
  explicit Translator(const Surroundings& around) : Translation(around) {}

  /// SELECT (without INTO), with its assignments.
  Compiled CompileQuery(const Query& query);
  /// IF's and WHILE's condition: one row with 1, 0 or NULL.
  Compiled CompileCondition(const Expression& condition);
  /// A value converted to `type`.
  Compiled CompileValue(const Expression& value, const SqlType& type);
  /// The new value of the variable of `SET @v += x`, of `type`.
  Compiled CompileCompound(const Assignment& assignment, const SqlType& type);
  /// @param given the rows of INSERT … EXEC, in the place of the statement's own query
  Compiled CompileInsert(const InsertStatement& insert, bool identity_insert, const TranslatedQuery* given = nullptr);
  /// INSERT of the query into a table made for it by SELECT … INTO.
  Compiled CompileInsertInto(const CatalogObject& table, const Query& query);
  /// @param collect the rows are not changed but put into temp."$moved", whole and with the row's number in front
  Compiled CompileUpdate(const UpdateStatement& update, std::uint32_t line, bool collect = false);
  Compiled CompileDelete(const DeleteStatement& statement);
  Compiled CompileMerge(const MergeStatement& merge, bool identity_insert);
  /// The columns that a query gives, as a new table or a view has them.
  /// @param definition the name of the view or function; "" for SELECT … INTO, where ORDER BY needs no TOP
  /// @param given the columns' names, where a view has a list of its own
  std::vector<ResultColumn> DescribeQuery(const Query& query, const std::string& definition,
                                          const std::vector<std::string>& given = {});
  /// A condition over the columns of a table that is being made, without parameters, for a CHECK constraint.
  std::string TranslateCheck(const CatalogObject& table, const Expression& condition);
  /// A value of the same kind, for a computed column.
  Typed TranslateComputed(const CatalogObject& table, const Expression& value);
  /// What stands in a column, as the column would take it once it is changed.
  std::string TranslateAssigned(const CatalogObject& table, const Column& from, const Column& to);

 private:
  Typed Value(const Expression& expression, Scope& scope) override;
  std::string Condition(const Expression& expression, Scope& scope) override;
  TranslatedQuery QueryText(const Query& query, const Scope* parent, const SelectOptions& options) override;

  /// SELECT of one value.
  Compiled FinishValue(const std::string& sql, const SqlType& type);
};

}  // namespace tessarlorn::tsql
