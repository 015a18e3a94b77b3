#include <array>
#include <utility>

#include "platform/text.h"
#include "tsql/syntax/parser_core.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

using Kind = Expression::Kind;

bool IsCondition(const Expression& expression) { return expression.kind >= Kind::kCompare; }

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
    case TokenKind::kBinary:
      return LiteralKind::kBinary;
    case TokenKind::kNString:
      return LiteralKind::kNString;
    default:
      return LiteralKind::kString;
  }
}

}  // namespace

ExpressionPtr Parser::MakeNode(Expression::Kind kind) const {
  auto node = std::make_unique<Expression>();
  node->kind = kind;
  node->line = Peek().line;
  return node;
}

ExpressionPtr Parser::MakeNode(Expression::Kind kind, ExpressionPtr operand) const {
  auto node = MakeNode(kind);
  node->line = operand->line;
  node->operands.push_back(std::move(operand));
  return node;
}

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
  RequireCondition(*first);
  ExpressionPtr all = MakeNode(Kind::kOr, std::move(first));
  while (Accept("or"_kw)) {
    all->operands.push_back(ParseAnd());
    RequireCondition(*all->operands.back());
  }
  return all;
}

ExpressionPtr Parser::ParseAnd() {
  ExpressionPtr first = ParseNot();
  if (!At("and"_kw)) return first;
  RequireCondition(*first);
  ExpressionPtr all = MakeNode(Kind::kAnd, std::move(first));
  while (Accept("and"_kw)) {
    all->operands.push_back(ParseNot());
    RequireCondition(*all->operands.back());
  }
  return all;
}

ExpressionPtr Parser::ParseNot() {
  if (!At("not"_kw)) return ParsePredicate();
  const Level level(*this);
  const std::size_t at = position_;
  Take();
  ExpressionPtr operand = ParseNot();
  RequireCondition(*operand);
  condition_at_ = at;
  return MakeNode(Kind::kNot, std::move(operand));
}

ExpressionPtr Parser::ParsePredicate() {
  ExpressionPtr left = ParseArithmetic(kAdditive);
  const std::size_t at = position_;
  const auto as_predicate = [&](ExpressionPtr predicate) {
    condition_at_ = at;
    return predicate;
  };
  switch (Peek().op) {
    case Op::kEqual:
      return as_predicate(ParseComparison(std::move(left), CompareOp::kEqual));
    case Op::kNotEqual:
      return as_predicate(ParseComparison(std::move(left), CompareOp::kNotEqual));
    case Op::kLess:
      return as_predicate(ParseComparison(std::move(left), CompareOp::kLess));
    case Op::kLessEqual:
      return as_predicate(ParseComparison(std::move(left), CompareOp::kLessEqual));
    case Op::kGreater:
      return as_predicate(ParseComparison(std::move(left), CompareOp::kGreater));
    case Op::kGreaterEqual:
      return as_predicate(ParseComparison(std::move(left), CompareOp::kGreaterEqual));
    default:
      break;
  }
  if (At("is"_kw)) {
    RequireValue(*left);
    Take();
    ExpressionPtr node = MakeNode(Kind::kIsNull, std::move(left));
    node->negated = Accept("not"_kw);
    Expect("null"_kw);
    return as_predicate(std::move(node));
  }
  constexpr std::array kNegatable = {"between"_kw, "like"_kw, "in"_kw};
  if (!At("not"_kw) && !AtAny(kNegatable)) return left;
  RequireValue(*left);
  const bool negated = Accept("not"_kw);
  if (Accept("in"_kw)) return as_predicate(ParseIn(std::move(left), negated));
  ExpressionPtr node = MakeNode(At("like"_kw) ? Kind::kLike : Kind::kBetween, std::move(left));
  node->negated = negated;
  if (Accept("like"_kw)) {
    node->operands.push_back(ParseValue());
    if (Accept("escape"_kw)) node->operands.push_back(ParseValue());
  } else {
    Expect("between"_kw);
    node->operands.push_back(ParseValue());
    Expect("and"_kw);
    node->operands.push_back(ParseValue());
  }
  return as_predicate(std::move(node));
}

