// CREATE and ALTER SEQUENCE, and NEXT VALUE FOR.
#include <utility>

#include "tsql/syntax/parser_core.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {

StatementPtr Parser::ParseSequence(bool alter) {
  const std::uint32_t line = Take().line;
  SequenceStatement statement;
  statement.alter = alter;
  statement.sequence = ParseObjectName();
  while (AcceptSequenceOption(statement.options, alter)) continue;
  return MakeStatement(line, std::move(statement));
}

bool Parser::AcceptSequenceOption(SequenceOptions& options, bool alter) {
  const bool negated = At("no"_kw);
  if (negated) Take();
  if (Accept("minvalue"_kw)) {
    options.minimum = negated ? std::nullopt : std::optional(ParseSequenceNumber());
  } else if (Accept("maxvalue"_kw)) {
    options.maximum = negated ? std::nullopt : std::optional(ParseSequenceNumber());
  } else if (Accept("cycle"_kw)) {
    options.cycles = !negated;
  } else if (Accept("cache"_kw)) {
    constexpr std::int64_t kUsualCache = 50;
    options.cache = negated ? 0 : Peek().kind == TokenKind::kInteger ? ParseSequenceNumber() : kUsualCache;
  } else if (negated) {
    Fail();
  } else if (!alter && Accept("as"_kw)) {
    options.type = ParseType();
  } else if (!alter && Accept("start"_kw)) {
    Expect("with"_kw);
    options.start = ParseSequenceNumber();
  } else if (Accept("increment"_kw)) {
    Expect("by"_kw);
    options.increment = ParseSequenceNumber();
  } else if (alter && Accept("restart"_kw)) {
    options.restarts = true;
    if (Accept("with"_kw)) options.restart = ParseSequenceNumber();
  } else {
    return false;
  }
  return true;
}

std::int64_t Parser::ParseSequenceNumber() {
  // The least number of 64 bits is not the opposite of one.
  constexpr std::string_view kLeast = "9223372036854775808";
  if (!At(Op::kMinus) || Peek(1).text != kLeast) return ParseSignedInteger();
  Take();
  Take();
  return INT64_MIN;
}

ExpressionPtr Parser::ParseNextValue() {
  const std::uint32_t line = Take().line;
  Expect("value"_kw);
  Expect("for"_kw);
  ++number_count_;
  NextValue next{ParseObjectName()};
  if (At("over"_kw)) Refuse("NEXT VALUE FOR … OVER");
  return MakeExpression(line, std::move(next));
}

}  // namespace tessarlorn::tsql
