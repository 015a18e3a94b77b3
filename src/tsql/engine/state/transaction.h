// Transactions: the write lock, commit and rollback, save points, and the identity values given meanwhile.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "tsql/engine/state/results.h"
#include "tsql/engine/state/sequence_numbers.h"
#include "tsql/engine/state/session_database.h"
#include "tsql/engine/state/session_options.h"
#include "tsql/syntax/statement.h"

namespace tessarlorn::tsql {

class Transaction {
  struct GivenIdentity {
    std::int64_t farthest = 0;
    bool counts_down = false;
  };

 public:
  /// While it lives a statement reads one commit, definitions and rows. The lock of a writer does so already.
  class Snapshot {
   public:
    Snapshot(const Transaction& transaction, Catalog& catalog) : catalog_(transaction.writing_ ? nullptr : &catalog) {
      if (catalog_ != nullptr) catalog_->Hold();
    }
    Snapshot(const Snapshot&) = delete;
    Snapshot& operator=(const Snapshot&) = delete;
    ~Snapshot() {
      if (catalog_ != nullptr) catalog_->LetGo();
    }

   private:
    Catalog* catalog_;
  };

  /// While it lives a change runs on trial: the identity values and numbers that it takes are given again.
  class Trial {
   public:
    explicit Trial(Transaction& transaction)
        : transaction_(transaction),
          numbers_(transaction.numbers_),
          identity_(transaction.identity_),
          scope_identity_(transaction.scope_identity),
          given_(transaction.given_identities_) {
      transaction_.on_trial_ = true;
    }
    Trial(const Trial&) = delete;
    Trial& operator=(const Trial&) = delete;
    ~Trial() {
      transaction_.on_trial_ = false;
      transaction_.identity_ = identity_;
      transaction_.scope_identity = scope_identity_;
      transaction_.given_identities_.swap(given_);
    }

   private:
    Transaction& transaction_;
    SequenceNumbers::Trial numbers_;
    std::optional<std::int64_t> identity_;
    std::optional<std::int64_t> scope_identity_;
    std::unordered_map<std::string, GivenIdentity> given_;
  };

  /// @param longest_wait how long a statement waits for a lock, unless SET LOCK_TIMEOUT says less
  Transaction(SessionDatabase& database, const SessionOptions& options, Results& results,
              std::chrono::milliseconds longest_wait);
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  ~Transaction();

  [[nodiscard]] int depth() const noexcept { return depth_; }  // @@TRANCOUNT
  /// SQLite holds the write lock.
  [[nodiscard]] bool writing() const noexcept { return writing_; }
  /// It can only be rolled back.
  [[nodiscard]] bool doomed() const noexcept { return doomed_; }
  void Doom() noexcept { doomed_ = true; }

  // The statements.
  void Begin(const BeginTransactionStatement& statement);
  void Commit();
  void Rollback(const RollbackStatement& statement);
  void Save(const SaveTransactionStatement& statement);
  /// Under SET IMPLICIT_TRANSACTIONS: begins one where the statement needs it.
  void BeginFor(const Statement& statement);

  /// A change that fires triggers is a transaction by itself where none is open. @return whether it is
  bool BeginStatement();
  void EndStatement() noexcept { depth_ = 0; }

  // The container's.
  void BeginContainer();
  void CommitContainer();
  void RollbackContainer();

  /// Takes the write lock that the statement needs, before anything is read for it.
  void LockFor(const Statement& statement);
  void EnsureWrite();
  void CommitWrite();
  void RollbackWrite() noexcept;
  /// Notes that SQLite rolled back by itself.
  void NoteLost();
  void End(bool commit);

  /// The change that just ran gave a value of the table's identity column.
  void NoteIdentity(const std::string& table);
  [[nodiscard]] std::optional<std::int64_t> identity() const { return identity_; }  // @@IDENTITY
  void ForgetIdentity() { identity_.reset(); }
  [[nodiscard]] bool on_trial() const noexcept { return on_trial_; }
  [[nodiscard]] SequenceNumbers& numbers() { return numbers_; }
  /// Of the batch, text or procedure that runs: SCOPE_IDENTITY().
  std::optional<std::int64_t> scope_identity;

 private:
  /// For SQLite, while a lock is taken: whether to try again.
  static int WaitForLock(void* transaction, int times);
  void Open(const std::string& name);
  void RollbackToSavePoint(std::size_t position);
  /// Identity values that a rollback took back are not given again.
  void KeepIdentities() noexcept;

  SessionDatabase& database_;
  const SessionOptions& options_;
  Results& results_;
  int depth_ = 0;
  bool writing_ = false;
  bool doomed_ = false;
  bool on_trial_ = false;
  bool marked_ = false;  // the file, as one of ours
  std::string name_;     // of the outermost BEGIN TRANSACTION
  std::vector<std::string> save_points_;
  const std::chrono::milliseconds longest_wait_;
  bool taking_write_lock_ = false;
  std::chrono::steady_clock::time_point waiting_since_;
  SequenceNumbers numbers_;
  std::optional<std::int64_t> identity_;
  std::unordered_map<std::string, GivenIdentity> given_identities_;  // by table, in the open transaction
};

}  // namespace tessarlorn::tsql
