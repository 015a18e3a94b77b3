// What the triggers of a table do when its rows change.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tsql/engine/state/results.h"
#include "tsql/engine/state/session_database.h"
#include "tsql/engine/state/transaction.h"
#include "tsql/engine/state/trigger_state.h"

namespace tessarlorn::tsql {

/// What an INSERT, UPDATE, DELETE or MERGE does, each kind of change once.
std::vector<RowChange> RowChangesOf(const Statement& statement);

class Triggers {
 public:
  /// Runs a trigger's body.
  using RunTrigger = std::function<void(const CatalogObject& trigger)>;

  Triggers(SessionDatabase& database, Results& results, Transaction& transaction, TriggerState& state, RunTrigger run)
      : database_(database), results_(results), transaction_(transaction), state_(state), run_(std::move(run)) {}

  /// Whether the table has a trigger that is switched on.
  [[nodiscard]] bool WatchOver(std::string_view table) const;
  /// Runs a statement's changes of a table, and then the triggers that answer to them. Both are undone together. Raises
  /// 3609 when a trigger ends the transaction.
  void Around(const std::string& table, const std::vector<RowChange>& changes, const std::function<void()>& change);

 private:
  class Rows;

  /// Those that answer to a change. A trigger does not fire itself; another that it fires may.
  [[nodiscard]] std::vector<CatalogObjectPtr> AnsweringTo(RowEvent event, std::string_view table) const;
  void Fire(const CatalogObjectPtr& table, const std::vector<RowChange>& changes, Rows& rows);
  void FireOne(const TriggerState::Firing& firing);

  SessionDatabase& database_;
  Results& results_;
  Transaction& transaction_;
  TriggerState& state_;
  RunTrigger run_;
};

}  // namespace tessarlorn::tsql
