#include "tsql/syntax/parser.h"

#include <utility>

#include "tsql/syntax/parser_core.h"

namespace tessarlorn::tsql {

ParsedStatement ParseStatement(std::string_view batch, const Tokens& tokens, std::size_t begin) {
  Parser parser(batch, tokens, begin);
  ParsedStatement parsed;
  parsed.statement = parser.ParseTerminatedStatement();
  parsed.end = parser.position();
  return parsed;
}

std::vector<StatementPtr> ParseStatements(std::string_view batch, const Tokens& tokens) {
  std::vector<StatementPtr> statements;
  std::size_t position = 0;
  while (tokens.tokens[position].kind != TokenKind::kEnd) {
    ParsedStatement parsed = ParseStatement(batch, tokens, position);
    position = parsed.end;
    if (parsed.statement->kind != Statement::Kind::kEmpty) statements.push_back(std::move(parsed.statement));
  }
  return statements;
}

ExpressionPtr ParseExpressionText(std::string_view text, NameTable& names) {
  Tokens tokens;
  TokenizeDefinition(text, names, tokens);
  Parser parser(text, tokens, 0);
  ExpressionPtr expression = parser.ParseAny();
  if (!parser.AtEnd()) parser.Fail();
  return expression;
}

}  // namespace tessarlorn::tsql
