// The parser's inside: what its source files, one a topic of the grammar, share.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/text/text.h"
#include "tsql/syntax/keywords.h"
#include "tsql/syntax/statement.h"
#include "tsql/syntax/token.h"
#include "tsql/values/memory_budget.h"

namespace tessarlorn::tsql {

/// Whether a word is one of those, without regard to case.
template <std::size_t kSize>
bool IsAmong(const std::array<std::string_view, kSize>& words, std::string_view word) {
  return std::any_of(words.begin(), words.end(), [&](std::string_view known) { return EqualsIgnoreCase(known, word); });
}

/// Recursive descent over the tokens of a batch, beginning at a top-level statement. Its methods raise SqlError.
/// Names: Parse… reads a construct that must stand here, Accept… one that may, Expect… a token that must.
class Parser {
 public:
  Parser(std::string_view batch, const Tokens& tokens, std::size_t begin)
      : batch_(batch),
        tokens_(tokens.tokens),
        lists_(tokens.list_items),
        memory_(tokens.memory),
        begin_(begin),
        position_(begin) {}

  [[nodiscard]] std::size_t position() const noexcept { return position_; }
  [[nodiscard]] bool AtEnd() const noexcept { return Peek().kind == TokenKind::kEnd; }
  [[noreturn]] void Fail() const;

  /// A statement with the semicolon behind it; kEmpty for a semicolon alone.
  StatementPtr ParseTerminatedStatement();
  /// A value or a condition.
  ExpressionPtr ParseAny();
  ObjectName ParseObjectName();
  /// The same, with the schema in the qualifier whatever it is.
  ObjectName ParseWrittenName();
  /// None when no variable stands here.
  std::vector<Parameter> ParseParameters();

 private:
  /// Counts the levels of nesting while it lives.
  class Level {
   public:
    explicit Level(Parser& parser);
    ~Level() { --depth_; }
    Level(const Level&) = delete;
    Level& operator=(const Level&) = delete;

   private:
    int& depth_;
  };

  /// Counts the links of a chain that grows to the left (a + b + c), which nests its tree without nesting the text.
  class Chain {
   public:
    explicit Chain(Parser& parser);
    ~Chain();
    Chain(const Chain&) = delete;
    Chain& operator=(const Chain&) = delete;
    void AddLink();

   private:
    Parser& parser_;
    int outer_;
    int links_ = 0;
  };

  // parser_core.cpp: tokens, names, types
  [[nodiscard]] const Token& Peek(std::size_t ahead = 0) const noexcept;
  const Token& Take();
  [[nodiscard]] bool At(Op op, std::size_t ahead = 0) const noexcept { return Peek(ahead).op == op; }
  [[nodiscard]] bool At(Keyword word, std::size_t ahead = 0) const noexcept;
  [[nodiscard]] bool AtAny(std::span<const Keyword> words) const noexcept;
  [[nodiscard]] bool AtName(std::size_t ahead = 0) const noexcept;
  [[nodiscard]] bool AtLiteral() const noexcept;
  [[nodiscard]] bool AtValue() const noexcept;
  bool Accept(Op op);
  bool Accept(Keyword word);
  bool AcceptBoth(Keyword first, Keyword second);
  void Expect(Op op);
  void Expect(Keyword word);
  [[noreturn]] void FailAt(std::size_t position) const;
  [[noreturn]] void RaiseAt(std::int32_t number, const std::string& message) const;
  [[noreturn]] void Refuse(std::string_view feature) const;
  std::string ParseName();
  std::string ParseVariableName();
  std::vector<std::string> ParseNameList();
  TypeName ParseType();
  int ParseTypeArgument();
  std::int64_t ParseSignedInteger();
  std::string AcceptAlias();
  [[nodiscard]] std::string_view TextBetween(std::size_t begin, std::size_t end) const;
  [[nodiscard]] std::size_t MatchingParen(std::size_t open) const;
  [[nodiscard]] bool AtQueryInParens() const;
  void SkipParens();
  /// The options of an index in parentheses. Refuses IGNORE_DUP_KEY.
  void SkipIndexOptions();
  std::vector<ExpressionPtr> ParseValues();

  // parser_expression.cpp
  ExpressionPtr ParseValue();
  ExpressionPtr ParseCondition();
  ExpressionPtr ParseAnd();
  ExpressionPtr ParseNot();
  ExpressionPtr ParsePredicate();
  ExpressionPtr ParseComparison(ExpressionPtr left);
  ExpressionPtr ParseNullTest(ExpressionPtr value);
  ExpressionPtr ParseLike(ExpressionPtr text, bool negated);
  ExpressionPtr ParseBetween(ExpressionPtr value, bool negated);
  ExpressionPtr ParseIn(ExpressionPtr left, bool negated);
  ExpressionPtr ParseArithmetic(int precedence);
  ExpressionPtr ParseUnary();
  ExpressionPtr ParsePrimary();
  ExpressionPtr ParseKeywordPrimary();
  /// A value without AT TIME ZONE behind it.
  ExpressionPtr ParseOperand();
  /// value AT TIME ZONE zone
  ExpressionPtr ParseTimeZone(ExpressionPtr date);
  ExpressionPtr ParseLiteral();
  ExpressionPtr ParseParens();
  ExpressionPtr ParseColumn();
  std::vector<OrderItem> ParseOrderItems();
  void RequireCondition(const Expression& expression) const;
  void RequireValue(const Expression& expression) const;
  template <typename Node>
  static ExpressionPtr MakeExpression(std::uint32_t line, Node node) {
    auto expression = std::make_unique<Expression>();
    expression->line = line;
    expression->node.template emplace<Node>(std::move(node));
    return expression;
  }

