#include "tsql/engine/state/transaction.h"

#include <algorithm>
#include <thread>
#include <utility>

#include "platform/server_messages.h"
#include "platform/text/text.h"
#include "tsql/engine/state/effect.h"
#include "tsql/engine/state/table_variables.h"
#include "tsql/storage/database_file.h"

namespace tessarlorn::tsql {
namespace {

[[noreturn]] void Raise(const server_message::Known& message) { throw SqlError(message.number, message.text); }

}  // namespace

Transaction::Transaction(SessionDatabase& database, const SessionOptions& options, Results& results,
                         std::chrono::milliseconds longest_wait)
    : database_(database), options_(options), results_(results), longest_wait_(longest_wait), numbers_(database) {
  sqlite3_busy_handler(database_.handle(), WaitForLock, this);
  database.runtime().next_number = [this](std::string_view sequence, std::int64_t place) {
    if (!writing_) RaiseUnsupported("NEXT VALUE FOR as a default of a temporary table");
    return numbers_.Next(sequence, place);
  };
  database.runtime().last_number = [this](std::int64_t sequence) {
    const std::optional<std::int64_t> last = numbers_.Last(sequence);
    return last ? Datum(*last) : Datum();
  };
}

Transaction::~Transaction() { sqlite3_busy_handler(database_.handle(), nullptr, nullptr); }

int Transaction::WaitForLock(void* transaction, int times) {
  Transaction& self = *static_cast<Transaction*>(transaction);
  Runtime& runtime = self.database_.runtime();
  const auto now = std::chrono::steady_clock::now();
  if (times == 0) self.waiting_since_ = now;
  auto longest = std::min(self.longest_wait_, self.options_.lock_timeout().value_or(self.longest_wait_));
  if (!self.taking_write_lock_) longest = std::max<std::chrono::milliseconds>(longest, kLongestReadWait);
  if (now - self.waiting_since_ >= longest) return 0;
  if (runtime.cancelled.load(std::memory_order_relaxed)) {
    runtime.error = Cancelled();
    return 0;
  }
  constexpr int kLongestPause = 25;
  std::this_thread::sleep_for(std::chrono::milliseconds(std::min(times + 1, kLongestPause)));
  return 1;
}

void Transaction::LockFor(const Statement& statement) {
  numbers_.BeginStatement();
  if (statement.takes_numbers) EnsureWrite();
  if ((writing_ && !doomed_) || EffectOf(statement) == Effect::kNone || IsOnTableVariable(statement)) return;
  // A transaction takes back what it did to temporary tables, too.
  if (depth_ > 0 || !IsOnTemporaryTables(statement)) EnsureWrite();
}

void Transaction::EnsureWrite() {
  if (doomed_) {
    throw SqlError(3930,
                   "The current transaction cannot be committed and cannot support operations that write to the log "
                   "file. Roll back the transaction.");
  }
  if (writing_) return;
  taking_write_lock_ = true;
  try {
    database_.Run("BEGIN IMMEDIATE");
  } catch (...) {
    taking_write_lock_ = false;
    throw;
  }
  taking_write_lock_ = false;
  writing_ = true;
  // Whoever had the lock may have defined something else.
  database_.catalog().Refresh();
}

void Transaction::CommitWrite() {
  if (!writing_) return;
  try {
    if (!marked_) MarkAsOurs(database_.handle());
    numbers_.Note();
    database_.Run("COMMIT");
    marked_ = true;
  } catch (const SqlError&) {
    RollbackWrite();
    throw;
  }
  writing_ = false;
  save_points_.clear();
  given_identities_.clear();
  numbers_.Forget();
}

void Transaction::RollbackWrite() noexcept {
  if (!database_.idle()) {
    TableVariableCopies variables(database_);
    database_.RunQuietly("ROLLBACK");
    variables.PutBack();
    database_.DropLeft();
  }
  writing_ = false;
  save_points_.clear();
  database_.catalog().Invalidate();
  KeepIdentities();
  numbers_.NoteAfterRollback();
}

void Transaction::NoteIdentity(const std::string& table) {
  identity_ = scope_identity = sqlite3_last_insert_rowid(database_.handle());
  const auto [entry, first] = given_identities_.try_emplace(table);
  GivenIdentity& given = entry->second;
  if (first) {
    const CatalogObjectPtr object = database_.catalog().Find(table);
    const int column = object == nullptr ? -1 : object->identity_column();
    given = {*identity_, column >= 0 && object->columns[static_cast<std::size_t>(column)].increment < 0};
  }
  given.farthest = given.counts_down ? std::min(given.farthest, *identity_) : std::max(given.farthest, *identity_);
}

void Transaction::KeepIdentities() noexcept {
  constexpr std::string_view kKeep =
      "INSERT INTO {schema}.sqlite_sequence SELECT {name}, {last} WHERE EXISTS (SELECT 1 FROM {schema}.sqlite_schema WHERE "
      "type = 'table' AND name = {name}) AND NOT EXISTS (SELECT 1 FROM {schema}.sqlite_sequence WHERE name = {name}); "
      "UPDATE {schema}.sqlite_sequence SET seq = {last} WHERE name = {name} AND seq {before} {last}";
  for (const auto& [table, given] : given_identities_) {
    // Where that fails the values are given again, as they would be after a crash.
    const std::string numbered = ReplaceAll(ReplaceAll(kKeep, "{schema}", IsTemporaryName(table) ? "temp" : "main"),
                                            "{last}", std::to_string(given.farthest));
    const std::string compared = ReplaceAll(numbered, "{before}", given.counts_down ? ">" : "<");
    database_.RunQuietly(ReplaceAll(compared, "{name}", QuoteText(table)));
  }
  if (database_.idle()) given_identities_.clear();
}

void Transaction::NoteLost() {
  // A full disk or a failing file makes SQLite roll back by itself.
  if (!writing_ || !database_.idle()) return;
  writing_ = false;
  numbers_.Forget();
  if (std::exchange(depth_, 0) > 0) results_.TellTransaction(TransactionEvent::kRolledBack);
  save_points_.clear();
  database_.catalog().Invalidate();
}

void Transaction::End(bool commit) {
  depth_ = 0;
  doomed_ = false;
  if (commit) {
    CommitWrite();
  } else {
    RollbackWrite();
  }
}

void Transaction::BeginFor(const Statement& statement) {
  const auto* query = As<SelectStatement>(statement);
  const Select* select = query == nullptr ? nullptr : query->query->select();
  const bool reads = query != nullptr && (select == nullptr || !select->from.empty());
  if (!reads && EffectOf(statement) == Effect::kNone) return;
  CommitWrite();
  Open("");
  results_.TellTransaction(TransactionEvent::kBegun);
}

void Transaction::Open(const std::string& name) {
  depth_ = 1;
  name_ = name;
}

bool Transaction::BeginStatement() {
  if (depth_ > 0) return false;
  // A rollback takes no earlier statement of the batch with it.
  CommitWrite();
  EnsureWrite();
  Open("");
  return true;
}

void Transaction::BeginContainer() {
  if (depth_ > 0) Raise(server_message::kTransactionOpen);
  Open("");
}

void Transaction::CommitContainer() {
  if (depth_ == 0) Raise(server_message::kTransactionEnded);
  if (doomed_) EnsureWrite();
  End(true);
}

void Transaction::RollbackContainer() {
  if (depth_ > 0 || writing_) End(false);
}

void Transaction::Begin(const BeginTransactionStatement& statement) {
  if (depth_ > 0) {
    ++depth_;
    return;
  }
  // What the batch changed so far is its own, not the transaction's.
  CommitWrite();
  Open(statement.name);
  results_.TellTransaction(TransactionEvent::kBegun);
}

void Transaction::Commit() {
  if (depth_ == 0) Raise(server_message::kNoTransaction);
  if (doomed_) EnsureWrite();
  if (--depth_ > 0) return;
  try {
    CommitWrite();
  } catch (const SqlError&) {
    results_.TellTransaction(TransactionEvent::kRolledBack);
    throw;
  }
  results_.TellTransaction(TransactionEvent::kCommitted);
}

void Transaction::Save(const SaveTransactionStatement& statement) {
  if (depth_ == 0) throw SqlError(628, "Cannot issue SAVE TRANSACTION when there is no active transaction.");
  EnsureWrite();
  database_.Run("SAVEPOINT " + QuoteName("save " + LowerCase(statement.name)));
  save_points_.push_back(LowerCase(statement.name));
}

void Transaction::RollbackToSavePoint(std::size_t position) {
  TableVariableCopies variables(database_);
  database_.Run("ROLLBACK TO " + QuoteName("save " + save_points_[position]));
  // Those behind it are gone.
  save_points_.resize(position + 1);
  variables.PutBack();
  database_.DropLeft();
  database_.catalog().Invalidate();
  database_.catalog().Refresh();
  numbers_.RollbackToSavePoint();
  KeepIdentities();
}

void Transaction::Rollback(const RollbackStatement& statement) {
  if (depth_ == 0) throw SqlError(3903, "The ROLLBACK TRANSACTION request has no corresponding BEGIN TRANSACTION.");
  if (!statement.name.empty()) {
    const auto found = std::find(save_points_.rbegin(), save_points_.rend(), LowerCase(statement.name));
    if (found != save_points_.rend()) {
      RollbackToSavePoint(static_cast<std::size_t>(save_points_.rend() - found) - 1);
      return;
    }
    if (statement.name != name_) {
      throw SqlError(6401,
                     "Cannot roll back " + statement.name + ". No transaction or savepoint of that name was found.");
    }
  }
  End(false);
  results_.TellTransaction(TransactionEvent::kRolledBack);
  database_.catalog().Refresh();
}

}  // namespace tessarlorn::tsql
