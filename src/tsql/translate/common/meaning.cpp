#include "tsql/translate/common/meaning.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

#include "platform/text/text.h"
#include "tsql/syntax/ast_walk.h"

namespace tessarlorn::tsql {
namespace {

template <typename Op>
std::string Number(Op op) {
  return std::to_string(static_cast<int>(op));
}

std::string TypeOf(const TypeName& type, bool attempt) {
  return type.name + ":" + std::to_string(type.length) + ":" + std::to_string(type.scale) + ":" + Number(attempt);
}

/// No subquery counts as the same as another one.
std::string Place(const QueryPtr& query) { return std::to_string(reinterpret_cast<std::uintptr_t>(query.get())); }

/// What tells two nodes of one type apart, but for their operands.
struct OwnPart {
  /// The length keeps a text with commas and parentheses apart from what follows it.
  std::string operator()(const Literal& node) const {
    return Number(node.kind) + "," + std::to_string(node.text.size()) + "," + node.text;
  }
  std::string operator()(const VariableReference& node) const { return node.name; }
  std::string operator()(const GlobalReference& node) const { return node.name; }
  std::string operator()(const ColumnReference& node) const { return LowerCase(node.name); }
  std::string operator()(const Star& node) const { return LowerCase(node.table); }
  std::string operator()(const UnaryOperation& node) const { return Number(node.op); }
  std::string operator()(const BinaryOperation& node) const { return Number(node.op); }
  std::string operator()(const CastExpression& node) const { return TypeOf(node.type, node.attempt); }
  std::string operator()(const ConvertExpression& node) const { return TypeOf(node.type, node.attempt); }
  std::string operator()(const FunctionCall& node) const {
    std::string text = LowerCase(node.qualifier + "." + node.name) + (node.distinct ? ":d:" : "::") + node.date_part;
    for (const OrderItem& item : node.within) text += item.descending ? ":d" : ":a";
    return text;
  }
  std::string operator()(const NextValue& node) const { return LowerCase(node.sequence.name); }
  std::string operator()(const IdentityCall& node) const { return TypeOf(node.type, false); }
  std::string operator()(const CollateExpression& node) const { return LowerCase(node.collation); }
  std::string operator()(const Comparison& node) const { return Number(node.op); }
  std::string operator()(const QuantifiedComparison& node) const { return Place(node.query); }
  std::string operator()(const NullTest& node) const { return Number(node.negated); }
  std::string operator()(const BetweenCondition& node) const { return Number(node.negated); }
  std::string operator()(const LikeCondition& node) const { return Number(node.negated); }
  std::string operator()(const InList& node) const { return Number(node.negated); }
  std::string operator()(const InLiteralList& node) const { return Number(node.negated); }
  std::string operator()(const InQuery& node) const { return Place(node.query); }
  std::string operator()(const DefaultValue& /*node*/) const { return {}; }
  std::string operator()(const CaseExpression& /*node*/) const { return {}; }
  std::string operator()(const ScalarSubquery& node) const { return Place(node.query); }
  std::string operator()(const Conjunction& /*node*/) const { return {}; }
  std::string operator()(const Disjunction& /*node*/) const { return {}; }
  std::string operator()(const Negation& /*node*/) const { return {}; }
  std::string operator()(const ExistsCondition& node) const { return Place(node.query); }
  std::string operator()(const UpdatedColumn& node) const { return node.column; }
};

}  // namespace

bool IsAggregate(std::string_view name) {
  constexpr auto kAggregates =
      std::to_array<std::string_view>({"avg", "checksum_agg", "count", "count_big", "max", "min", "stdev", "stdevp",
                                       "string_agg", "sum", "var", "varp"});
  return std::find(kAggregates.begin(), kAggregates.end(), name) != kAggregates.end();
}

bool HasColumn(const Expression& expression) {
  return AnyOperand(expression, [](const Expression& operand) {
    return As<ColumnReference>(operand) != nullptr || As<ScalarSubquery>(operand) != nullptr;
  });
}

bool HasAggregate(const Expression& expression) {
  return AnyOperand(expression, [](const Expression& operand) {
    const auto* call = As<FunctionCall>(operand);
    return call != nullptr && call->window == nullptr && call->qualifier.empty() && IsAggregate(call->name);
  });
}

std::string MeaningOf(const Expression& expression) {
  std::string text = std::to_string(expression.node.index()) + ":" + std::visit(OwnPart{}, expression.node) + "(";
  ForEachOperand(expression, [&](const Expression& operand) { text += MeaningOf(operand) + ","; });
  return text + ")";
}

}  // namespace tessarlorn::tsql
