#include "tsql/syntax/ast_walk.h"

#include <type_traits>

namespace tessarlorn::tsql {
namespace {

using VisitExpression = std::function<void(const Expression&)>;

template <typename Node, typename... Nodes>
concept OneOf = (std::is_same_v<Node, Nodes> || ...);

/// The operands of each node.
class Operands {
 public:
  explicit Operands(const VisitExpression& visit) : visit_(visit) {}

  template <OneOf<Literal, VariableReference, GlobalReference, ColumnReference, Star, DefaultValue, NextValue,
                  ScalarSubquery, ExistsCondition, UpdatedColumn>
                Leaf>
  void operator()(const Leaf& /*node*/) const {}
  void operator()(const UnaryOperation& node) const { Take(node.operand); }
  void operator()(const BinaryOperation& node) const { Take(node.left, node.right); }
  void operator()(const CaseExpression& node) const {
    Take(node.compared, node.otherwise);
    for (const CaseBranch& branch : node.branches) Take(branch.when, branch.then);
  }
  void operator()(const CastExpression& node) const { Take(node.value); }
  void operator()(const ConvertExpression& node) const { Take(node.value, node.style); }
  void operator()(const FunctionCall& node) const {
    TakeAll(node.arguments);
    for (const OrderItem& item : node.within) TakeOne(item.expression);
  }
  void operator()(const IdentityCall& node) const { TakeAll(node.arguments); }
  void operator()(const CollateExpression& node) const { Take(node.value); }
  void operator()(const Comparison& node) const { Take(node.left, node.right); }
  void operator()(const QuantifiedComparison& node) const { Take(node.value); }
  void operator()(const Conjunction& node) const { TakeAll(node.operands); }
  void operator()(const Disjunction& node) const { TakeAll(node.operands); }
  void operator()(const Negation& node) const { Take(node.operand); }
  void operator()(const NullTest& node) const { Take(node.value); }
  void operator()(const BetweenCondition& node) const { Take(node.value, node.low, node.high); }
  void operator()(const LikeCondition& node) const { Take(node.text, node.pattern, node.escape); }
  void operator()(const InList& node) const {
    Take(node.value);
    TakeAll(node.items);
  }
  void operator()(const InLiteralList& node) const { Take(node.value); }
  void operator()(const InQuery& node) const { Take(node.value); }

 private:
  template <typename... Pointers>
  void Take(const Pointers&... pointers) const {
    (TakeOne(pointers), ...);
  }
  void TakeOne(const ExpressionPtr& pointer) const {
    if (pointer != nullptr) visit_(*pointer);
  }
  void TakeAll(const std::vector<ExpressionPtr>& pointers) const {
    for (const ExpressionPtr& pointer : pointers) TakeOne(pointer);
  }

  const VisitExpression& visit_;
};

}  // namespace

bool IsCondition(const Expression& expression) {
  // The variant lists the values before the conditions.
  static const std::size_t first = ExpressionNode(Comparison{}).index();
  return expression.node.index() >= first;
}

void ForEachOperand(const Expression& expression, const VisitExpression& visit) {
  std::visit(Operands(visit), expression.node);
}

bool AnyOperand(const Expression& expression, const std::function<bool(const Expression&)>& holds) {
  if (holds(expression)) return true;
  bool any = false;
  ForEachOperand(expression, [&](const Expression& operand) { any = any || AnyOperand(operand, holds); });
  return any;
}

void ForEachChild(const Statement& statement, const std::function<void(const Statement&)>& visit) {
  const auto all = [&](const std::vector<StatementPtr>& body) {
    for (const StatementPtr& child : body) visit(*child);
  };
  if (const auto* branch = As<IfStatement>(statement)) {
    visit(*branch->then);
    if (branch->otherwise != nullptr) visit(*branch->otherwise);
  } else if (const auto* loop = As<WhileStatement>(statement)) {
    visit(*loop->body);
  } else if (const auto* block = As<BlockStatement>(statement)) {
    all(block->body);
  } else if (const auto* attempt = As<TryCatchStatement>(statement)) {
    all(attempt->body);
    all(attempt->handler);
  } else if (const auto* procedure = As<CreateProcedureStatement>(statement)) {
    all(procedure->body);
  } else if (const auto* trigger = As<CreateTriggerStatement>(statement)) {
    all(trigger->body);
  } else if (const auto* function = As<CreateFunctionStatement>(statement)) {
    all(function->body);
  } else if (const auto* insert = As<InsertStatement>(statement)) {
    if (insert->execute() != nullptr) visit(*insert->execute());
  }
}

const Output* OutputClauseOf(const Statement& statement) {
  if (const auto* insert = As<InsertStatement>(statement)) return &insert->output;
  if (const auto* update = As<UpdateStatement>(statement)) return &update->rows.output;
  if (const auto* removal = As<DeleteStatement>(statement)) return &removal->rows.output;
  if (const auto* merge = As<MergeStatement>(statement)) return &merge->output;
  return nullptr;
}

}  // namespace tessarlorn::tsql
