// Statements: which one it is, control flow, errors, transactions and calls.
#include <array>
#include <utility>

#include "platform/text/text.h"
#include "tsql/syntax/parser_core.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {

StatementPtr Parser::MakeStatement(std::uint32_t line, StatementNode node) {
  auto statement = std::make_unique<Statement>();
  statement->line = line;
  statement->node = std::move(node);
  return statement;
}

StatementPtr Parser::ParseTerminatedStatement() {
  if (At(Op::kSemicolon)) return MakeStatement(Take().line, EmptyStatement{});
  StatementPtr statement = ParseStatement();
  Accept(Op::kSemicolon);
  return statement;
}

StatementPtr Parser::ParseStatement() {
  const Level level(*this);
  const Token& token = Peek();
  if (At(Op::kLeftParen)) return ParseSelectStatement();
  if ((At("enable"_kw) || At("disable"_kw)) && At("trigger"_kw, 1)) return ParseSwitchTriggers();
  if (AtName() && position_ == 0 && !At("throw"_kw) && !At(Op::kColon, 1)) return ParseExecute(true);
  if (token.kind != TokenKind::kWord) Fail();
  if (At(Op::kColon, 1)) Refuse("GOTO");
  if (token.id >= kKeywordCount) Fail();
  const int numbers = number_count_;
  StatementPtr statement = ParseKeywordStatement();
  statement->takes_numbers = number_count_ > numbers;
  return statement;
}

StatementPtr Parser::ParseKeywordStatement() {
  struct Form {
    Keyword word;
    StatementPtr (*parse)(Parser&);
  };
  static constexpr Form kForms[] = {
      {"select"_kw, [](Parser& p) { return p.ParseSelectStatement(); }},
      {"insert"_kw, [](Parser& p) { return p.ParseInsert({}); }},
      {"update"_kw, [](Parser& p) { return p.ParseUpdate({}); }},
      {"delete"_kw, [](Parser& p) { return p.ParseDelete({}); }},
      {"merge"_kw, [](Parser& p) { return p.ParseMerge({}); }},
      {"truncate"_kw, [](Parser& p) { return p.ParseTruncate(); }},
      {"with"_kw, [](Parser& p) { return p.ParseWithStatement(); }},
      {"declare"_kw, [](Parser& p) { return p.ParseDeclare(); }},
      {"set"_kw, [](Parser& p) { return p.ParseSet(); }},
      {"if"_kw, [](Parser& p) { return p.ParseIf(); }},
      {"while"_kw, [](Parser& p) { return p.ParseWhile(); }},
      {"begin"_kw, [](Parser& p) { return p.ParseBegin(); }},
      {"break"_kw, [](Parser& p) { return MakeStatement(p.Take().line, BreakStatement{}); }},
      {"continue"_kw, [](Parser& p) { return MakeStatement(p.Take().line, ContinueStatement{}); }},
      {"return"_kw, [](Parser& p) { return p.ParseReturn(); }},
      {"print"_kw, [](Parser& p) { return p.ParsePrint(); }},
      {"raiserror"_kw, [](Parser& p) { return p.ParseRaiseError(); }},
      {"throw"_kw, [](Parser& p) { return p.ParseThrow(); }},
      {"commit"_kw, [](Parser& p) { return p.ParseCommit(); }},
      {"rollback"_kw, [](Parser& p) { return p.ParseRollback(); }},
      {"save"_kw, [](Parser& p) { return p.ParseSaveTransaction(); }},
      {"exec"_kw, [](Parser& p) { return p.ParseExecute(false); }},
      {"execute"_kw, [](Parser& p) { return p.ParseExecute(false); }},
      {"open"_kw, [](Parser& p) { return p.ParseCursorAction(CursorStatement::Action::kOpen); }},
      {"close"_kw, [](Parser& p) { return p.ParseCursorAction(CursorStatement::Action::kClose); }},
      {"deallocate"_kw, [](Parser& p) { return p.ParseCursorAction(CursorStatement::Action::kDeallocate); }},
      {"fetch"_kw, [](Parser& p) { return p.ParseFetch(); }},
      {"waitfor"_kw, [](Parser& p) { return p.ParseWaitFor(); }},
      {"create"_kw, [](Parser& p) { return p.ParseCreate(); }},
      {"alter"_kw, [](Parser& p) { return p.ParseAlter(); }},
      {"drop"_kw, [](Parser& p) { return p.ParseDrop(); }},
      {"use"_kw, [](Parser& p) { return p.ParseUse(); }},
  };
  for (const Form& form : kForms) {
    if (At(form.word)) return form.parse(*this);
  }
  RefuseStatement();
}

