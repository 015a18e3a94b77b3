// CREATE, ALTER and DROP of indexes, views and procedures; of tables see parser_table.cpp.
#include <array>
#include <utility>

#include "platform/text/text.h"
#include "tsql/syntax/parser_core.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {

StatementPtr Parser::ParseCreate() {
  const std::size_t begin = position_;
  if (At("or"_kw, 1) && At("alter"_kw, 2)) {
    position_ += 3;
    if (At("view"_kw)) return ParseView(begin, true);
    if (At("proc"_kw) || At("procedure"_kw)) return ParseProcedure(begin, true);
    if (At("trigger"_kw)) return ParseTrigger(begin, true);
    if (At("function"_kw)) return ParseFunction(begin, true);
    Refuse("CREATE OR ALTER " + UpperCase(Peek().text));
  }
  Take();
  if (At("table"_kw)) return ParseCreateTable();
  if (At("view"_kw)) return ParseView(begin, false);
  if (At("proc"_kw) || At("procedure"_kw)) return ParseProcedure(begin, false);
  if (At("trigger"_kw)) return ParseTrigger(begin, false);
  if (At("function"_kw)) return ParseFunction(begin, false);
  if (At("sequence"_kw)) return ParseSequence(false);
  if (At("schema"_kw)) return ParseCreateSchema(begin);
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
  if (At("trigger"_kw)) return ParseTrigger(begin, true);
  if (At("function"_kw)) return ParseFunction(begin, true);
  if (At("sequence"_kw)) return ParseSequence(true);
  if (At("schema"_kw)) return ParseAlterSchema();
  if (Peek().kind != TokenKind::kWord) Fail();
  Refuse("ALTER " + UpperCase(Peek().text));
}

StatementPtr Parser::ParseDrop() {
  const std::uint32_t line = Take().line;
  if (Accept("index"_kw)) return ParseDropIndex(Peek().line);
  if (Accept("schema"_kw)) return ParseDropSchema(line);
  DropStatement drop;
  if (Accept("view"_kw)) {
    drop.kind = ObjectKind::kView;
  } else if (Accept("proc"_kw) || Accept("procedure"_kw)) {
    drop.kind = ObjectKind::kProcedure;
  } else if (Accept("trigger"_kw)) {
    drop.kind = ObjectKind::kTrigger;
  } else if (Accept("function"_kw)) {
    drop.kind = ObjectKind::kFunction;
  } else if (Accept("sequence"_kw)) {
    drop.kind = ObjectKind::kSequence;
  } else if (!Accept("table"_kw)) {
    if (Peek().kind != TokenKind::kWord) Fail();
    Refuse("DROP " + UpperCase(Peek().text));
  }
  drop.if_exists = AcceptBoth("if"_kw, "exists"_kw);
  do {
    drop.names.push_back(ParseObjectName());
  } while (Accept(Op::kComma));
  return MakeStatement(line, std::move(drop));
}

// DROP INDEX name ON table, or the older table.name; several are a block.
StatementPtr Parser::ParseDropIndex(std::uint32_t line) {
  BlockStatement all;
  const bool if_exists = AcceptBoth("if"_kw, "exists"_kw);
  do {
    const std::uint32_t own_line = Peek().line;
    DropIndexStatement drop;
    drop.if_exists = if_exists;
    ObjectName name = ParseWrittenName();
    drop.name = name.name;
    if (Accept("on"_kw)) {
      drop.table = ParseObjectName();
    } else {
      if (name.qualifier.empty()) Fail();
      const std::size_t dot = name.qualifier.rfind('.');
      drop.table = dot == std::string::npos
                       ? ObjectName{"", name.qualifier}
                       : MakeObjectName(name.qualifier.substr(0, dot), name.qualifier.substr(dot + 1));
    }
    all.body.push_back(MakeStatement(own_line, std::move(drop)));
  } while (Accept(Op::kComma));
  return all.body.size() == 1 ? std::move(all.body[0]) : MakeStatement(line, std::move(all));
}

StatementPtr Parser::ParseCreateIndex() {
  const std::uint32_t line = Peek().line;
  CreateIndexStatement index;
  index.unique = Accept("unique"_kw);
  if (!Accept("clustered"_kw)) Accept("nonclustered"_kw);
  if (At("columnstore"_kw)) Refuse("CREATE COLUMNSTORE INDEX");
  Expect("index"_kw);
  index.name = ParseName();
  Expect("on"_kw);
  index.table = ParseObjectName();
  Expect(Op::kLeftParen);
  do {
    KeyColumn& column = index.key.emplace_back();
    column.name = ParseName();
    column.descending = Accept("desc"_kw);
    if (!column.descending) Accept("asc"_kw);
  } while (Accept(Op::kComma));
  Expect(Op::kRightParen);
  if (Accept("include"_kw)) index.included = ParseNameList();
  if (Accept("where"_kw)) {
    const std::size_t begin = position_;
    index.where = ParseCondition();
    index.where_text = TextBetween(begin, position_);
  }
  AcceptIndexOptions();
  return MakeStatement(line, std::move(index));
}

bool Parser::BeginsWithAlter(std::size_t begin, std::string_view kind) const {
  const bool alter = tokens_[begin].id == static_cast<std::uint32_t>("alter"_kw);
  for (std::size_t i = 0; i < begin_; ++i) {
    if (tokens_[i].op == Op::kSemicolon) continue;
    RaiseAt(111, std::string(alter ? "'ALTER " : "'CREATE ").append(kind) +
                     "' must be the first statement in a query batch.");
  }
  return alter;
}

StatementPtr Parser::ParseView(std::size_t begin, bool replace) {
  const bool alter = BeginsWithAlter(begin, "VIEW");
  const std::uint32_t line = Take().line;
  CreateViewStatement create;
  create.replace = replace;
  create.must_exist = alter;
  create.view = ParseObjectName();
  if (At(Op::kLeftParen)) create.columns = ParseNameList();
  if (Accept("with"_kw)) Expect("schemabinding"_kw);
  Expect("as"_kw);
  ++query_depth_;
  create.query = ParseQuery();
  --query_depth_;
  if (At("with"_kw)) Refuse("WITH CHECK OPTION");
  create.source_text = TextBetween(begin, position_);
  return MakeStatement(line, std::move(create));
}

StatementPtr Parser::ParseProcedure(std::size_t begin, bool replace) {
  const bool alter = BeginsWithAlter(begin, "PROCEDURE");
  const std::uint32_t line = Take().line;
  CreateProcedureStatement create;
  create.replace = replace;
  create.must_exist = alter;
  create.procedure = ParseObjectName();
  const bool parens = Accept(Op::kLeftParen);
  create.parameters = ParseParameters();
  if (parens) Expect(Op::kRightParen);
  if (Accept("with"_kw)) {
    if (!At("recompile"_kw) && !At("encryption"_kw)) Refuse("CREATE PROCEDURE … WITH " + UpperCase(Peek().text));
    Take();
  }
  Expect("as"_kw);
  create.body = ParseBody();
  create.source_text = TextBetween(begin, position_);
  return MakeStatement(line, std::move(create));
}

std::vector<StatementPtr> Parser::ParseBody() {
  std::vector<StatementPtr> body;
  for (;;) {
    while (Accept(Op::kSemicolon)) continue;
    if (AtEnd()) break;
    body.push_back(ParseStatement());
  }
  if (body.empty()) Fail();
  return body;
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
  if (At("cursor"_kw)) Refuse("A parameter that is a cursor");
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
