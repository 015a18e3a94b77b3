#include "objects/row_condition.h"

#include <algorithm>
#include <string>
#include <utility>

#include "platform/error.h"
#include "platform/text.h"

namespace tessarlorn {
namespace {

constexpr std::int32_t kWrongArguments = 3001;

enum class Comparison : std::uint8_t { kEqual, kUnequal, kLess, kLessOrEqual, kGreater, kGreaterOrEqual, kLike };

bool MatchesPattern(std::string_view text, std::string_view pattern) {
  const auto wild = [](char c) { return c == '*' || c == '%'; };
  const bool open_begin = !pattern.empty() && wild(pattern.front());
  if (open_begin) pattern.remove_prefix(1);
  const bool open_end = !pattern.empty() && wild(pattern.back());
  if (open_end) pattern.remove_suffix(1);
  const std::string folded = UpperCase(text);
  const std::string wanted = UpperCase(pattern);
  if (open_begin && open_end) return folded.find(wanted) != std::string::npos;
  if (open_begin) return folded.ends_with(wanted);
  if (open_end || (pattern.empty() && open_begin)) return folded.starts_with(wanted);
  return folded == wanted;
}

}  // namespace

int CompareValues(const Variant& a, const Variant& b) {
  const auto sign = [](const auto& x, const auto& y) { return x < y ? -1 : y < x ? 1 : 0; };
  if (a.is_null() || b.is_null()) return static_cast<int>(b.is_null()) - static_cast<int>(a.is_null());
  if (a.holds<DateTime>() || b.holds<DateTime>()) return sign(a.ToDateTime(), b.ToDateTime());
  if (a.holds<double>() || b.holds<double>()) return sign(a.ToDouble(), b.ToDouble());
  if (a.is_number() || b.is_number()) return sign(a.ToDecimal(), b.ToDecimal());
  return sign(UpperCase(a.ToText()), UpperCase(b.ToText()));
}

struct RowCondition::Node {
  enum class Kind : std::uint8_t { kAnd, kOr, kComparison };
  Kind kind = Kind::kComparison;
  std::unique_ptr<Node> left;
  std::unique_ptr<Node> right;
  std::size_t field = 0;
  Comparison comparison = Comparison::kEqual;
  Variant value;

  [[nodiscard]] bool Holds(const Recordset& rows) const {
    if (kind == Kind::kAnd) return left->Holds(rows) && right->Holds(rows);
    if (kind == Kind::kOr) return left->Holds(rows) || right->Holds(rows);
    const Variant own = rows.Get(field);
    if (value.is_null()) return own.is_null() == (comparison == Comparison::kEqual);
    if (own.is_null()) return false;
    if (comparison == Comparison::kLike) return MatchesPattern(own.ToText(), value.ToText());
    const int order = CompareValues(own, value);
    switch (comparison) {
      case Comparison::kEqual:
        return order == 0;
      case Comparison::kUnequal:
        return order != 0;
      case Comparison::kLess:
        return order < 0;
      case Comparison::kLessOrEqual:
        return order <= 0;
      case Comparison::kGreater:
        return order > 0;
      default:
        return order >= 0;
    }
  }
};

namespace {

using Node = RowCondition::Node;

class Parser {
 public:
  Parser(std::string_view text, const Recordset& rows) : text_(text), rows_(rows) {}

  std::unique_ptr<Node> Parse() {
    std::unique_ptr<Node> node = Either();
    SkipBlanks();
    if (at_ < text_.size()) Fail();
    return node;
  }

 private:
  static constexpr int kDeepest = 100;

  [[noreturn]] void Fail() const {
    Raise(kWrongArguments, "The condition '" + std::string(text_) + "' cannot be read at '" +
                               std::string(text_.substr(std::min(at_, text_.size()))) + "'");
  }
  void SkipBlanks() {
    while (at_ < text_.size() && (text_[at_] == ' ' || text_[at_] == '\t')) ++at_;
  }
  bool Accept(std::string_view sign) {
    SkipBlanks();
    if (!text_.substr(at_).starts_with(sign)) return false;
    at_ += sign.size();
    return true;
  }
  bool AcceptWord(std::string_view word) {
    SkipBlanks();
    const std::string_view rest = text_.substr(at_);
    if (!StartsWithIgnoreCase(rest, word)) return false;
    if (rest.size() > word.size() && IsNameCharacter(rest[word.size()])) return false;
    at_ += word.size();
    return true;
  }
  std::string_view TakeUntil(char end) {
    const std::size_t begin = at_;
    const std::size_t found = text_.find(end, at_);
    if (found == std::string_view::npos) Fail();
    at_ = found + 1;
    return text_.substr(begin, found - begin);
  }

