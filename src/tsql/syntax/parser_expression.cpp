// Values and conditions: operators, predicates, literals, names.
#include <array>
#include <utility>

#include "platform/text/text.h"
#include "tsql/syntax/ast_walk.h"
#include "tsql/syntax/parser_core.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

struct Arithmetic {
  BinaryOp op;
  int precedence;  // 0: no arithmetic operator
};

constexpr int kAdditive = 1;
constexpr int kMultiplicative = 2;

Arithmetic ArithmeticOf(Op op) {
  switch (op) {
    case Op::kPlus:
      return {BinaryOp::kAdd, kAdditive};
    case Op::kMinus:
      return {BinaryOp::kSubtract, kAdditive};
    case Op::kAmpersand:
      return {BinaryOp::kBitAnd, kAdditive};
    case Op::kPipe:
      return {BinaryOp::kBitOr, kAdditive};
    case Op::kCaret:
      return {BinaryOp::kBitXor, kAdditive};
    case Op::kStar:
      return {BinaryOp::kMultiply, kMultiplicative};
    case Op::kSlash:
      return {BinaryOp::kDivide, kMultiplicative};
    case Op::kPercent:
      return {BinaryOp::kModulo, kMultiplicative};
    default:
      return {BinaryOp::kAdd, 0};
  }
}

LiteralKind LiteralKindOf(TokenKind kind) {
  switch (kind) {
    case TokenKind::kInteger:
      return LiteralKind::kInteger;
    case TokenKind::kDecimal:
      return LiteralKind::kDecimal;
    case TokenKind::kFloat:
      return LiteralKind::kFloat;
    case TokenKind::kMoney:
      return LiteralKind::kMoney;
    case TokenKind::kBinary:
      return LiteralKind::kBinary;
    case TokenKind::kNString:
      return LiteralKind::kNString;
    default:
      return LiteralKind::kString;
  }
}

CompareOp CompareOpOf(Op op) {
  switch (op) {
    case Op::kEqual:
      return CompareOp::kEqual;
    case Op::kNotEqual:
      return CompareOp::kNotEqual;
    case Op::kLess:
      return CompareOp::kLess;
    case Op::kLessEqual:
      return CompareOp::kLessEqual;
    case Op::kGreater:
      return CompareOp::kGreater;
    default:
      return CompareOp::kGreaterEqual;
  }
}

bool IsComparison(Op op) {
  return op == Op::kEqual || op == Op::kNotEqual || op == Op::kLess || op == Op::kLessEqual || op == Op::kGreater ||
         op == Op::kGreaterEqual;
}

}  // namespace

void Parser::RequireCondition(const Expression& expression) const {
  if (IsCondition(expression)) return;
  const std::string_view near = AtEnd() && position_ > 0 ? tokens_[position_ - 1].text : Peek().text;
  RaiseAt(4145, "An expression of non-boolean type specified in a context where a condition is expected, near '" +
                    std::string(near) + "'.");
}

void Parser::RequireValue(const Expression& expression) const {
  if (IsCondition(expression)) FailAt(condition_at_);
}

ExpressionPtr Parser::ParseValue() {
  ExpressionPtr value = ParseArithmetic(kAdditive);
  RequireValue(*value);
  return value;
}

ExpressionPtr Parser::ParseCondition() {
  ExpressionPtr condition = ParseAny();
  RequireCondition(*condition);
  return condition;
}

// A condition or a value: which of the two stands in parentheses is known at their end only.
ExpressionPtr Parser::ParseAny() {
  ExpressionPtr first = ParseAnd();
  if (!At("or"_kw)) return first;
  const std::uint32_t line = first->line;
  Disjunction all;
  RequireCondition(*first);
  all.operands.push_back(std::move(first));
  while (Accept("or"_kw)) {
    all.operands.push_back(ParseAnd());
    RequireCondition(*all.operands.back());
  }
  return MakeExpression(line, std::move(all));
}

