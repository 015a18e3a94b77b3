// FOR XML and FOR JSON.
#include <utility>

#include "tsql/syntax/parser_core.h"

namespace tessarlorn::tsql {

std::string Parser::ParseTextInParens() {
  Expect(Op::kLeftParen);
  if (Peek().kind != TokenKind::kString && Peek().kind != TokenKind::kNString) Fail();
  std::string text = Unquote(Take());
  Expect(Op::kRightParen);
  return text;
}

ForClause Parser::ParseForClause() {
  Expect("for"_kw);
  return Accept("json"_kw) ? ParseForJson() : ParseForXml();
}

ForClause Parser::ParseForXml() {
  ForClause clause;
  Expect("xml"_kw);
  if (Accept("raw"_kw)) {
    clause.form = ForClause::Form::kXmlRaw;
  } else if (!Accept("path"_kw)) {
    Refuse("FOR XML " + UpperCase(Peek().text));
  }
  if (At(Op::kLeftParen)) clause.row = ParseTextInParens();
  while (Accept(Op::kComma)) {
    if (Accept("type"_kw)) {
      clause.typed = true;
      continue;
    }
    if (!Accept("root"_kw)) Refuse("FOR XML …, " + UpperCase(Peek().text));
    clause.root = At(Op::kLeftParen) ? ParseTextInParens() : "root";
  }
  return clause;
}

ForClause Parser::ParseForJson() {
  ForClause clause;
  clause.form = ForClause::Form::kJson;
  clause.automatic = Accept("auto"_kw);
  if (!clause.automatic) Expect("path"_kw);
  while (Accept(Op::kComma)) {
    if (Accept("include_null_values"_kw)) {
      clause.includes_nulls = true;
    } else if (Accept("without_array_wrapper"_kw)) {
      clause.array = false;
    } else {
      Expect("root"_kw);
      clause.root = At(Op::kLeftParen) ? ParseTextInParens() : "root";
    }
  }
  return clause;
}

TypeName Parser::ParseTypeOf(const std::string& text) {
  NameTable names;
  Tokens tokens;
  TokenizeDefinition(text, names, tokens);
  return Parser(text, tokens, 0).ParseType();
}

// (SELECT … FOR XML …, TYPE).value('.', 'type'): the whole text, whatever way the path goes to it.
ExpressionPtr Parser::ParseXmlValue(std::uint32_t line, QueryPtr query) {
  Expect(Op::kDot);
  if (!Accept("value"_kw) || !query->for_clause || query->for_clause->form == ForClause::Form::kJson) {
    Refuse("A method of xml");
  }
  Expect(Op::kLeftParen);
  std::string_view path = Peek().text;
  const bool is_path = Peek().kind == TokenKind::kString || Peek().kind == TokenKind::kNString;
  if (!is_path || path.find_first_not_of("./()[]1text") != std::string_view::npos) Refuse("A path into xml");
  Take();
  Expect(Op::kComma);
  if (Peek().kind != TokenKind::kString && Peek().kind != TokenKind::kNString) Fail();
  CastExpression cast;
  cast.type = ParseTypeOf(Unquote(Take()));
  Expect(Op::kRightParen);
  query->for_clause->as_value = true;
  cast.value = MakeExpression(line, ScalarSubquery{std::move(query)});
  return MakeExpression(line, std::move(cast));
}

}  // namespace tessarlorn::tsql
