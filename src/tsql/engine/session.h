// One session with an embedded database: it runs batches, keeps variables, temporary tables and the transaction.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <sqlite3.h>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/connection.h"
#include "platform/recordset.h"
#include "tsql/engine/call_arguments.h"
#include "tsql/engine/plan.h"
#include "tsql/functions/runtime.h"
#include "tsql/storage/catalog.h"
#include "tsql/storage/sqlite_handle.h"
#include "tsql/translate/translator.h"

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
  /// @param memory_limit bytes that a batch may take, see MemoryBudget
  Session(DatabaseHandle database, std::chrono::milliseconds lock_timeout,
          std::size_t memory_limit = MemoryBudget::kDefaultLimit);
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  ~Session();

  /// Hands over every row-returning result in order, or only the first. The parameters of a batch are its variables;
  /// what it leaves in outputs comes back in them.
  void Run(SqlCommand& command, bool first_only, BatchSink& sink);

  void BeginContainerTransaction();
  void CommitContainerTransaction();
  void RollbackContainerTransaction();

  /// As good as new: see Connection::Reset. Raises what SQLite reports.
  void Reset();
  void Cancel() noexcept;
  [[nodiscard]] bool in_transaction() const noexcept { return depth_ > 0; }

 private:
  enum class Flow : std::uint8_t { kNormal, kBreak, kContinue, kReturn };

  class Nested;
  class WrittenArguments;
  class TypedArguments;

  /// A parameter of sp_executesql.
  struct Declared {
    std::string name;
    SqlType type;
  };

  /// What SET changes; a procedure or text that was called leaves it as it was.
  struct SetOptions {
    bool xact_abort = false;
    bool no_count = false;
    bool implicit_transactions = false;
    bool format_only = false;
    std::optional<std::chrono::milliseconds> lock_timeout;
  };

  /// While it lives a statement reads one commit, definitions and rows. The lock of a writer does so already.
  class Snapshot {
   public:
    explicit Snapshot(Session& session) : catalog_(session.writing_ ? nullptr : &session.catalog_) {
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

  /// What the statements of one batch or procedure body share.
  struct Scope {
    Frame* frame = nullptr;
    Plan* plan = nullptr;
    std::span<const Token> literals;
    std::span<const Token> lists;
    const std::vector<Token>* list_items = nullptr;
    int return_value = 0;
  };

  /// A result on its way into a table.
  struct TakenRows {
    std::vector<ResultColumn> columns;
    std::vector<std::vector<Datum>> rows;
  };

  /// Where row-returning results go: to the caller, or to the INSERT of INSERT … EXEC.
  struct Results {
    BatchSink& sink;
    bool first_only = false;
    bool any = false;
    std::vector<TakenRows>* taken = nullptr;  // of INSERT … EXEC
    [[nodiscard]] bool wants_more() const { return !first_only || !any; }
  };

  // session.cpp
  void RegisterSessionFunctions();
  static constexpr std::size_t kMostNames = 100'000;
  void ForgetNames();
  void RunBatch(std::string_view text, Frame& frame);
  void RunCommand(SqlCommand& command);
  void Declare(const Statement& statement, Frame& frame);
  void Precompile(const PlanCache::Batch& batch, Frame& frame);
  void CompileTree(const Statement& statement, Scope& scope);
  void Revalidate(Plan& plan, Frame& frame);
  template <typename Make>
  Compiled& CompiledFor(const void* node, Scope& scope, Make make);
  /// Runs what parses or translates: its errors end the batch or procedure at hand, TRY or not.
  template <typename Body>
  void Understanding(Body body);
  Translator MakeTranslator(Scope& scope);
  Compiled& CompiledStatement(const Statement& statement, Scope& scope);
  Compiled& CompiledCondition(const Statement& statement, Scope& scope);
  Compiled& CompiledValue(const Expression& expression, const SqlType* type, Scope& scope);

  // execute.cpp
  Flow Execute(const Statement& statement, Scope& scope);
  Flow ExecuteGuarded(const Statement& statement, Scope& scope);
  Flow ExecuteBody(const std::vector<StatementPtr>& body, Scope& scope);
  Flow ExecuteTryCatch(const Statement& statement, Scope& scope);
  Flow ExecuteWhile(const Statement& statement, Scope& scope);
  void ExecuteSelect(const Statement& statement, Scope& scope);
  /// SET FMTONLY ON: the columns of a query, without a row.
  void DescribeSelect(const Statement& statement, Scope& scope);
  void ExecuteSelectInto(const Statement& statement, Scope& scope);
  void ExecuteChange(const Statement& statement, Scope& scope);
  /// Whether it answered rows, by OUTPUT.
  bool ExecuteDataChange(const Statement& statement, Scope& scope);
  void ExecuteInsertExecute(const Statement& statement, Scope& scope);
  /// UPDATE by way of other rows, for when it failed because keys pass through the place of other rows' keys.
  void MoveRows(const Statement& statement, Scope& scope);
  void InsertTaken(const Statement& statement, const TakenRows& taken, Scope& scope);
  void TellRowCount();
  void ExecuteSet(const Statement& statement, Scope& scope);
  void ExecuteSetOption(const Statement& statement, Scope& scope);
  void ExecuteProcedure(const Statement& statement, Scope& scope);
  /// sp_executesql, a procedure of the server's or one of the database's. Raises 2812 for a name that is none.
  void Call(const ObjectName& name, CallArguments& arguments);
  void CallProcedure(const CatalogObject& procedure, CallArguments& arguments);
  std::shared_ptr<Plan> PlanOf(const CatalogObject& procedure);
  /// Puts the arguments into the frame; answers the parameter of each.
  static std::vector<std::size_t> TakeArguments(const CatalogObject& procedure,
                                                const std::vector<Parameter>& parameters, CallArguments& arguments,
                                                Frame& frame);
  const std::vector<Declared>& DeclaredBy(const std::string& declarations);
  void ExecuteSql(CallArguments& arguments);
  void RunText(std::string_view text, Frame& frame);
  void ExecuteTransaction(const Statement& statement);
  void RaiseUser(const Statement& statement, Scope& scope);
  /// Hands the sink a message.
  void Say(const Statement& statement, const std::string& text, std::int32_t number, int severity = 0, int state = 1);
  bool Holds(const Statement& statement, Scope& scope);
  Datum Evaluate(const Expression& expression, const SqlType& type, Scope& scope);
  Datum EvaluateNatural(const Expression& expression, SqlType& type, Scope& scope);
  Datum FirstValue(Compiled& compiled, Scope& scope);
  void CheckCancelled();
  /// For SQLite, while a lock is taken: whether to try again.
  static int WaitForLock(void* session, int times);
  void BeginImplicitTransaction(const Statement& statement);

  // bind.cpp
  sqlite3_stmt* Bind(Compiled& compiled, Scope& scope);
  void BindParameter(sqlite3_stmt* statement, int index, const BoundParameter& parameter, Scope& scope);
  Datum ParameterValue(const BoundParameter& parameter, Scope& scope);
  Datum LiteralValue(const Token& token, SqlType& type);
  std::shared_ptr<const std::vector<Datum>> ListValues(const BoundParameter& parameter, Scope& scope);
  Datum SystemValue(const std::string& name, SqlType& type);
  /// Hands the rows over when `keep`.
  void SetVariable(Variable& variable, const Datum& value, const SqlType& type);
  void ReadRows(Compiled& compiled, sqlite3_stmt* statement, bool keep);
  void TakeRows(Compiled& compiled, sqlite3_stmt* statement);
  void AssignRows(Compiled& compiled, sqlite3_stmt* statement, Scope& scope);
  void RunChange(Compiled& compiled, sqlite3_stmt* statement);
  /// SQLITE_ROW or SQLITE_DONE; raises everything else.
  int Step(sqlite3_stmt* statement, std::string_view verb);

  // definition.cpp
  void CreateTable(const Statement& statement, Scope& scope);
  void CreateTable(CatalogObject table, const std::vector<std::string>& constraints,
                   const std::vector<std::string>& primary_key);
  void AlterTable(const Statement& statement, Scope& scope);
  void DropObjects(const Statement& statement);
  void DropTable(const CatalogObject& table);
  void CreateIndex(const Statement& statement, Scope& scope);
  void RequireUnreferenced(const CatalogObject& table, std::int32_t number, std::string_view message);
  void DropIndex(const Statement& statement);
  void CreateView(const Statement& statement, Scope& scope);
  void CreateProcedure(const Statement& statement);
  /// All that `body` does to SQLite and the catalog, or nothing.
  void Atomically(const std::function<void()>& body);
  void DropTemporaryTables(const std::vector<std::string>& but = {});

  // transaction.cpp
  /// Takes the write lock that the statement needs, before anything is read for it.
  void LockFor(const Statement& statement);
  void EnsureWrite();
  void CommitWrite();
  void RollbackWrite() noexcept;
  void NoteLostTransaction();
  void EndTransaction(bool commit);
  void NoteIdentity(const std::string& table);
  /// Identity values that a rollback took back are not given again.
  void KeepIdentities() noexcept;
  void Tell(TransactionEvent event);

  Runtime runtime_;
  DatabaseHandle database_;
  NameTable names_;
  Catalog catalog_;
  PlanCache plans_;
  std::unordered_map<std::string, std::shared_ptr<Plan>> procedures_;  // by signature
  std::unordered_map<std::string, std::vector<Declared>> declared_;    // by the text of the declarations
  std::vector<std::unique_ptr<PlanCache::Batch>> spare_batches_;

  Results* results_ = nullptr;
  int depth_ = 0;         // @@TRANCOUNT
  bool writing_ = false;  // SQLite holds the write lock
  std::vector<std::string> save_points_;
  int try_depth_ = 0;
  int call_depth_ = 0;
  std::string_view procedure_;  // whose body runs, "" in a batch
  const std::chrono::milliseconds longest_wait_;
  bool taking_write_lock_ = false;
  bool marked_ = false;  // the file, as one of ours
  std::chrono::steady_clock::time_point waiting_since_;
  SetOptions options_;
  bool doomed_ = false;  // the transaction can only be rolled back
  std::string identity_insert_;
  std::int64_t row_count_ = 0;
  std::int32_t last_error_ = 0;
  std::optional<std::int64_t> identity_;
  std::optional<std::int64_t> scope_identity_;                      // of the batch, text or procedure that runs
  std::unordered_map<std::string, std::int64_t> given_identities_;  // by table, in the open transaction
  std::optional<SqlError> first_error_;
  std::vector<SqlError> caught_;  // the errors of the CATCH blocks that are running, innermost last
};

template <typename Make>
Compiled& Session::CompiledFor(const void* node, Scope& scope, Make make) {
  if (scope.plan->checked_generation != catalog_.generation()) Revalidate(*scope.plan, *scope.frame);
  const auto found = scope.plan->compiled.find(node);
  if (found != scope.plan->compiled.end()) return *found->second;
  std::unique_ptr<Compiled> compiled;
  Understanding([&] {
    Translator translator = MakeTranslator(scope);
    compiled = std::make_unique<Compiled>(make(translator));
  });
  return *(scope.plan->compiled[node] = std::move(compiled));
}

template <typename Body>
void Session::Understanding(Body body) {
  try {
    body();
  } catch (SqlError& error) {
    error.set_misunderstood_at(call_depth_);
    throw;
  }
}

}  // namespace tessarlorn::tsql
