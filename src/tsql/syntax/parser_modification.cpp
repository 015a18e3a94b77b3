// INSERT, UPDATE, DELETE and TRUNCATE.
#include <utility>

#include "platform/text/text.h"
#include "tsql/syntax/parser_core.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {

ObjectName Parser::ParseTarget() {
  if (Peek().kind == TokenKind::kVariable) return {"", ParseVariableName()};
  if (At("openquery"_kw) || At("openrowset"_kw)) Refuse(UpperCase(Peek().text));
  return ParseObjectName();
}

std::vector<SelectItem> Parser::AcceptOutput() {
  std::vector<SelectItem> items;
  if (!Accept("output"_kw)) return items;
  do {
    items.push_back(ParseSelectItem());
  } while (Accept(Op::kComma));
  if (At("into"_kw)) Refuse("OUTPUT … INTO");
  return items;
}

StatementPtr Parser::ParseInsert(std::vector<CommonTable> with) {
  const std::uint32_t line = Take().line;
  InsertStatement insert;
  insert.with = std::move(with);
  if (At("top"_kw)) Refuse("INSERT TOP");
  Accept("into"_kw);
  insert.table = ParseTarget();
  if (At("with"_kw) && At(Op::kLeftParen, 1)) AcceptTableHints();
  if (At(Op::kLeftParen) && !AtQueryInParens()) insert.columns = ParseNameList();
  insert.output = AcceptOutput();
  if (AcceptBoth("default"_kw, "values"_kw)) {
    insert.source = DefaultValues{};
  } else if (At("exec"_kw) || At("execute"_kw)) {
    if (!insert.output.empty()) Refuse("OUTPUT with INSERT … EXEC");
    insert.source = ParseExecute(false);
  } else if (At("values"_kw)) {
    insert.source = ParseRows(true);
  } else {
    insert.source = ParseStatementQuery();
  }
  return MakeStatement(line, std::move(insert));
}

StatementPtr Parser::ParseUpdate(std::vector<CommonTable> with) {
  const std::uint32_t line = Take().line;
  UpdateStatement update;
  update.rows.with = std::move(with);
  if (At("statistics"_kw)) Refuse("UPDATE STATISTICS");
  update.rows.top = AcceptStatementTop();
  update.rows.table = ParseTarget();
  AcceptTableHints();
  Expect("set"_kw);
  do {
    update.assignments.push_back(ParseAssignment());
  } while (Accept(Op::kComma));
  update.rows.output = AcceptOutput();
  ParseModificationTail(update.rows);
  return MakeStatement(line, std::move(update));
}

StatementPtr Parser::ParseDelete(std::vector<CommonTable> with) {
  const std::uint32_t line = Take().line;
  ChangedRows rows;
  rows.with = std::move(with);
  rows.top = AcceptStatementTop();
  Accept("from"_kw);
  rows.table = ParseTarget();
  AcceptTableHints();
  rows.output = AcceptOutput();
  ParseModificationTail(rows);
  return MakeStatement(line, DeleteStatement{std::move(rows)});
}

// [FROM …] [WHERE …] [OPTION …] of UPDATE and DELETE.
void Parser::ParseModificationTail(ChangedRows& rows) {
  if (Accept("from"_kw)) rows.from = ParseFrom();
  if (Accept("where"_kw)) {
    if (At("current"_kw)) Refuse("WHERE CURRENT OF");
    rows.where = ParseCondition();
  }
  AcceptQueryOptions();
}

StatementPtr Parser::ParseTruncate() {
  const std::uint32_t line = Take().line;
  Expect("table"_kw);
  return MakeStatement(line, TruncateStatement{ParseObjectName()});
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
      if (!AcceptAssignmentOp(assignment.compound)) Fail();
      assignment.value = ParseValue();
      return assignment;
    }
  }
  assignment.column.push_back(ParseName());
  while (Accept(Op::kDot)) assignment.column.push_back(ParseName());
  if (At(Op::kLeftParen)) Refuse("The method " + assignment.column.back());
  if (!AcceptAssignmentOp(assignment.compound)) Fail();
  assignment.value = ParseValue();
  return assignment;
}

bool Parser::AcceptAssignmentOp(std::optional<BinaryOp>& compound) {
  // &=, |= and ^= are two tokens.
  const bool two = At(Op::kEqual, 1);
  const Op op = Peek().op;
  switch (op) {
    case Op::kEqual:
      Take();
      return true;
    case Op::kPlusEqual:
      compound = BinaryOp::kAdd;
      break;
    case Op::kMinusEqual:
      compound = BinaryOp::kSubtract;
      break;
    case Op::kStarEqual:
      compound = BinaryOp::kMultiply;
      break;
    case Op::kSlashEqual:
      compound = BinaryOp::kDivide;
      break;
    case Op::kPercentEqual:
      compound = BinaryOp::kModulo;
      break;
    case Op::kAmpersand:
      compound = BinaryOp::kBitAnd;
      break;
    case Op::kPipe:
      compound = BinaryOp::kBitOr;
      break;
    case Op::kCaret:
      compound = BinaryOp::kBitXor;
      break;
    default:
      return false;
  }
  if (op == Op::kAmpersand || op == Op::kPipe || op == Op::kCaret) {
    if (!two) {
      compound.reset();
      return false;
    }
    Take();
  }
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
