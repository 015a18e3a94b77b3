#include "drivers/odbc/odbc_connection.h"

#include <utility>

#include "drivers/common/server_batches.h"
#include "drivers/odbc/changed_tables.h"
#include "drivers/odbc/odbc_error.h"

namespace tessarlorn::odbc {
namespace {

constexpr std::string_view kSignOfLife = "SELECT 1 AS FAlive";

/// Passes results on and notes that there were some.
class NotingSink final : public BatchSink {
 public:
  explicit NotingSink(BatchSink& sink) : sink_(sink) {}
  void Rows(RecordsetPtr rows) override {
    answered = true;
    sink_.Rows(std::move(rows));
  }
  [[nodiscard]] bool takes_parts() const override { return sink_.takes_parts(); }
  void PartOfRows(Recordset& rows) override {
    answered = true;
    sink_.PartOfRows(rows);
  }
  void RowCount(std::int64_t rows) override {
    answered = true;
    counts.push_back(rows);
    sink_.RowCount(rows);
  }
  void Message(std::string_view text, const NativeError& about) override {
    answered = true;
    sink_.Message(text, about);
  }
  bool answered = false;
  std::vector<std::int64_t> counts;

 private:
  BatchSink& sink_;
};

/// Each count belongs to a statement, where as many came as change rows; else nobody knows to which.
void TellChanges(BatchWatcher& watcher, const std::vector<std::string>& tables,
                 const std::vector<std::int64_t>& counts) {
  for (std::size_t i = 0; i < counts.size(); ++i) {
    const std::string table = tables.size() == counts.size() ? tables[i] : "";
    if (counts[i] > 0 && !table.starts_with('#')) watcher.Changed(table, counts[i]);
  }
}

/// A call as a batch would write it, for what it may leave behind: of sp_executesql that is what its text does.
std::string CallText(const SqlCommand& command) {
  std::string text = "EXEC " + std::string(command.text);
  for (const SqlParameter& parameter : command.parameters) {
    if (const auto* value = parameter.value.get_if<std::string>()) text += " " + *value;
  }
  return text;
}

}  // namespace

OdbcConnection::OdbcConnection(ConnectionOptions options, OdbcCancelling cancelling)
    : options_(std::move(options)),
      link_(std::make_unique<OdbcLink>(options_)),
      cancel_(cancelling == OdbcCancelling::kWatched ? CancelState::Make() : std::make_shared<CancelState>()) {}

template <typename Action>
void OdbcConnection::WithNewLogin(const Action& action, const bool& answered) {
  const bool again = std::exchange(idle_, false);
  try {
    action();
  } catch (const Error& error) {
    // A server that was silent for the whole time-out, or a caller that wants no more, is not asked again.
    const bool ended = error.number() == error_number::kTimeout || error.number() == error_number::kCancelled;
    if (!again || answered || ended || !link_->lost()) throw;
    link_ = std::make_unique<OdbcLink>(options_);
    action();
  }
}

std::int32_t OdbcConnection::Ask(std::string_view text) {
  NumberSink sink;
  SqlCommand command(text);
  RunOnLink(command, true, false, sink);
  return sink.Number(kSource);
}

void OdbcConnection::Send(std::string_view text) {
  NumberSink unread;
  SqlCommand command(text);
  RunOnLink(command, true, false, unread);
}

void OdbcConnection::BeginTransaction() {
  const CancellableCall call(*cancel_);
  effects_.transaction = true;
  std::int32_t open = 0;
  WithNewLogin([&] { open = Ask(kBeginBatch); }, false);
  if (open > 0) RaiseTransactionOpen(kSource);
}

void OdbcConnection::CommitTransaction() {
  std::int32_t open = 0;
  try {
    const CancellableCall call(*cancel_);
    open = Ask(kCommitBatch);
  } catch (const Error&) {
    // What could not be committed is rolled back.
    if (!link_->lost()) RollbackTransaction();
    throw;
  }
  effects_.transaction = false;
  if (open == 0) RaiseNoTransaction(kSource);
}

void OdbcConnection::RollbackTransaction() {
  if (!effects_.transaction) return;
  const CancellableCall call(*cancel_);
  Send(kRollbackBatch);
  effects_.transaction = false;
}

void OdbcConnection::Join(void* transaction) { link_->Enlist(transaction); }

void OdbcConnection::Run(SqlCommand& command, bool first_only, BatchSink& sink) {
  // ODBC has no empty batch.
  if (command.text.empty()) return;
  RefuseNul(command.text, kSource);
  const CancellableCall call(*cancel_);
  const BatchEffects effects = command.is_procedure ? EffectsOf(CallText(command)) : EffectsOf(command.text);
  effects_.Add(effects);
  NotingSink noting(sink);
  if (idle_ && !effects.reads_only) {
    WithNewLogin([this] { Send(kSignOfLife); }, false);
  }
  WithNewLogin([&] { RunOnLink(command, first_only, effects.prints, noting); }, noting.answered);
  if (BatchWatcher* const watcher = WatcherOfThread(); watcher != nullptr && !effects.reads_only) {
    TellChanges(*watcher, ChangedTables(command.text), noting.counts);
  }
}

void OdbcConnection::RunOnLink(SqlCommand& command, bool first_only, bool prints, BatchSink& sink) {
  if (cancel_->requested()) RaiseCancelled();
  const RunningStatement running(*cancel_, link_->statement());
  try {
    link_->Run(command, first_only, prints, sink);
  } catch (const Error& error) {
    // An ODBC driver may find other words for the end of a batch that was cancelled.
    if (!cancel_->requested() || link_->lost() || error.native().number > 0 || error.source() != kSource ||
        error.number() == error_number::kTimeout) {
      throw;
    }
    RaiseCancelled();
  }
}

bool OdbcConnection::Reset() noexcept {
  try {
    if (link_->lost()) return false;
    const CancellableCall call(*cancel_);
    if (!effects_.none() && !Clean()) return false;
    effects_ = BatchEffects();
    idle_ = true;
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

/// The ODBC driver's own way costs no round trip, but for what would hold locks until then or survives it.
bool OdbcConnection::Clean() {
  if (resets_with_batch_ && link_->ResetWithNextBatch()) {
    BatchEffects at_once;
    at_once.transaction = effects_.transaction;
    at_once.options = effects_.options;
    if (!at_once.none()) Send(at_once.CleaningBatch());
    return true;
  }
  resets_with_batch_ = false;
  if (effects_.lasting) return false;
  Send(effects_.CleaningBatch());
  return true;
}

bool OdbcConnection::usable() const noexcept { return !link_->lost(); }

void OdbcConnection::Cancel() noexcept { cancel_->Request(); }

}  // namespace tessarlorn::odbc
