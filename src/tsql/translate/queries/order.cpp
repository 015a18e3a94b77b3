#include "tsql/translate/queries/order.h"

#include <algorithm>
#include <functional>

#include "platform/text/text.h"
#include "tsql/translate/common/argument.h"
#include "tsql/translate/common/conversion.h"
#include "tsql/translate/common/meaning.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

constexpr std::size_t kNone = OrderKey::kNoColumn;
/// A key that the grouping set at hand has not.
constexpr std::string_view kAbsent = "NULL";

/// The column that a number stands for.
std::size_t NumberedColumn(const Literal& number, std::size_t columns) {
  const int given = number.kind == LiteralKind::kInteger ? WholeNumber<int>(number.text).value_or(0) : 0;
  if (given < 1 || given > static_cast<int>(columns)) {
    throw SqlError(
        108,
        "The ORDER BY position number " + number.text + " is out of range of the number of items in the select list.",
        15);
  }
  return static_cast<std::size_t>(given - 1);
}

/// The ORDER BY clause of keys that `key_text` translates.
std::string Keys(const std::vector<OrderItem>& items, const std::function<std::string(const Expression&)>& key_text) {
  std::string sql;
  for (const OrderItem& item : items) {
    sql += (sql.empty() ? " ORDER BY " : ", ") + key_text(*item.expression) + (item.descending ? " DESC" : "");
  }
  return sql;
}

std::string Position(const std::vector<ResultColumn>& columns, std::size_t column) {
  return std::to_string(column + 1) + CollationOf(columns[column].type);
}

/// The first column of that name which counts.
template <typename Counts>
std::size_t NamedColumn(const std::vector<ResultColumn>& columns, const std::string& name, const Counts& counts) {
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (counts(i) && EqualsIgnoreCase(columns[i].name, name)) return i;
  }
  return kNone;
}

/// Whether SELECT DISTINCT selects the key.
bool Selects(Parameters& parameters, const Select& select, const std::vector<Typed>& values, const Expression& key,
             const std::string& sql) {
  if (As<ColumnReference>(key) != nullptr) {
    return std::any_of(values.begin(), values.end(), [&](const Typed& value) { return value.sql == sql; });
  }
  parameters.PinAll(key);
  return std::any_of(select.items.begin(), select.items.end(), [&](const SelectItem& item) {
    if (MeaningOf(*item.expression) != MeaningOf(key)) return false;
    parameters.PinAll(*item.expression);
    return true;
  });
}

/// Raises 169 for a column that is among the keys. A grouping set may lack several columns.
void RequireNew(const std::vector<OrderKey>& keys, const OrderKey& added) {
  for (const OrderKey& key : keys) {
    if (key.column != added.column || key.sql != added.sql || key.sql == kAbsent) continue;
    throw SqlError(169,
                   "A column has been specified more than once in the order by list. Columns in the order by list must "
                   "be unique.",
                   15);
  }
}

}  // namespace

std::vector<OrderKey> OrderKeys(Translation& translation, const Query& query, const Select& select, Scope& scope,
                                const std::vector<ResultColumn>& columns, const std::vector<Typed>& values) {
  const auto key_of = [&](const Expression& key) -> OrderKey {
    const auto of_column = [&](std::size_t i) { return OrderKey{i, "", CollationOf(columns[i].type)}; };
    if (const auto* literal = As<Literal>(key)) {
      translation.parameters.Pin(*literal);
      return of_column(NumberedColumn(*literal, columns.size()));
    }
    const auto* column = As<ColumnReference>(key);
    if (column != nullptr && column->qualifier.empty()) {
      // A name of the select list goes before a column of the tables.
      const std::size_t named = NamedColumn(columns, column->name, [&](std::size_t i) {
        return i >= select.items.size() || !select.items[i].alias.empty();
      });
      if (named != kNone) return of_column(named);
    }
    scope.clause = "ORDER BY clause";
    const Typed value = translation.Value(key, scope);
    if (select.distinct && !Selects(translation.parameters, select, values, key, value.sql)) {
      throw SqlError(145, "ORDER BY items must appear in the select list if SELECT DISTINCT is specified.", 15);
    }
    return {OrderKey::kNoColumn, value.sql, CollationOf(value.type)};
  };
  std::vector<OrderKey> keys;
  for (const OrderItem& item : query.order_by) {
    OrderKey added = key_of(*item.expression);
    if (As<ColumnReference>(*item.expression) != nullptr || added.column != kNone) RequireNew(keys, added);
    keys.push_back(std::move(added));
    keys.back().descending = item.descending;
  }
  return keys;
}

std::string TranslateOrder(Translation& translation, const Query& query, const Select& select, Scope& scope,
                           const std::vector<ResultColumn>& columns, const std::vector<Typed>& values) {
  std::string sql;
  for (const OrderKey& key : OrderKeys(translation, query, select, scope, columns, values)) {
    sql += sql.empty() ? " ORDER BY " : ", ";
    sql += key.column == OrderKey::kNoColumn ? key.sql : std::to_string(key.column + 1);
    sql += key.collation + (key.descending ? " DESC" : "");
  }
  return sql;
}

std::string TranslateOrderOfSet(Translation& translation, const Query& query,
                                const std::vector<ResultColumn>& columns) {
  // A column of the tables stands for the item of the first query that it is.
  const Query* first = &query;
  while (first->set() != nullptr) first = first->set()->left.get();
  const Select* items = first->select();
  return Keys(query.order_by, [&](const Expression& key) {
    std::size_t found = kNone;
    const auto* column = As<ColumnReference>(key);
    if (const auto* literal = As<Literal>(key)) {
      translation.parameters.Pin(*literal);
      found = NumberedColumn(*literal, columns.size());
    } else if (column != nullptr && column->qualifier.empty()) {
      found = NamedColumn(columns, column->name, [](std::size_t) { return true; });
    } else if (items != nullptr && items->items.size() == columns.size()) {
      translation.parameters.PinAll(key);
      for (const SelectItem& item : items->items) translation.parameters.PinAll(*item.expression);
      for (std::size_t i = 0; i < columns.size() && found == kNone; ++i) {
        if (MeaningOf(*items->items[i].expression) == MeaningOf(key)) found = i;
      }
    }
    if (found != kNone) return Position(columns, found);
    throw SqlError(
        104,
        "ORDER BY items must appear in the select list if the statement contains a UNION, INTERSECT or EXCEPT operator.",
        15);
  });
}

std::string TranslateTop(Translation& translation, const Select& select, Scope& scope) {
  if (const auto* literal = As<Literal>(*select.top)) translation.parameters.Pin(*literal);
  return " LIMIT " + RowLimitArgument(translation, *select.top, scope, RowLimit::kTop);
}

std::string TranslateOffset(Translation& translation, const Query& query, Scope& scope) {
  if (query.offset == nullptr) return "";
  const std::string offset = RowLimitArgument(translation, *query.offset, scope, RowLimit::kOffset);
  const std::string fetch =
      query.fetch == nullptr ? "-1" : RowLimitArgument(translation, *query.fetch, scope, RowLimit::kFetch);
  return " LIMIT " + fetch + " OFFSET " + offset;
}

}  // namespace tessarlorn::tsql
