#include "tsql/translate/literals.h"

#include <utility>

namespace tessarlorn::tsql {
namespace {

class Finder {
 public:
  void Visit(const Statement& statement) {
    Visit(statement.query);
    VisitAll(statement.from);
    VisitAll(statement.values);
    VisitAll(statement.body);
    VisitAll(statement.catch_body);
    for (const CommonTable& table : statement.with) Visit(table.query);
    for (const ExpressionPtr* expression :
         {&statement.where, &statement.condition, &statement.value, &statement.text_expression}) {
      Visit(*expression);
    }
    VisitShaping(statement.top);
    for (const Assignment& assignment : statement.assignments) {
      Visit(assignment.value);
      if (assignment.is_compound) use.may_shape = true;
    }
    for (const VariableDeclaration& declaration : statement.declarations) Visit(declaration.initial);
    for (const auto& [name, value] : statement.arguments) Visit(value);
    if (statement.execute != nullptr) Visit(*statement.execute);
  }

  LiteralUse use;

 private:
  /// What stands in GROUP BY and ORDER BY is compared with the select list.
  bool shaping_ = false;

  void Visit(const StatementPtr& statement) {
    if (statement != nullptr) Visit(*statement);
  }

  template <typename Pointers>
  void VisitAll(const Pointers& pointers) {
    for (const auto& pointer : pointers) Visit(pointer);
  }

  void VisitShaping(const ExpressionPtr& expression) {
    if (expression != nullptr && expression->kind == Expression::Kind::kLiteral) use.may_shape = true;
    Visit(expression);
  }

  void Visit(const ExpressionPtr& pointer) {
    if (pointer == nullptr) return;
    const Expression& expression = *pointer;
    if (expression.kind == Expression::Kind::kLiteral && expression.literal_index >= 0) {
      use.values.insert(expression.literal_index);
      use.may_shape = use.may_shape || shaping_;
    }
    if (expression.kind == Expression::Kind::kBinary) {
      for (const ExpressionPtr& operand : expression.operands) VisitShaping(operand);
      return;
    }
    if (expression.kind == Expression::Kind::kConvert && expression.operands.size() > 1) use.may_shape = true;
    VisitAll(expression.operands);
    for (const CaseBranch& branch : expression.branches) {
      Visit(branch.when);
      Visit(branch.then);
    }
    Visit(expression.query);
    if (expression.kind == Expression::Kind::kFunction && expression.text == "identity") use.may_shape = true;
    if (expression.window == nullptr) return;
    VisitAll(expression.window->partition);
    for (const OrderItem& item : expression.window->order) Visit(item.expression);
  }

  void Visit(const QueryPtr& pointer) {
    if (pointer == nullptr) return;
    const Query& query = *pointer;
    for (const CommonTable& table : query.with) Visit(table.query);
    for (const auto& row : query.rows) VisitAll(row);
    Visit(query.left);
    Visit(query.right);
    Visit(query.offset);
    Visit(query.fetch);
    shaping_ = true;
    for (const OrderItem& item : query.order_by) Visit(item.expression);
    if (query.select != nullptr) VisitAll(query.select->group_by);
    shaping_ = false;
    if (query.select == nullptr) return;
    const Select& select = *query.select;
    VisitShaping(select.top);
    for (const SelectItem& item : select.items) Visit(item.expression);
    VisitAll(select.from);
    Visit(select.where);
    Visit(select.having);
  }

  void Visit(const TableSourcePtr& pointer) {
    if (pointer == nullptr) return;
    Visit(pointer->query);
    Visit(pointer->left);
    Visit(pointer->right);
    Visit(pointer->on);
  }
};

}  // namespace

LiteralUse FindLiterals(const Statement& statement) {
  Finder finder;
  finder.Visit(statement);
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

Blob BinaryLiteral(std::string_view text) {
  std::string digits(text.substr(2));
  if (digits.size() % 2 != 0) digits.insert(0, 1, '0');
  return std::get<Blob>(Convert(std::move(digits), VarCharType(0), {FieldType::kVarBinary, 0, 0, 0, false}, 2));
}

}  // namespace tessarlorn::tsql
