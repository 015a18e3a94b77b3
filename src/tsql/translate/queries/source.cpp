#include "tsql/translate/queries/source.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "platform/text/text.h"
#include "tsql/functions/row_table.h"
#include "tsql/storage/constraint_text.h"
#include "tsql/storage/system_views.h"
#include "tsql/syntax/ast_walk.h"
#include "tsql/translate/common/function_text.h"
#include "tsql/translate/common/meaning.h"
#include "tsql/translate/queries/pivot.h"
#include "tsql/translate/queries/query.h"
#include "tsql/translate/queries/table_function.h"
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

/// A key is read by its constraint's name, too; SQLite finds it by itself.
std::string HintSql(const CatalogObject& table, const std::string& index) {
  if (index.empty() || HasKey(table.definition, index)) return {};
  return " INDEXED BY " + QuoteName(table.name + "." + index);
}

/// Whether no argument names a column, and none holds a query.
bool TakesNoColumns(const TableFunction& function) {
  const auto names_column = [](const Expression& operand) {
    return HasColumn(operand) || As<ExistsCondition>(operand) != nullptr || As<InQuery>(operand) != nullptr ||
           As<QuantifiedComparison>(operand) != nullptr;
  };
  return std::none_of(function.arguments.begin(), function.arguments.end(),
                      [&](const ExpressionPtr& argument) { return AnyOperand(*argument, names_column); });
}

/// The rows of a query as `ts_rows` takes them.
std::string PackedRowsOf(const TranslatedQuery& query) {
  std::string values;
  for (const ResultColumn& column : query.columns) values += (values.empty() ? "" : ", ") + QuoteName(column.name);
  return "(SELECT ts_pack(" + values + ") FROM (" + query.sql + "))";
}

/// One function a kind of source. `optional`: it is the inner side of an outer join, its columns may be NULL.
class Sources {
 public:
  Sources(Translation& translation, Scope& scope, bool optional)
      : translation_(translation), scope_(scope), optional_(optional) {}

  std::string operator()(const NamedTable& named) const {
    const bool exposed = named.alias.empty();
    if (exposed) RequireExposedOnce(named.shown_name());
    std::string sql = Table(named);
    if (exposed) scope_.sources.back().schema = named.name.schema;
    scope_.sources.back().exposed = exposed;
    return sql;
  }
  std::string operator()(const DerivedTable& derived) const;
  std::string operator()(const TableFunction& function) const;
  std::string operator()(const PivotTable& pivot) const;
  std::string operator()(const UnpivotTable& unpivot) const;
  std::string operator()(const Join& join) const;

 private:
  /// Raises 1013.
  void RequireExposedOnce(const std::string& name) const;
  [[nodiscard]] std::string Table(const NamedTable& named) const;
  [[nodiscard]] TranslatedQuery QueryOf(const DerivedTable& derived, const Scope* around) const;
  /// CROSS APPLY and OUTER APPLY. SQLite's own sources do not see those beside them, but the arguments of its
  /// table-valued functions do: the rows of the right side come packed in one.
  [[nodiscard]] std::string Apply(const Join& join) const;
  /// @param kept a row of NULLs stands for no rows
  [[nodiscard]] std::string Function(const TableFunction& function, bool kept) const;
  /// Adds the columns of packed rows, and names them.
  [[nodiscard]] std::string AddPacked(const std::string& packed, const std::string& alias,
                                      const std::vector<ResultColumn>& columns, bool kept) const;
  /// A source with these columns.
  template <typename Columns>
  [[nodiscard]] Source Make(const std::string& alias, const Columns& columns) const {
    Source source;
    source.alias = alias;
    source.prefix = QuoteName(alias) + ".";
    source.columns.reserve(columns.size());
    for (const auto& column : columns) {
      source.columns.push_back({column.name, column.type, optional_ || column.nullable});
    }
    return source;
  }
  template <typename Columns>
  void Add(const std::string& alias, const Columns& columns) const {
    AddSource(scope_, Make(alias, columns));
  }
  void AddTable(const std::string& alias, CatalogObjectPtr table) const;
  /// Adds a query, whose base rows it brings along when they are wanted.
  void AddQuery(const std::string& alias, const std::vector<ResultColumn>& columns,
                const std::vector<BaseRow>& rows) const;
  [[nodiscard]] TranslatedQuery ViewText(const CatalogObject& view) const;
  /// The query of a view or of a function with these arguments. @param columns their names, none for its own
  [[nodiscard]] TranslatedQuery DefinitionText(const CatalogObject& object, const Query& query,
                                               const std::vector<std::string>& columns,
                                               const Parameters::Arguments* arguments) const;
  /// Raises 208 and 215.
  [[nodiscard]] CatalogObjectPtr FunctionOf(const TableFunction& function) const;
  /// One whose body fills a table.
  [[nodiscard]] std::string Filled(const TableFunction& function, const CatalogObject& object,
                                   const std::vector<Typed>& values, bool kept) const;
  /// A function of the database. @param around what its arguments may name @param kept as of Function
  [[nodiscard]] std::string Own(const TableFunction& function, Scope& around, bool kept) const;

