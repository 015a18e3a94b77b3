// One SELECT: its list, WHERE, GROUP BY and HAVING.
#include <algorithm>
#include <iterator>
#include <numeric>
#include <set>
#include <utility>

#include "platform/text/text.h"
#include "tsql/storage/constraint_text.h"
#include "tsql/translate/common/conversion.h"
#include "tsql/translate/common/meaning.h"
#include "tsql/translate/queries/key_list.h"
#include "tsql/translate/queries/order.h"
#include "tsql/translate/queries/query.h"
#include "tsql/translate/queries/ranked_top.h"
#include "tsql/translate/queries/source.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

/// The rows are sorted before any value is computed, so that a value may read what the row before it assigned.
std::string SortedAssignment(const std::vector<std::string>& columns, const std::string& values,
                             const std::string& rest) {
  std::string rows = "SELECT 1 AS c0";
  for (std::size_t i = 0; i < columns.size(); ++i) rows += ", " + columns[i] + " AS c" + std::to_string(i + 1);
  return "WITH \"$row\" AS MATERIALIZED (" + rows + rest + ") " + values + " FROM \"$row\"";
}

/// The first number of IDENTITY(type, seed, increment).
std::int64_t IdentitySeed(Parameters& parameters, const IdentityCall& call, const Expression& expression) {
  parameters.PinAll(expression);
  const auto number = [&](std::size_t i) {
    const auto* given = As<Literal>(*call.arguments[i]);
    const bool whole = given != nullptr && given->kind == LiteralKind::kInteger;
    return whole ? WholeNumber<std::int64_t>(given->text).value_or(-1) : -1;
  };
  const std::int64_t seed = call.arguments.empty() ? 1 : number(0);
  if (seed < 0 || (call.arguments.size() > 1 && number(1) != 1)) {
    RaiseUnsupported("An identity that does not count by ones from a number above 0", expression.line);
  }
  return seed;
}

class SelectTranslator {
 public:
  SelectTranslator(Translation& translation, const Query& query, const Select& select, const Scope* parent,
                   const SelectOptions& options)
      : translation_(translation), query_(query), select_(select), options_(options) {
    scope_.parent = parent;
  }

  TranslatedQuery Translate();
  /// The rows of one grouping set: the values are columns v0 …, the keys of ORDER BY behind them k0 ….
  TranslatedQuery TranslateSet(const std::vector<std::size_t>& set, std::string& order);

 private:
  /// Where NEXT VALUE FOR stands in the select list.
  [[nodiscard]] NumberPlace NumbersOfItems() const;
  std::string Where();
  std::string GroupBy();
  std::string GroupBy(const std::vector<std::size_t>& set);
  void AddItems();
  void AddItem(const SelectItem& item);
  void AddIdentity(const SelectItem& item, const IdentityCall& call);
  /// Gives a result the identity of the only table, when that column has the name and SELECT … INTO may keep it.
  void TakeIdentity(ResultColumn& column, const std::string& name) const;
  /// Lets the base rows go along, for a change through this query.
  void ExposeRows();
  [[nodiscard]] std::string List(bool distinct) const;
  std::string Having();
  std::string Limit();
  /// @param rest from FROM to GROUP BY
  std::string RankedTop(const std::string& rest);

  Translation& translation_;
  const Query& query_;
  const Select& select_;
  const SelectOptions& options_;
  Scope scope_;
  std::vector<Typed> values_;
  TranslatedQuery result_;
  NumberPlace numbers_of_items_ = NumberPlace::kNowhere;
};

std::string SelectTranslator::Where() {
  if (select_.where == nullptr) return {};
  scope_.no_aggregates = true;
  std::string where = " WHERE " + translation_.Condition(*select_.where, scope_);
  scope_.no_aggregates = false;
  return where + KeyListCondition(translation_, *select_.where, scope_);
}

std::string SelectTranslator::GroupBy() {
  std::vector<std::size_t> all(select_.group_by.size());
  std::iota(all.begin(), all.end(), std::size_t{0});
  return GroupBy(all);
}