ExpressionPtr Parser::ParseAnd() {
  ExpressionPtr first = ParseNot();
  if (!At("and"_kw)) return first;
  const std::uint32_t line = first->line;
  Conjunction all;
  RequireCondition(*first);
  all.operands.push_back(std::move(first));
  while (Accept("and"_kw)) {
    all.operands.push_back(ParseNot());
    RequireCondition(*all.operands.back());
  }
  return MakeExpression(line, std::move(all));
}

ExpressionPtr Parser::ParseNot() {
  if (!At("not"_kw)) return ParsePredicate();
  const Level level(*this);
  const std::size_t at = position_;
  Take();
  ExpressionPtr operand = ParseNot();
  RequireCondition(*operand);
  condition_at_ = at;
  const std::uint32_t line = operand->line;
  return MakeExpression(line, Negation{std::move(operand)});
}

ExpressionPtr Parser::ParsePredicate() {
  ExpressionPtr left = ParseArithmetic(kAdditive);
  const std::size_t at = position_;
  constexpr std::array kNegatable = {"between"_kw, "like"_kw, "in"_kw};
  if (IsComparison(Peek().op)) {
    left = ParseComparison(std::move(left));
  } else if (At("is"_kw)) {
    left = ParseNullTest(std::move(left));
  } else if (At("not"_kw) || AtAny(kNegatable)) {
    RequireValue(*left);
    const bool negated = Accept("not"_kw);
    if (At("in"_kw)) {
      left = ParseIn(std::move(left), negated);
    } else if (At("like"_kw)) {
      left = ParseLike(std::move(left), negated);
    } else {
      left = ParseBetween(std::move(left), negated);
    }
  } else {
    return left;
  }
  condition_at_ = at;
  return left;
}

ExpressionPtr Parser::ParseComparison(ExpressionPtr left) {
  RequireValue(*left);
  CompareOp op = CompareOpOf(Take().op);
  // Blanks may stand within an operator: "> =".
  if (op == CompareOp::kLess && Accept(Op::kGreater)) op = CompareOp::kNotEqual;
  if (op == CompareOp::kLess && Accept(Op::kEqual)) op = CompareOp::kLessEqual;
  if (op == CompareOp::kGreater && Accept(Op::kEqual)) op = CompareOp::kGreaterEqual;
  const std::uint32_t line = left->line;
  constexpr std::array kQuantifiers = {"any"_kw, "some"_kw, "all"_kw};
  if (!AtAny(kQuantifiers)) return MakeExpression(line, Comparison{op, std::move(left), ParseValue()});
  const bool all = Take().id == static_cast<std::uint32_t>("all"_kw);
  return MakeExpression(
      line, QuantifiedComparison{op, std::move(left), all ? Quantifier::kAll : Quantifier::kAny, ParseQueryInParens()});
}

ExpressionPtr Parser::ParseNullTest(ExpressionPtr value) {
  RequireValue(*value);
  Take();
  const bool negated = Accept("not"_kw);
  Expect("null"_kw);
  const std::uint32_t line = value->line;
  return MakeExpression(line, NullTest{std::move(value), negated});
}

ExpressionPtr Parser::ParseLike(ExpressionPtr text, bool negated) {
  Take();
  const std::uint32_t line = text->line;
  LikeCondition like{std::move(text), ParseValue(), nullptr, negated};
  if (Accept("escape"_kw)) like.escape = ParseValue();
  return MakeExpression(line, std::move(like));
}

ExpressionPtr Parser::ParseBetween(ExpressionPtr value, bool negated) {
  Expect("between"_kw);
  const std::uint32_t line = value->line;
  BetweenCondition between{std::move(value), ParseValue(), nullptr, negated};
  Expect("and"_kw);
  between.high = ParseValue();
  return MakeExpression(line, std::move(between));
}

