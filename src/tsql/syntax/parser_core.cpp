#include "tsql/syntax/parser_core.h"

#include <algorithm>
#include <utility>

#include "platform/text/text.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

constexpr int kMaxDepth = 200;
constexpr int kMaxChain = 500;

[[noreturn]] void RaiseTooDeep(std::uint32_t line) {
  SqlError error(191,
                 "Some part of your SQL statement is nested too deeply. Rewrite the query or break it up into smaller "
                 "queries.",
                 15);
  error.set_line(line);
  throw error;
}

bool IsKeyword(const Token& token) { return token.kind == TokenKind::kWord && token.id < kKeywordCount; }

bool IsReserved(const Token& token) { return token.kind == TokenKind::kWord && token.id < kReservedCount; }

bool IsLiteral(TokenKind kind) { return kind >= TokenKind::kInteger && kind <= TokenKind::kNString; }

}  // namespace

Parser::Level::Level(Parser& parser) : depth_(parser.depth_) {
  if (depth_ >= kMaxDepth) RaiseTooDeep(parser.Peek().line);
  ++depth_;
}

Parser::Chain::Chain(Parser& parser) : parser_(parser), outer_(parser.chain_) { parser_.chain_ = 0; }

Parser::Chain::~Chain() { parser_.chain_ = std::max(outer_, parser_.chain_ + links_); }

void Parser::Chain::AddLink() {
  ++links_;
  if (parser_.chain_ + links_ > kMaxChain) RaiseTooDeep(parser_.Peek().line);
}

const Token& Parser::Peek(std::size_t ahead) const noexcept {
  return tokens_[std::min(position_ + ahead, tokens_.size() - 1)];
}

const Token& Parser::Take() {
  const Token& token = Peek();
  if (token.kind == TokenKind::kEnd) Fail();
  if (IsLiteral(token.kind)) ++literal_count_;
  if (token.kind == TokenKind::kList) ++list_count_;
  // What the tree, its translation and SQLite's program take of one token, as measured.
  constexpr std::size_t kBytesOfToken = 500;
  if (memory_ != nullptr) memory_->Charge(kBytesOfToken);
  ++position_;
  return token;
}

bool Parser::At(Keyword word, std::size_t ahead) const noexcept {
  const Token& token = Peek(ahead);
  return token.kind == TokenKind::kWord && token.id == static_cast<std::uint32_t>(word);
}

bool Parser::AtAny(std::span<const Keyword> words) const noexcept {
  return IsKeyword(Peek()) && std::find(words.begin(), words.end(), static_cast<Keyword>(Peek().id)) != words.end();
}

bool Parser::AtName(std::size_t ahead) const noexcept {
  const Token& token = Peek(ahead);
  return token.kind == TokenKind::kQuoted || (token.kind == TokenKind::kWord && !IsReserved(token));
}

bool Parser::AtLiteral() const noexcept { return IsLiteral(Peek().kind); }

bool Parser::AtValue() const noexcept {
  constexpr std::array kWords = {
      "null"_kw,         "case"_kw,        "convert"_kw, "try_convert"_kw,  "coalesce"_kw,
      "nullif"_kw,       "left"_kw,        "right"_kw,   "current_user"_kw, "current_timestamp"_kw,
      "session_user"_kw, "system_user"_kw, "user"_kw,
  };
  return AtLiteral() || AtName() || AtAny(kWords) || Peek().kind == TokenKind::kVariable ||
         Peek().kind == TokenKind::kGlobal || At(Op::kLeftParen) || At(Op::kMinus) || At(Op::kPlus) || At(Op::kTilde);
}

bool Parser::Accept(Op op) {
  if (!At(op)) return false;
  Take();
  return true;
}

bool Parser::Accept(Keyword word) {
  if (!At(word)) return false;
  Take();
  return true;
}

bool Parser::AcceptBoth(Keyword first, Keyword second) {
  if (!At(first) || !At(second, 1)) return false;
  Take();
  Take();
  return true;
}

void Parser::Expect(Op op) {
  if (!Accept(op)) Fail();
}

void Parser::Expect(Keyword word) {
  if (!Accept(word)) Fail();
}

void Parser::Fail() const { FailAt(position_); }

void Parser::FailAt(std::size_t position) const {
  const Token& token = tokens_[std::min(position, tokens_.size() - 1)];
  if (token.kind == TokenKind::kEnd) {
    const std::string_view last = tokens_.size() > 1 ? tokens_[tokens_.size() - 2].text : std::string_view();
    RaiseSyntax(last, false, token.line);
  }
  if (token.kind == TokenKind::kList) RaiseSyntax("(", false, token.line);
  RaiseSyntax(token.text, IsReserved(token), token.line);
}

void Parser::RaiseAt(std::int32_t number, const std::string& message) const {
  SqlError error(number, message, 15);
  error.set_line(Peek().line);
  throw error;
}

void Parser::Refuse(std::string_view feature) const { RaiseUnsupported(feature, Peek().line); }

std::string Parser::ParseName() {
  if (!AtName()) Fail();
  if (Peek().text.empty()) {
    RaiseAt(1038,
            "An object or column name is missing or empty. For SELECT INTO statements, verify each column has a name. "
            "For other statements, look for empty alias names. Aliases defined as \"\" or [] are not allowed. Change "
            "the alias to a valid name.");
  }
  return Unquote(Take());
}

