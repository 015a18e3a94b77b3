// Conditions: comparisons, IN, BETWEEN, LIKE, EXISTS, quantifiers, AND, OR, NOT.
#include <array>
#include <span>

#include "tsql/translate/translator.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

constexpr std::array<std::string_view, 6> kCompareText = {" = ", " <> ", " < ", " <= ", " > ", " >= "};

/// The parts with `joint` between them, as a tree that is no deeper than it has to be: SQLite limits the depth.
std::string Joined(std::span<const std::string> parts, const char* joint) {
  if (parts.size() == 1) return parts[0];
  const std::size_t half = parts.size() / 2;
  return "(" + Joined(parts.first(half), joint) + joint + Joined(parts.subspan(half), joint) + ")";
}

}  // namespace

std::string Translator::Compare(CompareOp op, const Typed& a, const Typed& b) {
  SqlType common = CommonType(a.type, b.type);
  // An index serves only while the column's side stands as it is: constants are brought to the column's type where
  // that loses nothing.
  const auto prefer = [&](const Typed& column, const Typed& constant) {
    if (constant.parameter < 0 || column.parameter >= 0 || constant.type.untyped_null) return false;
    if (column.type.is_exact() && (constant.type.is_integer() || constant.type.is_exact()) &&
        AsDecimal(constant.type).scale <= column.type.scale) {
      common = column.type;
      return true;
    }
    if (column.type.is_integer() && constant.type.is_exact() && constant.type.scale == 0) {
      common = BigIntType();
      return true;
    }
    if (column.type.kind == FieldType::kDateTime && constant.type.has_offset()) {
      common = DateTime2Type(7);
      return true;
    }
    return false;
  };
  if (!prefer(a, b)) prefer(b, a);
  const std::string left = Coerce(a, common, Fit::kCompare);
  const std::string right = Coerce(b, common, Fit::kCompare);
  const std::string collation = CollationOf(common);
  if (op == CompareOp::kEqual && common.is_text() && a.number.empty() != b.number.empty()) {
    // An index on the number serves where the text can be read as one; that it can follows from the equality.
    const Typed& number = a.number.empty() ? b : a;
    const Typed& text = a.number.empty() ? a : b;
    return "(" + left + collation + " = " + right + " AND " + number.number + " = ts_try(" + text.sql + ", " +
           std::to_string(PackType(text.type)) + ", " + std::to_string(PackType(BigIntType())) + ", 0))";
  }
  return "(" + left + collation + std::string(kCompareText[static_cast<std::size_t>(op)]) + right + ")";
}

std::string Translator::InList(const Expression& expression, Scope& scope) {
  const std::string negation = expression.negated ? " NOT IN (" : " IN (";
  Typed value = Value(*expression.operands[0], scope);
  if (expression.kind == Expression::Kind::kInLiteralList) {
    const SqlType item = expression.list_of_strings ? VarCharType(8000) : IntType();
    SqlType common = expression.list_of_strings || value.type.is_text() ? CommonType(value.type, item) : value.type;
    if (value.type.is_date() || value.type.has_offset() || value.type.is_float()) common = value.type;
    if (value.type.is_text() && !expression.list_of_strings) common = BigIntType();
    if (value.type.is_integer() && !expression.list_of_strings) common = BigIntType();
    const std::string left = Coerce(value, common, Fit::kCompare);
    BoundParameter list;
    list.source = BoundParameter::Source::kList;
    list.index = expression.list_index;
    list.from = item;
    list.to = common;
    list.fit = Fit::kCompare;
    parameters_.push_back(std::move(list));
    return "(" + left + CollationOf(common) + negation + "SELECT value FROM ts_list(?" +
           std::to_string(parameters_.size()) + ")))";
  }
  std::vector<Typed> items;
  SqlType common = value.type;
  for (std::size_t i = 1; i < expression.operands.size(); ++i) {
    items.push_back(Value(*expression.operands[i], scope));
    common = CommonType(common, items.back().type);
  }
  if (items.size() == 1) {
    const std::string sql = Compare(CompareOp::kEqual, value, items[0]);
    return expression.negated ? "(NOT " + sql + ")" : sql;
  }
  std::string sql = "(" + Coerce(value, common, Fit::kCompare) + CollationOf(common) + negation;
  for (std::size_t i = 0; i < items.size(); ++i) {
    sql += (i == 0 ? "" : ", ") + Coerce(items[i], common, Fit::kCompare);
  }
  return sql + "))";
}