  // parser_call.cpp
  ExpressionPtr ParseCase();
  ExpressionPtr ParseCast(bool attempt);
  ExpressionPtr ParseConvert(bool attempt);
  ExpressionPtr ParseIdentityCall();
  ExpressionPtr ParseCallWithoutParens();
  ExpressionPtr ParseCall();
  void ParseArguments(FunctionCall& call);
  std::vector<OrderItem> ParseWithinGroup(const std::string& function);
  std::unique_ptr<Window> ParseWindow();
  std::string ParseFrame();
  std::string ParseFrameBound();

  // parser_query.cpp
  QueryPtr ParseQuery();
  QueryPtr ParseQueryInParens();
  QueryPtr ParseStatementQuery();
  std::vector<CommonTable> ParseWith();
  QueryPtr ParseUnion();
  QueryPtr ParseIntersect();
  QueryPtr ParseQueryPrimary();
  /// @param inserted a value may be DEFAULT
  QueryPtr ParseRows(bool inserted = false);
  Select ParseSelect();
  SelectItem ParseSelectItem();
  bool AcceptSelectAssignment(SelectItem& item);
  [[nodiscard]] std::size_t StarAhead() const;
  void ParseTop(Select& select);
  ExpressionPtr AcceptStatementTop();
  // parser_grouping.cpp
  using GroupingSets = std::vector<std::vector<std::size_t>>;
  void ParseGroupBy(Select& select);
  GroupingSets ParseGroupingItem(Select& select);
  GroupingSets ParseGroupingSets(Select& select);
  /// a, or (a, b)
  std::vector<std::size_t> ParseGroupingSet(Select& select);
  /// Whether a comma stands between the parentheses themselves.
  [[nodiscard]] bool HoldsComma(std::size_t parenthesis) const;
  TableSourcePtr AcceptPivot(TableSourcePtr source);
  void ParseOrderBy(Query& query);
  std::vector<TableSourcePtr> ParseFrom();
  TableSourcePtr ParseSource();
  TableSourcePtr ParseJoins(TableSourcePtr left);
  TableSourcePtr ParseSourcePrimary();
  TableSourcePtr ParseNamedTable();
  bool AcceptJoin(JoinKind& join);
  std::vector<JsonColumnDefinition> ParseJsonColumns();
  TableSourcePtr ParseTableFunction(std::uint32_t line, ObjectName name);
  /// @return the name of the one index that the hints ask for, else ""
  std::string AcceptTableHints();
  std::string AcceptHintList();
  /// (name) or = name, as it may stand behind a hint. @return the name, "" for several or a number
  std::string AcceptHintValue();
  void AcceptQueryOptions();

  // parser_statement.cpp
  StatementPtr ParseStatement();
  StatementPtr ParseKeywordStatement();
  StatementPtr ParseWithStatement();
  [[noreturn]] void RefuseStatement() const;
  static StatementPtr MakeStatement(std::uint32_t line, StatementNode node);
  StatementPtr ParseSelectStatement();
  StatementPtr ParseIf();
  StatementPtr ParseWhile();
  StatementPtr ParseBegin();
  StatementPtr ParseTryCatch(std::uint32_t line);
  std::vector<StatementPtr> ParseStatementsUntilEnd();
  StatementPtr ParseDeclare();
  StatementPtr ParseReturn();
  StatementPtr ParsePrint();
  StatementPtr ParseRaiseError();
  StatementPtr ParseThrow();
  StatementPtr ParseCommit();
  StatementPtr ParseRollback();
  StatementPtr ParseSaveTransaction();
  std::string AcceptTransactionName();
  StatementPtr ParseExecute(bool word_omitted);
  CallArgument ParseCallArgument();
  StatementPtr ParseWaitFor();
  StatementPtr ParseUse();

  // parser_set.cpp
  StatementPtr ParseSet();
  StatementPtr ParseSetOption(std::uint32_t line);
  StatementPtr ParseIsolationLevel(std::uint32_t line);
  StatementPtr ParseSetWords(std::uint32_t line);
  bool ParseSwitch();