  Translation& translation_;
  Scope& scope_;
  bool optional_;
};

void Sources::RequireExposedOnce(const std::string& name) const {
  for (const Source& other : scope_.sources) {
    if (!other.exposed || !EqualsIgnoreCase(other.alias, name)) continue;
    throw SqlError(1013, "The objects \"" + other.alias + "\" and \"" + name +
                             "\" in the FROM clause have the same exposed names. Use correlation names to distinguish "
                             "them.");
  }
}

std::string Sources::Table(const NamedTable& named) const {
  const std::string& shown = named.shown_name();
  const std::string alias = " AS " + QuoteName(shown);
  if (const CommonTableColumns* common = FindCommonTable(translation_, named.name)) {
    const std::string name = common->name;
    AddQuery(shown, common->columns, common->rows);
    return QuoteName(name) + alias;
  }
  if (const SystemView* view = FindSystemView(named.name.qualifier, named.name.name)) {
    Add(shown, view->columns);
    return "(" + view->sql + ")" + alias;
  }
  CatalogObjectPtr object = FindCatalogView(named.name.qualifier, named.name.name);
  if (object == nullptr) object = translation_.Lookup(named.name);
  if (object->kind == CatalogKind::kTable) {
    AddTable(shown, object);
    return TableSql(*object) + alias + HintSql(*object, named.index);
  }
  const TranslatedQuery query = ViewText(*object);
  scope_.optional_view = scope_.optional_view || optional_;
  AddQuery(shown, query.columns, query.rows);
  return "(" + query.sql + ")" + alias;
}

void Sources::AddTable(const std::string& alias, CatalogObjectPtr table) const {
  Source source;
  source.alias = alias;
  source.prefix = QuoteName(alias) + ".";
  source.table = std::move(table);
  source.optional = optional_;
  if (translation_.exposes_rows) {
    source.rows.push_back({source.table, source.prefix + "_rowid_"});
    for (SourceColumn& column : source.OwnColumns()) {
      column.row = 0;
      column.base = column.name;
    }
  }
  AddSource(scope_, std::move(source));
}

void Sources::AddQuery(const std::string& alias, const std::vector<ResultColumn>& columns,
                       const std::vector<BaseRow>& rows) const {
  Source source = Make(alias, columns);
  for (const BaseRow& row : rows) {
    source.rows.push_back({row.table, QuoteName(alias) + "." + RowColumn(source.rows.size())});
  }
  for (std::size_t i = 0; i < columns.size() && !rows.empty(); ++i) {
    source.columns[i].row = columns[i].row;
    source.columns[i].base = columns[i].base;
  }
  AddSource(scope_, std::move(source));
}

