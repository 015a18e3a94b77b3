#include "tsql/translate/common/scope.h"

#include <utility>

#include "platform/text/text.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

struct Found {
  const Source* source = nullptr;
  std::size_t column = 0;
  bool qualifier_known = false;
};

/// Whether a name before a column, with a schema before it or none, is that of the source.
bool IsNamed(const Source& source, const std::string& schema, const std::string& table) {
  if (source.schema.empty()) return IsServerSchema(schema) && EqualsIgnoreCase(source.alias, table);
  return (schema.empty() || EqualsIgnoreCase(schema, source.schema)) &&
         EqualsIgnoreCase(source.alias.substr(source.schema.size() + 1), table);
}

/// Looks in one level. Raises 209 for two of the name.
Found FindInLevel(const Scope& level, const ColumnReference& reference) {
  const std::string& name = reference.name;
  const std::string& qualifier = reference.qualifier;
  const std::string& schema = reference.schema;
  Found found;
  for (std::size_t i = level.visible_from; i < level.sources.size(); ++i) {
    const Source& source = level.sources[i];
    if (!qualifier.empty() && !IsNamed(source, schema, qualifier)) continue;
    if (!qualifier.empty()) found.qualifier_known = true;
    for (std::size_t column = source.Find(name); column < source.size(); column = source.Find(name, column + 1)) {
      if (found.source != nullptr) throw SqlError(209, "Ambiguous column name '" + name + "'.");
      found.source = &source;
      found.column = column;
    }
  }
  return found;
}

[[noreturn]] void RaiseNotGrouped(const std::string& column, const std::string& clause) {
  throw SqlError(8120, "Column '" + column + "' is invalid in the " + clause +
                           " because it is not contained in either an aggregate function or the GROUP BY clause.");
}

}  // namespace

SourceColumn Source::At(std::size_t i) const {
  if (HasOwnColumns()) return columns[i];
  const Column& column = table->columns[i];
  return {column.name, column.type, optional || column.nullable};
}

std::size_t Source::Find(const std::string& name, std::size_t begin) const {
  const auto find = [&](const auto& all) {
    while (begin < all.size() && !EqualsIgnoreCase(all[begin].name, name)) ++begin;
    return begin;
  };
  return HasOwnColumns() ? find(columns) : find(table->columns);
}

std::vector<SourceColumn>& Source::OwnColumns() {
  if (!HasOwnColumns()) {
    std::vector<SourceColumn> own;
    for (std::size_t i = 0; i < size(); ++i) own.push_back(At(i));
    columns = std::move(own);
  }
  return columns;
}

std::string SqlOf(const Source& source, const SourceColumn& column) {
  return column.sql.empty() ? QuoteName(column.name, source.prefix) : column.sql;
}

void AddSource(Scope& scope, Source source) {
  for (const Source& other : scope.sources) {
    if (EqualsIgnoreCase(other.alias, source.alias)) {
      throw SqlError(1011, "The correlation name '" + source.alias + "' is specified multiple times in a FROM clause.",
                     15);
    }
  }
  scope.sources.push_back(std::move(source));
}

Source BareSource(std::string alias, const CatalogObject& table) {
  Source source;
  source.alias = std::move(alias);
  for (const Column& column : table.columns) {
    source.columns.push_back({column.name, column.type, column.nullable});
  }
  return source;
}

Typed FindColumn(const ColumnReference& column, const Scope& scope, bool in_aggregate) {
  const std::string& name = column.name;
  const std::string& qualifier = column.qualifier;
  bool qualifier_known = false;
  for (const Scope* level = &scope; level != nullptr && !qualifier_known; level = level->parent) {
    const Found found = FindInLevel(*level, column);
    qualifier_known = found.qualifier_known;
    if (found.source == nullptr) continue;
    const SourceColumn meant = found.source->At(found.column);
    std::string sql = SqlOf(*found.source, meant);
    const SqlType& type = meant.type;
    if (level->check_grouping && !in_aggregate && !level->group_columns.contains(sql)) {
      RaiseNotGrouped(found.source->alias + "." + meant.name, level->clause);
    }
    if (!in_aggregate && level->absent.contains(sql)) return {"NULL", type, true, -1};
    if (level->captured != nullptr) {
      level->captured->push_back(std::move(sql));
      return {"\"$row\".c" + std::to_string(level->captured->size()), type, meant.nullable, -1};
    }
    return {std::move(sql), type, meant.nullable, -1};
  }
  if (!qualifier.empty() && !qualifier_known) {
    const std::string& schema = column.schema;
    throw SqlError(4104, "The multi-part identifier \"" + schema + (schema.empty() ? "" : ".") + qualifier + "." +
                             name + "\" could not be bound.");
  }
  throw SqlError(207, "Invalid column name '" + name + "'.");
}

std::vector<std::pair<std::size_t, SourceColumn>> ColumnsOf(const Expression& item, const Scope& scope) {
  std::vector<std::pair<std::size_t, SourceColumn>> columns;
  const auto* star = As<Star>(item);
  const auto* name = As<ColumnReference>(item);
  if (star == nullptr && name == nullptr) return columns;
  const std::string& alias = star != nullptr ? star->table : name->qualifier;
  const std::string& schema = star != nullptr ? star->schema : name->schema;
  for (std::size_t i = 0; i < scope.sources.size(); ++i) {
    const Source& source = scope.sources[i];
    if (!alias.empty() && !IsNamed(source, schema, alias)) continue;
    for (std::size_t column = 0; column < source.size(); ++column) {
      SourceColumn shown = source.At(column);
      if (star != nullptr || EqualsIgnoreCase(shown.name, name->name)) columns.emplace_back(i, std::move(shown));
    }
  }
  return columns;
}

void ExpandStar(const Star& star, const Scope& scope, std::vector<Typed>& values, std::vector<ResultColumn>& columns) {
  bool any = false;
  for (const Source& source : scope.sources) {
    if (!star.table.empty() && !IsNamed(source, star.schema, star.table)) continue;
    any = true;
    for (std::size_t i = 0; i < source.size(); ++i) {
      const SourceColumn column = source.At(i);
      std::string sql = SqlOf(source, column);
      if (scope.check_grouping && !scope.group_columns.contains(sql)) {
        RaiseNotGrouped(source.alias + "." + column.name, "select list");
      }
      values.push_back({std::move(sql), column.type, column.nullable, -1});
      columns.push_back({column.name, column.type, column.nullable, false});
    }
  }
  if (any) return;
  if (star.table.empty()) throw SqlError(263, "Must specify table to select from.");
  throw SqlError(
      107, "The column prefix '" + star.table + "' does not match with a table name or alias name used in the query.",
      15);
}

}  // namespace tessarlorn::tsql
