// DECLARE … CURSOR, OPEN, FETCH, CLOSE and DEALLOCATE.
#include <array>
#include <utility>

#include "platform/text/text.h"
#include "tsql/syntax/parser_core.h"

namespace tessarlorn::tsql {

std::string Parser::ParseCursorName() {
  Accept("global"_kw);
  return Peek().kind == TokenKind::kVariable ? ParseVariableName() : LowerCase(ParseName());
}

// Behind the name: [INSENSITIVE] [SCROLL] CURSOR options FOR query.
StatementPtr Parser::ParseDeclareCursor(std::uint32_t line, std::string name) {
  constexpr std::array kScrolling = {"scroll"_kw, "static"_kw, "keyset"_kw, "dynamic"_kw};
  constexpr std::array kOthers = {"read_only"_kw,    "optimistic"_kw, "scroll_locks"_kw,
                                  "type_warning"_kw, "global"_kw,     "local"_kw};
  DeclareCursorStatement cursor;
  cursor.local = name[0] == '@';
  cursor.name = std::move(name);
  while (!Accept("cursor"_kw)) {
    cursor.scrolls = cursor.scrolls || At("scroll"_kw);
    if (!Accept("insensitive"_kw)) Expect("scroll"_kw);
  }
  bool forward = false;
  while (!Accept("for"_kw)) {
    cursor.local = cursor.local || At("local"_kw);
    if (AtAny(kScrolling)) {
      cursor.scrolls = true;
    } else if (At("forward_only"_kw) || At("fast_forward"_kw)) {
      forward = true;
    } else if (!AtAny(kOthers)) {
      Fail();
    }
    Take();
  }
  cursor.scrolls = cursor.scrolls && !forward;
  const std::size_t begin = position_;
  ParseStatementQuery();
  cursor.query = TextBetween(begin, position_);
  if (Accept("for"_kw) && !AcceptBoth("read"_kw, "only"_kw)) Refuse("A cursor FOR UPDATE");
  return MakeStatement(line, std::move(cursor));
}

StatementPtr Parser::ParseCursorAction(CursorStatement::Action action) {
  const std::uint32_t line = Take().line;
  return MakeStatement(line, CursorStatement{action, ParseCursorName()});
}

StatementPtr Parser::ParseFetch() {
  using From = FetchStatement::From;
  constexpr std::array kWords = {"next"_kw, "prior"_kw, "first"_kw, "last"_kw, "absolute"_kw, "relative"_kw};
  const std::uint32_t line = Take().line;
  FetchStatement fetch;
  for (std::size_t i = 0; i < kWords.size(); ++i) {
    // A cursor may have such a name.
    if (!At(kWords[i]) || At("into"_kw, 1)) continue;
    Take();
    fetch.from = static_cast<From>(i);
    if (fetch.from >= From::kAbsolute) fetch.number = ParseUnary();
    break;
  }
  Accept("from"_kw);
  fetch.cursor = ParseCursorName();
  if (Accept("into"_kw)) {
    do {
      fetch.into.push_back(ParseVariableName());
    } while (Accept(Op::kComma));
  }
  return MakeStatement(line, std::move(fetch));
}

}  // namespace tessarlorn::tsql