ExpressionPtr Parser::ParseComparison(ExpressionPtr left, CompareOp compare) {
  RequireValue(*left);
  Take();
  // Blanks may stand within an operator: "> =".
  if (compare == CompareOp::kLess && Accept(Op::kGreater)) compare = CompareOp::kNotEqual;
  if (compare == CompareOp::kLess && Accept(Op::kEqual)) compare = CompareOp::kLessEqual;
  if (compare == CompareOp::kGreater && Accept(Op::kEqual)) compare = CompareOp::kGreaterEqual;
  constexpr std::array kQuantifiers = {"any"_kw, "some"_kw, "all"_kw};
  ExpressionPtr node = MakeNode(Kind::kCompare, std::move(left));
  node->compare = compare;
  if (AtAny(kQuantifiers)) {
    node->kind = Kind::kQuantified;
    node->quantifier = Take().id == static_cast<std::uint32_t>("all"_kw) ? Quantifier::kAll : Quantifier::kAny;
    node->query = ParseQueryInParens();
  } else {
    node->operands.push_back(ParseValue());
  }
  return node;
}

ExpressionPtr Parser::ParseIn(ExpressionPtr left, bool negated) {
  ExpressionPtr node = MakeNode(Kind::kInList, std::move(left));
  node->negated = negated;
  if (Peek().kind == TokenKind::kList) {
    node->kind = Kind::kInLiteralList;
    node->list_index = list_count_;
    node->list_of_strings = lists_[Take().id].kind != TokenKind::kInteger;
  } else if (AtQueryInParens()) {
    node->kind = Kind::kInQuery;
    node->query = ParseQueryInParens();
  } else {
    const Level level(*this);
    Expect(Op::kLeftParen);
    do {
      node->operands.push_back(ParseValue());
    } while (Accept(Op::kComma));
    Expect(Op::kRightParen);
  }
  return node;
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
    ExpressionPtr node = MakeNode(Kind::kBinary, std::move(left));
    node->binary = arithmetic.op;
    node->operands.push_back(ParseArithmetic(precedence + 1));
    RequireValue(*node->operands.back());
    left = std::move(node);
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
  ExpressionPtr node = MakeNode(Kind::kUnary, std::move(operand));
  node->line = line;
  node->unary = op == Op::kMinus ? UnaryOp::kMinus : op == Op::kPlus ? UnaryOp::kPlus : UnaryOp::kBitNot;
  return node;
}

ExpressionPtr Parser::ParsePrimary() {
  const Level level(*this);
  ExpressionPtr primary;
  const Token& token = Peek();
  if (AtLiteral()) {
    primary = ParseLiteral();
  } else if (token.kind == TokenKind::kVariable || token.kind == TokenKind::kGlobal) {
    primary = MakeNode(token.kind == TokenKind::kVariable ? Kind::kVariable : Kind::kGlobal);
    primary->text = LowerCase(Take().text);
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
    primary = MakeNode(Kind::kCollate, std::move(primary));
    primary->text = ParseName();
  }
  return primary;
}

