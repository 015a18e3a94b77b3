#include <array>
#include <utility>

#include "platform/text.h"
#include "tsql/syntax/parser_core.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

using Kind = Statement::Kind;

}  // namespace

StatementPtr Parser::ParseCreate() {
  const std::size_t begin = position_;
  if (At("or"_kw, 1) && At("alter"_kw, 2)) {
    position_ += 3;
    if (At("view"_kw)) return ParseView(begin, true);
    if (At("proc"_kw) || At("procedure"_kw)) return ParseProcedure(begin, true);
    Refuse("CREATE OR ALTER " + UpperCase(Peek().text));
  }
  Take();
  if (At("table"_kw)) return ParseCreateTable();
  if (At("view"_kw)) return ParseView(begin, false);
  if (At("proc"_kw) || At("procedure"_kw)) return ParseProcedure(begin, false);
  constexpr std::array kIndexWords = {"unique"_kw, "clustered"_kw, "nonclustered"_kw, "index"_kw};
  if (AtAny(kIndexWords)) return ParseCreateIndex();
  if (Peek().kind != TokenKind::kWord) Fail();
  Refuse("CREATE " + UpperCase(Peek().text));
}

StatementPtr Parser::ParseAlter() {
  const std::size_t begin = position_;
  Take();
  if (At("table"_kw)) return ParseAlterTable();
  if (At("view"_kw)) return ParseView(begin, true);
  if (At("proc"_kw) || At("procedure"_kw)) return ParseProcedure(begin, true);
  if (Peek().kind != TokenKind::kWord) Fail();
  Refuse("ALTER " + UpperCase(Peek().text));
}

StatementPtr Parser::ParseDrop() {
  StatementPtr statement = MakeStatement(Kind::kDropTable);
  Take();
  if (Accept("index"_kw)) return ParseDropIndex();
  if (Accept("view"_kw)) {
    statement->object_kind = Statement::ObjectKind::kView;
  } else if (Accept("proc"_kw) || Accept("procedure"_kw)) {
    statement->object_kind = Statement::ObjectKind::kProcedure;
  } else if (!Accept("table"_kw)) {
    if (Peek().kind != TokenKind::kWord) Fail();
    Refuse("DROP " + UpperCase(Peek().text));
  }
  statement->if_exists = AcceptBoth("if"_kw, "exists"_kw);
  do {
    statement->tables.push_back(ParseObjectName());
  } while (Accept(Op::kComma));
  return statement;
}

// DROP INDEX name ON table, or the older table.name; several are a block.
StatementPtr Parser::ParseDropIndex() {
  StatementPtr all = MakeStatement(Kind::kBlock);
  const bool if_exists = AcceptBoth("if"_kw, "exists"_kw);
  do {
    StatementPtr statement = MakeStatement(Kind::kDropIndex);
    statement->if_exists = if_exists;
    ObjectName name = ParseObjectName();
    statement->text = name.name;
    if (Accept("on"_kw)) {
      statement->table = ParseObjectName();
    } else {
      if (name.qualifier.empty()) Fail();
      const std::size_t dot = name.qualifier.rfind('.');
      statement->table.name = dot == std::string::npos ? name.qualifier : name.qualifier.substr(dot + 1);
    }
    all->body.push_back(std::move(statement));
  } while (Accept(Op::kComma));
  return all->body.size() == 1 ? std::move(all->body[0]) : std::move(all);
}

StatementPtr Parser::ParseCreateTable() {
  StatementPtr statement = MakeStatement(Kind::kCreateTable);
  Take();
  statement->table = ParseObjectName();
  Expect(Op::kLeftParen);
  do {
    if (At(Op::kRightParen) && !statement->column_definitions.empty()) break;  // a comma behind the last column
    ParseTableElement(*statement);
  } while (Accept(Op::kComma));
  Expect(Op::kRightParen);
  AcceptIndexOptions();
  return statement;
}

