// What the session tells of itself when a statement runs: @@ROWCOUNT, GETDATE(), ERROR_MESSAGE() and their like.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "tessarlorn/date_time.h"
#include "tsql/engine/state/cursor_state.h"
#include "tsql/engine/state/error_state.h"
#include "tsql/engine/state/results.h"
#include "tsql/engine/state/transaction.h"
#include "tsql/engine/state/trigger_state.h"
#include "tsql/values/datum.h"

namespace tessarlorn::tsql {

/// Tells the local date and time.
using Clock = std::function<DateTime()>;

class SystemValues {
 public:
  SystemValues(const Results& results, const Transaction& transaction, const ErrorState& errors,
               const CursorState& cursors, const TriggerState& triggers, Clock clock)
      : results_(results),
        transaction_(transaction),
        errors_(errors),
        cursors_(cursors),
        triggers_(triggers),
        clock_(std::move(clock)) {}

  /// @param type what the value is; changed where it is a whole number of another size
  [[nodiscard]] Datum Get(const std::string& name, SqlType& type) const;

 private:
  [[nodiscard]] Datum OfError(const std::string& name, SqlType& type) const;
  /// UPDATE(column): 1 when the change that fired the trigger sets it. Raises 140 outside of triggers, and 207.
  [[nodiscard]] std::int64_t IsUpdated(std::string_view column) const;

  const Results& results_;
  const Transaction& transaction_;
  const ErrorState& errors_;
  const CursorState& cursors_;
  const TriggerState& triggers_;
  Clock clock_;
};

}  // namespace tessarlorn::tsql