// What begins with a word: the forms of their own, functions that are keywords, and else a column or a call.
ExpressionPtr Parser::ParseKeywordPrimary() {
  const Token& token = Peek();
  if (token.id >= kKeywordCount) return ParseColumn();
  const bool call = At(Op::kLeftParen, 1);
  switch (static_cast<Keyword>(token.id)) {
    case "null"_kw: {
      ExpressionPtr null = MakeNode(Kind::kLiteral);
      Take();
      return null;
    }
    case "case"_kw:
      return ParseCase();
    case "exists"_kw: {
      condition_at_ = position_;
      ExpressionPtr node = MakeNode(Kind::kExists);
      Take();
      node->query = ParseQueryInParens();
      return node;
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
      return ParseIdentityFunction();
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
    case "user"_kw: {
      ExpressionPtr node = MakeNode(Kind::kFunction);
      node->text = LowerCase(Take().text);
      return node;
    }
    case "contains"_kw:
    case "freetext"_kw:
      Refuse(UpperCase(token.text));
    case "default"_kw:
      Refuse("DEFAULT as a value");
    case "next"_kw:
      if (At("for"_kw, 2)) Refuse("NEXT VALUE FOR");
      return ParseColumn();
    default:
      return ParseColumn();
  }
}

ExpressionPtr Parser::ParseLiteral() {
  ExpressionPtr node = MakeNode(Kind::kLiteral);
  node->literal = LiteralKindOf(Peek().kind);
  node->literal_index = literal_count_;
  node->text = Unquote(Take());
  return node;
}

ExpressionPtr Parser::ParseParens() {
  if (AtQueryInParens()) {
    ExpressionPtr node = MakeNode(Kind::kSubquery);
    node->query = ParseQueryInParens();
    return node;
  }
  Expect(Op::kLeftParen);
  ExpressionPtr inner = ParseAny();
  Expect(Op::kRightParen);
  return inner;
}

ExpressionPtr Parser::ParseCase() {
  ExpressionPtr node = MakeNode(Kind::kCase);
  Expect("case"_kw);
  node->operands.resize(2);
  const bool searched = At("when"_kw);
  if (!searched) node->operands[0] = ParseValue();
  do {
    Expect("when"_kw);
    CaseBranch branch;
    branch.when = searched ? ParseCondition() : ParseValue();
    Expect("then"_kw);
    branch.then = ParseValue();
    node->branches.push_back(std::move(branch));
  } while (At("when"_kw));
  if (Accept("else"_kw)) node->operands[1] = ParseValue();
  Expect("end"_kw);
  return node;
}

ExpressionPtr Parser::ParseCast(bool try_cast) {
  ExpressionPtr node = MakeNode(Kind::kCast);
  Take();
  Expect(Op::kLeftParen);
  node->try_cast = try_cast;
  node->operands.push_back(ParseValue());
  Expect("as"_kw);
  node->type = ParseType();
  Expect(Op::kRightParen);
  return node;
}

ExpressionPtr Parser::ParseConvert(bool try_cast) {
  ExpressionPtr node = MakeNode(Kind::kConvert);
  Take();
  Expect(Op::kLeftParen);
  node->try_cast = try_cast;
  node->type = ParseType();
  Expect(Op::kComma);
  node->operands.push_back(ParseValue());
  node->operands.push_back(Accept(Op::kComma) ? ParseValue() : nullptr);
  Expect(Op::kRightParen);
  return node;
}

// identity(type [, seed, increment]), which numbers the rows of SELECT … INTO.
ExpressionPtr Parser::ParseIdentityFunction() {
  ExpressionPtr node = MakeNode(Kind::kFunction);
  node->text = LowerCase(Take().text);
  Expect(Op::kLeftParen);
  node->type = ParseType();
  while (Accept(Op::kComma)) node->operands.push_back(ParseValue());
  Expect(Op::kRightParen);
  return node;
}

ExpressionPtr Parser::ParseColumn() {
  if (At(Op::kLeftParen, 1) && AtName()) return ParseCall();
  ExpressionPtr node = MakeNode(Kind::kColumn);
  node->parts.push_back(ParseName());
  while (Accept(Op::kDot)) {
    // db..table.column: the schema may be left out, and what stands before the table tells nothing here.
    if (!At(Op::kDot)) node->parts.push_back(ParseName());
  }
  if (At(Op::kLeftParen)) Refuse("The function " + node->parts[0] + "." + node->parts.back());
  if (node->parts.size() > 4) Fail();
  if (node->parts.size() == 4) node->parts.erase(node->parts.begin());
  return node;
}

ExpressionPtr Parser::ParseCall() {
  ExpressionPtr node = MakeNode(Kind::kFunction);
  const auto function = static_cast<Keyword>(Peek().id);
  node->text = LowerCase(Unquote(Take()));
  Expect(Op::kLeftParen);
  switch (function) {
    case "dateadd"_kw:
    case "datediff"_kw:
    case "datediff_big"_kw:
    case "datepart"_kw:
    case "datename"_kw:
      if (Peek().kind != TokenKind::kWord) RaiseAt(1023, "Invalid parameter 1 specified for " + node->text + ".");
      node->parts.push_back(LowerCase(Take().text));
      Expect(Op::kComma);
      break;
    case "iif"_kw:
      node->operands.push_back(ParseCondition());
      Expect(Op::kComma);
      break;
    default:
      break;
  }
  ParseArguments(*node);
  if (At("within"_kw)) Refuse("WITHIN GROUP");
  if (Accept("over"_kw)) node->window = ParseWindow();
  return node;
}

void Parser::ParseArguments(Expression& call) {
  if (Accept(Op::kRightParen)) return;
  if (Accept("distinct"_kw)) {
    call.distinct = true;
  } else {
    Accept("all"_kw);
  }
  if (At(Op::kStar) && (call.text == "count" || call.text == "count_big")) {
    call.operands.push_back(MakeNode(Kind::kStar));
    Take();
  } else {
    do {
      call.operands.push_back(ParseValue());
    } while (Accept(Op::kComma));
  }
  Expect(Op::kRightParen);
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