void Parser::ParseTableElement(Statement& statement) {
  constexpr std::array kConstraintWords = {"constraint"_kw, "primary"_kw, "unique"_kw,
                                           "check"_kw,      "foreign"_kw, "default"_kw};
  if (AtAny(kConstraintWords)) {
    statement.constraints.push_back(ParseTableConstraint());
    return;
  }
  if (At("index"_kw)) Refuse("An INDEX within CREATE TABLE");
  statement.column_definitions.push_back(ParseColumnDefinition(statement.constraints));
}

ColumnDefinition Parser::ParseColumnDefinition(std::vector<TableConstraint>& constraints) {
  ColumnDefinition column;
  column.name = ParseName();
  if (Accept("as"_kw)) {
    column.computed = ParseValue();
    Accept("persisted"_kw);
  } else {
    column.type = ParseType();
  }
  while (AcceptColumnConstraint(column, constraints)) continue;
  return column;
}

bool Parser::AcceptColumnConstraint(ColumnDefinition& column, std::vector<TableConstraint>& constraints) {
  if (Accept("null"_kw)) {
    column.nullable = true;
    return true;
  }
  if (At("not"_kw) && At("null"_kw, 1)) {
    position_ += 2;
    column.nullable = false;
    return true;
  }
  if (AcceptBoth("not"_kw, "for"_kw)) {
    Expect("replication"_kw);
    return true;
  }
  if (Accept("identity"_kw)) {
    column.identity = true;
    if (Accept(Op::kLeftParen)) {
      column.identity_seed = ParseSignedInteger();
      Expect(Op::kComma);
      column.identity_increment = ParseSignedInteger();
      Expect(Op::kRightParen);
    }
    return true;
  }
  if (Accept("collate"_kw)) {
    column.collation = ParseName();
    return true;
  }
  if (Accept("rowguidcol"_kw) || Accept("sparse"_kw)) return true;

  TableConstraint constraint;
  const bool named = Accept("constraint"_kw);
  if (named) constraint.name = ParseName();
  constraint.columns = {column.name};
  if (Accept("default"_kw)) {
    ParseDefault(column.default_value, column.default_text);
    constraint.kind = TableConstraint::Kind::kDefault;
  } else if (Accept("primary"_kw)) {
    Expect("key"_kw);
    constraint.kind = TableConstraint::Kind::kPrimaryKey;
    column.primary_key = !named;
    AcceptIndexOptions();
  } else if (Accept("unique"_kw)) {
    constraint.kind = TableConstraint::Kind::kUnique;
    column.unique = !named;
    AcceptIndexOptions();
  } else if (Accept("check"_kw)) {
    constraint.kind = TableConstraint::Kind::kCheck;
    // Two unnamed checks of one column: the second one is the table's.
    const bool of_table = named || column.check != nullptr;
    ParseCheck(of_table ? constraint.check : column.check, of_table ? constraint.check_text : column.check_text);
    if (of_table) constraints.push_back(std::move(constraint));
    return true;
  } else if (AcceptBoth("foreign"_kw, "key"_kw) || At("references"_kw)) {
    constraint.kind = TableConstraint::Kind::kForeignKey;
    ParseReferences(constraint);
    constraints.push_back(std::move(constraint));
    return true;
  } else {
    if (named) Fail();
    return false;
  }
  if (named) constraints.push_back(std::move(constraint));
  return true;
}

TableConstraint Parser::ParseTableConstraint() {
  TableConstraint constraint;
  if (Accept("constraint"_kw)) constraint.name = ParseName();
  if (Accept("primary"_kw)) {
    Expect("key"_kw);
    constraint.kind = TableConstraint::Kind::kPrimaryKey;
  } else if (Accept("unique"_kw)) {
    constraint.kind = TableConstraint::Kind::kUnique;
  } else if (Accept("check"_kw)) {
    constraint.kind = TableConstraint::Kind::kCheck;
    ParseCheck(constraint.check, constraint.check_text);
    return constraint;
  } else if (Accept("default"_kw)) {
    constraint.kind = TableConstraint::Kind::kDefault;
    ParseDefault(constraint.check, constraint.check_text);
    Expect("for"_kw);
    constraint.columns = {ParseName()};
    return constraint;
  } else {
    Expect("foreign"_kw);
    Expect("key"_kw);
    constraint.kind = TableConstraint::Kind::kForeignKey;
    constraint.columns = ParseNameList();
    ParseReferences(constraint);
    return constraint;
  }
  AcceptIndexOptions();
  constraint.columns = ParseKeyColumns();
  AcceptIndexOptions();
  return constraint;
}

