// The syntax tree of Transact-SQL, as the parser makes it and the translator reads it.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tsql/values/type_name.h"

namespace tessarlorn::tsql {

/// A name of up to three parts as written: [database.][schema.]object. Database and schema are kept for messages only.
struct ObjectName {
  std::string qualifier;  // "dbo", "tempdb.." …, "" when none
  std::string name;
  [[nodiscard]] bool temporary() const { return !name.empty() && name[0] == '#'; }
};

struct Expression;
struct Query;
using ExpressionPtr = std::unique_ptr<Expression>;
using QueryPtr = std::unique_ptr<Query>;

enum class LiteralKind : std::uint8_t { kNull, kInteger, kDecimal, kFloat, kBinary, kString, kNString };

enum class UnaryOp : std::uint8_t { kPlus, kMinus, kBitNot };
enum class CompareOp : std::uint8_t { kEqual, kNotEqual, kLess, kLessEqual, kGreater, kGreaterEqual };
enum class Quantifier : std::uint8_t { kAny, kAll };

struct OrderItem {
  ExpressionPtr expression;
  bool descending = false;
};

/// OVER (PARTITION BY … ORDER BY … [ROWS|RANGE …])
struct Window {
  std::vector<ExpressionPtr> partition;
  std::vector<OrderItem> order;
  std::string frame;  // "" or the frame clause, normalised: "ROWS BETWEEN UNBOUNDED PRECEDING AND CURRENT ROW"
};

struct CaseBranch {
  ExpressionPtr when;
  ExpressionPtr then;
};

/// One node of an expression or a condition; `kind` tells which members count.
struct Expression {
  enum class Kind : std::uint8_t {
    kLiteral,   // literal, text, literal_index
    kVariable,  // text: "@name" in lower case
    kGlobal,    // text: "@@rowcount" in lower case
    kColumn,    // parts: [[schema.]table.]column, one to three
    kStar,      // * or parts[0].* : only in a select list, and as the argument of COUNT
    kUnary,     // unary, operands[0]
    kBinary,    // binary, operands[0..1]
    kCase,      // operands[0] the compared value or null; branches; operands[1] ELSE or null
    kCast,      // operands[0], type; try_cast
    kConvert,   // operands[0] value, operands[1] style or null; type; try_cast
    kFunction,  // text: name in lower case; operands; distinct (aggregates); window; parts[0] datepart where it has
                // one; type of identity(type, seed, increment), whose operands are seed and increment
    kSubquery,  // query: a scalar subquery
    kCollate,   // operands[0], text: collation
    // Conditions
    kCompare,        // compare, operands[0..1]
    kAnd,            // operands[0..n)
    kOr,             // operands[0..n)
    kNot,            // operands[0]
    kIsNull,         // operands[0]; negated
    kBetween,        // operands[0..2]; negated
    kLike,           // operands[0] text, [1] pattern, [2] escape or absent; negated
    kInList,         // operands[0], operands[1..] the items; negated
    kInLiteralList,  // operands[0], list_index, list_of_strings: the items of a kList token; negated
    kInQuery,        // operands[0], query; negated
    kExists,         // query
    kQuantified,     // operands[0] compare quantifier (query)
  };
  Kind kind = Kind::kLiteral;
  LiteralKind literal = LiteralKind::kNull;
  UnaryOp unary = UnaryOp::kPlus;
  BinaryOp binary = BinaryOp::kAdd;
  CompareOp compare = CompareOp::kEqual;
  Quantifier quantifier = Quantifier::kAny;
  bool negated = false;
  bool distinct = false;
  bool try_cast = false;
  std::uint32_t line = 1;
  /// Of a literal: which of the statement's literals it is, counted from 0 over all literal tokens (not lists) of its
  /// top-level statement, in the order of the text; -1 for literals that the parser made itself (NULL).
  int literal_index = -1;
  /// Of a list: which of the statement's list tokens it is, counted from 0.
  int list_index = -1;
  bool list_of_strings = false;
  /// Of a literal: its value, quotes undone; digits as written. Otherwise see Kind.
  std::string text;
  std::vector<std::string> parts;
  std::vector<ExpressionPtr> operands;
  std::vector<CaseBranch> branches;
  TypeName type;
  QueryPtr query;
  std::unique_ptr<Window> window;
};

/// FROM: a table, a derived table, or a join of two sources.
struct TableSource;
using TableSourcePtr = std::unique_ptr<TableSource>;
enum class JoinKind : std::uint8_t { kInner, kLeft, kRight, kFull, kCross };
struct TableSource {
  enum class Kind : std::uint8_t { kTable, kDerived, kJoin };
  Kind kind = Kind::kTable;
  std::uint32_t line = 1;
  ObjectName table;                         // kTable; hints are parsed, checked against the known ones and dropped
  QueryPtr query;                           // kDerived
  std::string alias;                        // "" when none
  std::vector<std::string> column_aliases;  // of a derived table: t(a,b)
  JoinKind join = JoinKind::kInner;         // kJoin
  TableSourcePtr left;
  TableSourcePtr right;
  ExpressionPtr on;  // absent for kCross
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
  ExpressionPtr having;
};

enum class SetOperator : std::uint8_t { kNone, kUnion, kUnionAll, kExcept, kIntersect };

struct CommonTable {
  std::string name;
  std::vector<std::string> columns;
  QueryPtr query;
};

/// A query expression: a SELECT, a VALUES table (rows), or two queries with a set operator.
struct Query {
  std::vector<CommonTable> with;
  std::unique_ptr<Select> select;                // kNone
  std::vector<std::vector<ExpressionPtr>> rows;  // kNone without select: (VALUES (…),(…)) as derived table
  SetOperator set_operator = SetOperator::kNone;
  QueryPtr left;
  QueryPtr right;
  std::vector<OrderItem> order_by;
  ExpressionPtr offset;
  ExpressionPtr fetch;
};

struct Assignment {
  std::string variable;             // "@v" or ""
  std::vector<std::string> column;  // [alias.]column, empty when only a variable is assigned
  BinaryOp compound = BinaryOp::kAdd;
  bool is_compound = false;  // +=, -= …
  ExpressionPtr value;
};

struct ColumnDefinition {
  std::string name;
  TypeName type;
  std::optional<bool> nullable;  // not given: nullable
  std::string collation;         // "" when none is given
  bool identity = false;
  std::int64_t identity_seed = 1;
  std::int64_t identity_increment = 1;
  ExpressionPtr default_value;
  std::string default_text;  // the default as written, for the catalog
  bool primary_key = false;
  bool unique = false;
  ExpressionPtr computed;  // column AS expression
  ExpressionPtr check;
  std::string check_text;
};

/// A constraint of a table, or one of a column that is named or refers to another table. A named DEFAULT of a column in
/// its definition stands in both: the value at the column, the name here.
struct TableConstraint {
  enum class Kind : std::uint8_t { kPrimaryKey, kUnique, kCheck, kForeignKey, kDefault };
  Kind kind = Kind::kPrimaryKey;
  std::string name;
  std::vector<std::string> columns;
  ExpressionPtr check;  // of kDefault the value
  std::string check_text;
  ObjectName references;
  std::vector<std::string> referenced_columns;
};

struct Statement;
using StatementPtr = std::unique_ptr<Statement>;

struct VariableDeclaration {
  std::string name;  // "@v" in lower case
  TypeName type;
  ExpressionPtr initial;
};

struct Parameter {
  std::string name;  // "@p"
  TypeName type;
  ExpressionPtr default_value;
  bool output = false;
};

/// One statement; `kind` tells which members count.
struct Statement {
  enum class Kind : std::uint8_t {
    kSelect,     // query
    kInsert,     // table, columns, query (VALUES is a Query with rows) or execute, or default_values
    kUpdate,     // table (as written: name or alias), assignments, from, where, top
    kDelete,     // table, from, where, top
    kTruncate,   // table
    kDeclare,    // declarations
    kSet,        // assignments (one): variable
    kSetOption,  // text: "nocount" …, on/off in flag; "isolation" with text2 "read uncommitted"; "identity_insert"
                 // with table; "lock_timeout" and others with value or, when it is a word, text2
    kIf,         // condition, body[0], optional body[1]
    kWhile,      // condition, body[0]
    kBlock,      // body
    kBreak,
    kContinue,
    kReturn,            // value or none
    kPrint,             // value
    kRaiseError,        // values: message, severity, state, further arguments
    kThrow,             // values: none, or number, message, state
    kTryCatch,          // body (TRY), catch_body
    kBeginTransaction,  // text: name or ""
    kCommit,
    kRollback,         // text: name of a save point or transaction, or ""
    kSaveTransaction,  // text
    kExecute,          // table: procedure name, or text_expression for EXEC('…'); arguments; result_variable
    kWaitFor,          // value: delay as text 'hh:mm:ss'
    kCreateTable,      // table, column_definitions, constraints
    kAlterTable,       // table, alter (see below), column_definitions / constraints / columns (to drop), if_exists
    kDropTable,        // tables, if_exists; views and procedures too, by object_kind
    kCreateIndex,      // text: index name, table, order (columns), flag: unique, columns: included, where
    kDropIndex,        // text: index name, table, if_exists
    kCreateView,       // table, columns, query, source_text; flag: CREATE OR ALTER / ALTER
    kCreateProcedure,  // table, parameters, body, source_text; flag: CREATE OR ALTER / ALTER
    kUse,              // text: database
    kEmpty,            // ;
  };
  enum class ObjectKind : std::uint8_t { kTable, kView, kProcedure };
  enum class Alter : std::uint8_t { kAddColumns, kAddConstraint, kDropColumn, kDropConstraint, kAlterColumn };