// What the server knows and the embedded database does not is refused by name.
void Parser::RefuseStatement() const {
  constexpr std::array kWords = {"grant"_kw,       "revoke"_kw,   "deny"_kw,  "goto"_kw, "backup"_kw,
                                 "restore"_kw,     "bulk"_kw,     "dbcc"_kw,  "kill"_kw, "checkpoint"_kw,
                                 "reconfigure"_kw, "shutdown"_kw, "revert"_kw};
  if (AtAny(kWords)) Refuse(UpperCase(Peek().text));
  Fail();
}

StatementPtr Parser::ParseWithStatement() {
  std::vector<CommonTable> with = ParseWith();
  if (At("insert"_kw)) return ParseInsert(std::move(with));
  if (At("update"_kw)) return ParseUpdate(std::move(with));
  if (At("delete"_kw)) return ParseDelete(std::move(with));
  if (At("merge"_kw)) return ParseMerge(std::move(with));
  const std::uint32_t line = Peek().line;
  QueryPtr query = ParseStatementQuery();
  query->with = std::move(with);
  return MakeStatement(line, SelectStatement{std::move(query)});
}

StatementPtr Parser::ParseSelectStatement() {
  const std::uint32_t line = Peek().line;
  return MakeStatement(line, SelectStatement{ParseStatementQuery()});
}

StatementPtr Parser::ParseIf() {
  const std::uint32_t line = Take().line;
  IfStatement branch;
  branch.condition = ParseCondition();
  branch.then = ParseStatement();
  // A semicolon ends the statement within, not the IF.
  if (At(Op::kSemicolon) && At("else"_kw, 1)) Take();
  if (Accept("else"_kw)) branch.otherwise = ParseStatement();
  return MakeStatement(line, std::move(branch));
}

StatementPtr Parser::ParseWhile() {
  const std::uint32_t line = Take().line;
  ExpressionPtr condition = ParseCondition();
  return MakeStatement(line, WhileStatement{std::move(condition), ParseStatement()});
}

StatementPtr Parser::ParseBegin() {
  const std::uint32_t line = Take().line;
  if (At("distributed"_kw)) Refuse("BEGIN DISTRIBUTED TRANSACTION");
  if (Accept("tran"_kw) || Accept("transaction"_kw)) {
    BeginTransactionStatement begin{AcceptTransactionName()};
    if (At("with"_kw)) Refuse("BEGIN TRANSACTION … WITH MARK");
    return MakeStatement(line, std::move(begin));
  }
  if (Accept("try"_kw)) return ParseTryCatch(line);
  BlockStatement block{ParseStatementsUntilEnd()};
  if (block.body.empty()) Fail();
  Expect("end"_kw);
  return MakeStatement(line, std::move(block));
}

StatementPtr Parser::ParseTryCatch(std::uint32_t line) {
  TryCatchStatement attempt;
  attempt.body = ParseStatementsUntilEnd();
  Expect("end"_kw);
  Expect("try"_kw);
  Expect("begin"_kw);
  Expect("catch"_kw);
  attempt.handler = ParseStatementsUntilEnd();
  Expect("end"_kw);
  Expect("catch"_kw);
  return MakeStatement(line, std::move(attempt));
}

std::vector<StatementPtr> Parser::ParseStatementsUntilEnd() {
  std::vector<StatementPtr> statements;
  for (;;) {
    while (Accept(Op::kSemicolon)) continue;
    if (At("end"_kw)) return statements;
    statements.push_back(ParseStatement());
  }
}

StatementPtr Parser::ParseDeclare() {
  const std::uint32_t line = Take().line;
  DeclareStatement declare;
  if (AtName()) return ParseDeclareCursor(line, LowerCase(ParseName()));
  do {
    VariableDeclaration& variable = declare.variables.emplace_back();
    variable.name = ParseVariableName();
    Accept("as"_kw);
    if (Accept("table"_kw)) {
      declare.tables.push_back({{"", std::move(variable.name)}, ParseTableElements()});
      declare.variables.pop_back();
      continue;
    }
    // It stands when it is set.
    if (Accept("cursor"_kw)) {
      declare.variables.pop_back();
      continue;
    }
    variable.type = ParseType();
    if (Accept(Op::kEqual)) variable.initial = ParseValue();
  } while (Accept(Op::kComma));
  return MakeStatement(line, std::move(declare));
}

StatementPtr Parser::ParseReturn() {
  const std::uint32_t line = Take().line;
  return MakeStatement(line, ReturnStatement{AtValue() ? ParseValue() : nullptr});
}

StatementPtr Parser::ParsePrint() {
  const std::uint32_t line = Take().line;
  return MakeStatement(line, PrintStatement{ParseValue()});
}

