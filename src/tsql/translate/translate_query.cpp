// Queries: select lists, grouping, set operators, ORDER BY, TOP, common table expressions.
#include <algorithm>
#include <array>

#include "platform/text.h"
#include "tsql/translate/translator.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

/// Whether a query's result is computed through an outer-joined view, which SQLite can only unfold outside DISTINCT.
std::string Unfolded(const std::string& sql) { return "SELECT DISTINCT * FROM (" + sql + " LIMIT -1)"; }

bool StoresAlike(const SqlType& a, const SqlType& b) {
  return a.storage() == b.storage() && (!a.is_exact() || a.scale == b.scale);
}

}  // namespace

std::string TableSql(const CatalogObject& table) {
  return (table.temporary ? "temp." : "main.") + QuoteName(table.name);
}

void Translator::ExpandStar(const Expression& star, const Scope& scope, std::vector<Typed>& values,
                            std::vector<ResultColumn>& columns) {
  bool any = false;
  for (const Source& source : scope.sources) {
    if (!star.parts.empty() && !EqualsIgnoreCase(source.alias, star.parts.back())) continue;
    any = true;
    for (const SourceColumn& column : source.columns) {
      if (scope.check_grouping && !scope.group_columns.contains(column.sql)) {
        throw SqlError(8120, "Column '" + source.alias + "." + column.name +
                                 "' is invalid in the select list because it "
                                 "is not contained in either an aggregate function or the GROUP BY clause.");
      }
      values.push_back({column.sql, column.type, column.nullable, -1});
      columns.push_back({column.name, column.type, column.nullable, false});
    }
  }
  if (any) return;
  if (star.parts.empty()) throw SqlError(263, "Must specify table to select from.");
  throw SqlError(
      107,
      "The column prefix '" + star.parts.back() + "' does not match with a table name or alias name used in the query.",
      15);
}

void Translator::GroupBy(const Select& select, Scope& scope, std::string& sql) {
  for (std::size_t i = 0; i < select.group_by.size(); ++i) {
    const Expression& key = *select.group_by[i];
    if (!HasColumn(key)) {
      throw SqlError(164, "Each GROUP BY expression must contain at least one column that is not an outer reference.",
                     15);
    }
    const Typed value = Value(key, scope);
    sql += (i == 0 ? " GROUP BY " : ", ") + Collated(value);
    if (key.kind == Expression::Kind::kColumn) scope.group_columns.insert(value.sql);
    scope.group_expressions.insert(Dump(key));
  }
  const bool aggregates = std::any_of(select.items.begin(), select.items.end(),
                                      [](const SelectItem& item) { return HasAggregate(*item.expression); });
  scope.check_grouping = !select.group_by.empty() || aggregates || select.having != nullptr;
}

std::int64_t Translator::IdentitySeed(const Expression& call) {
  PinAll(call);
  const auto number = [&](std::size_t i) {
    const Expression& given = *call.operands[i];
    const bool whole = given.kind == Expression::Kind::kLiteral && given.literal == LiteralKind::kInteger;
    return whole ? std::stoll(given.text.substr(0, 18)) : -1;
  };
  const std::int64_t seed = call.operands.empty() ? 1 : number(0);
  if (seed < 0 || (call.operands.size() > 1 && number(1) != 1)) {
    RaiseUnsupported("An identity that does not count by ones from a number above 0", call.line);
  }
  return seed;
}

void Translator::CheckNames(const std::vector<ResultColumn>& columns, const std::string& owner) {
  std::set<std::string> seen;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (columns[i].name.empty()) {
      throw SqlError(8155, "No column name was specified for column " + std::to_string(i + 1) + " of '" + owner + "'.");
    }
    if (!seen.insert(LowerCase(columns[i].name)).second) {
      throw SqlError(8156, "The column '" + columns[i].name + "' was specified multiple times for '" + owner + "'.");
    }
  }
}