ExpressionPtr Parser::ParseIn(ExpressionPtr left, bool negated) {
  Take();
  const std::uint32_t line = left->line;
  if (Peek().kind == TokenKind::kList) {
    const int index = list_count_;
    const bool of_strings = lists_[Take().id].kind != TokenKind::kInteger;
    return MakeExpression(line, InLiteralList{std::move(left), index, of_strings, negated});
  }
  if (AtQueryInParens()) return MakeExpression(line, InQuery{std::move(left), ParseQueryInParens(), negated});
  const Level level(*this);
  Expect(Op::kLeftParen);
  InList list{std::move(left), ParseValues(), negated};
  Expect(Op::kRightParen);
  return MakeExpression(line, std::move(list));
}

ExpressionPtr Parser::ParseArithmetic(int precedence) {
  Chain chain(*this);
  ExpressionPtr left = precedence > kMultiplicative ? ParseUnary() : ParseArithmetic(precedence + 1);
  if (precedence > kMultiplicative) return left;
  for (;;) {
    const Arithmetic arithmetic = ArithmeticOf(Peek().op);
    if (arithmetic.precedence != precedence) return left;
    RequireValue(*left);
    chain.AddLink();
    Take();
    ExpressionPtr right = ParseArithmetic(precedence + 1);
    RequireValue(*right);
    const std::uint32_t line = left->line;
    left = MakeExpression(line, BinaryOperation{arithmetic.op, std::move(left), std::move(right)});
  }
}

ExpressionPtr Parser::ParseUnary() {
  const Op op = Peek().op;
  if (op != Op::kMinus && op != Op::kPlus && op != Op::kTilde) return ParsePrimary();
  const Level level(*this);
  const std::uint32_t line = Take().line;
  // A sign binds less than * and /, as it does on the server: 8 / -2 * 2 is 8 / -(2 * 2).
  ExpressionPtr operand = op == Op::kTilde ? ParseUnary() : ParseArithmetic(kMultiplicative);
  RequireValue(*operand);
  const UnaryOp unary = op == Op::kMinus ? UnaryOp::kMinus : op == Op::kPlus ? UnaryOp::kPlus : UnaryOp::kBitNot;
  return MakeExpression(line, UnaryOperation{unary, std::move(operand)});
}

ExpressionPtr Parser::ParsePrimary() {
  ExpressionPtr primary = ParseOperand();
  while (At("at"_kw) && At("time"_kw, 1) && At("zone"_kw, 2)) primary = ParseTimeZone(std::move(primary));
  return primary;
}

ExpressionPtr Parser::ParseOperand() {
  const Level level(*this);
  ExpressionPtr primary;
  const Token& token = Peek();
  if (AtLiteral()) {
    primary = ParseLiteral();
  } else if (token.kind == TokenKind::kVariable) {
    primary = MakeExpression(token.line, VariableReference{LowerCase(Take().text)});
  } else if (token.kind == TokenKind::kGlobal) {
    primary = MakeExpression(token.line, GlobalReference{LowerCase(Take().text)});
  } else if (At(Op::kLeftParen)) {
    primary = ParseParens();
  } else if (token.kind == TokenKind::kWord) {
    primary = ParseKeywordPrimary();
  } else if (AtName()) {
    primary = ParseColumn();
  } else {
    Fail();
  }
  if (Accept("collate"_kw)) {
    RequireValue(*primary);
    const std::uint32_t line = primary->line;
    primary = MakeExpression(line, CollateExpression{std::move(primary), ParseName()});
  }
  return primary;
}

ExpressionPtr Parser::ParseTimeZone(ExpressionPtr date) {
  RequireValue(*date);
  const std::uint32_t line = date->line;
  Take();
  Take();
  Take();
  FunctionCall call;
  call.name = "at time zone";
  call.arguments.push_back(std::move(date));
  call.arguments.push_back(ParseOperand());
  return MakeExpression(line, std::move(call));
}

