#include <array>
#include <utility>

#include "platform/text.h"
#include "tsql/syntax/parser_core.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

using Kind = Statement::Kind;

// SET <option> ON|OFF.
constexpr std::array kSwitches = std::to_array<std::string_view>({
    "ansi_defaults",
    "ansi_null_dflt_off",
    "ansi_null_dflt_on",
    "ansi_nulls",
    "ansi_padding",
    "ansi_warnings",
    "arithabort",
    "arithignore",
    "concat_null_yields_null",
    "cursor_close_on_commit",
    "fmtonly",
    "forceplan",
    "implicit_transactions",
    "nocount",
    "noexec",
    "numeric_roundabort",
    "parseonly",
    "quoted_identifier",
    "remote_proc_transactions",
    "showplan_all",
    "showplan_text",
    "showplan_xml",
    "xact_abort",
});

// SET <option> <value>.
constexpr std::array kSettings = std::to_array<std::string_view>({
    "context_info",
    "datefirst",
    "dateformat",
    "deadlock_priority",
    "language",
    "lock_timeout",
    "query_governor_cost_limit",
    "rowcount",
    "textsize",
});

template <std::size_t kSize>
bool Contains(const std::array<std::string_view, kSize>& words, std::string_view word) {
  for (const std::string_view known : words) {
    if (known == word) return true;
  }
  return false;
}

}  // namespace

StatementPtr Parser::MakeStatement(Statement::Kind kind) const {
  auto statement = std::make_unique<Statement>();
  statement->kind = kind;
  statement->line = Peek().line;
  return statement;
}

StatementPtr Parser::ParseTerminatedStatement() {
  if (At(Op::kSemicolon)) {
    StatementPtr empty = MakeStatement(Kind::kEmpty);
    Take();
    return empty;
  }
  StatementPtr statement = ParseStatement();
  Accept(Op::kSemicolon);
  return statement;
}

StatementPtr Parser::ParseStatement() {
  const Level level(*this);
  const Token& token = Peek();
  if (At(Op::kLeftParen)) return ParseSelectStatement();
  if (AtName() && position_ == 0 && !At("throw"_kw) && !At(Op::kColon, 1)) return ParseExecute(true);
  if (token.kind != TokenKind::kWord) Fail();
  if (At(Op::kColon, 1)) Refuse("GOTO");
  if (token.id >= kKeywordCount) Fail();
  return ParseKeywordStatement();
}

StatementPtr Parser::ParseKeywordStatement() {
  const Token& token = Peek();
  switch (static_cast<Keyword>(token.id)) {
    case "select"_kw:
      return ParseSelectStatement();
    case "insert"_kw:
      return ParseInsert();
    case "update"_kw:
      return ParseUpdate();
    case "delete"_kw:
      return ParseDelete();
    case "truncate"_kw:
      return ParseTruncate();
    case "with"_kw: {
      std::vector<CommonTable> with = ParseWith();
      StatementPtr statement = At("insert"_kw)   ? ParseInsert()
                               : At("update"_kw) ? ParseUpdate()
                               : At("delete"_kw) ? ParseDelete()
                               : At("merge"_kw)  ? ParseKeywordStatement()
                                                 : ParseSelectStatement();
      (statement->kind == Kind::kSelect ? statement->query->with : statement->with) = std::move(with);
      return statement;
    }
    case "declare"_kw:
      return ParseDeclare();
    case "set"_kw:
      return ParseSet();
    case "if"_kw:
      return ParseIf();
    case "while"_kw:
      return ParseWhile();
    case "begin"_kw:
      return ParseBegin();
    case "break"_kw:
    case "continue"_kw: {
      StatementPtr statement = MakeStatement(At("break"_kw) ? Kind::kBreak : Kind::kContinue);
      Take();
      return statement;
    }
    case "return"_kw:
      return ParseReturn();
    case "print"_kw: {
      StatementPtr statement = MakeStatement(Kind::kPrint);
      Take();
      statement->value = ParseValue();
      return statement;
    }
    case "raiserror"_kw:
      return ParseRaiseError();
    case "throw"_kw:
      return ParseThrow();
    case "commit"_kw:
      return ParseTransactionEnd(Kind::kCommit);
    case "rollback"_kw:
      return ParseTransactionEnd(Kind::kRollback);
    case "save"_kw:
      return ParseTransactionEnd(Kind::kSaveTransaction);
    case "exec"_kw:
    case "execute"_kw:
      return ParseExecute(false);
    case "waitfor"_kw:
      return ParseWaitFor();
    case "create"_kw:
      return ParseCreate();
    case "alter"_kw:
      return ParseAlter();
    case "drop"_kw:
      return ParseDrop();
    case "use"_kw: {
      StatementPtr statement = MakeStatement(Kind::kUse);
      Take();
      statement->text = ParseName();
      return statement;
    }
    case "merge"_kw:
    case "grant"_kw:
    case "revoke"_kw:
    case "deny"_kw:
    case "goto"_kw:
    case "backup"_kw:
    case "restore"_kw:
    case "bulk"_kw:
    case "dbcc"_kw:
    case "kill"_kw:
    case "checkpoint"_kw:
    case "reconfigure"_kw:
    case "shutdown"_kw:
    case "revert"_kw:
      Refuse(UpperCase(token.text));
    case "open"_kw:
    case "fetch"_kw:
    case "close"_kw:
    case "deallocate"_kw:
      Refuse("A cursor");
    default:
      Fail();
  }
}