std::string SelectTranslator::GroupBy(const std::vector<std::size_t>& set) {
  std::string sql;
  std::set<std::string> all;
  std::set<std::string> present;  // a set may name a column twice, or one that another names
  for (std::size_t i = 0; i < select_.group_by.size(); ++i) {
    const Expression& key = *select_.group_by[i];
    if (!HasColumn(key)) {
      throw SqlError(164, "Each GROUP BY expression must contain at least one column that is not an outer reference.",
                     15);
    }
    // Its meaning is compared with that of the items.
    translation_.parameters.PinAll(key);
    const Typed value = translation_.Value(key, scope_);
    const bool is_column = As<ColumnReference>(key) != nullptr;
    if (is_column) scope_.group_columns.insert(value.sql);
    scope_.group_expressions.insert(MeaningOf(key));
    const std::string& name = *all.insert(is_column ? value.sql : MeaningOf(key)).first;
    if (std::find(set.begin(), set.end(), i) == set.end() || !present.insert(name).second) continue;
    sql += (sql.empty() ? " GROUP BY " : ", ") + Collated(value);
  }
  std::set_difference(all.begin(), all.end(), present.begin(), present.end(),
                      std::inserter(scope_.absent, scope_.absent.end()));
  const bool aggregates = std::any_of(select_.items.begin(), select_.items.end(),
                                      [](const SelectItem& item) { return HasAggregate(*item.expression); });
  scope_.check_grouping = !select_.group_by.empty() || aggregates || select_.having != nullptr;
  return sql;
}

void SelectTranslator::AddItems() {
  const bool grouped = scope_.check_grouping && numbers_of_items_ == NumberPlace::kHere;
  const NumbersAt numbers(translation_, grouped ? NumberPlace::kClause : numbers_of_items_);
  scope_.windows = true;
  values_.reserve(select_.items.size());
  result_.columns.reserve(select_.items.size());
  for (const SelectItem& item : select_.items) {
    if (const auto* star = As<Star>(*item.expression)) {
      const std::size_t first = result_.columns.size();
      ExpandStar(*star, scope_, values_, result_.columns);
      for (std::size_t i = first; i < result_.columns.size(); ++i) {
        TakeIdentity(result_.columns[i], result_.columns[i].name);
      }
      continue;
    }
    const auto* identity = As<IdentityCall>(*item.expression);
    if (identity != nullptr && !select_.into.name.empty()) {
      AddIdentity(item, *identity);
    } else {
      AddItem(item);
    }
  }
}

void SelectTranslator::AddItem(const SelectItem& item) {
  ResultColumn column;
  column.name = item.alias;
  const auto* reference = As<ColumnReference>(*item.expression);
  if (column.name.empty() && reference != nullptr) column.name = reference->name;
  values_.push_back(translation_.Value(*item.expression, scope_));
  column.type = values_.back().type;
  column.nullable = values_.back().nullable;
  if (reference != nullptr) TakeIdentity(column, reference->name);
  result_.columns.push_back(std::move(column));
}

void SelectTranslator::AddIdentity(const SelectItem& item, const IdentityCall& call) {
  const std::int64_t seed = IdentitySeed(translation_.parameters, call, *item.expression);
  result_.columns.push_back({item.alias, IntType(), false, true, seed, seed > 0 ? 0 : 1});
  values_.push_back({"row_number() OVER () + " + std::to_string(seed - 1), IntType(), false, -1});
}

void SelectTranslator::TakeIdentity(ResultColumn& column, const std::string& name) const {
  const bool plain = select_.from.size() == 1 && std::holds_alternative<NamedTable>(select_.from[0]->node) &&
                     !scope_.sources.empty() && !select_.distinct && select_.group_by.empty() &&
                     !select_.into.name.empty();
  const CatalogObjectPtr table = plain ? scope_.sources[0].table : nullptr;
  const int counts = table == nullptr ? -1 : table->identity_column();
  if (counts < 0 || counts != table->FindColumn(name)) return;
  column.identity = true;
  column.increment = table->columns[static_cast<std::size_t>(counts)].increment;
  const Constraints constraints = ReadConstraints(table->definition);
  if (const Constraint* identity = FindKind(constraints, "I")) column.seed = identity->seed;
}