StatementPtr Parser::ParseRaiseError() {
  const std::uint32_t line = Take().line;
  Expect(Op::kLeftParen);
  std::vector<ExpressionPtr> values = ParseValues();
  if (values.size() < 3) Fail();
  Expect(Op::kRightParen);
  if (Accept("with"_kw)) {
    constexpr std::array kOptions = {"nowait"_kw, "log"_kw};
    do {
      if (!AtAny(kOptions)) Refuse("RAISERROR … WITH " + UpperCase(Peek().text));
      Take();
    } while (Accept(Op::kComma));
  }
  RaiseErrorStatement raise{std::move(values[0]), std::move(values[1]), std::move(values[2]), {}};
  for (std::size_t i = 3; i < values.size(); ++i) raise.arguments.push_back(std::move(values[i]));
  return MakeStatement(line, std::move(raise));
}

StatementPtr Parser::ParseThrow() {
  const std::uint32_t line = Take().line;
  if (!AtLiteral() && Peek().kind != TokenKind::kVariable) return MakeStatement(line, ThrowStatement{});
  std::vector<ExpressionPtr> values = ParseValues();
  if (values.size() != 3) Fail();
  return MakeStatement(line, ThrowStatement{std::move(values[0]), std::move(values[1]), std::move(values[2])});
}

StatementPtr Parser::ParseCommit() {
  const std::uint32_t line = Take().line;
  if (Accept("tran"_kw) || Accept("transaction"_kw)) {
    AcceptTransactionName();
  } else {
    Accept("work"_kw);
  }
  return MakeStatement(line, CommitStatement{});
}

StatementPtr Parser::ParseRollback() {
  const std::uint32_t line = Take().line;
  RollbackStatement rollback;
  if (Accept("tran"_kw) || Accept("transaction"_kw)) {
    rollback.name = AcceptTransactionName();
  } else {
    Accept("work"_kw);
  }
  return MakeStatement(line, std::move(rollback));
}

StatementPtr Parser::ParseSaveTransaction() {
  const std::uint32_t line = Take().line;
  SaveTransactionStatement save;
  if (Accept("tran"_kw) || Accept("transaction"_kw)) save.name = AcceptTransactionName();
  if (save.name.empty()) Fail();
  return MakeStatement(line, std::move(save));
}

std::string Parser::AcceptTransactionName() {
  if (Peek().kind == TokenKind::kVariable) Refuse("A transaction name in a variable");
  return AtName() ? ParseName() : std::string();
}

StatementPtr Parser::ParseExecute(bool word_omitted) {
  const std::uint32_t line = Peek().line;
  if (!word_omitted) Take();
  if (Accept(Op::kLeftParen)) {
    ExecuteTextStatement execute{ParseValue()};
    if (At(Op::kComma)) Refuse("EXECUTE with parameters for a linked server");
    Expect(Op::kRightParen);
    return MakeStatement(line, std::move(execute));
  }
  CallStatement call;
  if (Peek().kind == TokenKind::kVariable) {
    if (!At(Op::kEqual, 1)) Refuse("EXECUTE of a procedure named by a variable");
    call.result_variable = ParseVariableName();
    Take();
  }
  call.procedure = ParseObjectName();
  if (AtValue() || At("default"_kw)) {
    do {
      CallArgument argument = ParseCallArgument();
      if (argument.name.empty() && !call.arguments.empty() && !call.arguments.back().name.empty()) {
        RaiseAt(119, "Must pass parameter number " + std::to_string(call.arguments.size() + 1) +
                         " and subsequent parameters as '@name = value'. After the form '@name = value' has been used, "
                         "all subsequent parameters must be passed in the form '@name = value'.");
      }
      call.arguments.push_back(std::move(argument));
    } while (Accept(Op::kComma));
  }
  AcceptBoth("with"_kw, "recompile"_kw);
  return MakeStatement(line, std::move(call));
}

CallArgument Parser::ParseCallArgument() {
  CallArgument argument;
  if (Peek().kind == TokenKind::kVariable && At(Op::kEqual, 1)) {
    argument.name = ParseVariableName();
    Take();
  }
  if (AtName()) {
    // A bare word is a text.
    const std::uint32_t line = Peek().line;
    argument.value = MakeExpression(line, Literal{LiteralKind::kString, ParseName()});
  } else if (!Accept("default"_kw)) {
    argument.value = ParseUnary();
    RequireValue(*argument.value);
  }
  argument.output = Accept("output"_kw) || Accept("out"_kw);
  return argument;
}

StatementPtr Parser::ParseWaitFor() {
  const std::uint32_t line = Take().line;
  if (At("time"_kw)) Refuse("WAITFOR TIME");
  Expect("delay"_kw);
  return MakeStatement(line, WaitForStatement{ParseValue()});
}

StatementPtr Parser::ParseUse() {
  const std::uint32_t line = Take().line;
  return MakeStatement(line, UseStatement{ParseName()});
}

}  // namespace tessarlorn::tsql
