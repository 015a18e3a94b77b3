// What the parts of the translator share, and the way in which they call each other.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
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
/// What a query with named columns is: a derived table or its like, the text of a view or function, or the rows of a
/// table that SELECT … INTO makes.
enum class QueryOwner : std::uint8_t { kDerivedTable, kDefinition, kNewTable };

struct SelectOptions {
  bool collate_items = false;
  /// Output names given from outside: t(a, b), WITH c(a, b).
  const std::vector<std::string>* names = nullptr;
  bool may_order = false;  // it stands for itself: ORDER BY needs no TOP
  bool named = false;      // every column needs a name of its own (derived tables, views)
  std::string owner;       // for messages: the derived table's alias, the view's or new table's name
  QueryOwner owner_kind = QueryOwner::kDerivedTable;
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
  /// That of the object whose text is translated, "" for dbo and for a batch.
  std::string schema = {};
};

/// Whether NEXT VALUE FOR may stand at the place under translation, and else why not.
enum class NumberPlace : std::uint8_t {
  kNowhere,  // 11719
  kItems,    // in the select list of the query that comes
  kHere,
  kClause,    // 11720
  kSet,       // 11721: DISTINCT and set operators
  kOrdered,   // 11723
  kTop,       // 11739
  kOptional,  // 11741: CASE and its like
  kMerge,     // 11742
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
        schema(around.schema),
        parameters(around.frame, around.lift_literals, around.dependencies) {}
  Translation(const Translation&) = delete;
  Translation& operator=(const Translation&) = delete;

  virtual Typed Value(const Expression& expression, Scope& scope) = 0;
  virtual std::string Condition(const Expression& expression, Scope& scope) = 0;
  virtual TranslatedQuery QueryText(const Query& query, const Scope* parent, const SelectOptions& options) = 0;

  /// The object of that name or nullptr, noted among the dependencies. Raises 208 for one of another database.
  CatalogObjectPtr Note(const ObjectName& name);
  /// The table or view of that name, noted among the dependencies. Raises 208, and 216 for a function.
  CatalogObjectPtr Lookup(const ObjectName& name);
  /// The scalar function of that name or nullptr, noted among the dependencies.
  CatalogObjectPtr FindFunction(const ObjectName& name);

  const Catalog& catalog;
  NameTable& names;
  Dependencies& dependencies;
  const MemoryBudget& memory;
  std::string schema;  // as of Surroundings
  Parameters parameters;
  std::vector<CommonTableColumns> common_tables;  // innermost last
  /// A change goes through a query: queries bring the numbers of their base rows along.
  bool exposes_rows = false;
  NumberPlace numbers = NumberPlace::kNowhere;
  /// In MERGE only the defaults of columns take numbers.
  bool merges = false;
  /// How many places of the row at hand take a number of a sequence.
  int number_places = 0;
  /// What is translated is kept in SQLite's definition of a table.
  bool for_table = false;
  int next_alias = 0;
  int aggregate_depth = 0;

 private:
  /// What the catalog has under the name, noted among the dependencies.
  CatalogObjectPtr Noted(const ObjectName& name);

 protected:
  ~Translation() = default;
};

/// While it lives, NEXT VALUE FOR may stand in such a place.
class NumbersAt {
 public:
  NumbersAt(Translation& translation, NumberPlace place)
      : translation_(translation), outer_(std::exchange(translation.numbers, place)) {}
  NumbersAt(const NumbersAt&) = delete;
  NumbersAt& operator=(const NumbersAt&) = delete;
  ~NumbersAt() { translation_.numbers = outer_; }

 private:
  Translation& translation_;
  NumberPlace outer_;
};

/// While it lives, the text of an object of that schema is translated.
class InSchema {
 public:
  InSchema(Translation& translation, const std::string& schema)
      : translation_(translation), outer_(std::exchange(translation.schema, schema)) {}
  InSchema(const InSchema&) = delete;
  InSchema& operator=(const InSchema&) = delete;
  ~InSchema() { translation_.schema = std::move(outer_); }

 private:
  Translation& translation_;
  std::string outer_;
};

/// The name of a table as it stands in SQL: temporary tables carry their schema.
std::string TableSql(const CatalogObject& table);

}  // namespace tessarlorn::tsql
