// Makes SQLite's tables as the catalog defines them.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tsql/engine/plans/plan_store.h"
#include "tsql/storage/constraint_text.h"

namespace tessarlorn::tsql {

class TableMaker {
 public:
  TableMaker(SessionDatabase& database, PlanStore& plans, const Activation& activation)
      : database_(database), plans_(plans), activation_(activation) {}

  /// Makes a table with the constraints of its definition, and puts it into the catalog. Raises 2714, 8110 and 1911.
  void Make(CatalogObject table);

  /// Gives computed columns the types of their expressions. Raises 1046 and 1759.
  void SettleComputed(CatalogObject& table);
  /// A column in SQLite's words, with its name.
  std::string ColumnSql(const CatalogObject& table, const Column& column);
  /// Puts a table of another definition in the place of one, with its rows, indexes and last identity value.
  /// @param values what the columns get, in SQLite's words over the old table; those that are not there keep theirs
  void Rebuild(const CatalogObject& table, CatalogObject changed, const std::map<std::string, std::string>& values);

  /// The text of a CHECK in SQLite's words.
  std::string CheckSql(const CatalogObject& table, const Constraint& check);
  /// Lets the identity of a table count anew. @param rows how many values it gave
  void RestartIdentity(const CatalogObject& table, const Constraint& identity, std::int64_t rows = 0);
  /// Lets the identity of a table that was filled count on from the farthest value in it.
  void CountOn(const CatalogObject& table, const Constraint& identity);
  /// Raises where SQLite's table has constraints that the catalog does not tell of: an earlier version made it.
  void RequireNoted(const CatalogObject& table);

 private:
  /// The CREATE TABLE of SQLite's, which also settles what the table's columns are to SQLite.
  /// @param name what SQLite is to call the table
  std::string Definition(CatalogObject& table, const std::string& name);
  Typed Computed(const CatalogObject& table, const Column& column);
  std::string ConstraintSql(const CatalogObject& table, const Constraint& constraint);
  /// The indexes beside the UNIQUE constraints.
  void MakeKeyIndexes(const CatalogObject& table);
  /// Makes the table in which SQLite notes the last identity values. It does so by itself where it counts.
  void MakeSequences(const CatalogObject& table);
  void CopyRows(const CatalogObject& table, const CatalogObject& changed,
                const std::map<std::string, std::string>& values);
  /// One value of the first row, "" for NULL and for no row.
  std::string FirstText(const std::string& sql);

  SessionDatabase& database_;
  PlanStore& plans_;
  const Activation& activation_;
};

/// Names of columns as SQLite reads them, with commas between.
std::string NameList(const std::vector<std::string>& names);
std::string_view SchemaOf(const CatalogObject& table);

}  // namespace tessarlorn::tsql
