// CREATE and ALTER FUNCTION, and the arguments of calls.
#include <array>
#include <utility>

#include "tsql/syntax/ast_walk.h"
#include "tsql/syntax/parser_core.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

/// What a statement does that none within a function may do, in the server's words; "" for nothing.
struct SideEffect {
  std::string operator()(const SelectStatement& node) const { return node.query->makes_table() ? "SELECT INTO" : ""; }
  std::string operator()(const InsertStatement& node) const {
    if (node.execute() != nullptr) return "INSERT EXEC";
    return node.table.variable() ? "" : "INSERT";
  }
  std::string operator()(const UpdateStatement& node) const { return node.rows.table.variable() ? "" : "UPDATE"; }
  std::string operator()(const DeleteStatement& node) const { return node.rows.table.variable() ? "" : "DELETE"; }
  std::string operator()(const MergeStatement& node) const { return node.target.name.variable() ? "" : "MERGE"; }
  std::string operator()(const TruncateStatement& /*node*/) const { return "TRUNCATE TABLE"; }
  std::string operator()(const SetSwitchStatement& /*node*/) const { return "SET ON/OFF"; }
  std::string operator()(const SetValueStatement& /*node*/) const { return "SET COMMAND"; }
  std::string operator()(const SetIdentityInsertStatement& /*node*/) const { return "SET IDENTITY_INSERT"; }
  std::string operator()(const SetIsolationStatement& /*node*/) const { return "SET TRANSACTION ISOLATION LEVEL"; }
  std::string operator()(const TryCatchStatement& /*node*/) const { return "BEGIN TRY"; }
  std::string operator()(const WaitForStatement& /*node*/) const { return "WAITFOR"; }
  std::string operator()(const PrintStatement& /*node*/) const { return "PRINT"; }
  std::string operator()(const RaiseErrorStatement& /*node*/) const { return "RAISERROR"; }
  std::string operator()(const ThrowStatement& /*node*/) const { return "THROW"; }
  std::string operator()(const BeginTransactionStatement& /*node*/) const { return "BEGIN TRANSACTION"; }
  std::string operator()(const CommitStatement& /*node*/) const { return "COMMIT TRANSACTION"; }
  std::string operator()(const RollbackStatement& /*node*/) const { return "ROLLBACK TRANSACTION"; }
  std::string operator()(const SaveTransactionStatement& /*node*/) const { return "SAVE TRANSACTION"; }
  std::string operator()(const ExecuteTextStatement& /*node*/) const { return "EXECUTE STRING"; }
  std::string operator()(const CreateTableStatement& /*node*/) const { return "CREATE TABLE"; }
  std::string operator()(const AlterTableStatement& /*node*/) const { return "ALTER TABLE"; }
  std::string operator()(const CreateIndexStatement& /*node*/) const { return "CREATE INDEX"; }
  std::string operator()(const DropStatement& /*node*/) const { return "DROP OBJECT"; }
  std::string operator()(const DropIndexStatement& /*node*/) const { return "DROP INDEX"; }
  template <typename Other>
  std::string operator()(const Other& /*node*/) const {
    return {};
  }
};

/// Raises 2772 for temporary tables, and 443 for what answers something else each time.
void CheckFunctionWords(std::span<const Token> tokens) {
  constexpr auto kChanging = std::to_array<std::string_view>({"newid", "newsequentialid", "rand"});
  for (std::size_t i = 0; i + 1 < tokens.size(); ++i) {
    const Token& token = tokens[i];
    const bool call = token.kind == TokenKind::kWord && tokens[i + 1].op == Op::kLeftParen;
    if ((token.kind == TokenKind::kWord || token.kind == TokenKind::kQuoted) && token.text.starts_with('#')) {
      throw SqlError(2772, "Cannot access temporary tables from within a function.");
    }
    if (call && IsAmong(kChanging, token.text)) {
      throw SqlError(443,
                     "Invalid use of a side-effecting operator '" + LowerCase(token.text) + "' within a function.");
    }
  }
}

bool AnswersRows(const Statement& statement) {
  const auto* fetch = As<FetchStatement>(statement);
  if (fetch != nullptr) return fetch->into.empty();
  const auto* query = As<SelectStatement>(statement);
  const Select* select = query == nullptr ? nullptr : query->query->select();
  return query != nullptr && (select == nullptr || select->items[0].variable.empty());
}

