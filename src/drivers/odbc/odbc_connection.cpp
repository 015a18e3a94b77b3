#include "drivers/odbc/odbc_connection.h"

#include <utility>

#include "drivers/odbc/odbc_error.h"

namespace tessarlorn::odbc {
namespace {

// The server's own numbers and words, for what is found out without asking it.
constexpr std::int32_t kTransactionOpen = 3988;
constexpr std::int32_t kNoTransaction = 3902;
constexpr std::int32_t kCancelledByUser = 3617;

constexpr std::string_view kSignOfLife = "SELECT 1 AS FAlive";

/// Passes results on and notes that there were some.
class NotingSink final : public BatchSink {
 public:
  explicit NotingSink(BatchSink& sink) : sink_(sink) {}
  void Rows(RecordsetPtr rows) override {
    answered = true;
    sink_.Rows(std::move(rows));
  }
  void RowCount(std::int64_t rows) override {
    answered = true;
    sink_.RowCount(rows);
  }
  void Message(std::string_view text, const NativeError& about) override {
    answered = true;
    sink_.Message(text, about);
  }
  bool answered = false;

 private:
  BatchSink& sink_;
};

}  // namespace

OdbcConnection::OdbcConnection(ConnectionOptions options)
    : options_(std::move(options)), link_(std::make_unique<OdbcLink>(options_)) {}

template <typename Action>
void OdbcConnection::WithNewLogin(const Action& action, const bool& answered) {
  const bool again = std::exchange(idle_, false);
  try {
    action();
  } catch (const Error&) {
    if (!again || answered || !link_->lost()) throw;
    link_ = std::make_unique<OdbcLink>(options_);
    action();
  }
}

void OdbcConnection::BeginTransaction() {
  if (in_transaction_) {
    throw ToError(
        {"25000", kTransactionOpen, "New transaction is not allowed because there is another transaction open."});
  }
  WithNewLogin([this] { link_->SetAutocommit(false); }, false);
  in_transaction_ = true;
}

void OdbcConnection::EndTransaction(bool commit) {
  in_transaction_ = false;
  try {
    link_->EndTransaction(commit);
  } catch (const Error&) {
    if (!link_->lost()) {
      // What could not be committed is rolled back.
      link_->SetAutocommit(true);
    }
    throw;
  }
  link_->SetAutocommit(true);
}

void OdbcConnection::CommitTransaction() {
  if (!in_transaction_) {
    throw ToError({"25000", kNoTransaction, "The COMMIT TRANSACTION request has no corresponding BEGIN TRANSACTION."});
  }
  EndTransaction(true);
}

void OdbcConnection::RollbackTransaction() {
  if (in_transaction_) EndTransaction(false);
}

void OdbcConnection::Run(std::string_view text, bool first_only, BatchSink& sink) {
  const BatchEffects effects = EffectsOf(text);
  effects_.Add(effects);
  NotingSink noting(sink);
  if (idle_ && !effects.reads_only) {
    WithNewLogin([this] { link_->Run(kSignOfLife); }, false);
  }
  WithNewLogin([&] { RunOnLink(text, first_only, effects.prints, noting); }, noting.answered);
}

void OdbcConnection::RunOnLink(std::string_view text, bool first_only, bool prints, BatchSink& sink) {
  const RunningStatement running(*cancel_, link_->statement());
  try {
    link_->Run(text, first_only, prints, sink);
  } catch (const Error& error) {
    // An ODBC driver may find other words for the end of a batch that was cancelled.
    if (!cancel_->requested() || error.number() == error_number::kCancelled || error.native().number > 0) throw;
    throw ToError({"HY008", kCancelledByUser, "The batch was cancelled."});
  }
}

bool OdbcConnection::Reset() noexcept {
  try {
    if (link_->lost()) return false;
    RollbackTransaction();
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
    if (!at_once.none()) link_->Run(at_once.CleaningBatch());
    return true;
  }
  resets_with_batch_ = false;
  if (effects_.lasting) return false;
  link_->Run(effects_.CleaningBatch());
  return true;
}

bool OdbcConnection::usable() const noexcept { return !link_->lost(); }

void OdbcConnection::Cancel() noexcept { cancel_->Request(); }

}  // namespace tessarlorn::odbc