std::string Translator::InQuery(const Expression& expression, Scope& scope) {
  Typed value = Value(*expression.operands[0], scope);
  const TranslatedQuery query = SingleColumn(*expression.query, scope);
  const SqlType common = CommonType(value.type, query.columns[0].type);
  const Typed column{"\"c\"", query.columns[0].type, true, -1};
  const std::string converted = Coerce(column, common, Fit::kCompare);
  const std::string rows = converted == column.sql ? query.sql : "SELECT " + converted + " FROM (" + query.sql + ")";
  return "(" + Coerce(value, common, Fit::kCompare) + CollationOf(common) +
         (expression.negated ? " NOT IN (" : " IN (") + rows + "))";
}

std::string Translator::Quantified(const Expression& expression, Scope& scope) {
  const TranslatedQuery query = SingleColumn(*expression.query, scope);
  const Typed column{"\"c\"", query.columns[0].type, true, -1};
  const std::string holds = Compare(expression.compare, Value(*expression.operands[0], scope), column);
  if (expression.quantifier == Quantifier::kAny)
    return "EXISTS (SELECT 1 FROM (" + query.sql + ") WHERE " + holds + ")";
  return "NOT EXISTS (SELECT 1 FROM (" + query.sql + ") WHERE (" + holds + ") IS NOT 1)";
}

std::string Translator::Condition(const Expression& expression, Scope& scope) {
  switch (expression.kind) {
    case Expression::Kind::kCompare:
      return Compare(expression.compare, Value(*expression.operands[0], scope), Value(*expression.operands[1], scope));
    case Expression::Kind::kAnd:
    case Expression::Kind::kOr: {
      const char* joint = expression.kind == Expression::Kind::kAnd ? " AND " : " OR ";
      std::vector<std::string> parts;
      for (const ExpressionPtr& operand : expression.operands) parts.push_back(Condition(*operand, scope));
      return Joined(parts, joint);
    }
    case Expression::Kind::kNot:
      return "(NOT " + Condition(*expression.operands[0], scope) + ")";
    case Expression::Kind::kIsNull:
      return "(" + Value(*expression.operands[0], scope).sql + (expression.negated ? " IS NOT NULL)" : " IS NULL)");
    case Expression::Kind::kBetween: {
      const std::string low = Compare(CompareOp::kGreaterEqual, Value(*expression.operands[0], scope),
                                      Value(*expression.operands[1], scope));
      const std::string high =
          Compare(CompareOp::kLessEqual, Value(*expression.operands[0], scope), Value(*expression.operands[2], scope));
      return std::string(expression.negated ? "(NOT " : "(") + "(" + low + " AND " + high + "))";
    }
    case Expression::Kind::kLike: {
      std::string sql = "ts_like(" + TextArgument(*expression.operands[0], scope) + ", " +
                        TextArgument(*expression.operands[1], scope);
      if (expression.operands.size() > 2 && expression.operands[2] != nullptr) {
        sql += ", " + TextArgument(*expression.operands[2], scope);
      }
      return (expression.negated ? "(NOT " : "(") + sql + "))";
    }
    case Expression::Kind::kInList:
    case Expression::Kind::kInLiteralList:
      return InList(expression, scope);
    case Expression::Kind::kInQuery:
      return InQuery(expression, scope);
    case Expression::Kind::kExists: {
      const TranslatedQuery query = QueryText(*expression.query, &scope, {});
      return "EXISTS (" + query.sql + ")";
    }
    case Expression::Kind::kQuantified:
      return Quantified(expression, scope);
    default: {
      SqlError error(4145, "An expression of non-boolean type specified in a context where a condition is expected.",
                     15);
      error.set_line(expression.line);
      throw error;
    }
  }
}

}  // namespace tessarlorn::tsql