  // parser_modification.cpp
  StatementPtr ParseInsert(std::vector<CommonTable> with);
  StatementPtr ParseUpdate(std::vector<CommonTable> with);
  StatementPtr ParseDelete(std::vector<CommonTable> with);
  StatementPtr ParseTruncate();
  ObjectName ParseTarget();
  void ParseModificationTail(ChangedRows& rows);
  Assignment ParseAssignment();
  bool AcceptAssignmentOp(std::optional<BinaryOp>& compound);
  [[nodiscard]] bool AtAssignedColumn() const;
  // parser_for.cpp
  ForClause ParseForClause();
  ForClause ParseForXml();
  ForClause ParseForJson();
  ExpressionPtr ParseXmlValue(std::uint32_t line, QueryPtr query);
  std::string ParseTextInParens();
  /// A type that stands in a text.
  static TypeName ParseTypeOf(const std::string& text);

  // parser_cursor.cpp
  StatementPtr ParseDeclareCursor(std::uint32_t line, std::string name);
  StatementPtr ParseCursorAction(CursorStatement::Action action);
  StatementPtr ParseFetch();
  std::string ParseCursorName();

  StatementPtr ParseMerge(std::vector<CommonTable> with);
  MergeStatement::Branch ParseMergeBranch();
  MergeStatement::Insert ParseMergeInsert();
  Output AcceptOutput();

  // parser_definition.cpp
  StatementPtr ParseCreate();
  StatementPtr ParseAlter();
  StatementPtr ParseDrop();
  StatementPtr ParseCreateIndex();
  StatementPtr ParseDropIndex(std::uint32_t line);
  // parser_schema.cpp
  StatementPtr ParseCreateSchema(std::size_t begin);
  StatementPtr ParseAlterSchema();
  StatementPtr ParseDropSchema(std::uint32_t line);
  StatementPtr ParseView(std::size_t begin, bool replace);
  StatementPtr ParseProcedure(std::size_t begin, bool replace);
  /// The statements to the end of the batch; at least one.
  std::vector<StatementPtr> ParseBody();
  Parameter ParseParameter();
  /// CREATE or ALTER of what is defined alone in its batch. Raises 111 where it is not. @return whether it is ALTER
  bool BeginsWithAlter(std::size_t begin, std::string_view kind) const;

  // parser_trigger.cpp
  StatementPtr ParseTrigger(std::size_t begin, bool replace);
  RowEvent ParseRowEvent();
  StatementPtr ParseSwitchTriggers();
  StatementPtr ParseSwitchTriggersOf(ObjectName table, std::uint32_t line);

  // parser_function.cpp
  StatementPtr ParseFunction(std::size_t begin, bool replace);
  void ParseFunctionOptions(CreateFunctionStatement& create);
  /// RETURN query
  QueryPtr ParseReturnedQuery();
  /// @t TABLE (…), which the body declares first
  void ParseReturnedTable(CreateFunctionStatement& create);
  /// BEGIN … RETURN [value] END
  void ParseFunctionBody(CreateFunctionStatement& create);
  /// Arguments between parentheses, each a value or DEFAULT.
  std::vector<ExpressionPtr> ParseFunctionArguments();

  // parser_sequence.cpp
  StatementPtr ParseSequence(bool alter);
  bool AcceptSequenceOption(SequenceOptions& options, bool alter);
  std::int64_t ParseSequenceNumber();
  ExpressionPtr ParseNextValue();

  // parser_table.cpp
  StatementPtr ParseCreateTable();
  StatementPtr ParseAlterTable();
  AlterTableStatement::Drop ParseDroppedElements();
  /// ( … ) of CREATE TABLE
  TableElements ParseTableElements();
  void ParseTableElement(TableElements& elements);
  ColumnDefinition ParseColumnDefinition(std::vector<TableConstraint>& constraints);
  bool AcceptColumnProperty(ColumnDefinition& column);
  bool AcceptColumnConstraint(ColumnDefinition& column, std::vector<TableConstraint>& constraints);
  TableConstraint ParseTableConstraint();
  void ParseReferences(ForeignKeyRule& rule);
  void ParseDefault(ExpressionPtr& value, std::string& text);
  void ParseCheck(ExpressionPtr& check, std::string& text);
  std::vector<std::string> ParseKeyColumns();
  void AcceptIndexOptions();

  static constexpr std::size_t kNoStar = static_cast<std::size_t>(-1);

  std::string_view batch_;
  const std::vector<Token>& tokens_;
  const std::vector<Token>& lists_;
  MemoryBudget* memory_;
  std::size_t begin_;
  std::size_t position_;
  int depth_ = 0;
  /// The longest chain of the text parsed since the innermost living Chain began; a sum over nested chains.
  int chain_ = 0;
  int query_depth_ = 0;
  int literal_count_ = 0;
  int list_count_ = 0;
  /// How often NEXT VALUE FOR stood so far.
  int number_count_ = 0;
  /// Where the operator of the last condition stands, to point at when a value was expected.
  std::size_t condition_at_ = 0;
};

}  // namespace tessarlorn::tsql