std::string Translator::OrderBy(const std::vector<OrderItem>& items, Scope* scope, const Select* select,
                                const std::vector<ResultColumn>& columns, const std::vector<Typed>& values,
                                const Query* set) {
  const auto selects = [&](const Expression& key, const std::string& text) {
    if (key.kind == Expression::Kind::kColumn) {
      return std::any_of(values.begin(), values.end(), [&](const Typed& value) { return value.sql == text; });
    }
    PinAll(key);
    return std::any_of(select->items.begin(), select->items.end(), [&](const SelectItem& item) {
      if (Dump(*item.expression) != Dump(key)) return false;
      PinAll(*item.expression);
      return true;
    });
  };
  std::string sql;
  // A column of the tables stands for the item of a set's first query that it is.
  while (set != nullptr && set->left != nullptr) set = set->left.get();
  for (const OrderItem& item : items) {
    const Expression& key = *item.expression;
    std::string text;
    const auto position = [&](std::size_t column) {
      text = std::to_string(column + 1) + CollationOf(columns[column].type);
    };
    if (key.kind == Expression::Kind::kLiteral) {
      Pin(key);
      const int number = key.literal == LiteralKind::kInteger ? std::stoi(key.text.substr(0, 9)) : 0;
      if (number < 1 || number > static_cast<int>(columns.size())) {
        throw SqlError(
            108,
            "The ORDER BY position number " + key.text + " is out of range of the number of items in the select list.",
            15);
      }
      position(static_cast<std::size_t>(number - 1));
    } else if (key.kind == Expression::Kind::kColumn && key.parts.size() == 1) {
      // A name of the select list goes before a column of the tables.
      for (std::size_t i = 0; i < columns.size() && text.empty(); ++i) {
        const bool named = select == nullptr || i >= select->items.size() || !select->items[i].alias.empty();
        if (named && EqualsIgnoreCase(columns[i].name, key.parts[0])) position(i);
      }
    } else if (set != nullptr && set->select != nullptr && set->select->items.size() == columns.size()) {
      for (std::size_t i = 0; i < columns.size() && text.empty(); ++i) {
        if (Dump(*set->select->items[i].expression) == Dump(key)) position(i);
      }
    }
    if (text.empty()) {
      if (scope == nullptr) {
        throw SqlError(
            104,
            "ORDER BY items must appear in the select list if the statement contains a UNION, INTERSECT or EXCEPT operator.",
            15);
      }
      scope->clause = "ORDER BY clause";
      const Typed value = Value(key, *scope);
      if (select != nullptr && select->distinct && !selects(key, value.sql)) {
        throw SqlError(145, "ORDER BY items must appear in the select list if SELECT DISTINCT is specified.", 15);
      }
      text = value.sql + CollationOf(value.type);
    }
    sql += (sql.empty() ? " ORDER BY " : ", ") + text + (item.descending ? " DESC" : "");
  }
  return sql;
}

std::string Translator::Limit(const Query& query, const Select* select, Scope& scope) {
  if (select != nullptr && select->top != nullptr) {
    if (select->top_percent) RaiseUnsupported("TOP … PERCENT", select->line);
    if (select->top_with_ties) RaiseUnsupported("TOP … WITH TIES", select->line);
    Pin(*select->top);
    return " LIMIT " + IntArgument(*select->top, scope);
  }
  if (query.offset == nullptr) return "";
  const std::string offset = IntArgument(*query.offset, scope);
  const std::string fetch = query.fetch == nullptr ? "-1" : IntArgument(*query.fetch, scope);
  return " LIMIT " + fetch + " OFFSET " + offset;
}