void SelectTranslator::ExposeRows() {
  const bool one_to_one = !select_.distinct && !scope_.check_grouping && !NeedsRanks(select_);
  if (!translation_.exposes_rows || !options_.named || !one_to_one) return;
  std::vector<int> first;
  for (const Source& source : scope_.sources) {
    first.push_back(static_cast<int>(result_.rows.size()));
    result_.rows.insert(result_.rows.end(), source.rows.begin(), source.rows.end());
  }
  std::size_t position = 0;
  for (const SelectItem& item : select_.items) {
    const auto columns = ColumnsOf(*item.expression, scope_);
    for (const auto& [source, column] : columns) {
      ResultColumn& result = result_.columns.at(position++);
      if (column.row >= 0) result.row = first[source] + column.row;
      result.base = column.base;
    }
    if (columns.empty()) ++position;
  }
}

std::string SelectTranslator::List(bool distinct) const {
  const bool named = options_.named || options_.names != nullptr;
  const bool collate = options_.collate_items || select_.distinct;
  std::string sql = distinct ? "SELECT DISTINCT " : "SELECT ";
  for (std::size_t i = 0; i < values_.size(); ++i) {
    if (i > 0) sql += ", ";
    sql += collate ? Collated(values_[i]) : values_[i].sql;
    if (named) sql += " AS " + QuoteName(result_.columns[i].name);
  }
  for (std::size_t i = 0; i < result_.rows.size(); ++i) sql += ", " + result_.rows[i].number + " AS " + RowColumn(i);
  if (values_.empty()) throw SqlError(263, "Must specify table to select from.");
  return sql;
}

std::string SelectTranslator::Having() {
  if (select_.having == nullptr) return {};
  scope_.clause = "HAVING clause";
  scope_.windows = false;
  std::string having = " HAVING " + translation_.Condition(*select_.having, scope_);
  scope_.windows = true;
  return having;
}

std::string SelectTranslator::RankedTop(const std::string& rest) {
  const std::string having = Having();
  return TranslateRankedTop(translation_,
                            {.select = select_,
                             .values = values_,
                             .columns = result_.columns,
                             .keys = OrderKeys(translation_, query_, select_, scope_, result_.columns, values_),
                             .rest = rest + having},
                            scope_);
}

std::string SelectTranslator::Limit() {
  if (select_.top != nullptr) return TranslateTop(translation_, select_, scope_);
  return TranslateOffset(translation_, query_, scope_);
}

NumberPlace SelectTranslator::NumbersOfItems() const {
  const NumberPlace place = translation_.numbers;
  if (place == NumberPlace::kSet) return place;
  if (place != NumberPlace::kItems) return NumberPlace::kNowhere;
  if (select_.distinct) return NumberPlace::kSet;
  if (!query_.order_by.empty()) return NumberPlace::kOrdered;
  if (select_.top != nullptr || query_.offset != nullptr) return NumberPlace::kTop;
  return NumberPlace::kHere;
}

TranslatedQuery SelectTranslator::Translate() {
  numbers_of_items_ = NumbersOfItems();
  const NumbersAt clauses(translation_, NumberPlace::kClause);
  const std::string from = TranslateFrom(translation_, select_.from, scope_);
  const std::string where = Where();
  const int outer_depth = std::exchange(translation_.aggregate_depth, 0);
  const std::string group = GroupBy();
  const bool assigns = !select_.items.empty() && !select_.items[0].variable.empty();
  const bool sorted = assigns && !query_.order_by.empty() && !scope_.check_grouping && !select_.distinct;
  std::vector<std::string> captured;
  if (sorted) scope_.captured = &captured;
  AddItems();
  ExposeRows();
  // The subquery of a condition has one column, named c: another number of them is an error of the condition.
  const bool of_condition = options_.names != nullptr && options_.names->size() == 1 && !options_.named &&
                            (*options_.names)[0] == "c" && result_.columns.size() != 1;
  if (of_condition) return std::move(result_);
  if (options_.names != nullptr) Rename(result_.columns, *options_.names, options_.owner);
  if (options_.named) CheckNames(result_.columns, options_.owner, options_.owner_kind);
  if (NeedsRanks(select_)) {
    if (assigns) RaiseUnsupported("TOP … WITH TIES or PERCENT of an assignment", select_.line);
    result_.sql = RankedTop(from + where + group);
    translation_.aggregate_depth = outer_depth;
    return std::move(result_);
  }
  // SQLite can only unfold an outer-joined view outside DISTINCT.
  const bool unfold = select_.distinct && scope_.optional_view && query_.order_by.empty() && select_.top == nullptr;
  std::string sql = List(select_.distinct && !unfold);
  if (sorted) {
    scope_.captured = nullptr;
    const std::string order = TranslateOrder(translation_, query_, select_, scope_, {}, values_);
    result_.sql = SortedAssignment(captured, sql, from + where + order + Limit());
  } else {
    sql += from + where + group + Having();
    sql += TranslateOrder(translation_, query_, select_, scope_, result_.columns, values_);
    const std::string limit = Limit();
    result_.sql = unfold ? "SELECT DISTINCT * FROM (" + sql + " LIMIT -1)" : sql + limit;
  }
  translation_.aggregate_depth = outer_depth;
  return std::move(result_);
}