TranslatedQuery Sources::ViewText(const CatalogObject& view) const {
  const StatementPtr statement = ParsedDefinition(translation_, view);
  const auto& definition = std::get<CreateViewStatement>(statement->node);
  return DefinitionText(view, *definition.query, definition.columns, nullptr);
}

TranslatedQuery Sources::DefinitionText(const CatalogObject& object, const Query& query,
                                        const std::vector<std::string>& columns,
                                        const Parameters::Arguments* arguments) const {
  // A view or function knows nothing of where it is used: no outer names, no common tables, no lifted literals.
  std::vector<CommonTableColumns> outer;
  outer.swap(translation_.common_tables);
  const Parameters::InDefinition in_definition(translation_.parameters, arguments);
  const InSchema in_schema(translation_, object.schema);
  SelectOptions options;
  options.named = true;
  options.owner = object.own_name();
  if (!columns.empty()) options.names = &columns;
  TranslatedQuery text = translation_.QueryText(query, nullptr, options);
  outer.swap(translation_.common_tables);
  // Views of views of views grow fast.
  translation_.memory.Require(text.sql.size() * 20);
  return text;
}

CatalogObjectPtr Sources::FunctionOf(const TableFunction& function) const {
  CatalogObjectPtr object = translation_.Note(function.of_database);
  if (object == nullptr || object->kind == CatalogKind::kFunction) RaiseNoObject(function.of_database);
  if (!object->gives_rows()) {
    throw SqlError(215, "Parameters supplied for object '" + WrittenName(function.of_database) +
                            "' which is not a function. If the parameters are intended as a table hint, a WITH keyword "
                            "is required.");
  }
  return object;
}

std::string Sources::Filled(const TableFunction& function, const CatalogObject& object,
                            const std::vector<Typed>& values, bool kept) const {
  std::string call = "ts_call(" + QuoteText(object.name);
  for (const Typed& value : values) call += ", " + value.sql;
  call += ")";
  // SQLite runs a query that names nothing from outside once, however often its value is asked for.
  if (TakesNoColumns(function)) call = "(SELECT " + call + ")";
  std::vector<ResultColumn> columns;
  for (const Column& column : object.columns) {
    if (column.default_text != kParameterMark) columns.push_back({column.name, column.type, column.nullable});
  }
  if (!function.column_aliases.empty()) Rename(columns, function.column_aliases, function.alias);
  return AddPacked(call, function.alias, columns, kept);
}

std::string Sources::Own(const TableFunction& function, Scope& around, bool kept) const {
  const CatalogObjectPtr object = FunctionOf(function);
  const StatementPtr statement = ParsedDefinition(translation_, *object);
  const auto& definition = std::get<CreateFunctionStatement>(statement->node);
  std::vector<Typed> values = FunctionArguments(translation_, WrittenName(function.of_database), definition.parameters,
                                                function.arguments, around);
  if (definition.query == nullptr) return Filled(function, *object, values, kept);
  // Columns would mean others within the function's text: they come to it as those of a row with a name of its own.
  const bool plain = TakesNoColumns(function);
  const std::string row = QuoteName("$arguments" + std::to_string(translation_.next_alias++));
  std::string given;
  Parameters::Arguments arguments;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (!plain) {
      const std::string name = "p" + std::to_string(i);
      given.append(i == 0 ? "" : ", ").append(values[i].sql).append(" AS ").append(name);
      values[i].sql = std::string(row).append(".").append(name);
    }
    arguments.emplace(definition.parameters[i].name, std::move(values[i]));
  }
  const TranslatedQuery query = DefinitionText(*object, *definition.query, function.column_aliases, &arguments);
  if (plain) {
    scope_.optional_view = scope_.optional_view || optional_;
    AddQuery(function.alias, query.columns, {});
    return "(" + query.sql + ") AS " + QuoteName(function.alias);
  }
  return AddPacked("(SELECT " + PackedRowsOf(query) + " FROM (SELECT " + given + ") AS " + row + ")", function.alias,
                   query.columns, kept);
}

