// UNION, UNION ALL, EXCEPT and INTERSECT.
#include <array>
#include <string_view>
#include <utility>

#include "tsql/translate/common/conversion.h"
#include "tsql/translate/queries/order.h"
#include "tsql/translate/queries/query.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

std::vector<ResultColumn> CommonColumns(const TranslatedQuery& left, const TranslatedQuery& right) {
  if (left.columns.size() != right.columns.size()) {
    throw SqlError(205,
                   "All queries combined using a UNION, INTERSECT or EXCEPT operator must have an equal number of "
                   "expressions in their target lists.");
  }
  std::vector<ResultColumn> columns = left.columns;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    columns[i].type = CommonType(left.columns[i].type, right.columns[i].type);
    columns[i].nullable = left.columns[i].nullable || right.columns[i].nullable;
  }
  return columns;
}

bool AllStoreAlike(const std::vector<ResultColumn>& part, const std::vector<ResultColumn>& whole) {
  for (std::size_t i = 0; i < part.size(); ++i) {
    if (!part[i].type.untyped_null && !StoresAlike(part[i].type, whole[i].type)) return false;
  }
  return true;
}

/// One side with the columns of the whole. It is wrapped, so that TOP and ORDER BY may stand in it and columns can be
/// converted by name.
std::string Wrapped(Translation& translation, const TranslatedQuery& part, const std::vector<ResultColumn>& whole,
                    bool collate) {
  std::string sql = "SELECT ";
  std::string list;
  for (std::size_t i = 0; i < whole.size(); ++i) {
    const Typed column{"c" + std::to_string(i), part.columns[i].type, true, -1};
    if (i > 0) {
      sql += ", ";
      list += ", ";
    }
    const Typed converted{Coerce(translation.parameters, column, whole[i].type), whole[i].type, true, -1};
    sql += collate ? Collated(converted) : converted.sql;
    if (!whole[i].name.empty()) sql += " AS " + QuoteName(whole[i].name);
    list += column.sql;
  }
  const std::string alias = "s" + std::to_string(translation.next_alias++);
  return "SELECT * FROM (WITH " + alias + "(" + list + ") AS (" + part.sql + ") " + sql + " FROM " + alias + ")";
}

}  // namespace

TranslatedQuery TranslateSet(Translation& translation, const Query& query, const SetOperation& set, const Scope* parent,
                             const SelectOptions& options) {
  // Its rows are no table's.
  const bool exposes = std::exchange(translation.exposes_rows, false);
  SelectOptions right_options;
  right_options.collate_items = set.op != SetOperator::kUnionAll;
  SelectOptions left_options = right_options;
  left_options.names = options.names;
  left_options.named = options.named;
  left_options.owner = options.owner;
  left_options.owner_kind = options.owner_kind;
  const bool items = translation.numbers == NumberPlace::kItems || translation.numbers == NumberPlace::kSet;
  const NumbersAt numbers(translation, items ? NumberPlace::kSet : NumberPlace::kNowhere);
  const TranslatedQuery left = translation.QueryText(*set.left, parent, left_options);
  const TranslatedQuery right = translation.QueryText(*set.right, parent, right_options);
  translation.exposes_rows = exposes;
  TranslatedQuery result;
  result.columns = CommonColumns(left, right);
  const auto side = [&](const TranslatedQuery& part, const Query& tree, bool first) {
    const bool bare =
        tree.select() != nullptr && tree.select()->top == nullptr && tree.order_by.empty() && tree.with.empty();
    const bool fits = bare || (first && tree.set() != nullptr);
    if (fits && AllStoreAlike(part.columns, result.columns)) return part.sql;
    return Wrapped(translation, part, result.columns, right_options.collate_items);
  };
  constexpr std::array<std::string_view, 4> kOperators = {" UNION ", " UNION ALL ", " EXCEPT ", " INTERSECT "};
  result.sql = side(left, *set.left, true) + std::string(kOperators[static_cast<std::size_t>(set.op)]);
  result.sql += side(right, *set.right, false);
  result.sql += TranslateOrderOfSet(translation, query, result.columns);
  Scope scope;
  scope.parent = parent;
  result.sql += TranslateOffset(translation, query, scope);
  return result;
}

}  // namespace tessarlorn::tsql
