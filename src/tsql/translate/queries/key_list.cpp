#include "tsql/translate/queries/key_list.h"

#include "platform/text/text.h"
#include "tsql/translate/queries/query.h"

namespace tessarlorn::tsql {
namespace {

/// The table of keys that an EXISTS reads, alone and whole, or nullptr.
const NamedTable* KeyTable(const Select* select) {
  if (select == nullptr || select->where == nullptr || select->from.size() != 1 || select->top != nullptr) {
    return nullptr;
  }
  const auto* table = std::get_if<NamedTable>(&select->from[0]->node);
  return table != nullptr && table->name.temporary() ? table : nullptr;
}

/// Looks for comparisons of the keys' columns with columns from outside.
class KeyFinder {
 public:
  KeyFinder(Translation& translation, const NamedTable& source, Scope& scope)
      : translation_(translation),
        alias_(source.shown_name()),
        table_(translation.Lookup(source.name)),
        scope_(scope) {}

  std::string Find(const Expression& condition) {
    const auto* all = As<Conjunction>(condition);
    if (all == nullptr) return FindInOne(condition);
    std::string sql;
    for (const ExpressionPtr& part : all->operands) sql += FindInOne(*part);
    return sql;
  }

 private:
  [[nodiscard]] int OwnColumn(const ColumnReference& column) const {
    if (!column.qualifier.empty() && !EqualsIgnoreCase(column.qualifier, alias_)) return -1;
    return table_->FindColumn(column.name);
  }

  std::string FindInOne(const Expression& condition) {
    const auto* comparison = As<Comparison>(condition);
    if (comparison == nullptr || comparison->op != CompareOp::kEqual) return {};
    return OuterIsKey(*comparison->left, *comparison->right) + OuterIsKey(*comparison->right, *comparison->left);
  }

  std::string OuterIsKey(const Expression& own, const Expression& outer) {
    const auto* own_column = As<ColumnReference>(own);
    const auto* outer_column = As<ColumnReference>(outer);
    const int key = own_column == nullptr ? -1 : OwnColumn(*own_column);
    if (key < 0 || outer_column == nullptr || OwnColumn(*outer_column) >= 0) return {};
    const Column& column = table_->columns[static_cast<std::size_t>(key)];
    const Typed value = translation_.Value(outer, scope_);
    if (!StoresAlike(value.type, column.type) || !CollationOf(value.type).empty()) return {};
    return " AND " + value.sql + " IN (SELECT " + QuoteName(column.name) + " FROM " + TableSql(*table_) + ")";
  }

  Translation& translation_;
  std::string alias_;
  CatalogObjectPtr table_;
  Scope& scope_;
};

}  // namespace

std::string KeyListCondition(Translation& translation, const Expression& condition, Scope& scope) {
  if (const auto* all = As<Conjunction>(condition)) {
    std::string sql;
    for (const ExpressionPtr& part : all->operands) sql += KeyListCondition(translation, *part, scope);
    return sql;
  }
  const auto* exists = As<ExistsCondition>(condition);
  const Select* keys = exists == nullptr ? nullptr : exists->query->select();
  const NamedTable* source = KeyTable(keys);
  if (source == nullptr) return {};
  return KeyFinder(translation, *source, scope).Find(*keys->where);
}

}  // namespace tessarlorn::tsql
