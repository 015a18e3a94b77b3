#include <utility>

#include "platform/text.h"
#include "tsql/syntax/parser_core.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

using Kind = Statement::Kind;

}  // namespace

ObjectName Parser::ParseTarget() {
  if (Peek().kind == TokenKind::kVariable) Refuse("A table variable");
  if (At("openquery"_kw) || At("openrowset"_kw)) Refuse(UpperCase(Peek().text));
  return ParseObjectName();
}

void Parser::AcceptOutput(Statement& statement) {
  if (!Accept("output"_kw)) return;
  do {
    statement.output.push_back(ParseSelectItem());
  } while (Accept(Op::kComma));
  if (At("into"_kw)) Refuse("OUTPUT … INTO");
}

StatementPtr Parser::ParseInsert() {
  StatementPtr statement = MakeStatement(Kind::kInsert);
  Take();
  if (At("top"_kw)) Refuse("INSERT TOP");
  Accept("into"_kw);
  statement->table = ParseTarget();
  if (At("with"_kw) && At(Op::kLeftParen, 1)) AcceptTableHints();
  if (At(Op::kLeftParen) && !AtQueryInParens()) statement->columns = ParseNameList();
  AcceptOutput(*statement);
  if (AcceptBoth("default"_kw, "values"_kw)) {
    statement->default_values = true;
  } else if (At("exec"_kw) || At("execute"_kw)) {
    if (!statement->output.empty()) Refuse("OUTPUT with INSERT … EXEC");
    statement->execute = ParseExecute(false);
  } else if (At("values"_kw)) {
    statement->query = ParseRows(true);
  } else {
    statement->query = ParseStatementQuery();
  }
  return statement;
}

StatementPtr Parser::ParseUpdate() {
  StatementPtr statement = MakeStatement(Kind::kUpdate);
  Take();
  if (At("statistics"_kw)) Refuse("UPDATE STATISTICS");
  statement->top = AcceptStatementTop();
  statement->table = ParseTarget();
  AcceptTableHints();
  Expect("set"_kw);
  do {
    statement->assignments.push_back(ParseAssignment());
  } while (Accept(Op::kComma));
  AcceptOutput(*statement);
  ParseModificationTail(*statement);
  return statement;
}

StatementPtr Parser::ParseDelete() {
  StatementPtr statement = MakeStatement(Kind::kDelete);
  Take();
  statement->top = AcceptStatementTop();
  Accept("from"_kw);
  statement->table = ParseTarget();
  AcceptTableHints();
  AcceptOutput(*statement);
  ParseModificationTail(*statement);
  return statement;
}

// [FROM …] [WHERE …] [OPTION …] of UPDATE and DELETE.
void Parser::ParseModificationTail(Statement& statement) {
  if (Accept("from"_kw)) statement.from = ParseFrom();
  if (Accept("where"_kw)) {
    if (At("current"_kw)) Refuse("WHERE CURRENT OF");
    statement.where = ParseCondition();
  }
  AcceptQueryOptions();
}

StatementPtr Parser::ParseTruncate() {
  StatementPtr statement = MakeStatement(Kind::kTruncate);
  Take();
  Expect("table"_kw);
  statement->table = ParseTarget();
  return statement;
}

// @v = value, @v = column = value, [alias.]column = value, each with = or a compound operator.
Assignment Parser::ParseAssignment() {
  Assignment assignment;
  if (Peek().kind == TokenKind::kVariable) {
    assignment.variable = ParseVariableName();
    if (At(Op::kEqual)) {
      Take();
      if (!AtAssignedColumn()) {
        assignment.value = ParseValue();
        return assignment;
      }
    } else {
      if (!AcceptAssignmentOp(assignment)) Fail();
      assignment.value = ParseValue();
      return assignment;
    }
  }
  assignment.column.push_back(ParseName());
  while (Accept(Op::kDot)) assignment.column.push_back(ParseName());
  if (At(Op::kLeftParen)) Refuse("The method " + assignment.column.back());
  if (!AcceptAssignmentOp(assignment)) Fail();
  assignment.value = ParseValue();
  return assignment;
}

bool Parser::AcceptAssignmentOp(Assignment& assignment) {
  // &=, |= and ^= are two tokens.
  const bool two = At(Op::kEqual, 1);
  const Op op = Peek().op;
  switch (op) {
    case Op::kEqual:
      Take();
      return true;
    case Op::kPlusEqual:
      assignment.compound = BinaryOp::kAdd;
      break;
    case Op::kMinusEqual:
      assignment.compound = BinaryOp::kSubtract;
      break;
    case Op::kStarEqual:
      assignment.compound = BinaryOp::kMultiply;
      break;
    case Op::kSlashEqual:
      assignment.compound = BinaryOp::kDivide;
      break;
    case Op::kPercentEqual:
      assignment.compound = BinaryOp::kModulo;
      break;
    case Op::kAmpersand:
      assignment.compound = BinaryOp::kBitAnd;
      break;
    case Op::kPipe:
      assignment.compound = BinaryOp::kBitOr;
      break;
    case Op::kCaret:
      assignment.compound = BinaryOp::kBitXor;
      break;
    default:
      return false;
  }
  if (op == Op::kAmpersand || op == Op::kPipe || op == Op::kCaret) {
    if (!two) return false;
    Take();
  }
  assignment.is_compound = true;
  Take();
  return true;
}

// Whether a name and an assignment operator follow: @v = column = value.
bool Parser::AtAssignedColumn() const {
  if (!AtName()) return false;
  std::size_t ahead = 1;
  while (At(Op::kDot, ahead) && AtName(ahead + 1)) ahead += 2;
  switch (Peek(ahead).op) {
    case Op::kEqual:
    case Op::kPlusEqual:
    case Op::kMinusEqual:
    case Op::kStarEqual:
    case Op::kSlashEqual:
    case Op::kPercentEqual:
      return true;
    case Op::kAmpersand:
    case Op::kPipe:
    case Op::kCaret:
      return At(Op::kEqual, ahead + 1);
    default:
      return false;
  }
}

}  // namespace tessarlorn::tsql
