// The statements of Transact-SQL, as the parser makes them.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "tsql/syntax/ast.h"

namespace tessarlorn::tsql {

struct Statement;
using StatementPtr = std::unique_ptr<Statement>;

// Rows.

struct SelectStatement {
  QueryPtr query;
};

/// DEFAULT VALUES
struct DefaultValues {};

/// OUTPUT items [INTO table [(columns)]]
struct Output {
  std::vector<SelectItem> items;
  ObjectName into;  // name "" when the rows go to the client
  std::vector<std::string> columns;
};

struct InsertStatement {
  std::vector<CommonTable> with;
  ObjectName table;
  std::vector<std::string> columns;
  Output output;
  /// A query or VALUES; DEFAULT VALUES; an EXEC.
  std::variant<QueryPtr, DefaultValues, StatementPtr> source;
  /// The EXEC of INSERT … EXEC, else nullptr.
  [[nodiscard]] const Statement* execute() const {
    const auto* execute = std::get_if<StatementPtr>(&source);
    return execute == nullptr ? nullptr : execute->get();
  }
};

/// @v = value, [alias.]column = value, @v = column = value; with = or += and its like.
struct Assignment {
  std::string variable;             // "@v" or ""
  std::vector<std::string> column;  // [alias.]column, empty when only a variable is assigned
  std::optional<BinaryOp> compound;
  ExpressionPtr value;
};

/// What UPDATE and DELETE have in common: which rows of which table.
struct ChangedRows {
  std::vector<CommonTable> with;
  ObjectName table;  // as written: a name or an alias
  ExpressionPtr top;
  Output output;
  std::vector<TableSourcePtr> from;
  ExpressionPtr where;
};

struct UpdateStatement {
  ChangedRows rows;
  std::vector<Assignment> assignments;
};

struct DeleteStatement {
  ChangedRows rows;
};

struct MergeStatement {
  enum class Match : std::uint8_t { kMatched, kNotMatched, kNotMatchedBySource };
  struct Update {
    std::vector<Assignment> assignments;
  };
  struct Delete {};
  struct Insert {
    std::vector<std::string> columns;
    std::vector<ExpressionPtr> values;  // none for DEFAULT VALUES
  };
  /// WHEN … THEN …
  struct Branch {
    Match match = Match::kMatched;
    ExpressionPtr condition;  // null when none
    std::variant<Update, Delete, Insert> action;
  };

  std::vector<CommonTable> with;
  NamedTable target;
  TableSourcePtr source;
  ExpressionPtr on;
  std::vector<Branch> branches;
  Output output;
};

struct TruncateStatement {
  ObjectName table;
};

// Tables.

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
  bool with_values = false;  // rows that stand already get the default
  bool primary_key = false;
  bool unique = false;
  ExpressionPtr computed;  // column AS expression
  std::string computed_text;
  bool persisted = false;
  ExpressionPtr check;
  std::string check_text;
};

struct PrimaryKeyRule {
  std::vector<std::string> columns;
};

struct UniqueRule {
  std::vector<std::string> columns;
};

struct CheckRule {
  ExpressionPtr condition;
  std::string text;
  std::string column = {};  // that it stands at, "" for the table's
};

struct ForeignKeyRule {
  std::vector<std::string> columns;
  ObjectName references;
  std::vector<std::string> referenced_columns;
};

struct DefaultRule {
  std::string column;
  ExpressionPtr value;  // null when it stands at the column
  std::string text;
};

/// A constraint of a table, or one of a column that is named or refers to another table. A named DEFAULT of a column in
/// its definition stands in both: the value at the column, the name here.
struct TableConstraint {
  std::string name;  // "" when none is given
  std::variant<PrimaryKeyRule, UniqueRule, CheckRule, ForeignKeyRule, DefaultRule> rule;
};

/// What stands between the parentheses of CREATE TABLE, and behind ALTER TABLE … ADD.
struct TableElements {
  std::vector<ColumnDefinition> columns;
  std::vector<TableConstraint> constraints;
};

struct CreateTableStatement {
  ObjectName table;
  TableElements elements;
};

// Variables and options.

struct VariableDeclaration {
  std::string name;  // "@v" in lower case
  TypeName type;
  ExpressionPtr initial;
};

struct DeclareStatement {
  std::vector<VariableDeclaration> variables;
  std::vector<CreateTableStatement> tables;  // DECLARE @t TABLE (…)
};