std::string Translator::KeyListCondition(const Expression& condition, Scope& scope) {
  std::string sql;
  if (condition.kind == Expression::Kind::kAnd) {
    for (const ExpressionPtr& part : condition.operands) sql += KeyListCondition(*part, scope);
    return sql;
  }
  const Select* keys = condition.kind == Expression::Kind::kExists ? condition.query->select.get() : nullptr;
  if (keys == nullptr || keys->where == nullptr || keys->from.size() != 1 || keys->top != nullptr ||
      keys->from[0]->kind != TableSource::Kind::kTable || !keys->from[0]->table.temporary()) {
    return sql;
  }
  const TableSource& source = *keys->from[0];
  const CatalogObjectPtr table = Lookup(source.table);
  const std::string& alias = source.alias.empty() ? source.table.name : source.alias;
  const auto own_column = [&](const Expression& expression) {
    if (expression.kind != Expression::Kind::kColumn) return -1;
    const bool qualified = expression.parts.size() > 1;
    if (qualified && !EqualsIgnoreCase(expression.parts[expression.parts.size() - 2], alias)) return -1;
    return table->FindColumn(expression.parts.back());
  };
  const auto add = [&](const Expression& part) {
    if (part.kind != Expression::Kind::kCompare || part.compare != CompareOp::kEqual) return;
    for (std::size_t side = 0; side < 2; ++side) {
      const Expression& outer = *part.operands[1 - side];
      const int key = own_column(*part.operands[side]);
      if (key < 0 || outer.kind != Expression::Kind::kColumn || own_column(outer) >= 0) continue;
      const Column& column = table->columns[static_cast<std::size_t>(key)];
      const Typed value = Value(outer, scope);
      if (!StoresAlike(value.type, column.type) || !CollationOf(value.type).empty()) continue;
      sql += " AND " + value.sql + " IN (SELECT " + QuoteName(column.name) + " FROM " + TableSql(*table) + ")";
    }
  };
  if (keys->where->kind == Expression::Kind::kAnd) {
    for (const ExpressionPtr& part : keys->where->operands) add(*part);
  } else {
    add(*keys->where);
  }
  return sql;
}

TranslatedQuery Translator::SelectText(const Query& query, const Select& select, const Scope* parent,
                                       const SelectOptions& options) {
  Scope scope;
  scope.parent = parent;
  TranslatedQuery result;
  const std::string from = From(select.from, scope);
  std::string where;
  if (select.where != nullptr) {
    scope.no_aggregates = true;
    where = " WHERE " + Condition(*select.where, scope);
    scope.no_aggregates = false;
    where += KeyListCondition(*select.where, scope);
  }
  std::string group;
  const int outer_depth = aggregate_depth_;
  aggregate_depth_ = 0;
  GroupBy(select, scope, group);
  std::vector<Typed> values;
  std::vector<std::string> captured;
  const bool assigns = !select.items.empty() && !select.items[0].variable.empty();
  const bool sorted = assigns && !query.order_by.empty() && !scope.check_grouping && !select.distinct;
  if (sorted) scope.captured = &captured;
  for (const SelectItem& item : select.items) {
    const Expression& expression = *item.expression;
    if (expression.kind == Expression::Kind::kStar) {
      ExpandStar(expression, scope, values, result.columns);
      continue;
    }
    ResultColumn column;
    column.name = item.alias;
    if (column.name.empty() && expression.kind == Expression::Kind::kColumn) column.name = expression.parts.back();
    if (expression.kind == Expression::Kind::kFunction && expression.text == "identity" && !select.into.name.empty()) {
      column.identity = true;
      column.type = IntType();
      column.nullable = false;
      values.push_back(
          {"row_number() OVER () + " + std::to_string(IdentitySeed(expression) - 1), column.type, false, -1});
    } else {
      values.push_back(Value(expression, scope));
      column.type = values.back().type;
      column.nullable = values.back().nullable;
      // A table made of one other takes over which column counts.
      const bool plain = select.from.size() == 1 && select.from[0]->kind == TableSource::Kind::kTable &&
                         expression.kind == Expression::Kind::kColumn && !scope.sources.empty() && !select.distinct &&
                         select.group_by.empty();
      const CatalogObjectPtr table = plain ? scope.sources[0].table : nullptr;
      const int counts = table == nullptr ? -1 : table->identity_column();
      column.identity =
          counts >= 0 && counts == table->FindColumn(expression.parts.back()) && !select.into.name.empty();
    }
    result.columns.push_back(std::move(column));
  }
  if (options.names != nullptr) {
    if (options.names->size() != result.columns.size()) {
      if (options.names->size() == 1 && (*options.names)[0] == "c" && !options.named) return result;
      throw SqlError(result.columns.size() > options.names->size() ? 8158 : 8159,
                     "'" + options.owner + "' has " +
                         (result.columns.size() > options.names->size() ? "more" : "fewer") +
                         " columns than were specified in the column list.");
    }
    for (std::size_t i = 0; i < result.columns.size(); ++i) result.columns[i].name = (*options.names)[i];
  }
  if (options.named) CheckNames(result.columns, options.owner);
  const bool named = options.named || options.names != nullptr;
  const bool unfold = select.distinct && scope.optional_view && query.order_by.empty() && select.top == nullptr;
  std::string sql = select.distinct && !unfold ? "SELECT DISTINCT " : "SELECT ";
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (i > 0) sql += ", ";
    const bool collate = options.collate_items || select.distinct;
    sql += collate ? Collated(values[i]) : values[i].sql;
    if (named) sql += " AS " + QuoteName(result.columns[i].name);
  }
  if (values.empty()) throw SqlError(263, "Must specify table to select from.");
  if (sorted) {
    scope.captured = nullptr;
    const std::string order = OrderBy(query.order_by, &scope, &select, {}, values);
    result.sql = SortedAssignment(captured, sql, from + where + order + Limit(query, &select, scope));
    aggregate_depth_ = outer_depth;
    return result;
  }
  sql += from + where + group;
  if (select.having != nullptr) {
    scope.clause = "HAVING clause";
    sql += " HAVING " + Condition(*select.having, scope);
  }
  sql += OrderBy(query.order_by, &scope, &select, result.columns, values);
  const std::string limit = Limit(query, &select, scope);
  aggregate_depth_ = outer_depth;
  result.sql = unfold ? Unfolded(sql) : sql + limit;
  return result;
}