StatementPtr Parser::ParseSelectStatement() {
  StatementPtr statement = MakeStatement(Kind::kSelect);
  statement->query = ParseStatementQuery();
  return statement;
}

StatementPtr Parser::ParseIf() {
  StatementPtr statement = MakeStatement(Kind::kIf);
  Take();
  statement->condition = ParseCondition();
  statement->body.push_back(ParseStatement());
  // A semicolon ends the statement within, not the IF.
  if (At(Op::kSemicolon) && At("else"_kw, 1)) Take();
  if (Accept("else"_kw)) statement->body.push_back(ParseStatement());
  return statement;
}

StatementPtr Parser::ParseWhile() {
  StatementPtr statement = MakeStatement(Kind::kWhile);
  Take();
  statement->condition = ParseCondition();
  statement->body.push_back(ParseStatement());
  return statement;
}

StatementPtr Parser::ParseBegin() {
  StatementPtr statement = MakeStatement(Kind::kBlock);
  Take();
  if (At("distributed"_kw)) Refuse("BEGIN DISTRIBUTED TRANSACTION");
  if (Accept("tran"_kw) || Accept("transaction"_kw)) {
    statement->kind = Kind::kBeginTransaction;
    AcceptTransactionName(*statement);
    if (At("with"_kw)) Refuse("BEGIN TRANSACTION … WITH MARK");
    return statement;
  }
  if (Accept("try"_kw)) return ParseTryCatch(std::move(statement));
  statement->body = ParseStatementsUntilEnd();
  if (statement->body.empty()) Fail();
  Expect("end"_kw);
  return statement;
}

StatementPtr Parser::ParseTryCatch(StatementPtr statement) {
  statement->kind = Kind::kTryCatch;
  statement->body = ParseStatementsUntilEnd();
  Expect("end"_kw);
  Expect("try"_kw);
  Expect("begin"_kw);
  Expect("catch"_kw);
  statement->catch_body = ParseStatementsUntilEnd();
  Expect("end"_kw);
  Expect("catch"_kw);
  return statement;
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
  StatementPtr statement = MakeStatement(Kind::kDeclare);
  Take();
  if (AtName()) Refuse("A cursor");
  do {
    VariableDeclaration& variable = statement->declarations.emplace_back();
    variable.name = ParseVariableName();
    Accept("as"_kw);
    if (At("table"_kw)) Refuse("A table variable");
    if (At("cursor"_kw)) Refuse("A cursor");
    variable.type = ParseType();
    if (Accept(Op::kEqual)) variable.initial = ParseValue();
  } while (Accept(Op::kComma));
  return statement;
}

StatementPtr Parser::ParseSet() {
  if (Peek(1).kind != TokenKind::kVariable) return ParseSetOption();
  StatementPtr statement = MakeStatement(Kind::kSet);
  Take();
  Assignment& assignment = statement->assignments.emplace_back();
  assignment.variable = ParseVariableName();
  if (!AcceptAssignmentOp(assignment)) Fail();
  if (At("cursor"_kw)) Refuse("A cursor");
  assignment.value = ParseValue();
  return statement;
}

StatementPtr Parser::ParseSetOption() {
  StatementPtr statement = MakeStatement(Kind::kSetOption);
  Take();
  const auto parse_switch = [&] {
    statement->flag = Accept("on"_kw);
    if (!statement->flag) Expect("off"_kw);
  };
  if (Accept("transaction"_kw)) {
    Expect("isolation"_kw);
    Expect("level"_kw);
    statement->text = "isolation";
    constexpr std::array kSecondWords = {"uncommitted"_kw, "committed"_kw};
    const bool repeatable = At("repeatable"_kw) && At("read"_kw, 1);
    if (!repeatable && !At("read"_kw) && !At("serializable"_kw) && !At("snapshot"_kw)) Fail();
    const bool two_words = repeatable || At("read"_kw);
    statement->text2 = LowerCase(Take().text);
    if (!two_words) return statement;
    if (!repeatable && !AtAny(kSecondWords)) Fail();
    statement->text2 += " " + LowerCase(Take().text);
  } else if (Accept("identity_insert"_kw)) {
    statement->text = "identity_insert";
    statement->table = ParseObjectName();
    parse_switch();
  } else if (Accept("statistics"_kw)) {
    statement->text = "statistics " + LowerCase(ParseName());
    parse_switch();
  } else if (Peek().kind == TokenKind::kWord) {
    std::vector<std::string> options;
    do {
      options.push_back(LowerCase(Peek().text));
      const bool setting = Contains(kSettings, options.back());
      if (!setting && !Contains(kSwitches, options.back())) {
        RaiseAt(195, "'" + std::string(Peek().text) + "' is not a recognized SET option.");
      }
      Take();
      if (!setting) continue;
      statement->text = options.back();
      if (AtName()) {
        statement->text2 = LowerCase(ParseName());
      } else {
        statement->value = ParseValue();
      }
      return statement;
    } while (Accept(Op::kComma));
    parse_switch();
    if (options.size() == 1) {
      statement->text = options[0];
      return statement;
    }
    StatementPtr all = MakeStatement(Kind::kBlock);
    for (const std::string& option : options) {
      all->body.push_back(MakeStatement(Kind::kSetOption));
      all->body.back()->text = option;
      all->body.back()->flag = statement->flag;
    }
    return all;
  } else {
    Fail();
  }
  return statement;
}