  std::unique_ptr<Node> Join(Node::Kind kind, std::unique_ptr<Node> left, std::unique_ptr<Node> right) {
    auto node = std::make_unique<Node>();
    node->kind = kind;
    node->left = std::move(left);
    node->right = std::move(right);
    return node;
  }
  std::unique_ptr<Node> Either() {
    std::unique_ptr<Node> node = Both();
    while (AcceptWord("OR")) node = Join(Node::Kind::kOr, std::move(node), Both());
    return node;
  }
  std::unique_ptr<Node> Both() {
    std::unique_ptr<Node> node = One();
    while (AcceptWord("AND")) node = Join(Node::Kind::kAnd, std::move(node), One());
    return node;
  }
  std::unique_ptr<Node> One() {
    if (!Accept("(")) return Compare();
    if (++depth_ > kDeepest) Fail();
    std::unique_ptr<Node> node = Either();
    if (!Accept(")")) Fail();
    --depth_;
    return node;
  }
  std::unique_ptr<Node> Compare() {
    auto node = std::make_unique<Node>();
    const std::string name = Name();
    const auto field = rows_.FindField(name);
    if (!field) Raise(error_number::kItemNotFound, "Item cannot be found: " + name);
    node->field = *field;
    node->comparison = Sign();
    node->value = Value();
    return node;
  }
  std::string Name() {
    if (Accept("[")) return std::string(TakeUntil(']'));
    SkipBlanks();
    const std::size_t begin = at_;
    while (at_ < text_.size() && IsNameCharacter(text_[at_])) ++at_;
    if (at_ == begin) Fail();
    return std::string(text_.substr(begin, at_ - begin));
  }
  Comparison Sign() {
    constexpr std::pair<std::string_view, Comparison> kSigns[] = {
        {"<>", Comparison::kUnequal}, {"<=", Comparison::kLessOrEqual}, {">=", Comparison::kGreaterOrEqual},
        {"=", Comparison::kEqual},    {"<", Comparison::kLess},         {">", Comparison::kGreater}};
    for (const auto& [sign, comparison] : kSigns) {
      if (Accept(sign)) return comparison;
    }
    if (!AcceptWord("LIKE")) Fail();
    return Comparison::kLike;
  }
  Variant Value() {
    if (AcceptWord("NULL")) return Null{};
    if (AcceptWord("TRUE")) return true;
    if (AcceptWord("FALSE")) return false;
    if (Accept("'")) {
      std::string value(TakeUntil('\''));
      while (at_ < text_.size() && text_[at_] == '\'') {
        ++at_;
        value += '\'';
        value += TakeUntil('\'');
      }
      return value;
    }
    if (Accept("#")) {
      const auto date = DateTime::Parse(Trim(TakeUntil('#')));
      if (!date) Fail();
      return *date;
    }
    SkipBlanks();
    const std::size_t begin = at_;
    while (at_ < text_.size() && (IsNameCharacter(text_[at_]) || text_[at_] == '.' || text_[at_] == '-')) ++at_;
    const Variant number(text_.substr(begin, at_ - begin));
    if (at_ == begin || !IsNumeric(number)) {
      at_ = begin;
      Fail();
    }
    return number.ToDecimal();
  }

  std::string_view text_;
  const Recordset& rows_;
  std::size_t at_ = 0;
  int depth_ = 0;
};

}  // namespace

RowCondition::RowCondition(std::string_view text, const Recordset& rows) : root_(Parser(text, rows).Parse()) {}

RowCondition::~RowCondition() = default;

bool RowCondition::Holds(const Recordset& rows) const { return root_->Holds(rows); }

}  // namespace tessarlorn