void Parser::ParseReferences(TableConstraint& constraint) {
  Expect("references"_kw);
  constraint.references = ParseObjectName();
  if (At(Op::kLeftParen)) constraint.referenced_columns = ParseNameList();
  while (At("on"_kw) && (At("delete"_kw, 1) || At("update"_kw, 1))) {
    Take();
    const std::string event = UpperCase(Take().text);
    if (!AcceptBoth("no"_kw, "action"_kw)) Refuse("ON " + event + " " + UpperCase(Peek().text));
  }
}

void Parser::ParseDefault(ExpressionPtr& value, std::string& text) {
  const std::size_t begin = position_;
  value = ParseValue();
  text = TextBetween(begin, position_);
}

void Parser::ParseCheck(ExpressionPtr& check, std::string& text) {
  if (AcceptBoth("not"_kw, "for"_kw)) Expect("replication"_kw);
  Expect(Op::kLeftParen);
  const std::size_t begin = position_;
  check = ParseCondition();
  text = TextBetween(begin, position_);
  Expect(Op::kRightParen);
}

std::vector<std::string> Parser::ParseKeyColumns() {
  std::vector<std::string> columns;
  Expect(Op::kLeftParen);
  do {
    columns.push_back(ParseName());
    if (!Accept("asc"_kw)) Accept("desc"_kw);
  } while (Accept(Op::kComma));
  Expect(Op::kRightParen);
  return columns;
}

// What tells the server where and how to store an index or a table: without meaning here.
void Parser::AcceptIndexOptions() {
  for (;;) {
    if (Accept("clustered"_kw) || Accept("nonclustered"_kw) || Accept("asc"_kw) || Accept("desc"_kw)) continue;
    if (At("with"_kw) && At(Op::kLeftParen, 1)) {
      Take();
      SkipParens();
    } else if (AcceptBoth("with"_kw, "fillfactor"_kw)) {
      Expect(Op::kEqual);
      ParseSignedInteger();
    } else if ((At("on"_kw) || At("textimage_on"_kw)) && AtName(1)) {
      Take();
      Take();
    } else {
      return;
    }
  }
}

StatementPtr Parser::ParseAlterTable() {
  StatementPtr statement = MakeStatement(Kind::kAlterTable);
  Take();
  statement->table = ParseObjectName();
  if (AcceptBoth("with"_kw, "nocheck"_kw)) Refuse("ALTER TABLE … WITH NOCHECK");
  AcceptBoth("with"_kw, "check"_kw);
  if (Accept("add"_kw)) {
    do {
      ParseTableElement(*statement);
    } while (Accept(Op::kComma));
    statement->alter =
        statement->column_definitions.empty() ? Statement::Alter::kAddConstraint : Statement::Alter::kAddColumns;
  } else if (Accept("drop"_kw)) {
    statement->alter = Accept("column"_kw) ? Statement::Alter::kDropColumn : Statement::Alter::kDropConstraint;
    if (statement->alter == Statement::Alter::kDropConstraint) Accept("constraint"_kw);
    statement->if_exists = AcceptBoth("if"_kw, "exists"_kw);
    do {
      statement->columns.push_back(ParseName());
    } while (Accept(Op::kComma));
  } else if (AcceptBoth("alter"_kw, "column"_kw)) {
    statement->alter = Statement::Alter::kAlterColumn;
    statement->column_definitions.push_back(ParseColumnDefinition(statement->constraints));
  } else {
    if (Peek().kind != TokenKind::kWord) Fail();
    Refuse("ALTER TABLE … " + UpperCase(Peek().text));
  }
  return statement;
}

