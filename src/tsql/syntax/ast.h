// The syntax tree of Transact-SQL, as the parser makes it and the translator reads it: expressions and queries here,
// statements in statement.h.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "tsql/syntax/object_name.h"
#include "tsql/values/type_name.h"

namespace tessarlorn::tsql {

/// A set of functions as one, for std::visit.
template <typename... Cases>
struct Overloaded : Cases... {
  using Cases::operator()...;
};
// Clang 14 does not find it by itself.
template <typename... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

struct Expression;
struct Query;
using ExpressionPtr = std::unique_ptr<Expression>;
using QueryPtr = std::unique_ptr<Query>;

enum class LiteralKind : std::uint8_t { kNull, kInteger, kDecimal, kFloat, kMoney, kBinary, kString, kNString };
enum class UnaryOp : std::uint8_t { kPlus, kMinus, kBitNot };
enum class CompareOp : std::uint8_t { kEqual, kNotEqual, kLess, kLessEqual, kGreater, kGreaterEqual };
enum class Quantifier : std::uint8_t { kAny, kAll };

struct OrderItem {
  ExpressionPtr expression;
  bool descending = false;
};

// Values.

struct Literal {
  LiteralKind kind = LiteralKind::kNull;
  /// Its value, quotes undone; digits as written.
  std::string text;
  /// Which of the statement's literals it is, counted from 0 over all literal tokens (not lists) of its top-level
  /// statement, in the order of the text; -1 for literals that the parser made itself (NULL).
  int index = -1;
};

struct VariableReference {
  std::string name;  // "@name" in lower case
};

struct GlobalReference {
  std::string name;  // "@@rowcount" in lower case
};

/// [[schema.]qualifier.]name
struct ColumnReference {
  std::string name;
  std::string qualifier = {};  // the table or alias, "" when none
  std::string schema = {};     // "" when none
};

/// `*`, `table.*` or `schema.table.*`: only in a select list, and as the argument of COUNT.
struct Star {
  std::string table;   // "" for all
  std::string schema;  // "" when none
};

/// DEFAULT among the values of an INSERT.
struct DefaultValue {};

struct UnaryOperation {
  UnaryOp op = UnaryOp::kPlus;
  ExpressionPtr operand;
};

struct BinaryOperation {
  BinaryOp op = BinaryOp::kAdd;
  ExpressionPtr left;
  ExpressionPtr right;
};

struct CaseBranch {
  ExpressionPtr when;  // a value to compare with, or a condition
  ExpressionPtr then;
};

struct CaseExpression {
  ExpressionPtr compared;  // null: each branch has a condition
  std::vector<CaseBranch> branches;
  ExpressionPtr otherwise;  // null: NULL
};

/// CAST or TRY_CAST.
struct CastExpression {
  ExpressionPtr value;
  TypeName type;
  bool attempt = false;  // TRY_: NULL for what cannot be converted
};

/// CONVERT or TRY_CONVERT.
struct ConvertExpression {
  ExpressionPtr value;
  TypeName type;
  ExpressionPtr style;  // null when none
  bool attempt = false;
};

/// OVER (PARTITION BY … ORDER BY … [ROWS|RANGE …])
struct Window {
  std::vector<ExpressionPtr> partition;
  std::vector<OrderItem> order;
  std::string frame;  // "" or the frame clause, normalised: "ROWS BETWEEN UNBOUNDED PRECEDING AND CURRENT ROW"
};

struct FunctionCall {
  std::string name;                      // in lower case; as written when it is one of the database
  std::string qualifier;                 // what stands before the name of one of the database, else ""
  std::vector<ExpressionPtr> arguments;  // the first one of IIF is a condition
  bool distinct = false;                 // of an aggregate
  std::string date_part;                 // of DATEADD and its like, in lower case
  std::vector<OrderItem> within;         // WITHIN GROUP (ORDER BY …)
  std::unique_ptr<Window> window;        // null when none
};

/// IDENTITY(type [, seed, increment]), which numbers the rows of SELECT … INTO.
struct IdentityCall {
  TypeName type;
  std::vector<ExpressionPtr> arguments;
};

/// NEXT VALUE FOR sequence
struct NextValue {
  ObjectName sequence;
};

struct ScalarSubquery {
  QueryPtr query;
};

struct CollateExpression {
  ExpressionPtr value;
  std::string collation;
};

// Conditions.

struct Comparison {
  CompareOp op = CompareOp::kEqual;
  ExpressionPtr left;
  ExpressionPtr right;
};

/// value = ANY (query), value < ALL (query).
struct QuantifiedComparison {
  CompareOp op = CompareOp::kEqual;
  ExpressionPtr value;
  Quantifier quantifier = Quantifier::kAny;
  QueryPtr query;
};

/// a AND b AND c.
struct Conjunction {
  std::vector<ExpressionPtr> operands;
};

/// a OR b OR c.
struct Disjunction {
  std::vector<ExpressionPtr> operands;
};

struct Negation {
  ExpressionPtr operand;
};

/// IS [NOT] NULL
struct NullTest {
  ExpressionPtr value;
  bool negated = false;
};

struct BetweenCondition {
  ExpressionPtr value;
  ExpressionPtr low;
  ExpressionPtr high;
  bool negated = false;
};

struct LikeCondition {
  ExpressionPtr text;
  ExpressionPtr pattern;
  ExpressionPtr escape;  // null when none
  bool negated = false;
};

/// IN (a, b, …)
struct InList {
  ExpressionPtr value;
  std::vector<ExpressionPtr> items;
  bool negated = false;
};

/// IN with the items of a kList token.
struct InLiteralList {
  ExpressionPtr value;
  int index = 0;  // which of the statement's list tokens it is, counted from 0
  bool of_strings = false;
  bool negated = false;
};

struct InQuery {
  ExpressionPtr value;
  QueryPtr query;
  bool negated = false;
};

struct ExistsCondition {
  QueryPtr query;
};

/// UPDATE(column), in a trigger
struct UpdatedColumn {
  std::string column;
};

using ExpressionNode =
    std::variant<Literal, VariableReference, GlobalReference, ColumnReference, Star, DefaultValue, UnaryOperation,
                 BinaryOperation, CaseExpression, CastExpression, ConvertExpression, FunctionCall, IdentityCall,
                 NextValue, ScalarSubquery, CollateExpression, Comparison, QuantifiedComparison, Conjunction,
                 Disjunction, Negation, NullTest, BetweenCondition, LikeCondition, InList, InLiteralList, InQuery,
                 ExistsCondition, UpdatedColumn>;

/// A value or a condition.
struct Expression {
  std::uint32_t line = 1;
  ExpressionNode node;
};

/// The expression as a node of that type, or nullptr when it is another one.
template <typename Node>
const Node* As(const Expression& expression) {
  return std::get_if<Node>(&expression.node);
}

// Queries.

struct TableSource;
using TableSourcePtr = std::unique_ptr<TableSource>;
enum class JoinKind : std::uint8_t { kInner, kLeft, kRight, kFull, kCross, kCrossApply, kOuterApply };

/// A table or view. Hints are parsed and checked against the known ones; INDEX alone is heeded.
struct NamedTable {
  ObjectName name;
  std::string alias;  // "" when none
  std::string index;  // the one to read by; "" when none, or several, are named
  /// The name that columns are qualified with.
  [[nodiscard]] const std::string& shown_name() const { return alias.empty() ? name.name : alias; }
};

/// (query) AS t(a, b)
struct DerivedTable {
  QueryPtr query;
  std::string alias;
  std::vector<std::string> column_aliases;
};

/// A column of OPENJSON … WITH: name type ['path'] [AS JSON]
struct JsonColumnDefinition {
  std::string name;
  TypeName type;
  ExpressionPtr path;  // a literal; null when none
  bool as_json = false;
};

/// STRING_SPLIT(text, separator) AS t(a), OPENJSON(text, path) WITH (…) AS t, dbo.f(1, DEFAULT) AS t
struct TableFunction {
  std::string name;        // in lower case
  ObjectName of_database;  // the whole name of one of the database; name "" for one of the server
  std::vector<ExpressionPtr> arguments;
  std::vector<JsonColumnDefinition> json_columns;
  std::string alias;  // its name when none is given
  std::vector<std::string> column_aliases;
};

/// source PIVOT (SUM(value) FOR name IN ([a], [b])) AS t
struct PivotTable {
  TableSourcePtr source;
  ExpressionPtr aggregate;  // of one column
  std::string name;
  std::vector<std::string> columns;
  std::string alias;
};

/// source UNPIVOT (value FOR name IN (a, b)) AS t
struct UnpivotTable {
  TableSourcePtr source;
  std::string value;
  std::string name;
  std::vector<std::string> columns;
  std::string alias;
};

struct Join {
  JoinKind kind = JoinKind::kInner;
  TableSourcePtr left;
  TableSourcePtr right;
  ExpressionPtr on;  // null for kCross and the two of APPLY
};

/// One source of FROM.
struct TableSource {
  std::uint32_t line = 1;
  std::variant<NamedTable, DerivedTable, TableFunction, PivotTable, UnpivotTable, Join> node;
};

struct SelectItem {
  ExpressionPtr expression;
  std::string alias;     // "" when none
  std::string variable;  // "@v" for @v = expression
};

struct Select {
  std::uint32_t line = 1;
  bool distinct = false;
  ExpressionPtr top;  // TOP n / TOP (expression)
  bool top_percent = false;
  bool top_with_ties = false;
  std::vector<SelectItem> items;
  ObjectName into;                   // name "" when none
  std::vector<TableSourcePtr> from;  // comma-separated sources
  ExpressionPtr where;
  std::vector<ExpressionPtr> group_by;
  /// ROLLUP, CUBE and GROUPING SETS: which of group_by each set has. None for a plain GROUP BY.
  std::vector<std::vector<std::size_t>> grouping_sets;
  ExpressionPtr having;
};

/// VALUES (…),(…)
struct ValueRows {
  std::vector<std::vector<ExpressionPtr>> rows;
};

enum class SetOperator : std::uint8_t { kUnion, kUnionAll, kExcept, kIntersect };

struct SetOperation {
  SetOperator op = SetOperator::kUnion;
  QueryPtr left;
  QueryPtr right;
};

struct CommonTable {
  std::string name;
  std::vector<std::string> columns;
  QueryPtr query;
};

/// FOR XML PATH, FOR XML RAW, FOR JSON PATH or FOR JSON AUTO: all rows become one text.
struct ForClause {
  enum class Form : std::uint8_t { kXmlPath, kXmlRaw, kJson };
  Form form = Form::kXmlPath;
  std::string row = "row";      // the element of a row, "" for none
  std::string root;             // "" for none
  bool automatic = false;       // AUTO
  bool typed = false;           // TYPE
  bool as_value = false;        // .value('.', …): the text between the tags
  bool includes_nulls = false;  // INCLUDE_NULL_VALUES
  bool array = true;            // no WITHOUT_ARRAY_WRAPPER
};

/// A query expression.
struct Query {
  std::vector<CommonTable> with;
  std::variant<Select, ValueRows, SetOperation> body;
  std::vector<OrderItem> order_by;
  ExpressionPtr offset;
  ExpressionPtr fetch;
  std::optional<ForClause> for_clause;

  /// The body when it is one SELECT, else nullptr.
  [[nodiscard]] const Select* select() const { return std::get_if<Select>(&body); }
  [[nodiscard]] const ValueRows* rows() const { return std::get_if<ValueRows>(&body); }
  [[nodiscard]] const SetOperation* set() const { return std::get_if<SetOperation>(&body); }
  /// SELECT … INTO.
  [[nodiscard]] bool makes_table() const { return select() != nullptr && !select()->into.name.empty(); }
};

}  // namespace tessarlorn::tsql
