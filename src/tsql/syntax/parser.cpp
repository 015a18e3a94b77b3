#include "tsql/syntax/parser.h"

#include <utility>

#include "tsql/syntax/parser_core.h"

namespace tessarlorn::tsql {
namespace {

/// What `parse` makes of a text that it has to take to the end.
template <typename Parse>
auto ParseWhole(std::string_view text, NameTable& names, Parse parse) {
  Tokens tokens;
  TokenizeDefinition(text, names, tokens);
  Parser parser(text, tokens, 0);
  auto parsed = parse(parser);
  if (!parser.AtEnd()) parser.Fail();
  return parsed;
}

}  // namespace

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
    if (As<EmptyStatement>(*parsed.statement) == nullptr) statements.push_back(std::move(parsed.statement));
  }
  return statements;
}

std::vector<Parameter> ParseParameters(std::string_view text, NameTable& names) {
  return ParseWhole(text, names, [](Parser& parser) { return parser.ParseParameters(); });
}

ObjectName ParseObjectNameText(std::string_view text, NameTable& names) {
  return ParseWhole(text, names, [](Parser& parser) { return parser.ParseObjectName(); });
}

ExpressionPtr ParseExpressionText(std::string_view text, NameTable& names) {
  return ParseWhole(text, names, [](Parser& parser) { return parser.ParseAny(); });
}

}  // namespace tessarlorn::tsql
