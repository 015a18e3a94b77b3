// FROM: tables, views, derived tables, common tables and joins, and the columns that they bring.
#include <algorithm>
#include <array>

#include "platform/text.h"
#include "tsql/storage/system_views.h"
#include "tsql/syntax/parser.h"
#include "tsql/translate/translator.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {

CatalogObjectPtr Translator::Lookup(const ObjectName& name) {
  RequireLocal(name);
  CatalogObjectPtr object = catalog_.Find(name.name);
  const bool known = std::any_of(dependencies_.objects.begin(), dependencies_.objects.end(),
                                 [&](const Dependencies::Object& entry) { return entry.name == name.name; });
  if (!known) dependencies_.objects.push_back({name.name, object == nullptr ? "" : object->signature()});
  if (object == nullptr || object->kind == CatalogKind::kProcedure) {
    throw SqlError(208,
                   "Invalid object name '" + (name.qualifier.empty() ? "" : name.qualifier + ".") + name.name + "'.");
  }
  return object;
}

const Translator::CommonTableColumns* Translator::FindCommonTable(std::string_view name) const {
  for (std::size_t i = common_tables_.size(); i-- > 0;) {
    if (EqualsIgnoreCase(common_tables_[i].name, name)) return &common_tables_[i];
  }
  return nullptr;
}

void Translator::AddSource(Scope& scope, Source source) {
  for (const Source& other : scope.sources) {
    if (EqualsIgnoreCase(other.alias, source.alias)) {
      throw SqlError(1011, "The correlation name '" + source.alias + "' is specified multiple times in a FROM clause.",
                     15);
    }
  }
  scope.sources.push_back(std::move(source));
}

std::string Translator::AddTable(const TableSource& source, Scope& scope, bool optional) {
  Source added;
  added.alias = source.alias.empty() ? source.table.name : source.alias;
  const std::string alias = QuoteName(added.alias);
  const auto add_columns = [&](const auto& columns) {
    for (const auto& column : columns) {
      added.columns.push_back(
          {column.name, column.type, optional || column.nullable, alias + "." + QuoteName(column.name)});
    }
  };
  if (const CommonTableColumns* common =
          source.table.qualifier.empty() ? FindCommonTable(source.table.name) : nullptr) {
    add_columns(common->columns);
    AddSource(scope, std::move(added));
    return QuoteName(common->name) + " AS " + alias;
  }
  if (const SystemView* view = FindSystemView(source.table.qualifier, source.table.name)) {
    add_columns(view->columns);
    AddSource(scope, std::move(added));
    return "(" + view->sql + ") AS " + alias;
  }
  const CatalogObjectPtr table = Lookup(source.table);
  if (table->kind == CatalogKind::kTable) {
    add_columns(table->columns);
    added.table = table;
    AddSource(scope, std::move(added));
    return TableSql(*table) + " AS " + alias;
  }
  if (view_depth_ >= 32) throw SqlError(217, "Maximum view nesting level exceeded (limit 32).");
  Tokens tokens;
  TokenizeDefinition(table->definition, names_, tokens);
  const std::vector<StatementPtr> statements = ParseStatements(table->definition, tokens);
  // A view knows nothing of where it is used: no outer names, no common tables, no lifted literals.
  std::vector<CommonTableColumns> outer;
  outer.swap(common_tables_);
  ++view_depth_;
  SelectOptions options;
  options.named = true;
  options.owner = table->name;
  std::vector<std::string> names;
  for (const Column& column : table->columns) names.push_back(column.name);
  if (!names.empty()) options.names = &names;
  const TranslatedQuery query = QueryText(*statements.at(0)->query, nullptr, options);
  --view_depth_;
  outer.swap(common_tables_);
  // Views of views of views grow fast.
  memory_.Require(query.sql.size() * 20);
  scope.optional_view = scope.optional_view || optional;
  add_columns(query.columns);
  AddSource(scope, std::move(added));
  return "(" + query.sql + ") AS " + alias;
}

std::string Translator::SourceText(const TableSource& source, Scope& scope, bool optional) {
  if (source.kind == TableSource::Kind::kTable) return AddTable(source, scope, optional);
  if (source.kind == TableSource::Kind::kDerived) {
    SelectOptions options;
    options.named = true;
    options.owner = source.alias;
    if (!source.column_aliases.empty()) options.names = &source.column_aliases;
    const TranslatedQuery query = QueryText(*source.query, scope.parent, options);
    Source added;
    added.alias = source.alias;
    for (const ResultColumn& column : query.columns) {
      added.columns.push_back({column.name, column.type, optional || column.nullable,
                               QuoteName(source.alias) + "." + QuoteName(column.name)});
    }
    AddSource(scope, std::move(added));
    return "(" + query.sql + ") AS " + QuoteName(source.alias);
  }
  constexpr std::array<std::string_view, 5> kJoins = {" INNER JOIN ", " LEFT JOIN ", " RIGHT JOIN ", " FULL JOIN ",
                                                      " CROSS JOIN "};
  const bool left_optional = source.join == JoinKind::kRight || source.join == JoinKind::kFull;
  const bool right_optional = source.join == JoinKind::kLeft || source.join == JoinKind::kFull;
  std::string sql = SourceText(*source.left, scope, optional || left_optional);
  sql += kJoins[static_cast<std::size_t>(source.join)];
  const std::string right = SourceText(*source.right, scope, optional || right_optional);
  sql += source.right->kind == TableSource::Kind::kJoin ? "(" + right + ")" : right;
  if (source.on != nullptr) sql += " ON " + Condition(*source.on, scope);
  return sql;
}

std::string Translator::From(const std::vector<TableSourcePtr>& sources, Scope& scope) {
  std::string sql;
  for (const TableSourcePtr& source : sources) {
    sql += sql.empty() ? " FROM " : ", ";
    scope.visible_from = scope.sources.size();
    sql += SourceText(*source, scope, false);
  }
  scope.visible_from = 0;
  return sql;
}

}  // namespace tessarlorn::tsql
