#include "hosts/objects/recordset/row_condition.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "hosts/objects/recordset/row_order.h"
#include "hosts/objects/recordset/row_text.h"
#include "platform/text/guid_text.h"
#include "platform/unicode/collation.h"
#include "tessarlorn/error.h"

namespace tessarlorn {

namespace {

enum class Comparison : std::uint8_t { kEqual, kUnequal, kLess, kLessOrEqual, kGreater, kGreaterOrEqual, kLike };

/// In the patterns that LikePattern takes.
constexpr char kEscape = '\x01';

}  // namespace

struct RowCondition::Node {
  enum class Kind : std::uint8_t { kAnd, kOr, kComparison };
  Kind kind = Kind::kComparison;
  /// Of AND and OR, which take any number, so that a long list is not a deep tree.
  std::vector<Node> parts = {};
  std::size_t field = 0;
  Comparison comparison = Comparison::kEqual;
  /// In the field's type; a pattern for LIKE.
  Variant value = {};

  [[nodiscard]] bool Holds(const Recordset& rows) const {
    const auto holds = [&rows](const Node& part) { return part.Holds(rows); };
    if (kind == Kind::kAnd) return std::all_of(parts.begin(), parts.end(), holds);
    if (kind == Kind::kOr) return std::any_of(parts.begin(), parts.end(), holds);
    const Variant own = rows.Get(field);
    if (value.is_null()) return own.is_null() == (comparison == Comparison::kEqual);
    if (own.is_null()) return false;
    if (comparison == Comparison::kLike)
      return LikePattern(*value.get_if<std::string>(), kEscape).Matches(own.ToText());
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

/// `value` in the type of the field's values. Raises what the conversion raises.
Variant InTypeOf(const Field& field, const Variant& value) {
  switch (field.type) {
    case FieldType::kBit:
      return value.ToBool();
    case FieldType::kTinyInt:
    case FieldType::kSmallInt:
    case FieldType::kInt:
    case FieldType::kBigInt:
    case FieldType::kDecimal:
    case FieldType::kMoney:
      return value.ToDecimal();
    case FieldType::kReal:
    case FieldType::kFloat:
      return value.ToDouble();
    case FieldType::kDate:
    case FieldType::kTime:
    case FieldType::kDateTime:
      return value.ToDateTime();
    case FieldType::kGuid:
      return WithoutBraces(value.ToText());
    case FieldType::kBinary:
    case FieldType::kVarBinary:
      RaiseTypeMismatch();
    default:
      return value.ToText();
  }
}

class Parser {
 public:
  Parser(std::string_view text, const Recordset& rows) : text_(text), rows_(rows) {}

  Node Parse() {
    Node node = Either();
    if (!text_.AtEnd()) text_.Fail();
    return node;
  }

 private:
  static constexpr int kDeepest = 100;

  Node Either() {
    return Joined(Node::Kind::kOr, "OR", [this] { return Both(); });
  }
  Node Both() {
    return Joined(Node::Kind::kAnd, "AND", [this] { return One(); });
  }
  template <typename Part>
  Node Joined(Node::Kind kind, std::string_view word, Part part) {
    Node first = part();
    if (!text_.AcceptWord(word)) return first;
    Node node{.kind = kind};
    node.parts.push_back(std::move(first));
    do {
      node.parts.push_back(part());
    } while (text_.AcceptWord(word));
    return node;
  }
  Node One() {
    if (!text_.Accept("(")) return Compare();
    if (++depth_ > kDeepest) text_.Fail();
    Node node = Either();
    if (!text_.Accept(")")) text_.Fail();
    --depth_;
    return node;
  }
  Node Compare() {
    Node node;
    node.field = text_.TakeField(rows_);
    node.comparison = Sign();
    if (text_.AcceptWord("NULL")) {
      if (node.comparison != Comparison::kEqual && node.comparison != Comparison::kUnequal) text_.Fail();
      node.value = Null{};
      return node;
    }
    const Variant value = Value();
    if (node.comparison == Comparison::kLike) {
      node.value = Pattern(value.ToText());
      return node;
    }
    try {
      node.value = InTypeOf(rows_.fields()[node.field], value);
    } catch (const Error&) {
      text_.Fail();
    }
    return node;
  }
  Comparison Sign() {
    constexpr std::pair<std::string_view, Comparison> kSigns[] = {
        {"<>", Comparison::kUnequal}, {"<=", Comparison::kLessOrEqual}, {">=", Comparison::kGreaterOrEqual},
        {"=", Comparison::kEqual},    {"<", Comparison::kLess},         {">", Comparison::kGreater}};
    for (const auto& [sign, comparison] : kSigns) {
      if (text_.Accept(sign)) return comparison;
    }
    if (!text_.AcceptWord("LIKE")) text_.Fail();
    return Comparison::kLike;
  }
  Variant Value() {
    if (text_.AcceptWord("TRUE")) return true;
    if (text_.AcceptWord("FALSE")) return false;
    if (text_.Accept("#")) return text_.TakeUntil('#');
    if (text_.Accept("'")) {
      std::string value(text_.TakeUntil('\''));
      while (text_.AcceptNext('\'')) value.append("'").append(text_.TakeUntil('\''));
      return value;
    }
    Variant number(text_.TakeWord("+-."));
    if (!IsNumeric(number)) text_.Fail();
    return number;
  }
  /// As LikePattern takes it: there % stands for any characters, and other signs have a meaning, too.
  std::string Pattern(std::string_view given) const {
    const auto wild = [](char c) { return c == '*' || c == '%'; };
    std::string pattern;
    for (std::size_t i = 0; i < given.size(); ++i) {
      const char c = given[i];
      if (wild(c)) {
        if (i != 0 && i + 1 != given.size()) text_.Fail();
        pattern += '%';
        continue;
      }
      if (c == '_' || c == '[' || c == kEscape) pattern += kEscape;
      pattern += c;
    }
    return pattern;
  }

  RowText text_;
  const Recordset& rows_;
  int depth_ = 0;
};

}  // namespace

RowCondition::RowCondition(std::string_view text, const Recordset& rows)
    : root_(std::make_unique<Node>(Parser(text, rows).Parse())) {}

RowCondition::~RowCondition() = default;

bool RowCondition::Holds(const Recordset& rows) const { return root_->Holds(rows); }

}  // namespace tessarlorn
