#include "tsql/translate/common/literals.h"

#include <utility>
#include <vector>

#include "tsql/syntax/ast_walk.h"

namespace tessarlorn::tsql {
namespace {

class Finder {
 public:
  void Find(const Statement& statement) {
    std::visit([this](const auto& node) { Visit(node); }, statement.node);
    ForEachChild(statement, [this](const Statement& child) { Find(child); });
  }

  LiteralUse use;

 private:
  // Statements that hold no values of their own, definitions among them.
  template <typename Node>
  void Visit(const Node& /*node*/) {}
  void Visit(const SelectStatement& select) { Visit(select.query); }
  void Visit(const InsertStatement& insert) {
    Visit(insert.with);
    if (const auto* query = std::get_if<QueryPtr>(&insert.source)) Visit(*query);
  }
  void Visit(const UpdateStatement& update) {
    Visit(update.rows);
    for (const Assignment& assignment : update.assignments) Visit(assignment);
  }
  void Visit(const DeleteStatement& statement) { Visit(statement.rows); }
  void Visit(const DeclareStatement& declare) {
    for (const VariableDeclaration& variable : declare.variables) Visit(variable.initial);
  }
  void Visit(const SetStatement& set) { Visit(set.assignment); }
  void Visit(const SetValueStatement& set) { Visit(set.value); }
  void Visit(const IfStatement& branch) { Visit(branch.condition); }
  void Visit(const WhileStatement& loop) { Visit(loop.condition); }
  void Visit(const ReturnStatement& statement) { Visit(statement.value); }
  void Visit(const WaitForStatement& wait) { Visit(wait.delay); }
  void Visit(const PrintStatement& print) { Visit(print.message); }
  void Visit(const RaiseErrorStatement& raise) {
    Visit(raise.message);
    Visit(raise.severity);
    Visit(raise.state);
    VisitAll(raise.arguments);
  }
  void Visit(const ThrowStatement& statement) {
    Visit(statement.number);
    Visit(statement.message);
    Visit(statement.state);
  }
  void Visit(const CallStatement& call) {
    for (const CallArgument& argument : call.arguments) Visit(argument.value);
  }
  void Visit(const ExecuteTextStatement& execute) { Visit(execute.text); }
  void Visit(const CreateIndexStatement& index) { Visit(index.where); }
  void Visit(const CreateViewStatement& create) { Visit(create.query); }

  void Visit(const ChangedRows& rows) {
    Visit(rows.with);
    VisitAll(rows.from);
    Visit(rows.where);
    VisitShaping(rows.top);
  }
  void Visit(const Assignment& assignment) {
    Visit(assignment.value);
    if (assignment.compound) use.may_shape = true;
  }
  void Visit(const std::vector<CommonTable>& tables) {
    for (const CommonTable& table : tables) Visit(table.query);
  }

  template <typename Pointers>
  void VisitAll(const Pointers& pointers) {
    for (const auto& pointer : pointers) Visit(pointer);
  }

  void VisitShaping(const ExpressionPtr& expression) {
    if (expression == nullptr) return;
    if (As<Literal>(*expression) != nullptr) use.may_shape = true;
    VisitExpression(*expression);
  }

  void Visit(const ExpressionPtr& expression) {
    if (expression != nullptr) VisitExpression(*expression);
  }

  void VisitExpression(const Expression& expression) {
    if (const auto* literal = As<Literal>(expression); literal != nullptr && literal->index >= 0) {
      use.values.insert(literal->index);
      use.may_shape = use.may_shape || shaping_;
    }
    if (const auto* operation = As<BinaryOperation>(expression)) {
      VisitShaping(operation->left);
      VisitShaping(operation->right);
      return;
    }
    if (As<ConvertExpression>(expression) != nullptr || As<IdentityCall>(expression) != nullptr) use.may_shape = true;
    ForEachOperand(expression, [this](const Expression& operand) { VisitExpression(operand); });
    if (const auto* subquery = As<ScalarSubquery>(expression)) Visit(subquery->query);
    if (const auto* in = As<InQuery>(expression)) Visit(in->query);
    if (const auto* exists = As<ExistsCondition>(expression)) Visit(exists->query);
    if (const auto* quantified = As<QuantifiedComparison>(expression)) Visit(quantified->query);
    const auto* call = As<FunctionCall>(expression);
    if (call == nullptr || call->window == nullptr) return;
    VisitAll(call->window->partition);
    for (const OrderItem& item : call->window->order) Visit(item.expression);
  }

  void Visit(const QueryPtr& pointer) {
    if (pointer == nullptr) return;
    const Query& query = *pointer;
    Visit(query.with);
    Visit(query.offset);
    Visit(query.fetch);
    shaping_ = true;
    for (const OrderItem& item : query.order_by) Visit(item.expression);
    if (const Select* select = query.select()) VisitAll(select->group_by);
    shaping_ = false;
    std::visit([this](const auto& body) { VisitBody(body); }, query.body);
  }

  void VisitBody(const Select& select) {
    VisitShaping(select.top);
    for (const SelectItem& item : select.items) Visit(item.expression);
    VisitAll(select.from);
    Visit(select.where);
    Visit(select.having);
  }
  void VisitBody(const ValueRows& values) {
    for (const auto& row : values.rows) VisitAll(row);
  }
  void VisitBody(const SetOperation& set) {
    Visit(set.left);
    Visit(set.right);
  }

  void Visit(const TableSourcePtr& source) {
    if (const auto* derived = std::get_if<DerivedTable>(&source->node)) Visit(derived->query);
    if (const auto* function = std::get_if<TableFunction>(&source->node)) VisitAll(function->arguments);
    if (const auto* pivot = std::get_if<PivotTable>(&source->node)) Visit(pivot->source);
    if (const auto* unpivot = std::get_if<UnpivotTable>(&source->node)) Visit(unpivot->source);
    const auto* join = std::get_if<Join>(&source->node);
    if (join == nullptr) return;
    Visit(join->left);
    Visit(join->right);
    Visit(join->on);
  }

  /// What stands in GROUP BY and ORDER BY is compared with the select list.
  bool shaping_ = false;
};

}  // namespace

LiteralUse FindLiterals(const Statement& statement) {
  Finder finder;
  finder.Find(statement);
  return std::move(finder.use);
}

bool IsLongLiteral(LiteralKind kind, std::string_view value) {
  constexpr std::size_t kMostCharacters = 8000;
  constexpr std::size_t kMostNational = 4000;
  switch (kind) {
    case LiteralKind::kString:
      return value.size() > kMostCharacters && TextLength(value, false) > static_cast<int>(kMostCharacters);
    case LiteralKind::kNString:
      return value.size() > kMostNational && TextLength(value, true) > static_cast<int>(kMostNational);
    case LiteralKind::kBinary:
      return value.size() > 2 + 2 * kMostCharacters;
    default:
      return false;
  }
}

Datum MoneyLiteral(std::string_view text) { return Convert(std::string(text.substr(1)), VarCharType(0), MoneyType()); }

Blob BinaryLiteral(std::string_view text) {
  std::string digits(text.substr(2));
  if (digits.size() % 2 != 0) digits.insert(0, 1, '0');
  return std::get<Blob>(Convert(std::move(digits), VarCharType(0), {FieldType::kVarBinary, 0, 0, 0, false}, 2));
}

}  // namespace tessarlorn::tsql