std::string Parser::ParseVariableName() {
  if (Peek().kind != TokenKind::kVariable) Fail();
  return LowerCase(Take().text);
}

ObjectName Parser::ParseObjectName() {
  ObjectName written = ParseWrittenName();
  return MakeObjectName(std::move(written.qualifier), std::move(written.name));
}

ObjectName Parser::ParseWrittenName() {
  ObjectName object;
  object.name = ParseName();
  int parts = 1;
  while (At(Op::kDot)) {
    if (++parts > 3) Fail();
    Take();
    object.qualifier += object.name + ".";
    // tempdb..#t: the schema may be left out.
    object.name = At(Op::kDot) ? std::string() : ParseName();
  }
  if (!object.qualifier.empty()) object.qualifier.pop_back();
  return object;
}

std::vector<std::string> Parser::ParseNameList() {
  std::vector<std::string> names;
  Expect(Op::kLeftParen);
  do {
    names.push_back(ParseName());
  } while (Accept(Op::kComma));
  Expect(Op::kRightParen);
  return names;
}

TypeName Parser::ParseType() {
  TypeName type;
  if (Accept("double"_kw)) {
    Expect("precision"_kw);
    type.name = "float";
    return type;
  }
  type.name = LowerCase(ParseName());
  if (Accept(Op::kDot)) type.name = LowerCase(ParseName());
  if (Accept("varying"_kw)) {
    if (type.name == "char" || type.name == "character") type.name = "varchar";
    if (type.name == "nchar") type.name = "nvarchar";
    if (type.name == "binary") type.name = "varbinary";
  }
  if (Accept(Op::kLeftParen)) {
    type.length = ParseTypeArgument();
    if (Accept(Op::kComma)) type.scale = ParseTypeArgument();
    Expect(Op::kRightParen);
  }
  return type;
}

int Parser::ParseTypeArgument() {
  if (Accept("max"_kw)) return -1;
  const auto value = WholeNumber<int>(Peek().text);
  if (Peek().kind != TokenKind::kInteger || !value) Fail();
  Take();
  return *value;
}

std::int64_t Parser::ParseSignedInteger() {
  const bool negative = Accept(Op::kMinus);
  if (!negative) Accept(Op::kPlus);
  const auto value = WholeNumber<std::int64_t>(Peek().text);
  if (Peek().kind != TokenKind::kInteger || !value) Fail();
  Take();
  return negative ? -*value : *value;
}

std::string Parser::AcceptAlias() {
  const bool required = Accept("as"_kw);
  const bool text = Peek().kind == TokenKind::kString || Peek().kind == TokenKind::kNString;
  if (text) return Unquote(Take());
  if (AtName()) return ParseName();
  if (required) Fail();
  return {};
}

std::string_view Parser::TextBetween(std::size_t begin, std::size_t end) const {
  // A token's text leaves out its delimiters.
  const auto first = static_cast<std::size_t>(tokens_[begin].text.data() - batch_.data());
  const auto last =
      static_cast<std::size_t>(tokens_[end - 1].text.data() - batch_.data()) + tokens_[end - 1].text.size();
  const auto opening = [](const Token& token) -> std::size_t {
    switch (token.kind) {
      case TokenKind::kQuoted:
      case TokenKind::kString:
        return 1;
      case TokenKind::kNString:
        return 2;
      default:
        return 0;
    }
  };
  const std::size_t from = first - opening(tokens_[begin]);
  const std::size_t to = last + (opening(tokens_[end - 1]) > 0 ? 1 : 0);
  return batch_.substr(from, to - from);
}

std::size_t Parser::MatchingParen(std::size_t open) const {
  int depth = 0;
  for (std::size_t i = open; i < tokens_.size(); ++i) {
    if (tokens_[i].op == Op::kLeftParen) ++depth;
    if (tokens_[i].op == Op::kRightParen && --depth == 0) return i;
  }
  return tokens_.size() - 1;
}

// Whether the parenthesis here holds a query: SELECT, VALUES, or such in further parentheses of which nothing is made
// but a query. ((SELECT …) UNION …) is one, ((SELECT …) + 1) is not.
bool Parser::AtQueryInParens() const {
  if (!At(Op::kLeftParen)) return false;
  std::size_t inner = 0;
  while (At(Op::kLeftParen, inner)) ++inner;
  if (!At("select"_kw, inner) && !(inner == 1 && At("values"_kw, 1))) return false;
  if (inner > kMaxDepth) RaiseTooDeep(Peek().line);
  for (std::size_t i = inner; i-- > 1;) {
    const Token& behind = tokens_[std::min(MatchingParen(position_ + i) + 1, tokens_.size() - 1)];
    const auto word = static_cast<Keyword>(behind.id);
    const bool set_operator = IsReserved(behind) && (word == "union"_kw || word == "except"_kw ||
                                                     word == "intersect"_kw || word == "order"_kw);
    if (behind.op != Op::kRightParen && !set_operator) return false;
  }
  return true;
}

void Parser::SkipParens() {
  const std::size_t open = position_;
  Expect(Op::kLeftParen);
  const std::size_t close = MatchingParen(open);
  while (position_ < close) Take();
  Expect(Op::kRightParen);
}

std::vector<ExpressionPtr> Parser::ParseValues() {
  std::vector<ExpressionPtr> values;
  do {
    values.push_back(ParseValue());
  } while (Accept(Op::kComma));
  return values;
}

}  // namespace tessarlorn::tsql