TranslatedQuery Sources::QueryOf(const DerivedTable& derived, const Scope* around) const {
  SelectOptions options;
  options.named = true;
  options.owner = derived.alias;
  if (!derived.column_aliases.empty()) options.names = &derived.column_aliases;
  return translation_.QueryText(*derived.query, around, options);
}

std::string Sources::operator()(const DerivedTable& derived) const {
  const TranslatedQuery query = QueryOf(derived, scope_.parent);
  AddQuery(derived.alias, query.columns, query.rows);
  return "(" + query.sql + ") AS " + QuoteName(derived.alias);
}

std::string Sources::AddPacked(const std::string& packed, const std::string& alias,
                               const std::vector<ResultColumn>& columns, bool kept) const {
  if (columns.size() > kMostPackedColumns) {
    RaiseUnsupported("APPLY of more than " + std::to_string(kMostPackedColumns) + " columns");
  }
  Source source;
  source.alias = alias;
  for (const ResultColumn& column : columns) {
    const std::string name = "c" + std::to_string(source.columns.size());
    source.columns.push_back(
        {column.name, column.type, optional_ || kept || column.nullable, QuoteName(alias) + "." + name});
  }
  AddSource(scope_, std::move(source));
  return "ts_rows(" + packed + (kept ? ", 1" : "") + ") AS " + QuoteName(alias);
}

std::string Sources::Function(const TableFunction& function, bool kept) const {
  const TranslatedTable table = TranslateTableFunction(translation_, function, scope_);
  return AddPacked(table.packed, function.alias, table.columns, kept);
}

std::string Sources::operator()(const TableFunction& function) const {
  if (function.of_database.name.empty()) return Function(function, false);
  Scope around;
  around.parent = scope_.parent;
  return Own(function, around, false);
}

std::string Sources::Apply(const Join& join) const {
  const bool kept = join.kind == JoinKind::kOuterApply;
  const std::string left = std::visit(Sources(translation_, scope_, optional_), join.left->node);
  const auto* function = std::get_if<TableFunction>(&join.right->node);
  const bool own = function != nullptr && !function->of_database.name.empty();
  if (function != nullptr && !(own && TakesNoColumns(*function))) {
    return left + " CROSS JOIN " + (own ? Own(*function, scope_, kept) : Function(*function, kept));
  }
  if (const auto* derived = std::get_if<DerivedTable>(&join.right->node)) {
    const TranslatedQuery query = QueryOf(*derived, &scope_);
    return left + " CROSS JOIN " + AddPacked(PackedRowsOf(query), derived->alias, query.columns, kept);
  }
  // A table sees nothing beside it anyway.
  const std::string right = std::visit(Sources(translation_, scope_, optional_ || kept), join.right->node);
  return left + (kept ? " LEFT JOIN " + right + " ON 1" : " CROSS JOIN " + right);
}

std::string Sources::operator()(const Join& join) const {
  if (join.kind > JoinKind::kCross) return Apply(join);
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

std::string Sources::operator()(const PivotTable& pivot) const {
  const TranslatedQuery query = TranslatePivot(translation_, pivot, scope_.parent);
  Add(pivot.alias, query.columns);
  return "(" + query.sql + ") AS " + QuoteName(pivot.alias);
}

std::string Sources::operator()(const UnpivotTable& unpivot) const {
  const TranslatedQuery query = TranslateUnpivot(translation_, unpivot, scope_.parent);
  Add(unpivot.alias, query.columns);
  return "(" + query.sql + ") AS " + QuoteName(unpivot.alias);
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

std::string TranslateSource(Translation& translation, const TableSource& source, Scope& scope) {
  return std::visit(Sources(translation, scope, false), source.node);
}

std::string TranslateTable(Translation& translation, const NamedTable& table, Scope& scope) {
  return Sources(translation, scope, false)(table);
}

}  // namespace tessarlorn::tsql
