// The translator: Transact-SQL's syntax trees to SQL that SQLite runs with the same meaning.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tsql/functions/runtime.h"
#include "tsql/storage/catalog.h"
#include "tsql/syntax/ast.h"
#include "tsql/syntax/token.h"
#include "tsql/translate/compiled.h"

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
};

/// A query in SQLite's words, and its columns.
struct TranslatedQuery {
  std::string sql;
  std::vector<ResultColumn> columns;
};

/// Translates one statement. Every value is typed as SQL Server types it; conversions that SQL Server makes by itself
/// stand in the SQLite text as calls, or are made once when a parameter is bound. Names are resolved here, so that the
/// errors 207, 208, 209, 4104, 8120, 8155, 8156 and their like are raised before anything runs.
class Translator {
 public:
  /// @param lift_literals literals become parameters that are bound from the batch's tokens; otherwise their values
  /// stand in the compiled statement.
  Translator(const Catalog& catalog, Frame& frame, NameTable& names, bool lift_literals, Dependencies& dependencies,
             const MemoryBudget& memory)
      : catalog_(catalog),
        frame_(frame),
        names_(names),
        lift_(lift_literals),
        dependencies_(dependencies),
        memory_(memory) {}

  /// SELECT (without INTO), with its assignments.
  Compiled CompileQuery(const Query& query);
  /// IF's and WHILE's condition: one row with 1, 0 or NULL.
  Compiled CompileCondition(const Expression& condition);
  /// A value converted to `type`.
  Compiled CompileValue(const Expression& value, const SqlType& type);
  /// A value of its own type, in columns[0].
  Compiled CompileValue(const Expression& value);
  /// The new value of the variable of `SET @v += x`, of `type`.
  Compiled CompileCompound(const Assignment& assignment, const SqlType& type);
  /// @param given the rows of INSERT … EXEC, in the place of the statement's own query
  Compiled CompileInsert(const Statement& statement, bool identity_insert, const TranslatedQuery* given = nullptr);
  /// INSERT of the query into a table made for it by SELECT … INTO.
  Compiled CompileInsertInto(const CatalogObject& table, const Query& query);
  /// @param collect the rows are not changed but put into temp."$moved", whole and with the row's number in front
  Compiled CompileUpdate(const Statement& statement, bool collect = false);
  /// The table that UPDATE or DELETE changes.
  CatalogObjectPtr ChangedTable(const Statement& statement) { return ChangeTarget(statement).table; }
  Compiled CompileDelete(const Statement& statement);
  /// The columns that a query gives, as a new table or a view has them.
  /// @param may_order it is no view: ORDER BY needs no TOP
  std::vector<ResultColumn> DescribeQuery(const Query& query, bool may_order);
  /// A condition over the columns of a table that is being made, without parameters, for a CHECK constraint.
  std::string TranslateCheck(const CatalogObject& table, const Expression& condition);

 private:
  struct SourceColumn {
    std::string name;
    SqlType type;
    bool nullable = true;
    std::string sql;
  };
  struct Source {
    std::string alias;
    std::vector<SourceColumn> columns;
    CatalogObjectPtr table;  // a base table, else null
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
    /// Where not null, columns of this scope are noted in it and read from the sorted rows, see SortedAssignment.
    std::vector<std::string>* captured = nullptr;
    std::set<std::string> group_columns;      // resolved SQL
    std::set<std::string> group_expressions;  // dumps
    bool optional_view = false;               // a view on the inner side of an outer join
  };
  struct CommonTableColumns {
    std::string name;
    std::vector<ResultColumn> columns;
  };
  struct SelectOptions {
    bool collate_items = false;
    /// Output names given from outside: t(a, b), WITH c(a, b).
    const std::vector<std::string>* names = nullptr;
    bool may_order = false;  // it stands for itself: ORDER BY needs no TOP
    bool named = false;      // every column needs a name of its own (derived tables, views)
    std::string owner;       // for messages: the derived table's alias
  };

  /// Of a query that stands for itself.
  static SelectOptions Ordered() {
    SelectOptions options;
    options.may_order = true;
    return options;
  }

  // translate_expression.cpp
  Typed Value(const Expression& expression, Scope& scope);
  std::string Condition(const Expression& expression, Scope& scope);
  Typed Literal(const Expression& expression);
  Typed VariableValue(const std::string& name);
  Typed SystemValue(const std::string& name, const SqlType& type);
  Typed Constant(Datum value, const SqlType& type);
  Typed ColumnValue(const Expression& expression, Scope& scope);
  Typed Unary(const Expression& expression, Scope& scope);
  Typed Binary(const Expression& expression, Scope& scope);
  Typed BinaryOf(BinaryOp op, Typed a, Typed b);
  Typed Case(const Expression& expression, Scope& scope);
  Typed Cast(const Expression& expression, Scope& scope);
  Typed ScalarSubquery(const Expression& expression, Scope& scope);
  /// A subquery of one column, which is named c. Raises 116.
  TranslatedQuery SingleColumn(const Query& query, Scope& scope);
  std::string Compare(CompareOp op, const Typed& a, const Typed& b);
  std::string InList(const Expression& expression, Scope& scope);
  std::string InQuery(const Expression& expression, Scope& scope);
  std::string Quantified(const Expression& expression, Scope& scope);
  /// The expression converted; `fit` as for Convert.
  std::string Coerce(const Typed& value, const SqlType& to, Fit fit = Fit::kCast, int style = 0, bool attempt = false);
  /// Raises 257 for what only CAST and CONVERT convert.
  static void RequireImplicit(const SqlType& from, const SqlType& to);
  std::string Assign(const Typed& value, const Column& column, const std::string& table);
  /// The value, or error 515 for NULL.
  static std::string Required(const std::string& sql, const Column& column, const std::string& table);
  void Pin(const Expression& literal);
  /// Pins every literal of an expression whose text decided something.
  void PinAll(const Expression& expression);
  static std::string Collated(const Typed& value);