std::string Translator::SortedAssignment(const std::vector<std::string>& columns, const std::string& values,
                                         const std::string& rest) {
  std::string rows = "SELECT 1 AS c0";
  for (std::size_t i = 0; i < columns.size(); ++i) rows += ", " + columns[i] + " AS c" + std::to_string(i + 1);
  return "WITH \"$row\" AS MATERIALIZED (" + rows + rest + ") " + values + " FROM \"$row\"";
}

TranslatedQuery Translator::RowsText(const Query& query, const Scope* parent, const SelectOptions& options) {
  Scope scope;
  scope.parent = parent;
  TranslatedQuery result;
  std::vector<std::vector<Typed>> rows;
  for (const auto& row : query.rows) {
    if (row.size() != query.rows[0].size()) {
      throw SqlError(10709, "The number of columns for each row in a table value constructor must be the same.");
    }
    rows.emplace_back();
    for (std::size_t i = 0; i < row.size(); ++i) {
      rows.back().push_back(Value(*row[i], scope));
      if (rows.size() == 1) result.columns.push_back({"", NullType(), false, false});
      result.columns[i].type = CommonType(result.columns[i].type, rows.back()[i].type);
      result.columns[i].nullable = result.columns[i].nullable || rows.back()[i].nullable;
    }
  }
  for (std::size_t i = 0; i < result.columns.size(); ++i) {
    result.columns[i].name = options.names != nullptr && i < options.names->size() ? (*options.names)[i] : "";
  }
  if (options.named) CheckNames(result.columns, options.owner);
  for (std::size_t r = 0; r < rows.size(); ++r) {
    result.sql += r == 0 ? "SELECT " : " UNION ALL SELECT ";
    for (std::size_t i = 0; i < rows[r].size(); ++i) {
      if (i > 0) result.sql += ", ";
      result.sql += Coerce(rows[r][i], result.columns[i].type);
      if (r == 0 && !result.columns[i].name.empty()) result.sql += " AS " + QuoteName(result.columns[i].name);
    }
  }
  return result;
}