/// SET @v = value
struct SetStatement {
  Assignment assignment;
};

/// SET option ON|OFF
struct SetSwitchStatement {
  std::string option;  // "nocount", "statistics io" …
  bool on = false;
};

/// SET option value
struct SetValueStatement {
  std::string option;   // "lock_timeout", "language" …
  std::string word;     // the value when it is a word, else ""
  ExpressionPtr value;  // the value when it is none
};

struct SetIdentityInsertStatement {
  ObjectName table;
  bool on = false;
};

/// SET TRANSACTION ISOLATION LEVEL
struct SetIsolationStatement {
  std::string level;  // "read committed" …
};

// Cursors. Their names are in lower case; that of a cursor variable begins with @.

/// DECLARE c CURSOR FOR query, SET @c = CURSOR FOR query
struct DeclareCursorStatement {
  std::string name;
  bool local = false;
  bool scrolls = false;
  std::string query;  // as written
};

/// OPEN, CLOSE and DEALLOCATE
struct CursorStatement {
  enum class Action : std::uint8_t { kOpen, kClose, kDeallocate };
  Action action = Action::kOpen;
  std::string name;
};

struct FetchStatement {
  enum class From : std::uint8_t { kNext, kPrior, kFirst, kLast, kAbsolute, kRelative };
  From from = From::kNext;
  ExpressionPtr number;  // of kAbsolute and kRelative
  std::string cursor;
  std::vector<std::string> into;  // variables; none: the row is an answer
};

// Control flow.

struct IfStatement {
  ExpressionPtr condition;
  StatementPtr then;
  StatementPtr otherwise;  // null when none
};

struct WhileStatement {
  ExpressionPtr condition;
  StatementPtr body;
};

struct BlockStatement {
  std::vector<StatementPtr> body;
};

struct BreakStatement {};
struct ContinueStatement {};

struct ReturnStatement {
  ExpressionPtr value;  // null when none
};

struct TryCatchStatement {
  std::vector<StatementPtr> body;
  std::vector<StatementPtr> handler;
};

/// WAITFOR DELAY
struct WaitForStatement {
  ExpressionPtr delay;  // text 'hh:mm:ss'
};

struct UseStatement {
  std::string database;
};

/// A semicolon alone.
struct EmptyStatement {};

// Messages and errors.

struct PrintStatement {
  ExpressionPtr message;
};

struct RaiseErrorStatement {
  ExpressionPtr message;
  ExpressionPtr severity;
  ExpressionPtr state;
  std::vector<ExpressionPtr> arguments;
};

struct ThrowStatement {
  ExpressionPtr number;  // null, as the others then, to raise the caught error again
  ExpressionPtr message;
  ExpressionPtr state;
};

// Transactions.

struct BeginTransactionStatement {
  std::string name;  // or ""
};
struct CommitStatement {};

struct RollbackStatement {
  std::string name;  // of a save point or a transaction, or ""
};

struct SaveTransactionStatement {
  std::string name;
};

// Procedures.

struct CallArgument {
  std::string name;     // "@name" or ""
  ExpressionPtr value;  // null for DEFAULT
  bool output = false;
};

/// EXEC procedure
struct CallStatement {
  ObjectName procedure;
  std::vector<CallArgument> arguments;
  std::string result_variable;  // EXEC @r = …, else ""
};

/// EXEC ('…')
struct ExecuteTextStatement {
  ExpressionPtr text;
};

// Definitions.

struct AlterTableStatement {
  struct Add {
    TableElements elements;
  };
  struct Dropped {
    std::string name;
    bool column = false;  // else a constraint
    bool if_exists = false;
  };
  struct Drop {
    std::vector<Dropped> items;
  };
  struct AlterColumn {
    ColumnDefinition column;
  };

  ObjectName table;
  std::variant<Add, Drop, AlterColumn> action;
};

enum class ObjectKind : std::uint8_t { kTable, kView, kProcedure, kFunction, kSequence, kTrigger };

struct DropStatement {
  ObjectKind kind = ObjectKind::kTable;
  std::vector<ObjectName> names;
  bool if_exists = false;
};

struct KeyColumn {
  std::string name;
  bool descending = false;
};

struct CreateIndexStatement {
  std::string name;
  ObjectName table;
  bool unique = false;
  std::vector<KeyColumn> key;
  std::vector<std::string> included;
  ExpressionPtr where;
  std::string where_text;
};