// What begins with a word: the forms of their own, functions that are keywords, and else a column or a call.
ExpressionPtr Parser::ParseKeywordPrimary() {
  const Token& token = Peek();
  if (token.id >= kKeywordCount) return ParseColumn();
  const bool call = At(Op::kLeftParen, 1);
  switch (static_cast<Keyword>(token.id)) {
    case "null"_kw:
      Take();
      return MakeExpression(token.line, Literal{});
    case "case"_kw:
      return ParseCase();
    case "exists"_kw:
      condition_at_ = position_;
      Take();
      return MakeExpression(token.line, ExistsCondition{ParseQueryInParens()});
    case "update"_kw: {
      if (!call) Fail();
      condition_at_ = position_;
      position_ += 2;
      UpdatedColumn updated{ParseName()};
      Expect(Op::kRightParen);
      return MakeExpression(token.line, std::move(updated));
    }
    case "cast"_kw:
      return call ? ParseCast(false) : ParseColumn();
    case "try_cast"_kw:
      return call ? ParseCast(true) : ParseColumn();
    case "convert"_kw:
      return ParseConvert(false);
    case "try_convert"_kw:
      return ParseConvert(true);
    case "identity"_kw:
      return ParseIdentityCall();
    case "coalesce"_kw:
    case "nullif"_kw:
    case "left"_kw:
    case "right"_kw:
      if (!call) Fail();
      return ParseCall();
    case "current_date"_kw:
    case "current_timestamp"_kw:
    case "current_user"_kw:
    case "session_user"_kw:
    case "system_user"_kw:
    case "user"_kw:
      return ParseCallWithoutParens();
    case "parse"_kw:
    case "try_parse"_kw:
      if (!call) return ParseColumn();
      Refuse(UpperCase(token.text));
    case "contains"_kw:
    case "freetext"_kw:
      Refuse(UpperCase(token.text));
    case "default"_kw:
      Refuse("DEFAULT as a value");
    case "next"_kw:
      return At("value"_kw, 1) && At("for"_kw, 2) ? ParseNextValue() : ParseColumn();
    default:
      return ParseColumn();
  }
}

ExpressionPtr Parser::ParseLiteral() {
  const Token& token = Peek();
  const int index = literal_count_;
  return MakeExpression(token.line, Literal{LiteralKindOf(token.kind), Unquote(Take()), index});
}

ExpressionPtr Parser::ParseParens() {
  const std::uint32_t line = Peek().line;
  if (AtQueryInParens()) {
    QueryPtr query = ParseQueryInParens();
    if (At(Op::kDot)) return ParseXmlValue(line, std::move(query));
    return MakeExpression(line, ScalarSubquery{std::move(query)});
  }
  Expect(Op::kLeftParen);
  ExpressionPtr inner = ParseAny();
  Expect(Op::kRightParen);
  return inner;
}

ExpressionPtr Parser::ParseColumn() {
  if (At(Op::kLeftParen, 1) && AtName()) return ParseCall();
  const std::uint32_t line = Peek().line;
  ColumnReference column{ParseName()};
  // db..table.column: the schema may be left out, and the database tells nothing here.
  std::string database;
  bool left_out = false;
  while (Accept(Op::kDot)) {
    left_out = left_out || At(Op::kDot);
    if (At(Op::kDot)) continue;
    if (!database.empty()) Fail();
    database = std::exchange(column.schema, std::exchange(column.qualifier, std::exchange(column.name, ParseName())));
  }
  if (At(Op::kLeftParen)) {
    FunctionCall call;
    call.name = std::move(column.name);
    for (const std::string* part : {&database, &column.schema, &column.qualifier}) {
      if (!part->empty()) call.qualifier += (call.qualifier.empty() ? "" : ".") + *part;
    }
    call.arguments = ParseFunctionArguments();
    return MakeExpression(line, std::move(call));
  }
  if (left_out && database.empty()) column.schema.clear();
  return MakeExpression(line, std::move(column));
}

std::vector<OrderItem> Parser::ParseOrderItems() {
  std::vector<OrderItem> items;
  do {
    OrderItem& item = items.emplace_back();
    item.expression = ParseValue();
    item.descending = Accept("desc"_kw);
    if (!item.descending) Accept("asc"_kw);
  } while (Accept(Op::kComma));
  return items;
}

}  // namespace tessarlorn::tsql
