// A connection to a database, which runs batches of Transact-SQL.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tessarlorn/error.h"
#include "tessarlorn/recordset.h"
#include "tessarlorn/sql_command.h"

namespace tessarlorn {

/// Takes a result of a batch; it may raise, which ends the batch.
using ResultSink = std::function<void(RecordsetPtr)>;

/// What a batch's own statements did to the transaction.
enum class TransactionEvent : std::uint8_t { kBegun, kCommitted, kRolledBack };

/// Takes a text on the thread that runs a batch.
using TextObserver = std::function<void(std::string_view)>;

/// Who listens to all batches of a host.
struct BatchObservers {
  TextObserver statements;
  TextObserver messages;
};

/// Takes all that a batch answers, in its order and on the thread that runs it. What a function raises ends the batch.
/// Who wants the results only overrides Rows().
class BatchSink {
 public:
  BatchSink() = default;
  BatchSink(const BatchSink&) = delete;
  BatchSink& operator=(const BatchSink&) = delete;
  virtual ~BatchSink() = default;

  /// A result, or the last rows of one that came in parts.
  virtual void Rows(RecordsetPtr rows) = 0;
  /// Bytes after which a long result is handed over in parts, where it may be.
  static constexpr std::size_t kPartSize = 65536;
  /// Whether a long result may come in parts, so that nobody holds it whole.
  [[nodiscard]] virtual bool takes_parts() const { return false; }
  /// Rows of a result that more rows follow, at the first of them; theirs only until this returns. When the statement
  /// fails before its last row, Rows() is not called for it.
  virtual void PartOfRows(Recordset& /*rows*/) {}
  /// A statement changed so many rows. Not called while the session's NOCOUNT is on.
  virtual void RowCount(std::int64_t /*rows*/) {}
  /// PRINT, or an error of a severity up to 10; `about` has its number (0 for PRINT), severity and place. By default
  /// the text goes to the host's message observer.
  virtual void Message(std::string_view text, const NativeError& about);
  /// An error that ended its statement and not the batch. True when it is dealt with here; otherwise the batch raises
  /// the first one at its end.
  virtual bool StatementFailed(const Error& /*error*/) { return false; }
  /// Called by drivers that know.
  virtual void Transaction(TransactionEvent /*event*/) {}

 private:
  friend class Connection;
  const BatchObservers* observers_ = nullptr;
};

/// Takes the rows of an operation's answer while they are read.
class AnswerSink {
 public:
  AnswerSink() = default;
  AnswerSink(const AnswerSink&) = delete;
  AnswerSink& operator=(const AnswerSink&) = delete;
  virtual ~AnswerSink() = default;

  /// Some rows, at the first of them; theirs only until this returns. What it raises ends the batch.
  virtual void PartOfAnswer(Recordset& rows) = 0;
};

/// While it lives, long answers of operations on the calling thread go to the sink in parts: all but the last rows,
/// which the operation answers. When the operation raises, the parts that came are no answer.
class AnswerInParts {
 public:
  explicit AnswerInParts(AnswerSink& sink) noexcept;
  AnswerInParts(const AnswerInParts&) = delete;
  AnswerInParts& operator=(const AnswerInParts&) = delete;
  ~AnswerInParts();

 private:
  AnswerSink* before_;
};

/// Hears of what the calling thread runs on any connection.
class BatchWatcher {
 public:
  BatchWatcher() = default;
  BatchWatcher(const BatchWatcher&) = delete;
  BatchWatcher& operator=(const BatchWatcher&) = delete;
  virtual ~BatchWatcher() = default;

  /// A batch, or a procedure's name, just before it goes to the database.
  virtual void Statement(std::string_view /*text*/) {}
  /// A statement of it inserted, changed or removed rows of a table; "" for the table where the driver does not know.
  /// Temporary tables do not count.
  virtual void Changed(std::string_view /*table*/, std::int64_t /*rows*/) {}
  /// The batch took so long, whatever became of it.
  virtual void Ran(std::chrono::nanoseconds /*time*/) {}
};

/// While it lives, the watcher hears of the batches of the thread that made it; for nullptr nobody does.
class WatchedBatches {
 public:
  explicit WatchedBatches(BatchWatcher* watcher) noexcept;
  WatchedBatches(const WatchedBatches&) = delete;
  WatchedBatches& operator=(const WatchedBatches&) = delete;
  ~WatchedBatches();

 private:
  BatchWatcher* before_;
};

/// The watcher of the calling thread or nullptr, for drivers to tell what changed.
BatchWatcher* WatcherOfThread() noexcept;

/// An open connection. One thread at a time, but for Cancel(). All functions raise `Error` with the numbers of
/// `error_number`, the server's own text as description and the native number beside it.
///
/// A connection that was lost says so in the call that meets it and answers `usable()` with false from then on.
class Connection {
 public:
  Connection() = default;
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  virtual ~Connection() = default;

  /// Runs a batch to its end and answers its first row-returning result, or nullptr when it has none. An error in any
  /// statement of the batch is raised; what ran before it stays unless a transaction takes it back.
  RecordsetPtr Execute(SqlCommand command);
  /// The same for the batch whose result the operation answers as it is: its rows may go to the thread's AnswerSink in
  /// parts, and what is answered here has the last of them.
  RecordsetPtr ExecuteAnswer(SqlCommand command);
  /// As Execute() for a batch that reads: raises 3704 when nothing in it answers rows.
  RecordsetPtr Query(const SqlCommand& command);
  /// The same, handing over every row-returning result in order, each as soon as it is there: those before a failing
  /// statement come, then the error is raised.
  void ExecuteAll(SqlCommand command, const ResultSink& sink);
  /// The same, with row counts and messages.
  void ExecuteAll(SqlCommand command, BatchSink& sink);
  /// The same for a procedure; answers what it returned.
  std::int32_t Call(std::string_view procedure, std::span<SqlParameter> parameters, BatchSink& sink);

  /// The container's transaction; they do not nest. Raise when none, or already one, is open.
  virtual void BeginTransaction() = 0;
  virtual void CommitTransaction() = 0;
  virtual void RollbackTransaction() = 0;

  /// Makes what is done from now on a part of a transaction that the system's coordinator ends, on Windows an
  /// ITransaction. Raises 0x80004001 when the database cannot take part in one.
  virtual void Join(void* transaction);

  /// Makes the connection as good as new for its next user: no open transaction, no temporary table, default settings.
  /// Answers false when that is not possible; the connection is then thrown away.
  virtual bool Reset() noexcept = 0;
  [[nodiscard]] virtual bool usable() const noexcept = 0;
  /// Ends the batch that another thread is running on this connection: that call raises `error_number::kCancelled`.
  /// May be called from any thread, or from a signal handler.
  virtual void Cancel() noexcept = 0;

 protected:
  /// Output values and the status are there when it returns, those of a command that fails may be.
  /// @param first_only the caller wants the first row-returning result; later ones are run but need not be kept.
  virtual void Run(SqlCommand& command, bool first_only, BatchSink& sink) = 0;

 private:
  friend class Host;
  void RunObserved(SqlCommand& command, bool first_only, BatchSink& sink);
  const BatchObservers* observers_ = nullptr;
};

/// From now on `slot` holds the connection that runs a batch on the calling thread, else nullptr. A signal handler may
/// take it out, cancel it and put it back: the batch does not end before. The slot must outlive the thread's batches.
void ShowRunningConnection(std::atomic<Connection*>* slot);

}  // namespace tessarlorn
