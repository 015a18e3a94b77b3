#include "tsql/translate/condition.h"

#include <span>

#include "tsql/translate/common/argument.h"
#include "tsql/translate/common/conversion.h"
#include "tsql/translate/common/operators.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

/// The parts with `joint` between them, as a tree that is no deeper than it has to be: SQLite limits the depth.
std::string Joined(std::span<const std::string> parts, const char* joint) {
  if (parts.size() == 1) return parts[0];
  const std::size_t half = parts.size() / 2;
  return "(" + Joined(parts.first(half), joint) + joint + Joined(parts.subspan(half), joint) + ")";
}

const char* InText(bool negated) { return negated ? " NOT IN (" : " IN ("; }

/// The type in which a value is compared with the items of a list token.
SqlType ListType(const SqlType& value, const SqlType& item, bool of_strings) {
  if (value.is_date() || value.has_offset() || value.is_float()) return value;
  if (!of_strings && (value.is_text() || value.is_integer())) return BigIntType();
  return of_strings ? CommonType(value, item) : value;
}

/// One function a node that is a condition.
class Conditions {
 public:
  Conditions(Translation& translation, Scope& scope, std::uint32_t line)
      : translation_(translation), parameters_(translation.parameters), scope_(scope), line_(line) {}

  std::string operator()(const Comparison& comparison) const {
    return Compare(comparison.op, *comparison.left, *comparison.right);
  }
  std::string operator()(const Conjunction& conjunction) const {
    return Joined(Translated(conjunction.operands), " AND ");
  }
  std::string operator()(const Disjunction& disjunction) const {
    return Joined(Translated(disjunction.operands), " OR ");
  }
  std::string operator()(const Negation& negation) const {
    return "(NOT " + translation_.Condition(*negation.operand, scope_) + ")";
  }
  std::string operator()(const NullTest& test) const {
    return "(" + Value(*test.value).sql + (test.negated ? " IS NOT NULL)" : " IS NULL)");
  }
  std::string operator()(const BetweenCondition& between) const {
    const std::string low = Compare(CompareOp::kGreaterEqual, *between.value, *between.low);
    const std::string high = Compare(CompareOp::kLessEqual, *between.value, *between.high);
    return std::string(between.negated ? "(NOT " : "(") + "(" + low + " AND " + high + "))";
  }
  std::string operator()(const LikeCondition& like) const;
  std::string operator()(const InList& list) const;
  std::string operator()(const InLiteralList& list) const;
  std::string operator()(const InQuery& in) const;
  std::string operator()(const ExistsCondition& exists) const {
    return "EXISTS (" + translation_.QueryText(*exists.query, &scope_, {}).sql + ")";
  }
  std::string operator()(const UpdatedColumn& updated) const {
    return "(" + parameters_.System(std::string(kUpdatedColumn) + updated.column, IntType()).sql + " = 1)";
  }
  std::string operator()(const QuantifiedComparison& comparison) const;
  // Whatever else there is, is a value.
  template <typename Other>
  std::string operator()(const Other& /*node*/) const {
    SqlError error(4145, "An expression of non-boolean type specified in a context where a condition is expected.", 15);
    error.set_line(line_);
    throw error;
  }

 private:
  [[nodiscard]] Typed Value(const Expression& expression) const { return translation_.Value(expression, scope_); }
  [[nodiscard]] std::string Compare(CompareOp op, const Expression& a, const Expression& b) const {
    const Typed left = Value(a);
    return Compared(parameters_, op, left, Value(b));
  }
  [[nodiscard]] std::string ForComparison(const Typed& value, const SqlType& type) const {
    return Coerce(parameters_, value, type, Fit::kCompare);
  }
  [[nodiscard]] std::vector<std::string> Translated(const std::vector<ExpressionPtr>& conditions) const {
    std::vector<std::string> parts;
    for (const ExpressionPtr& condition : conditions) parts.push_back(translation_.Condition(*condition, scope_));
    return parts;
  }

  Translation& translation_;
  Parameters& parameters_;
  Scope& scope_;
  std::uint32_t line_;
};

std::string Conditions::operator()(const LikeCondition& like) const {
  std::string sql = "ts_like(" + TextArgument(translation_, *like.text, scope_) + ", ";
  sql += TextArgument(translation_, *like.pattern, scope_);
  if (like.escape != nullptr) sql += ", " + TextArgument(translation_, *like.escape, scope_);
  return (like.negated ? "(NOT " : "(") + sql + "))";
}

std::string Conditions::operator()(const InLiteralList& list) const {
  const Typed value = Value(*list.value);
  const SqlType item = list.of_strings ? VarCharType(8000) : IntType();
  const SqlType common = ListType(value.type, item, list.of_strings);
  const std::string left = ForComparison(value, common);
  return "(" + left + CollationOf(common) + InText(list.negated) + "SELECT value FROM ts_list(" +
         parameters_.List(list.index, item, common) + ")))";
}

std::string Conditions::operator()(const InList& list) const {
  const Typed value = Value(*list.value);
  std::vector<Typed> items;
  SqlType common = value.type;
  for (const ExpressionPtr& item : list.items) {
    items.push_back(Value(*item));
    common = CommonType(common, items.back().type);
  }
  if (items.size() == 1) {
    const std::string sql = Compared(parameters_, CompareOp::kEqual, value, items[0]);
    return list.negated ? "(NOT " + sql + ")" : sql;
  }
  std::string sql = "(" + ForComparison(value, common) + CollationOf(common) + InText(list.negated);
  for (std::size_t i = 0; i < items.size(); ++i) sql += (i == 0 ? "" : ", ") + ForComparison(items[i], common);
  return sql + "))";
}

std::string Conditions::operator()(const InQuery& in) const {
  const Typed value = Value(*in.value);
  const TranslatedQuery query = SingleColumn(translation_, *in.query, scope_);
  const SqlType common = CommonType(value.type, query.columns[0].type);
  const Typed column{"\"c\"", query.columns[0].type, true, -1};
  const std::string converted = ForComparison(column, common);
  const std::string rows = converted == column.sql ? query.sql : "SELECT " + converted + " FROM (" + query.sql + ")";
  return "(" + ForComparison(value, common) + CollationOf(common) + InText(in.negated) + rows + "))";
}

std::string Conditions::operator()(const QuantifiedComparison& comparison) const {
  const TranslatedQuery query = SingleColumn(translation_, *comparison.query, scope_);
  const Typed column{"\"c\"", query.columns[0].type, true, -1};
  const std::string holds = Compared(parameters_, comparison.op, Value(*comparison.value), column);
  if (comparison.quantifier == Quantifier::kAny)
    return "EXISTS (SELECT 1 FROM (" + query.sql + ") WHERE " + holds + ")";
  return "NOT EXISTS (SELECT 1 FROM (" + query.sql + ") WHERE (" + holds + ") IS NOT 1)";
}

}  // namespace

std::string TranslateCondition(Translation& translation, const Expression& expression, Scope& scope) {
  return std::visit(Conditions(translation, scope, expression.line), expression.node);
}

}  // namespace tessarlorn::tsql