StatementPtr Parser::ParseReturn() {
  StatementPtr statement = MakeStatement(Kind::kReturn);
  Take();
  if (AtValue()) statement->value = ParseValue();
  return statement;
}

StatementPtr Parser::ParseRaiseError() {
  StatementPtr statement = MakeStatement(Kind::kRaiseError);
  Take();
  Expect(Op::kLeftParen);
  statement->values = ParseValues();
  if (statement->values.size() < 3) Fail();
  Expect(Op::kRightParen);
  if (Accept("with"_kw)) {
    constexpr std::array kOptions = {"nowait"_kw, "log"_kw};
    do {
      if (!AtAny(kOptions)) Refuse("RAISERROR … WITH " + UpperCase(Peek().text));
      Take();
    } while (Accept(Op::kComma));
  }
  return statement;
}

StatementPtr Parser::ParseThrow() {
  StatementPtr statement = MakeStatement(Kind::kThrow);
  Take();
  if (!AtLiteral() && Peek().kind != TokenKind::kVariable) return statement;
  statement->values = ParseValues();
  if (statement->values.size() != 3) Fail();
  return statement;
}

StatementPtr Parser::ParseTransactionEnd(Statement::Kind kind) {
  StatementPtr statement = MakeStatement(kind);
  Take();
  if (Accept("tran"_kw) || Accept("transaction"_kw)) {
    AcceptTransactionName(*statement);
  } else if (kind != Kind::kSaveTransaction) {
    Accept("work"_kw);
  }
  if (kind == Kind::kSaveTransaction && statement->text.empty()) Fail();
  return statement;
}

void Parser::AcceptTransactionName(Statement& statement) {
  if (Peek().kind == TokenKind::kVariable) Refuse("A transaction name in a variable");
  if (AtName()) statement.text = ParseName();
}

StatementPtr Parser::ParseExecute(bool word_omitted) {
  StatementPtr statement = MakeStatement(Kind::kExecute);
  if (!word_omitted) Take();
  if (Accept(Op::kLeftParen)) {
    statement->text_expression = ParseValue();
    if (At(Op::kComma)) Refuse("EXECUTE with parameters for a linked server");
    Expect(Op::kRightParen);
    return statement;
  }
  if (Peek().kind == TokenKind::kVariable) {
    if (!At(Op::kEqual, 1)) Refuse("EXECUTE of a procedure named by a variable");
    statement->result_variable = ParseVariableName();
    Take();
  }
  statement->table = ParseObjectName();
  if (AtValue() || At("default"_kw)) {
    do {
      ParseExecuteArgument(*statement);
    } while (Accept(Op::kComma));
  }
  AcceptBoth("with"_kw, "recompile"_kw);
  return statement;
}

void Parser::ParseExecuteArgument(Statement& statement) {
  std::string name;
  if (Peek().kind == TokenKind::kVariable && At(Op::kEqual, 1)) {
    name = ParseVariableName();
    Take();
  }
  ExpressionPtr value;
  if (AtName()) {
    // A bare word is a text.
    value = MakeNode(Expression::Kind::kLiteral);
    value->literal = LiteralKind::kString;
    value->text = ParseName();
  } else if (!Accept("default"_kw)) {
    value = ParseUnary();
    RequireValue(*value);
  }
  statement.arguments.emplace_back(std::move(name), std::move(value));
  const bool output = Accept("output"_kw) || Accept("out"_kw);
  statement.argument_outputs.push_back(output);
}

StatementPtr Parser::ParseWaitFor() {
  StatementPtr statement = MakeStatement(Kind::kWaitFor);
  Take();
  if (At("time"_kw)) Refuse("WAITFOR TIME");
  Expect("delay"_kw);
  statement->value = ParseValue();
  return statement;
}

}  // namespace tessarlorn::tsql
