// ALTER TABLE.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tsql/engine/definitions/table_maker.h"
#include "tsql/engine/plans/evaluate.h"

namespace tessarlorn::tsql {

/// Changes one table. Each function does all of it or nothing.
class TableAlteration {
 public:
  TableAlteration(SessionDatabase& database, PlanStore& plans, Evaluator& evaluator, const Activation& activation,
                  CatalogObject table)
      : database_(database),
        plans_(plans),
        evaluator_(evaluator),
        activation_(activation),
        maker_(database, plans, activation),
        original_(table),
        table_(std::move(table)),
        constraints_(ReadConstraints(table_.definition)) {}

  void Add(const TableElements& elements);
  void Drop(const std::vector<AlterTableStatement::Dropped>& items);
  void AlterColumn(const ColumnDefinition& definition);

 private:
  void AddColumn(const ColumnDefinition& definition, bool in_key);
  /// Adds the last column of the table, which is computed.
  void AddComputed(const CatalogObject& before);
  /// Gives a column that stands its default. Raises 1752, 1754 and 1781.
  void AddDefault(const Constraint& constraint);
  /// Raises the error of a new constraint that the table, or its rows, do not allow.
  void RequireAllowed(const Constraint& constraint);
  void RequireKey(const Constraint& key);
  void RequireReference(const Constraint& reference);
  void RequireChecked(const Constraint& check);
  void RequireReferred(const Constraint& reference, const CatalogObject& other,
                       const std::vector<std::string>& referenced);
  /// The place of the constraint with that name. Raises 3728, and 3725 where it is referred to.
  Constraint& FindToDrop(const std::string& name);
  void DropConstraints(const std::vector<AlterTableStatement::Dropped>& items);
  void DropColumn(const AlterTableStatement::Dropped& item);
  /// Raises 5074 where something hinders the column's change. @param to the changed column, nullptr when it goes
  void RequireFree(const Column& column, const Column* to);
  void RequireFreeOfConstraint(const Constraint& constraint, const Column& column, const Column* to);
  /// Takes the catalog's definition as it is now.
  void Note();
  void Rebuild(const CatalogObject& before, const std::map<std::string, std::string>& values = {});
  [[nodiscard]] bool HasRow(const std::string& from_and_where);
  [[nodiscard]] Column& ColumnNamed(const std::string& name) {
    return table_.columns[static_cast<std::size_t>(table_.FindColumn(name))];
  }

  SessionDatabase& database_;
  PlanStore& plans_;
  Evaluator& evaluator_;
  const Activation& activation_;
  TableMaker maker_;
  const CatalogObject original_;
  CatalogObject table_;
  Constraints constraints_;
};

/// The column of a definition. Raises 2705 for one that the table has already.
Column ColumnOf(const CatalogObject& table, const ColumnDefinition& definition);

}  // namespace tessarlorn::tsql
