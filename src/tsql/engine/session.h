// One session with an embedded database: it runs batches, keeps variables, temporary tables and the transaction.
#pragma once

#include <chrono>
#include <cstddef>

#include "tessarlorn/connection.h"
#include "tsql/engine/interpreter.h"
#include "tsql/engine/plans/bind.h"
#include "tsql/engine/plans/plan_store.h"
#include "tsql/engine/state/error_state.h"
#include "tsql/engine/state/results.h"
#include "tsql/engine/state/session_database.h"
#include "tsql/engine/state/session_options.h"
#include "tsql/engine/state/system_values.h"
#include "tsql/engine/state/transaction.h"

namespace tessarlorn::tsql {

/// Runs batches as SQL Server would. A batch is parsed whole before anything of it runs. Without an open transaction
/// the changes of a batch are committed together when it ends, also when a statement of it failed: what ran before the
/// failing statement stays. Writers wait for each other; a statement that writes takes the write lock before it reads,
/// so that what it saw is still true when it writes. Readers never wait.
///
/// One thread at a time, but for Cancel(). Raises SqlError.
class Session {
 public:
  /// @param lock_timeout how long a statement waits for a lock that somebody else has, unless SET LOCK_TIMEOUT says
  /// less
  /// @param clock tells the local date and time
  /// @param memory_limit bytes that a batch may take, see MemoryBudget
  Session(DatabaseHandle database, std::chrono::milliseconds lock_timeout, Clock clock,
          std::size_t memory_limit = MemoryBudget::kDefaultLimit);

  /// Hands over every row-returning result in order, or only the first. The parameters of a batch are its variables;
  /// what it leaves in outputs comes back in them.
  void Run(SqlCommand& command, bool first_only, BatchSink& sink);

  void BeginContainerTransaction() { transaction_.BeginContainer(); }
  void CommitContainerTransaction() { transaction_.CommitContainer(); }
  void RollbackContainerTransaction() { transaction_.RollbackContainer(); }

  /// As good as new: see Connection::Reset. Raises what SQLite reports.
  void Reset();
  void Cancel() noexcept;
  [[nodiscard]] bool in_transaction() const noexcept { return transaction_.depth() > 0; }

 private:
  void BeginBatch(const SqlCommand& command, bool first_only, BatchSink& sink);
  /// Runs a batch with its parameters as variables, or calls the procedure that the command names.
  void RunCommand(SqlCommand& command);
  /// Commits what ran before an error, or takes it back.
  void EndFailedBatch(bool takes_back, BatchSink& sink);
  void EndBatch(BatchSink& sink);

  SessionDatabase database_;
  SessionOptions options_;
  ErrorState errors_;
  Results results_;
  CursorState cursors_;
  TriggerState triggers_;
  Transaction transaction_;
  SystemValues system_;
  Binder binder_;
  PlanStore plans_;
  Interpreter interpreter_;
};

}  // namespace tessarlorn::tsql