  // translate_function.cpp
  Typed Function(const Expression& expression, Scope& scope);
  Typed Aggregate(const Expression& expression, Scope& scope);
  Typed WindowFunction(const Expression& expression, Scope& scope);
  std::string Over(const Window& window, Scope& scope);
  Typed DateFunction(const Expression& expression, Scope& scope);
  Typed ConditionalFunction(const Expression& expression, Scope& scope);
  Typed NumberFunction(const Expression& expression, Scope& scope);
  Typed TextFunction(const Expression& expression, Scope& scope);
  Typed MetadataFunction(const Expression& expression, Scope& scope);
  Typed ServerFunction(const Expression& expression, Scope& scope);
  std::string TextArgument(const Expression& expression, Scope& scope);
  std::string AsText(const Typed& value);
  std::string IntArgument(const Expression& expression, Scope& scope);
  std::string FloatArgument(const Expression& expression, Scope& scope);
  std::string DateArgument(const Expression& expression, Scope& scope);
  std::string AsDate(const Typed& value);

  // translate_query.cpp
  TranslatedQuery QueryText(const Query& query, const Scope* parent, const SelectOptions& options);
  TranslatedQuery SelectText(const Query& query, const Select& select, const Scope* parent,
                             const SelectOptions& options);
  /// SELECT @v = … ORDER BY: the rows are sorted before any value is computed, so that a value may read what the row
  /// before it assigned.
  std::string SortedAssignment(const std::vector<std::string>& columns, const std::string& values,
                               const std::string& rest);
  TranslatedQuery RowsText(const Query& query, const Scope* parent, const SelectOptions& options);
  TranslatedQuery SetText(const Query& query, const Scope* parent, const SelectOptions& options);
  std::string With(const std::vector<CommonTable>& tables, const Scope* parent);
  std::string From(const std::vector<TableSourcePtr>& sources, Scope& scope);
  std::string SourceText(const TableSource& source, Scope& scope, bool optional);
  std::string AddTable(const TableSource& source, Scope& scope, bool optional);
  void AddSource(Scope& scope, Source source);
  std::string OrderBy(const std::vector<OrderItem>& items, Scope* scope, const Select* select,
                      const std::vector<ResultColumn>& columns, const std::vector<Typed>& values,
                      const Query* set = nullptr);
  std::string Limit(const Query& query, const Select* select, Scope& scope);
  void GroupBy(const Select& select, Scope& scope, std::string& sql);
  /// For `EXISTS (SELECT … FROM #keys WHERE key = outer.column …)`: the condition that the column is among the keys, ""
  /// for anything else. It follows from the EXISTS, and lets SQLite start from the keys instead of trying every row.
  std::string KeyListCondition(const Expression& condition, Scope& scope);
  void ExpandStar(const Expression& star, const Scope& scope, std::vector<Typed>& values,
                  std::vector<ResultColumn>& columns);
  /// The first number of IDENTITY(type, seed, increment) in a select list.
  std::int64_t IdentitySeed(const Expression& call);
  void CheckNames(const std::vector<ResultColumn>& columns, const std::string& owner);
  CatalogObjectPtr Lookup(const ObjectName& name);
  const CommonTableColumns* FindCommonTable(std::string_view name) const;

  // translate_change.cpp
  struct Target {
    CatalogObjectPtr table;
    std::string alias;
    bool joined = false;  // FROM names more than the target
  };
  Target ChangeTarget(const Statement& statement);
  /// The FROM clause, of the target alone where none is written.
  std::string ChangeSources(const Statement& statement, Scope& scope);
  std::vector<std::pair<std::string, std::string>> Defaults(const CatalogObject& table, const std::vector<int>& given);
  std::string InsertHead(const CatalogObject& table, const std::vector<int>& positions,
                         const std::vector<std::pair<std::string, std::string>>& defaults);
  /// Finishes a change: adds what its OUTPUT clause gives back. @param rows "inserted" or "deleted"
  Compiled FinishChange(const Statement& statement, const CatalogObject& table, const char* rows, std::string sql);
  Compiled Finish(std::string sql);

  const Catalog& catalog_;
  Frame& frame_;
  NameTable& names_;
  bool lift_;
  Dependencies& dependencies_;
  const MemoryBudget& memory_;
  std::vector<BoundParameter> parameters_;
  std::set<std::string> live_variables_;
  std::vector<CommonTableColumns> common_tables_;
  int view_depth_ = 0;
  int next_alias_ = 0;
  int aggregate_depth_ = 0;
};

bool HasColumn(const Expression& expression);
/// Whether the expression holds an aggregate of its own query level.
bool HasAggregate(const Expression& expression);
/// A text that is the same for expressions that mean the same, without regard to case.
std::string Dump(const Expression& expression);
/// The name of a table as it stands in SQL: temporary tables carry their schema.
std::string TableSql(const CatalogObject& table);

}  // namespace tessarlorn::tsql
