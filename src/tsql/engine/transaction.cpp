// Transactions: the write lock, commit and rollback, save points, and the container's transaction.
#include <algorithm>
#include <utility>

#include "platform/text.h"
#include "tsql/engine/session.h"
#include "tsql/storage/database_file.h"

namespace tessarlorn::tsql {

void Session::LockFor(const Statement& statement) {
  if ((writing_ && !doomed_) || EffectOf(statement) == Effect::kNone) return;
  // A transaction takes back what it did to temporary tables, too.
  if (depth_ > 0 || !IsOnTemporaryTables(statement)) EnsureWrite();
}

void Session::EnsureWrite() {
  if (doomed_) {
    throw SqlError(3930,
                   "The current transaction cannot be committed and cannot support operations that write to the log "
                   "file. Roll back the transaction.");
  }
  if (writing_) return;
  taking_write_lock_ = true;
  try {
    RunSql(database_.get(), "BEGIN IMMEDIATE", &runtime_);
  } catch (...) {
    taking_write_lock_ = false;
    throw;
  }
  taking_write_lock_ = false;
  writing_ = true;
  // Whoever had the lock may have defined something else.
  catalog_.Refresh();
}

void Session::CommitWrite() {
  if (!writing_) return;
  try {
    if (!marked_) MarkAsOurs(database_.get());
    RunSql(database_.get(), "COMMIT", &runtime_);
    marked_ = true;
  } catch (const SqlError&) {
    RollbackWrite();
    throw;
  }
  writing_ = false;
  save_points_.clear();
  given_identities_.clear();
}

void Session::RollbackWrite() noexcept {
  if (sqlite3_get_autocommit(database_.get()) == 0) {
    sqlite3_exec(database_.get(), "ROLLBACK", nullptr, nullptr, nullptr);
  }
  writing_ = false;
  save_points_.clear();
  catalog_.Invalidate();
  KeepIdentities();
}

void Session::NoteIdentity(const std::string& table) {
  identity_ = scope_identity_ = sqlite3_last_insert_rowid(database_.get());
  std::int64_t& most = given_identities_[table];
  most = std::max(most, *identity_);
}

void Session::KeepIdentities() noexcept {
  constexpr std::string_view kKeep =
      "INSERT INTO {schema}.sqlite_sequence SELECT {name}, 0 WHERE EXISTS (SELECT 1 FROM {schema}.sqlite_schema WHERE "
      "type = 'table' AND name = {name}) AND NOT EXISTS (SELECT 1 FROM {schema}.sqlite_sequence WHERE name = {name}); "
      "UPDATE {schema}.sqlite_sequence SET seq = {last} WHERE name = {name} AND seq < {last}";
  for (const auto& [table, last] : given_identities_) {
    // Where that fails the values are given again, as they would be after a crash.
    const std::string numbered =
        ReplaceAll(ReplaceAll(kKeep, "{schema}", table[0] == '#' ? "temp" : "main"), "{last}", std::to_string(last));
    sqlite3_exec(database_.get(), ReplaceAll(numbered, "{name}", QuoteText(table)).c_str(), nullptr, nullptr, nullptr);
  }
  if (sqlite3_get_autocommit(database_.get()) != 0) given_identities_.clear();
}

void Session::NoteLostTransaction() {
  // A full disk or a failing file makes SQLite roll back by itself.
  if (!writing_ || sqlite3_get_autocommit(database_.get()) == 0) return;
  writing_ = false;
  if (std::exchange(depth_, 0) > 0) Tell(TransactionEvent::kRolledBack);
  save_points_.clear();
  catalog_.Invalidate();
}

void Session::EndTransaction(bool commit) {
  depth_ = 0;
  doomed_ = false;
  if (commit) {
    CommitWrite();
  } else {
    RollbackWrite();
  }
}

void Session::Tell(TransactionEvent event) {
  if (results_ != nullptr) results_->sink.Transaction(event);
}

void Session::BeginImplicitTransaction(const Statement& statement) {
  const bool reads = statement.kind == Statement::Kind::kSelect &&
                     (statement.query->select == nullptr || !statement.query->select->from.empty());
  if (!reads && EffectOf(statement) == Effect::kNone) return;
  CommitWrite();
  depth_ = 1;
  Tell(TransactionEvent::kBegun);
}

void Session::BeginContainerTransaction() {
  if (depth_ > 0) throw SqlError(3988, "New transaction is not allowed because there is another transaction open.");
  depth_ = 1;
}

void Session::CommitContainerTransaction() {
  if (depth_ == 0) {
    throw SqlError(
        3902,
        "The COMMIT TRANSACTION request has no corresponding BEGIN TRANSACTION: the transaction was ended before.");
  }
  if (doomed_) EnsureWrite();
  EndTransaction(true);
}

void Session::RollbackContainerTransaction() {
  if (depth_ > 0 || writing_) EndTransaction(false);
}

void Session::ExecuteTransaction(const Statement& statement) {
  switch (statement.kind) {
    case Statement::Kind::kBeginTransaction:
      // What the batch changed so far is its own, not the transaction's.
      if (depth_ == 0) CommitWrite();
      if (++depth_ == 1) Tell(TransactionEvent::kBegun);
      return;
    case Statement::Kind::kCommit:
      if (depth_ == 0) throw SqlError(3902, "The COMMIT TRANSACTION request has no corresponding BEGIN TRANSACTION.");
      if (doomed_) EnsureWrite();
      if (--depth_ > 0) return;
      try {
        CommitWrite();
      } catch (const SqlError&) {
        Tell(TransactionEvent::kRolledBack);
        throw;
      }
      Tell(TransactionEvent::kCommitted);
      return;
    case Statement::Kind::kSaveTransaction:
      if (depth_ == 0) throw SqlError(628, "Cannot issue SAVE TRANSACTION when there is no active transaction.");
      EnsureWrite();
      RunSql(database_.get(), "SAVEPOINT " + QuoteName("save " + LowerCase(statement.text)), &runtime_);
      save_points_.push_back(LowerCase(statement.text));
      return;
    default:
      break;
  }
  if (depth_ == 0) throw SqlError(3903, "The ROLLBACK TRANSACTION request has no corresponding BEGIN TRANSACTION.");
  for (std::size_t i = save_points_.size(); !statement.text.empty() && i-- > 0;) {
    if (save_points_[i] != LowerCase(statement.text)) continue;
    RunSql(database_.get(), "ROLLBACK TO " + QuoteName("save " + save_points_[i]), &runtime_);
    catalog_.Invalidate();
    catalog_.Refresh();
    KeepIdentities();
    return;
  }
  EndTransaction(false);
  Tell(TransactionEvent::kRolledBack);
  catalog_.Refresh();
}

}  // namespace tessarlorn::tsql
