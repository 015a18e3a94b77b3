#include "tsql/translate/queries/source.h"

#include <array>
#include <string_view>
#include <utility>

#include "platform/text/text.h"
#include "tsql/storage/system_views.h"
#include "tsql/syntax/parser.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

const CommonTableColumns* FindCommonTable(const Translation& translation, const ObjectName& name) {
  if (!name.qualifier.empty()) return nullptr;
  for (std::size_t i = translation.common_tables.size(); i-- > 0;) {
    if (EqualsIgnoreCase(translation.common_tables[i].name, name.name)) return &translation.common_tables[i];
  }
  return nullptr;
}

/// One function a kind of source. `optional`: it is the inner side of an outer join, its columns may be NULL.
class Sources {
 public:
  Sources(Translation& translation, Scope& scope, bool optional)
      : translation_(translation), scope_(scope), optional_(optional) {}

  std::string operator()(const NamedTable& named) const;
  std::string operator()(const DerivedTable& derived) const;
  std::string operator()(const Join& join) const;

 private:
  /// Adds a source with these columns.
  template <typename Columns>
  void Add(const std::string& alias, const Columns& columns, CatalogObjectPtr table = nullptr) const {
    Source source;
    source.alias = alias;
    source.table = std::move(table);
    for (const auto& column : columns) {
      source.columns.push_back(
          {column.name, column.type, optional_ || column.nullable, QuoteName(alias) + "." + QuoteName(column.name)});
    }
    AddSource(scope_, std::move(source));
  }
  [[nodiscard]] TranslatedQuery ViewText(const CatalogObject& view) const;

  Translation& translation_;
  Scope& scope_;
  bool optional_;
};

std::string Sources::operator()(const NamedTable& named) const {
  const std::string& shown = named.shown_name();
  const std::string alias = " AS " + QuoteName(shown);
  if (const CommonTableColumns* common = FindCommonTable(translation_, named.name)) {
    const std::string name = common->name;
    Add(shown, common->columns);
    return QuoteName(name) + alias;
  }
  if (const SystemView* view = FindSystemView(named.name.qualifier, named.name.name)) {
    Add(shown, view->columns);
    return "(" + view->sql + ")" + alias;
  }
  const CatalogObjectPtr object = translation_.Lookup(named.name);
  if (object->kind == CatalogKind::kTable) {
    Add(shown, object->columns, object);
    return TableSql(*object) + alias;
  }
  const TranslatedQuery query = ViewText(*object);
  // Views of views of views grow fast.
  translation_.memory.Require(query.sql.size() * 20);
  scope_.optional_view = scope_.optional_view || optional_;
  Add(shown, query.columns);
  return "(" + query.sql + ")" + alias;
}

TranslatedQuery Sources::ViewText(const CatalogObject& view) const {
  constexpr int kMostLevels = 32;
  if (translation_.parameters.definition_depth() >= kMostLevels) {
    throw SqlError(217, "Maximum view nesting level exceeded (limit 32).");
  }
  Tokens tokens;
  TokenizeDefinition(view.definition, translation_.names, tokens);
  const std::vector<StatementPtr> statements = ParseStatements(view.definition, tokens);
  // A view knows nothing of where it is used: no outer names, no common tables, no lifted literals.
  std::vector<CommonTableColumns> outer;
  outer.swap(translation_.common_tables);
  const Parameters::InDefinition in_definition(translation_.parameters);
  SelectOptions options;
  options.named = true;
  options.owner = view.name;
  std::vector<std::string> names;
  for (const Column& column : view.columns) names.push_back(column.name);
  if (!names.empty()) options.names = &names;
  const auto& definition = std::get<CreateViewStatement>(statements.at(0)->node);
  TranslatedQuery query = translation_.QueryText(*definition.query, nullptr, options);
  outer.swap(translation_.common_tables);
  return query;
}

std::string Sources::operator()(const DerivedTable& derived) const {
  SelectOptions options;
  options.named = true;
  options.owner = derived.alias;
  if (!derived.column_aliases.empty()) options.names = &derived.column_aliases;
  const TranslatedQuery query = translation_.QueryText(*derived.query, scope_.parent, options);
  Add(derived.alias, query.columns);
  return "(" + query.sql + ") AS " + QuoteName(derived.alias);
}

std::string Sources::operator()(const Join& join) const {
  constexpr std::array<std::string_view, 5> kJoins = {" INNER JOIN ", " LEFT JOIN ", " RIGHT JOIN ", " FULL JOIN ",
                                                      " CROSS JOIN "};
  const bool left_optional = join.kind == JoinKind::kRight || join.kind == JoinKind::kFull;
  const bool right_optional = join.kind == JoinKind::kLeft || join.kind == JoinKind::kFull;
  std::string sql = std::visit(Sources(translation_, scope_, optional_ || left_optional), join.left->node);
  sql += kJoins[static_cast<std::size_t>(join.kind)];
  const std::string right = std::visit(Sources(translation_, scope_, optional_ || right_optional), join.right->node);
  sql += std::holds_alternative<Join>(join.right->node) ? "(" + right + ")" : right;
  if (join.on != nullptr) sql += " ON " + translation_.Condition(*join.on, scope_);
  return sql;
}

}  // namespace

std::string TranslateFrom(Translation& translation, const std::vector<TableSourcePtr>& sources, Scope& scope) {
  std::string sql;
  for (const TableSourcePtr& source : sources) {
    sql += sql.empty() ? " FROM " : ", ";
    scope.visible_from = scope.sources.size();
    sql += std::visit(Sources(translation, scope, false), source->node);
  }
  scope.visible_from = 0;
  return sql;
}

std::string TranslateTable(Translation& translation, const NamedTable& table, Scope& scope) {
  return Sources(translation, scope, false)(table);
}

}  // namespace tessarlorn::tsql