TranslatedQuery Translator::SetText(const Query& query, const Scope* parent, const SelectOptions& options) {
  SelectOptions side_options;
  side_options.collate_items = query.set_operator != SetOperator::kUnionAll;
  SelectOptions left_options = side_options;
  left_options.names = options.names;
  left_options.named = options.named;
  left_options.owner = options.owner;
  TranslatedQuery left = QueryText(*query.left, parent, left_options);
  std::vector<std::string> names;
  for (std::size_t i = 0; i < left.columns.size(); ++i) names.push_back("c" + std::to_string(i));
  // Both sides are wrapped, so that TOP and ORDER BY may stand in them and columns can be converted by name.
  TranslatedQuery right = QueryText(*query.right, parent, side_options);
  if (left.columns.size() != right.columns.size()) {
    throw SqlError(205,
                   "All queries combined using a UNION, INTERSECT or EXCEPT operator must have an equal number of "
                   "expressions in their target lists.");
  }
  TranslatedQuery result;
  for (std::size_t i = 0; i < left.columns.size(); ++i) {
    ResultColumn column = left.columns[i];
    column.type = CommonType(left.columns[i].type, right.columns[i].type);
    column.nullable = left.columns[i].nullable || right.columns[i].nullable;
    result.columns.push_back(std::move(column));
  }
  const auto side = [&](const TranslatedQuery& part, const Query& tree, bool first) {
    const bool bare =
        tree.select != nullptr && tree.select->top == nullptr && tree.order_by.empty() && tree.with.empty();
    bool alike = true;
    for (std::size_t i = 0; i < names.size(); ++i) {
      alike = alike && (part.columns[i].type.untyped_null || StoresAlike(part.columns[i].type, result.columns[i].type));
    }
    if (alike && (bare || (first && tree.set_operator != SetOperator::kNone))) return part.sql;
    std::string sql = "SELECT ";
    std::string list;
    for (std::size_t i = 0; i < names.size(); ++i) {
      const Typed column{names[i], part.columns[i].type, true, -1};
      if (i > 0) {
        sql += ", ";
        list += ", ";
      }
      Typed converted{Coerce(column, result.columns[i].type), result.columns[i].type, true, -1};
      sql += side_options.collate_items ? Collated(converted) : converted.sql;
      if (!result.columns[i].name.empty()) sql += " AS " + QuoteName(result.columns[i].name);
      list += names[i];
    }
    const std::string alias = "s" + std::to_string(next_alias_++);
    return "SELECT * FROM (WITH " + alias + "(" + list + ") AS (" + part.sql + ") " + sql + " FROM " + alias + ")";
  };
  constexpr std::array<std::string_view, 5> kOperators = {"", " UNION ", " UNION ALL ", " EXCEPT ", " INTERSECT "};
  result.sql = side(left, *query.left, true) + std::string(kOperators[static_cast<std::size_t>(query.set_operator)]) +
               side(right, *query.right, false);
  result.sql += OrderBy(query.order_by, nullptr, nullptr, result.columns, {}, &query);
  Scope scope;
  scope.parent = parent;
  result.sql += Limit(query, nullptr, scope);
  return result;
}

std::string Translator::With(const std::vector<CommonTable>& tables, const Scope* parent) {
  std::string sql;
  for (const CommonTable& table : tables) {
    SelectOptions options;
    options.named = true;
    options.owner = table.name;
    if (!table.columns.empty()) options.names = &table.columns;
    const Query& query = *table.query;
    const bool recursive_shape = query.set_operator == SetOperator::kUnionAll;
    if (recursive_shape) {
      // The first part gives the columns that the second may read under the table's own name.
      const std::size_t parameters = parameters_.size();
      const TranslatedQuery anchor = QueryText(*query.left, parent, options);
      parameters_.resize(parameters);
      common_tables_.push_back({table.name, anchor.columns});
    }
    const TranslatedQuery body = QueryText(query, parent, options);
    if (recursive_shape) common_tables_.pop_back();
    common_tables_.push_back({table.name, body.columns});
    sql += (sql.empty() ? "WITH " : ", ") + QuoteName(table.name) + "(";
    for (std::size_t i = 0; i < body.columns.size(); ++i) sql += (i == 0 ? "" : ", ") + QuoteName(body.columns[i].name);
    sql += ") AS (" + body.sql + ")";
  }
  return sql.empty() ? sql : sql + " ";
}

TranslatedQuery Translator::QueryText(const Query& query, const Scope* parent, const SelectOptions& options) {
  const bool limited = query.offset != nullptr || (query.select != nullptr && query.select->top != nullptr);
  if (!options.may_order && !query.order_by.empty() && !limited) {
    throw SqlError(1033,
                   "The ORDER BY clause is invalid in views, inline functions, derived tables, subqueries, and common "
                   "table expressions, unless TOP, OFFSET or FOR XML is also specified.",
                   15);
  }
  const std::size_t outer_tables = common_tables_.size();
  const std::string with = With(query.with, parent);
  TranslatedQuery result = query.set_operator != SetOperator::kNone ? SetText(query, parent, options)
                           : query.select != nullptr                ? SelectText(query, *query.select, parent, options)
                                                                    : RowsText(query, parent, options);
  result.sql = with + result.sql;
  common_tables_.resize(outer_tables);
  return result;
}