StatementPtr Parser::ParseCreateIndex() {
  StatementPtr statement = MakeStatement(Kind::kCreateIndex);
  statement->flag = Accept("unique"_kw);
  if (!Accept("clustered"_kw)) Accept("nonclustered"_kw);
  if (At("columnstore"_kw)) Refuse("CREATE COLUMNSTORE INDEX");
  Expect("index"_kw);
  statement->text = ParseName();
  Expect("on"_kw);
  statement->table = ParseObjectName();
  Expect(Op::kLeftParen);
  do {
    OrderItem& item = statement->order.emplace_back();
    item.expression = MakeNode(Expression::Kind::kColumn);
    item.expression->parts.push_back(ParseName());
    item.descending = Accept("desc"_kw);
    if (!item.descending) Accept("asc"_kw);
  } while (Accept(Op::kComma));
  Expect(Op::kRightParen);
  if (Accept("include"_kw)) statement->columns = ParseNameList();
  if (Accept("where"_kw)) statement->where = ParseCondition();
  AcceptIndexOptions();
  return statement;
}

void Parser::RequireFirstInBatch(std::string_view what) const {
  for (std::size_t i = 0; i < begin_; ++i) {
    if (tokens_[i].op == Op::kSemicolon) continue;
    RaiseAt(111, "'" + std::string(what) + "' must be the first statement in a query batch.");
  }
}

StatementPtr Parser::ParseView(std::size_t begin, bool replace) {
  const bool alter = tokens_[begin].id == static_cast<std::uint32_t>("alter"_kw);
  RequireFirstInBatch(alter ? "ALTER VIEW" : "CREATE VIEW");
  StatementPtr statement = MakeStatement(Kind::kCreateView);
  Take();
  statement->flag = replace;
  statement->table = ParseObjectName();
  if (At(Op::kLeftParen)) statement->columns = ParseNameList();
  if (Accept("with"_kw)) Expect("schemabinding"_kw);
  Expect("as"_kw);
  ++query_depth_;
  statement->query = ParseQuery();
  --query_depth_;
  if (At("with"_kw)) Refuse("WITH CHECK OPTION");
  statement->source_text = TextBetween(begin, position_);
  return statement;
}

StatementPtr Parser::ParseProcedure(std::size_t begin, bool replace) {
  const bool alter = tokens_[begin].id == static_cast<std::uint32_t>("alter"_kw);
  RequireFirstInBatch(alter ? "ALTER PROCEDURE" : "CREATE PROCEDURE");
  StatementPtr statement = MakeStatement(Kind::kCreateProcedure);
  Take();
  statement->flag = replace;
  statement->table = ParseObjectName();
  const bool parens = Accept(Op::kLeftParen);
  statement->parameters = ParseParameters();
  if (parens) Expect(Op::kRightParen);
  if (Accept("with"_kw)) {
    if (!At("recompile"_kw) && !At("encryption"_kw)) Refuse("CREATE PROCEDURE … WITH " + UpperCase(Peek().text));
    Take();
  }
  Expect("as"_kw);
  for (;;) {
    while (Accept(Op::kSemicolon)) continue;
    if (AtEnd()) break;
    statement->body.push_back(ParseStatement());
  }
  if (statement->body.empty()) Fail();
  statement->source_text = TextBetween(begin, position_);
  return statement;
}

std::vector<Parameter> Parser::ParseParameters() {
  std::vector<Parameter> parameters;
  if (Peek().kind != TokenKind::kVariable) return parameters;
  do {
    parameters.push_back(ParseParameter());
  } while (Accept(Op::kComma));
  return parameters;
}

Parameter Parser::ParseParameter() {
  Parameter parameter;
  parameter.name = ParseVariableName();
  Accept("as"_kw);
  if (At("cursor"_kw)) Refuse("A cursor");
  parameter.type = ParseType();
  if (!Accept("null"_kw)) AcceptBoth("not"_kw, "null"_kw);
  if (Accept(Op::kEqual)) {
    parameter.default_value = ParseUnary();
    RequireValue(*parameter.default_value);
  }
  parameter.output = Accept("output"_kw) || Accept("out"_kw);
  if (At("readonly"_kw)) Refuse("A table-valued parameter");
  return parameter;
}

}  // namespace tessarlorn::tsql