/// Raises 443 and 444, and 11719 for NEXT VALUE FOR.
void CheckFunctionStatement(const Statement& statement, bool scalar) {
  const auto raise = [&](SqlError error) {
    error.set_line(statement.line);
    throw error;
  };
  if (const std::string effect = std::visit(SideEffect{}, statement.node); !effect.empty()) {
    raise({443, "Invalid use of a side-effecting operator '" + effect + "' within a function."});
  }
  if (AnswersRows(statement)) {
    raise({444, "Select statements included within a function cannot return data to a client."});
  }
  if (statement.takes_numbers) raise(NoNumbersHere());
  if (const auto* end = As<ReturnStatement>(statement)) {
    if (scalar && end->value == nullptr) RaiseUnsupported("RETURN without a value within a function", statement.line);
    if (!scalar && end->value != nullptr) {
      raise({178, "A RETURN statement with a return value cannot be used in this context.", 15});
    }
  }
  // They need tables that SQLite does not drop while a statement runs.
  const Output* const output = OutputClauseOf(statement);
  if (As<MergeStatement>(statement) != nullptr || (output != nullptr && !output->items.empty())) {
    RaiseUnsupported("MERGE or OUTPUT within a function", statement.line);
  }
  ForEachChild(statement, [&](const Statement& child) { CheckFunctionStatement(child, scalar); });
}

}  // namespace

StatementPtr Parser::ParseFunction(std::size_t begin, bool replace) {
  const bool alter = BeginsWithAlter(begin, "FUNCTION");
  const std::uint32_t line = Take().line;
  CreateFunctionStatement create;
  create.replace = replace;
  create.must_exist = alter;
  create.function = ParseObjectName();
  Expect(Op::kLeftParen);
  create.parameters = ParseParameters();
  for (const Parameter& parameter : create.parameters) {
    if (parameter.output) Fail();
  }
  Expect(Op::kRightParen);
  Expect("returns"_kw);
  const bool inline_table = Accept("table"_kw);
  if (Peek().kind == TokenKind::kVariable) {
    ParseReturnedTable(create);
  } else if (!inline_table) {
    create.returns = ParseType();
  }
  if (Accept("with"_kw)) ParseFunctionOptions(create);
  Accept("as"_kw);
  if (inline_table) {
    create.query = ParseReturnedQuery();
  } else {
    ParseFunctionBody(create);
  }
  create.source_text = TextBetween(begin, position_);
  CheckFunctionWords(std::span(tokens_).subspan(begin, position_ - begin));
  Accept(Op::kSemicolon);
  if (!AtEnd()) Fail();
  return MakeStatement(line, std::move(create));
}

void Parser::ParseFunctionOptions(CreateFunctionStatement& create) {
  do {
    if (Accept("schemabinding"_kw)) continue;
    const bool null_for_null = AcceptBoth("returns"_kw, "null"_kw);
    if (!null_for_null && !Accept("called"_kw)) Refuse("CREATE FUNCTION … WITH " + UpperCase(Peek().text));
    Expect("on"_kw);
    Expect("null"_kw);
    Expect("input"_kw);
    create.null_for_null = null_for_null;
  } while (Accept(Op::kComma));
}

QueryPtr Parser::ParseReturnedQuery() {
  Expect("return"_kw);
  const std::size_t behind = At(Op::kLeftParen) ? MatchingParen(position_) + 1 : position_;
  const Token& next = tokens_[std::min(behind, tokens_.size() - 1)];
  const bool in_parens = behind > position_ && (next.kind == TokenKind::kEnd || next.op == Op::kSemicolon);
  const int numbers = number_count_;
  ++query_depth_;
  QueryPtr query = in_parens ? ParseQueryInParens() : ParseQuery();
  --query_depth_;
  if (number_count_ > numbers) throw NoNumbersHere();
  return query;
}

void Parser::ParseReturnedTable(CreateFunctionStatement& create) {
  const std::uint32_t line = Peek().line;
  create.returned_table = ParseVariableName();
  Expect("table"_kw);
  DeclareStatement declare;
  declare.tables.push_back({{"", create.returned_table}, ParseTableElements()});
  create.body.push_back(MakeStatement(line, std::move(declare)));
}

void Parser::ParseFunctionBody(CreateFunctionStatement& create) {
  Expect("begin"_kw);
  for (StatementPtr& statement : ParseStatementsUntilEnd()) create.body.push_back(std::move(statement));
  const bool scalar = create.returned_table.empty();
  for (const StatementPtr& statement : create.body) CheckFunctionStatement(*statement, scalar);
  if (create.body.empty() || As<ReturnStatement>(*create.body.back()) == nullptr) {
    RaiseAt(455, "The last statement included within a function must be a return statement.");
  }
  Expect("end"_kw);
}

std::vector<ExpressionPtr> Parser::ParseFunctionArguments() {
  std::vector<ExpressionPtr> arguments;
  Expect(Op::kLeftParen);
  if (Accept(Op::kRightParen)) return arguments;
  do {
    const bool is_default = At("default"_kw) && (At(Op::kComma, 1) || At(Op::kRightParen, 1));
    arguments.push_back(is_default ? MakeExpression(Take().line, DefaultValue{}) : ParseValue());
  } while (Accept(Op::kComma));
  Expect(Op::kRightParen);
  return arguments;
}

}  // namespace tessarlorn::tsql