Compiled Translator::Finish(std::string sql) {
  // SQLite looks for a numbered parameter among all others, so each gets its number from its place instead.
  Compiled compiled;
  compiled.sql.reserve(sql.size());
  char quote = '\0';
  for (std::size_t i = 0; i < sql.size(); ++i) {
    const char c = sql[i];
    compiled.sql += c;
    if (quote != '\0') {
      if (c == quote) quote = '\0';
    } else if (c == '\'' || c == '"') {
      quote = c;
    } else if (c == '?') {
      std::size_t number = 0;
      for (; i + 1 < sql.size() && sql[i + 1] >= '0' && sql[i + 1] <= '9'; ++i) {
        number = number * 10 + static_cast<std::size_t>(sql[i + 1] - '0');
      }
      compiled.parameters.push_back(parameters_.at(number - 1));
    }
  }
  parameters_.clear();
  return compiled;
}

Compiled Translator::CompileQuery(const Query& query) {
  std::vector<std::string> assigned;
  if (query.select != nullptr) {
    for (const SelectItem& item : query.select->items) {
      if (item.variable.empty()) continue;
      assigned.push_back(item.variable);
      live_variables_.insert(item.variable);
    }
    if (!assigned.empty() && assigned.size() != query.select->items.size()) {
      throw SqlError(
          141,
          "A SELECT statement that assigns a value to a variable must not be combined with data-retrieval operations.",
          15);
    }
  }
  TranslatedQuery text = QueryText(query, nullptr, Ordered());
  Compiled compiled = Finish(std::move(text.sql));
  compiled.columns = std::move(text.columns);
  compiled.assigned = std::move(assigned);
  compiled.verb = "SELECT";
  for (const std::string& name : compiled.assigned) VariableValue(name);
  parameters_.clear();
  return compiled;
}

std::vector<ResultColumn> Translator::DescribeQuery(const Query& query, bool may_order) {
  SelectOptions options;
  options.may_order = may_order;
  options.named = true;
  options.owner = query.select != nullptr && !query.select->into.name.empty() ? query.select->into.name : "query";
  std::vector<ResultColumn> columns = QueryText(query, nullptr, options).columns;
  parameters_.clear();
  return columns;
}

Compiled Translator::CompileCondition(const Expression& condition) {
  Scope scope;
  const std::string sql = "SELECT " + Condition(condition, scope);
  Compiled compiled = Finish(sql);
  compiled.columns.push_back({"", BitType(), true, false});
  compiled.verb = "SELECT";
  return compiled;
}

Compiled Translator::CompileValue(const Expression& value, const SqlType& type) {
  Scope scope;
  const Typed typed = Value(value, scope);
  RequireImplicit(typed.type, type);
  Compiled compiled = Finish("SELECT " + Coerce(typed, type));
  compiled.columns.push_back({"", type, true, false});
  compiled.verb = "SELECT";
  compiled.parameter_only = typed.parameter >= 0;
  return compiled;
}

Compiled Translator::CompileCompound(const Assignment& assignment, const SqlType& type) {
  Scope scope;
  Typed variable = VariableValue(assignment.variable);
  const Typed sum = BinaryOf(assignment.compound, std::move(variable), Value(*assignment.value, scope));
  Compiled compiled = Finish("SELECT " + Coerce(sum, type));
  compiled.columns.push_back({"", type, true, false});
  compiled.verb = "SELECT";
  return compiled;
}

Compiled Translator::CompileValue(const Expression& value) {
  Scope scope;
  const Typed typed = Value(value, scope);
  Compiled compiled = Finish("SELECT " + typed.sql);
  compiled.columns.push_back({"", typed.type, true, false});
  compiled.verb = "SELECT";
  return compiled;
}

}  // namespace tessarlorn::tsql