TranslatedQuery SelectTranslator::TranslateSet(const std::vector<std::size_t>& set, std::string& order) {
  const std::string from = TranslateFrom(translation_, select_.from, scope_);
  const std::string where = Where();
  const int outer_depth = std::exchange(translation_.aggregate_depth, 0);
  const std::string group = GroupBy(set);
  AddItems();
  if (options_.names != nullptr) Rename(result_.columns, *options_.names, options_.owner);
  if (options_.named) CheckNames(result_.columns, options_.owner, options_.owner_kind);
  std::string list;
  for (std::size_t i = 0; i < values_.size(); ++i) {
    list += (i == 0 ? "SELECT " : ", ") + values_[i].sql + " AS v" + std::to_string(i);
  }
  order.clear();
  std::size_t own_keys = 0;
  for (const OrderKey& key : OrderKeys(translation_, query_, select_, scope_, result_.columns, values_)) {
    std::string name = "v" + std::to_string(key.column);
    if (key.column == OrderKey::kNoColumn) {
      name = "k" + std::to_string(own_keys++);
      list += ", " + key.sql + " AS " + name;
    }
    order += (order.empty() ? " ORDER BY " : ", ") + name + key.collation + (key.descending ? " DESC" : "");
  }
  // Without rows there are no groups, not even that of all rows.
  result_.sql = list + from + where + (group.empty() ? " GROUP BY NULL" : group) + Having();
  translation_.aggregate_depth = outer_depth;
  return std::move(result_);
}

TranslatedQuery TranslateGroupingSets(Translation& translation, const Query& query, const Select& select,
                                      const Scope* parent, const SelectOptions& options) {
  if (NeedsRanks(select)) RaiseUnsupported("TOP … WITH TIES or PERCENT of grouping sets", select.line);
  TranslatedQuery result;
  std::string rows;
  std::string order;
  for (const std::vector<std::size_t>& set : select.grouping_sets) {
    TranslatedQuery part = SelectTranslator(translation, query, select, parent, options).TranslateSet(set, order);
    rows += (rows.empty() ? "" : " UNION ALL ") + part.sql;
    result.columns = std::move(part.columns);
  }
  std::string list;
  for (std::size_t i = 0; i < result.columns.size(); ++i) {
    // Each column is NULL in some set.
    result.columns[i].nullable = true;
    list += (i == 0 ? "v" : ", v") + std::to_string(i);
    if (!result.columns[i].name.empty()) list += " AS " + QuoteName(result.columns[i].name);
  }
  Scope scope;
  scope.parent = parent;
  const std::string limit =
      select.top != nullptr ? TranslateTop(translation, select, scope) : TranslateOffset(translation, query, scope);
  result.sql =
      std::string(select.distinct ? "SELECT DISTINCT " : "SELECT ") + list + " FROM (" + rows + ")" + order + limit;
  return result;
}

}  // namespace

TranslatedQuery TranslateSelect(Translation& translation, const Query& query, const Select& select, const Scope* parent,
                                const SelectOptions& options) {
  if (!select.grouping_sets.empty()) return TranslateGroupingSets(translation, query, select, parent, options);
  return SelectTranslator(translation, query, select, parent, options).Translate();
}

}  // namespace tessarlorn::tsql
