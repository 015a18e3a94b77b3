// Calls: functions with their arguments and windows, CASE, CAST and CONVERT.
#include <utility>

#include "platform/text/text.h"
#include "tsql/syntax/parser_core.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {

ExpressionPtr Parser::ParseCase() {
  const std::uint32_t line = Peek().line;
  Expect("case"_kw);
  CaseExpression choice;
  const bool searched = At("when"_kw);
  if (!searched) choice.compared = ParseValue();
  do {
    Expect("when"_kw);
    CaseBranch branch;
    branch.when = searched ? ParseCondition() : ParseValue();
    Expect("then"_kw);
    branch.then = ParseValue();
    choice.branches.push_back(std::move(branch));
  } while (At("when"_kw));
  if (Accept("else"_kw)) choice.otherwise = ParseValue();
  Expect("end"_kw);
  return MakeExpression(line, std::move(choice));
}

ExpressionPtr Parser::ParseCast(bool attempt) {
  const std::uint32_t line = Take().line;
  Expect(Op::kLeftParen);
  CastExpression cast;
  cast.attempt = attempt;
  cast.value = ParseValue();
  Expect("as"_kw);
  cast.type = ParseType();
  Expect(Op::kRightParen);
  return MakeExpression(line, std::move(cast));
}

ExpressionPtr Parser::ParseConvert(bool attempt) {
  const std::uint32_t line = Take().line;
  Expect(Op::kLeftParen);
  ConvertExpression convert;
  convert.attempt = attempt;
  convert.type = ParseType();
  Expect(Op::kComma);
  convert.value = ParseValue();
  if (Accept(Op::kComma)) convert.style = ParseValue();
  Expect(Op::kRightParen);
  return MakeExpression(line, std::move(convert));
}

ExpressionPtr Parser::ParseIdentityCall() {
  const std::uint32_t line = Take().line;
  Expect(Op::kLeftParen);
  IdentityCall identity;
  identity.type = ParseType();
  while (Accept(Op::kComma)) identity.arguments.push_back(ParseValue());
  Expect(Op::kRightParen);
  return MakeExpression(line, std::move(identity));
}

ExpressionPtr Parser::ParseCallWithoutParens() {
  const std::uint32_t line = Peek().line;
  FunctionCall call;
  call.name = LowerCase(Take().text);
  return MakeExpression(line, std::move(call));
}

ExpressionPtr Parser::ParseCall() {
  const std::uint32_t line = Peek().line;
  FunctionCall call;
  const auto function = static_cast<Keyword>(Peek().id);
  call.name = LowerCase(Unquote(Take()));
  Expect(Op::kLeftParen);
  switch (function) {
    case "dateadd"_kw:
    case "datediff"_kw:
    case "datediff_big"_kw:
    case "datepart"_kw:
    case "datename"_kw:
    case "datetrunc"_kw:
      if (Peek().kind != TokenKind::kWord) RaiseAt(1023, "Invalid parameter 1 specified for " + call.name + ".");
      call.date_part = LowerCase(Take().text);
      Expect(Op::kComma);
      break;
    case "iif"_kw:
      call.arguments.push_back(ParseCondition());
      Expect(Op::kComma);
      break;
    default:
      break;
  }
  ParseArguments(call);
  if (Accept("within"_kw)) call.within = ParseWithinGroup(call.name);
  if (Accept("over"_kw)) call.window = ParseWindow();
  return MakeExpression(line, std::move(call));
}

void Parser::ParseArguments(FunctionCall& call) {
  if (Accept(Op::kRightParen)) return;
  if (Accept("distinct"_kw)) {
    call.distinct = true;
  } else {
    Accept("all"_kw);
  }
  const bool takes_star = call.name == "count" || call.name == "count_big" || call.name.ends_with("checksum");
  if (At(Op::kStar) && takes_star) {
    call.arguments.push_back(MakeExpression(Take().line, Star{}));
  } else {
    do {
      call.arguments.push_back(ParseValue());
    } while (Accept(Op::kComma));
    // TRIM(signs FROM text)
    if (call.name == "trim" && Accept("from"_kw)) call.arguments.insert(call.arguments.begin(), ParseValue());
  }
  Expect(Op::kRightParen);
}

std::vector<OrderItem> Parser::ParseWithinGroup(const std::string& function) {
  if (function != "string_agg" && !function.starts_with("percentile_"))
    Refuse("WITHIN GROUP of " + UpperCase(function));
  Expect("group"_kw);
  Expect(Op::kLeftParen);
  Expect("order"_kw);
  Expect("by"_kw);
  std::vector<OrderItem> order = ParseOrderItems();
  Expect(Op::kRightParen);
  return order;
}

std::unique_ptr<Window> Parser::ParseWindow() {
  auto window = std::make_unique<Window>();
  Expect(Op::kLeftParen);
  if (Accept("partition"_kw)) {
    Expect("by"_kw);
    window->partition = ParseValues();
  }
  if (Accept("order"_kw)) {
    Expect("by"_kw);
    window->order = ParseOrderItems();
  }
  if (At("rows"_kw) || At("range"_kw)) window->frame = ParseFrame();
  Expect(Op::kRightParen);
  return window;
}

std::string Parser::ParseFrame() {
  std::string frame = UpperCase(Take().text) + " BETWEEN ";
  if (!Accept("between"_kw)) return frame + ParseFrameBound() + " AND CURRENT ROW";
  frame += ParseFrameBound();
  Expect("and"_kw);
  return frame + " AND " + ParseFrameBound();
}

std::string Parser::ParseFrameBound() {
  if (Accept("current"_kw)) {
    Expect("row"_kw);
    return "CURRENT ROW";
  }
  std::string bound;
  if (Accept("unbounded"_kw)) {
    bound = "UNBOUNDED";
  } else {
    if (Peek().kind != TokenKind::kInteger) Fail();
    bound = Take().text;
  }
  if (!At("preceding"_kw) && !At("following"_kw)) Fail();
  return bound + " " + UpperCase(Take().text);
}

}  // namespace tessarlorn::tsql