  Kind kind = Kind::kEmpty;
  std::uint32_t line = 1;
  bool flag = false;
  bool if_exists = false;
  bool default_values = false;
  ObjectKind object_kind = ObjectKind::kTable;
  Alter alter = Alter::kAddColumns;
  std::string text;
  std::string text2;
  ObjectName table;
  std::vector<ObjectName> tables;
  std::vector<std::string> columns;
  std::vector<CommonTable> with;  // WITH before INSERT, UPDATE or DELETE
  QueryPtr query;
  std::vector<TableSourcePtr> from;
  ExpressionPtr where;
  ExpressionPtr top;
  std::vector<Assignment> assignments;
  std::vector<VariableDeclaration> declarations;
  ExpressionPtr condition;
  ExpressionPtr value;
  std::vector<ExpressionPtr> values;
  std::vector<StatementPtr> body;
  std::vector<StatementPtr> catch_body;
  std::vector<SelectItem> output;                                // of INSERT, UPDATE and DELETE: OUTPUT
  StatementPtr execute;                                          // of INSERT … EXEC
  std::vector<std::pair<std::string, ExpressionPtr>> arguments;  // EXEC: "@name" or "", value (null: DEFAULT)
  std::vector<bool> argument_outputs;                            // EXEC: OUTPUT behind it
  std::string result_variable;                                   // EXEC @r = …
  ExpressionPtr text_expression;                                 // EXEC ('…')
  std::vector<ColumnDefinition> column_definitions;
  std::vector<TableConstraint> constraints;
  std::vector<OrderItem> order;
  std::vector<Parameter> parameters;
  std::string source_text;
};

}  // namespace tessarlorn::tsql
