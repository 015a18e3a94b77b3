#include "tsql/engine/session.h"

#include <utility>

#include "tsql/engine/command_arguments.h"
#include "tsql/syntax/parser.h"

namespace tessarlorn::tsql {

Session::Session(DatabaseHandle database, std::chrono::milliseconds lock_timeout, Clock clock, std::size_t memory_limit)
    : database_(std::move(database), memory_limit),
      options_(database_.runtime()),
      results_(database_.runtime(), options_),
      transaction_(database_, options_, results_, lock_timeout),
      system_(results_, transaction_, errors_, cursors_, triggers_, std::move(clock)),
      binder_(database_, system_),
      plans_(database_, options_, errors_),
      interpreter_(database_, options_, results_, errors_, transaction_, plans_, binder_, cursors_, triggers_) {}

void Session::Run(SqlCommand& command, bool first_only, BatchSink& sink) {
  BeginBatch(command, first_only, sink);
  bool takes_back = false;
  try {
    try {
      RunCommand(command);
    } catch (const SqlError& error) {
      takes_back = error.takes_transaction_back();
      throw;
    }
  } catch (...) {
    EndFailedBatch(takes_back, sink);
    // Whoever hears of one error only hears of the first, as when a trigger says why it rolls back.
    if (errors_.first && !database_.runtime().cancelled.load()) throw SqlError(*errors_.first);
    throw;
  }
  EndBatch(sink);
}

void Session::RunCommand(SqlCommand& command) {
  CommandArguments arguments(command, database_.runtime().date_order);
  if (command.is_procedure) {
    interpreter_.Call(ParseObjectNameText(command.text, database_.names()), arguments);
    return;
  }
  Frame frame;
  arguments.DeclareIn(frame);
  interpreter_.RunBatch(command.text, frame);
  arguments.TakeBackFrom(frame);
}

void Session::BeginBatch(const SqlCommand& command, bool first_only, BatchSink& sink) {
  Runtime& runtime = database_.runtime();
  runtime.cancelled.store(false);
  runtime.error.reset();
  runtime.memory.Begin(SizeOf(command));
  errors_.BeginBatch();
  transaction_.scope_identity.reset();
  plans_.Trim();
  results_.BeginBatch(sink, first_only);
}

void Session::EndFailedBatch(bool takes_back, BatchSink& sink) {
  transaction_.NoteLost();
  database_.DropLeft();
  results_.EndBatch();
  if ((transaction_.doomed() || takes_back) && transaction_.depth() > 0) {
    transaction_.End(false);
    sink.Transaction(TransactionEvent::kRolledBack);
  } else if (transaction_.depth() == 0 && transaction_.writing()) {
    // What ran before the failing statement stays. When even that cannot be committed the first error says enough.
    try {
      transaction_.CommitWrite();
    } catch (const SqlError&) {
      transaction_.RollbackWrite();
    }
  }
}

void Session::EndBatch(BatchSink& sink) {
  database_.DropLeft();
  results_.EndBatch();
  if (transaction_.doomed()) {
    transaction_.End(false);
    sink.Transaction(TransactionEvent::kRolledBack);
    throw SqlError(3998,
                   "Uncommittable transaction is detected at the end of the batch. The transaction is rolled back.");
  }
  if (transaction_.depth() == 0 && transaction_.writing()) transaction_.CommitWrite();
  if (errors_.first) throw SqlError(*errors_.first);
}

void Session::Reset() {
  database_.runtime().cancelled.store(false);
  transaction_.RollbackContainer();
  database_.catalog().RefreshTemporaries();
  interpreter_.DropTemporaryTables();
  transaction_.ForgetIdentity();
  options_.Reset();
  results_.set_row_count(0);
  errors_.last_number = 0;
}

void Session::Cancel() noexcept { database_.runtime().cancelled.store(true); }

}  // namespace tessarlorn::tsql
