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

Output Parser::AcceptOutput() {
  Output output;
  if (!Accept("output"_kw)) return output;
  do {
    output.items.push_back(ParseSelectItem());
  } while (Accept(Op::kComma));
  if (Accept("into"_kw)) {
    output.into = ParseTarget();
    if (At(Op::kLeftParen)) output.columns = ParseNameList();
  }
  if (At("output"_kw)) Refuse("A second OUTPUT");
  return output;
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
    if (!insert.output.items.empty()) Refuse("OUTPUT with INSERT … EXEC");
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

StatementPtr Parser::ParseMerge(std::vector<CommonTable> with) {
  const std::uint32_t line = Take().line;
  MergeStatement merge;
  merge.with = std::move(with);
  if (At("top"_kw)) Refuse("MERGE TOP");
  Accept("into"_kw);
  merge.target.name = ParseTarget();
  AcceptTableHints();
  // It is no reserved word.
  if (!At("using"_kw)) merge.target.alias = AcceptAlias();
  Expect("using"_kw);
  merge.source = ParseSourcePrimary();
  Expect("on"_kw);
  merge.on = ParseCondition();
  do {
    merge.branches.push_back(ParseMergeBranch());
  } while (At("when"_kw));
  merge.output = AcceptOutput();
  AcceptQueryOptions();
  if (!At(Op::kSemicolon)) RaiseAt(10713, "A MERGE statement must be terminated by a semi-colon (;).");
  return MakeStatement(line, std::move(merge));
}

// WHEN [NOT] MATCHED [BY TARGET|SOURCE] [AND …] THEN …
MergeStatement::Branch Parser::ParseMergeBranch() {
  using Match = MergeStatement::Match;
  MergeStatement::Branch branch;
  Expect("when"_kw);
  if (Accept("not"_kw)) branch.match = Match::kNotMatched;
  Expect("matched"_kw);
  if (branch.match == Match::kNotMatched && Accept("by"_kw)) {
    if (Accept("source"_kw)) {
      branch.match = Match::kNotMatchedBySource;
    } else {
      Expect("target"_kw);
    }
  }
  if (Accept("and"_kw)) branch.condition = ParseCondition();
  Expect("then"_kw);
  if (branch.match == Match::kNotMatched) {
    branch.action = ParseMergeInsert();
  } else if (Accept("delete"_kw)) {
    branch.action = MergeStatement::Delete{};
  } else {
    Expect("update"_kw);
    Expect("set"_kw);
    MergeStatement::Update update;
    do {
      update.assignments.push_back(ParseAssignment());
    } while (Accept(Op::kComma));
    branch.action = std::move(update);
  }
  return branch;
}

MergeStatement::Insert Parser::ParseMergeInsert() {
  MergeStatement::Insert insert;
  Expect("insert"_kw);
  if (At(Op::kLeftParen)) insert.columns = ParseNameList();
  if (AcceptBoth("default"_kw, "values"_kw)) return insert;
  const QueryPtr rows = ParseRows(true);
  auto& values = std::get<ValueRows>(rows->body).rows;
  if (values.size() > 1) Fail();
  insert.values = std::move(values[0]);
  return insert;
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
  const bool is_default = !assignment.compound && At("default"_kw);
  assignment.value = is_default ? MakeExpression(Take().line, DefaultValue{}) : ParseValue();
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
