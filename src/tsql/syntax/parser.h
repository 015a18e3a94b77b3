// The parser of Transact-SQL: tokens to syntax tree, one top-level statement at a time.
#pragma once

#include <cstddef>
#include <string_view>

#include "tsql/syntax/statement.h"
#include "tsql/syntax/token.h"

namespace tessarlorn::tsql {

/// A top-level statement and the tokens that it takes.
struct ParsedStatement {
  StatementPtr statement;
  /// One behind its last token (a following semicolon belongs to it).
  std::size_t end = 0;
};

/// Parses the statement that begins at token `begin`. Raises 102 "Incorrect syntax near 'x'.", 156 "Incorrect syntax
/// near the keyword 'x'.", 105 and their like, with the line in the message's `native` place left to the caller; and
/// 40000-class refusals that name what is not supported, as "FOR XML is not supported by the embedded database."
/// Nesting deeper than 200 levels raises 191 ("Some part of your SQL statement is nested too deeply. …").
ParsedStatement ParseStatement(std::string_view batch, const Tokens& tokens, std::size_t begin);

/// Parses a whole batch of one CREATE VIEW / CREATE PROCEDURE body or a stored text: every statement to the end.
std::vector<StatementPtr> ParseStatements(std::string_view batch, const Tokens& tokens);

/// Parses the parameters of a procedure or of sp_executesql: "@a int, @b nvarchar(40) = N'x' OUTPUT". Blank text has
/// none.
std::vector<Parameter> ParseParameters(std::string_view text, NameTable& names);

/// Parses an object's name that takes all tokens: "[dbo].[p]".
ObjectName ParseObjectNameText(std::string_view text, NameTable& names);

/// Parses one value or condition that takes all tokens, as a column's default or check from the catalog.
ExpressionPtr ParseExpressionText(std::string_view text, NameTable& names);

}  // namespace tessarlorn::tsql
