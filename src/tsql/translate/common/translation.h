// What the parts of the translator share, and the way in which they call each other.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tsql/functions/runtime.h"
#include "tsql/storage/catalog.h"
#include "tsql/syntax/ast.h"
#include "tsql/syntax/token.h"
#include "tsql/translate/common/parameters.h"
#include "tsql/translate/common/scope.h"
#include "tsql/translate/common/typed.h"

namespace tessarlorn::tsql {

/// How a query's columns are wanted.
struct SelectOptions {
  bool collate_items = false;
  /// Output names given from outside: t(a, b), WITH c(a, b).
  const std::vector<std::string>* names = nullptr;
  bool may_order = false;  // it stands for itself: ORDER BY needs no TOP
  bool named = false;      // every column needs a name of its own (derived tables, views)
  std::string owner;       // for messages: the derived table's alias
};

/// A table of WITH, as later queries read it.
struct CommonTableColumns {
  std::string name;
  std::vector<ResultColumn> columns;
  std::vector<BaseRow> rows = {};  // as of TranslatedQuery
};

/// What a statement is translated with.
struct Surroundings {
  const Catalog& catalog;
  Frame& frame;
  NameTable& names;
  /// Literals become parameters that are bound from the batch's tokens; otherwise their values stand in the compiled
  /// statement.
  bool lift_literals;
  Dependencies& dependencies;
  const MemoryBudget& memory;
};

/// One statement under translation. Values hold queries, queries hold conditions, and conditions hold values: each part
/// reaches the others through the three functions here.
class Translation {
 public:
  explicit Translation(const Surroundings& around)
      : catalog(around.catalog),
        names(around.names),
        dependencies(around.dependencies),
        memory(around.memory),
        parameters(around.frame, around.lift_literals, around.dependencies) {}
  Translation(const Translation&) = delete;
  Translation& operator=(const Translation&) = delete;

  virtual Typed Value(const Expression& expression, Scope& scope) = 0;
  virtual std::string Condition(const Expression& expression, Scope& scope) = 0;
  virtual TranslatedQuery QueryText(const Query& query, const Scope* parent, const SelectOptions& options) = 0;

  /// The table or view of that name, noted among the dependencies. Raises 208.
  CatalogObjectPtr Lookup(const ObjectName& name);

  const Catalog& catalog;
  NameTable& names;
  Dependencies& dependencies;
  const MemoryBudget& memory;
  Parameters parameters;
  std::vector<CommonTableColumns> common_tables;  // innermost last
  /// A change goes through a query: queries bring the numbers of their base rows along.
  bool exposes_rows = false;
  int next_alias = 0;
  int aggregate_depth = 0;

 protected:
  ~Translation() = default;
};

/// The name of a table as it stands in SQL: temporary tables carry their schema.
std::string TableSql(const CatalogObject& table);

}  // namespace tessarlorn::tsql