struct DropIndexStatement {
  std::string name;
  ObjectName table;
  bool if_exists = false;
};

struct CreateViewStatement {
  ObjectName view;
  std::vector<std::string> columns;
  QueryPtr query;
  std::string source_text;
  bool replace = false;     // CREATE OR ALTER, ALTER
  bool must_exist = false;  // ALTER
};

struct Parameter {
  std::string name;  // "@p"
  TypeName type;
  ExpressionPtr default_value;
  bool output = false;
};

struct CreateProcedureStatement {
  ObjectName procedure;
  std::vector<Parameter> parameters;
  std::vector<StatementPtr> body;
  std::string source_text;
  bool replace = false;
  bool must_exist = false;  // ALTER
};

/// What a trigger answers to.
enum class RowEvent : std::uint8_t { kInsert, kUpdate, kDelete };

/// CREATE TRIGGER … AFTER
struct CreateTriggerStatement {
  ObjectName trigger;
  ObjectName table;
  std::vector<RowEvent> events;
  std::vector<StatementPtr> body;
  std::string source_text;
  bool replace = false;
  bool must_exist = false;  // ALTER
};

/// ENABLE TRIGGER and DISABLE TRIGGER
struct SwitchTriggersStatement {
  std::vector<ObjectName> triggers;  // none: all of the table
  ObjectName table;
  bool on = false;
};

/// RETURNS TABLE has a query, any other type and RETURNS @t TABLE (…) a body.
struct CreateFunctionStatement {
  ObjectName function;
  std::vector<Parameter> parameters;
  TypeName returns;
  QueryPtr query;              // null for one with a body
  std::string returned_table;  // @t, which the body fills; "" for the others
  std::vector<StatementPtr> body;
  bool null_for_null = false;  // RETURNS NULL ON NULL INPUT
  std::string source_text;
  bool replace = false;
  bool must_exist = false;  // ALTER
};

struct CreateSchemaStatement {
  std::string name;
};

struct DropSchemaStatement {
  std::string name;
  bool if_exists = false;
};

/// ALTER SCHEMA schema TRANSFER object
struct TransferStatement {
  std::string schema;
  ObjectName object;
};

/// What CREATE and ALTER SEQUENCE may say.
struct SequenceOptions {
  std::optional<TypeName> type;
  std::optional<std::int64_t> start;
  std::optional<std::int64_t> increment;
  // NO MINVALUE and its like: given, without a number.
  std::optional<std::optional<std::int64_t>> minimum;
  std::optional<std::optional<std::int64_t>> maximum;
  std::optional<bool> cycles;
  std::optional<std::int64_t> cache;  // 0 for NO CACHE
  bool restarts = false;
  std::optional<std::int64_t> restart;
};

struct SequenceStatement {
  ObjectName sequence;
  SequenceOptions options;
  bool alter = false;
};

using StatementNode =
    std::variant<EmptyStatement, SelectStatement, InsertStatement, UpdateStatement, DeleteStatement, MergeStatement,
                 TruncateStatement, DeclareStatement, SetStatement, SetSwitchStatement, SetValueStatement,
                 SetIdentityInsertStatement, SetIsolationStatement, DeclareCursorStatement, CursorStatement,
                 FetchStatement, IfStatement, WhileStatement, BlockStatement, BreakStatement, ContinueStatement,
                 ReturnStatement, TryCatchStatement, WaitForStatement, UseStatement, PrintStatement,
                 RaiseErrorStatement, ThrowStatement, BeginTransactionStatement, CommitStatement, RollbackStatement,
                 SaveTransactionStatement, CallStatement, ExecuteTextStatement, CreateTableStatement,
                 AlterTableStatement, DropStatement, CreateIndexStatement, DropIndexStatement, CreateViewStatement,
                 CreateProcedureStatement, CreateTriggerStatement, SwitchTriggersStatement, CreateFunctionStatement,
                 SequenceStatement, CreateSchemaStatement, DropSchemaStatement, TransferStatement>;

struct Statement {
  std::uint32_t line = 1;
  /// It takes numbers of sequences: NEXT VALUE FOR.
  bool takes_numbers = false;
  StatementNode node;
};

/// The statement as a node of that type, or nullptr when it is another one.
template <typename Node>
const Node* As(const Statement& statement) {
  return std::get_if<Node>(&statement.node);
}

}  // namespace tessarlorn::tsql
