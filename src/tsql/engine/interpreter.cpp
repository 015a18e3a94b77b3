#include "tsql/engine/interpreter.h"

#include <chrono>
#include <thread>
#include <utility>

#include "platform/server_messages.h"
#include "tsql/engine/state/effect.h"
#include "tsql/engine/state/table_variables.h"

namespace tessarlorn::tsql {
namespace {

/// While it lives, the variables that row functions read and set are those of the frame.
class FrameInUse {
 public:
  FrameInUse(Runtime& runtime, Frame& frame) : runtime_(runtime), outer_(std::exchange(runtime.frame, &frame)) {}
  FrameInUse(const FrameInUse&) = delete;
  FrameInUse& operator=(const FrameInUse&) = delete;
  ~FrameInUse() { runtime_.frame = outer_; }

 private:
  Runtime& runtime_;
  Frame* outer_;
};

/// SET NOCOUNT ON and its like.
bool IsOption(const Statement& statement) {
  return As<SetSwitchStatement>(statement) != nullptr || As<SetValueStatement>(statement) != nullptr ||
         As<SetIdentityInsertStatement>(statement) != nullptr || As<SetIsolationStatement>(statement) != nullptr;
}

}  // namespace

Interpreter::Interpreter(SessionDatabase& database, SessionOptions& options, Results& results, ErrorState& errors,
                         Transaction& transaction, PlanStore& plans, Binder& binder, CursorState& cursors,
                         TriggerState& triggers)
    : database_(database),
      options_(options),
      results_(results),
      errors_(errors),
      transaction_(transaction),
      plans_(plans),
      evaluator_(database, transaction, plans, binder),
      definitions_(database, plans, evaluator_),
      triggers_(database, results, transaction, triggers,
                [this](const CatalogObject& trigger) { procedures_.Fire(trigger); }),
      rows_(database, options, results, transaction, plans, binder, definitions_, triggers_),
      messages_(results, errors, evaluator_),
      procedures_(
          database, options, results, errors, transaction, plans, evaluator_, definitions_,
          {[this](std::string_view text, Frame& frame) { RunBatch(text, frame); },
           [this](const std::vector<StatementPtr>& body, Activation& activation) { RunBody(body, activation); }}),
      cursors_(database, results, evaluator_, cursors,
               [this](std::string_view query, Frame& frame) { RunText(query, frame); }) {}

void Interpreter::RunBatch(std::string_view text, Frame& frame) {
  const TableVariableScope variables(database_);
  const CursorScope cursors(cursors_);
  RunText(text, frame);
}

void Interpreter::RunText(std::string_view text, Frame& frame) {
  PlanStore::OpenBatch batch(plans_);
  const FrameInUse in_use(database_.runtime(), frame);
  database_.catalog().Refresh();
  plans_.Open(text, batch, frame);
  for (const BatchStatement& entry : batch.statements()) {
    database_.runtime().CheckCancelled();
    plans_.Revalidate(*entry.plan, frame);
    Activation activation = batch.ActivationOf(entry, frame);
    if (entry.plan->writes) transaction_.EnsureWrite();
    if (entry.plan->declares) definitions_.MakeVariablesWithin(*entry.plan->statement, activation);
    if (Guarded(*entry.plan->statement, activation) == Flow::kReturn) break;
  }
}

void Interpreter::RunBody(const std::vector<StatementPtr>& body, Activation& activation) {
  const FrameInUse in_use(database_.runtime(), *activation.frame);
  const TableVariableScope variables(database_);
  const CursorScope cursors(cursors_);
  for (const StatementPtr& statement : body) definitions_.MakeVariablesWithin(*statement, activation);
  Body(body, activation);
}

Interpreter::Flow Interpreter::Body(const std::vector<StatementPtr>& body, Activation& activation) {
  for (const StatementPtr& statement : body) {
    const Flow flow = Guarded(*statement, activation);
    if (flow != Flow::kNormal) return flow;
  }
  return Flow::kNormal;
}

Interpreter::Flow Interpreter::Guarded(const Statement& statement, Activation& activation) {
  try {
    return Execute(statement, activation);
  } catch (SqlError& error) {
    error.set_line(statement.line, errors_.procedure);
    transaction_.NoteLost();
    errors_.last_number = error.number();
    results_.set_row_count(0);
    const bool aborts = options_.xact_abort() && As<RaiseErrorStatement>(statement) == nullptr;
    if (aborts) error.set_takes_transaction_back();
    const bool called = error.misunderstood_at() > errors_.call_depth;  // only what was called is at its end
    if (errors_.try_depth > 0 || aborts || !(error.ends_statement_only() || called)) throw;
    if (results_.StatementFailed(error)) {
      if (EffectOf(statement) == Effect::kChangesRows) {
        constexpr server_message::Known kSaid = server_message::kStatementTerminated;
        messages_.Say(statement.line, kSaid.text, kSaid.number);
      }
      return Flow::kNormal;
    }
    if (!errors_.first) errors_.first = error;
    return Flow::kNormal;
  }
}

Interpreter::Flow Interpreter::Done() {
  errors_.last_number = 0;
  return Flow::kNormal;
}

/// One function a kind of statement.
class Interpreter::Runner {
 public:
  Runner(Interpreter& of, const Statement& statement, Activation& activation)
      : of_(of), statement_(statement), line_(statement.line), activation_(activation) {}

  // Rows
  Flow operator()(const SelectStatement& /*node*/) const {
    of_.rows_.Select(statement_, activation_);
    return of_.Done();
  }
  Flow operator()(const InsertStatement& node) const {
    if (node.execute() != nullptr) {
      of_.InsertExecuted(node, activation_);
    } else {
      of_.rows_.Change(statement_, activation_);
    }
    return of_.Done();
  }
  Flow operator()(const UpdateStatement& /*node*/) const { return Change(); }
  Flow operator()(const DeleteStatement& /*node*/) const { return Change(); }
  Flow operator()(const MergeStatement& /*node*/) const { return Change(); }
  Flow operator()(const TruncateStatement& node) const {
    of_.rows_.Truncate(node, activation_);
    return of_.Done();
  }

  // Variables and options
  Flow operator()(const DeclareStatement& node) const {
    of_.definitions_.MakeVariables(node, activation_);
    return of_.Declare(node, activation_);
  }
  Flow operator()(const SetStatement& node) const { return of_.Set(node, activation_); }
  Flow operator()(const SetSwitchStatement& node) const {
    of_.results_.set_row_count(0);
    of_.options_.Apply(node, line_);
    return Flow::kNormal;
  }
  Flow operator()(const SetValueStatement& node) const {
    of_.results_.set_row_count(0);
    of_.options_.Apply(node, line_, [&] { return of_.evaluator_.Value(*node.value, IntType(), activation_); });
    return Flow::kNormal;
  }
  Flow operator()(const SetIdentityInsertStatement& node) const {
    of_.results_.set_row_count(0);
    of_.options_.Apply(node, of_.database_.catalog());
    return Flow::kNormal;
  }
  Flow operator()(const SetIsolationStatement& /*node*/) const {
    // No level changes a result here.
    of_.results_.set_row_count(0);
    return Flow::kNormal;
  }

  // Cursors
  Flow operator()(const DeclareCursorStatement& node) const {
    of_.cursors_.Declare(node, activation_);
    return of_.Done();
  }
  Flow operator()(const CursorStatement& node) const {
    of_.cursors_.Execute(node);
    return of_.Done();
  }
  Flow operator()(const FetchStatement& node) const {
    of_.cursors_.Fetch(node, activation_);
    return of_.Done();
  }

  // Control flow
  Flow operator()(const IfStatement& node) const { return of_.If(node, activation_); }
  Flow operator()(const WhileStatement& node) const { return of_.While(node, activation_); }
  Flow operator()(const BlockStatement& node) const { return of_.Body(node.body, activation_); }
  Flow operator()(const BreakStatement& /*node*/) const { return Flow::kBreak; }
  Flow operator()(const ContinueStatement& /*node*/) const { return Flow::kContinue; }
  Flow operator()(const ReturnStatement& node) const { return of_.Return(node, activation_); }
  Flow operator()(const TryCatchStatement& node) const { return of_.Try(node, activation_); }
  Flow operator()(const WaitForStatement& node) const { return of_.WaitFor(node, activation_); }
  Flow operator()(const UseStatement& node) const {
    RequireThisDatabase(node.database);
    return Flow::kNormal;
  }
  Flow operator()(const EmptyStatement& /*node*/) const { return Flow::kNormal; }

  // Messages
  Flow operator()(const PrintStatement& node) const {
    of_.messages_.Print(node, line_, activation_);
    of_.results_.set_row_count(0);
    return Flow::kNormal;
  }
  Flow operator()(const RaiseErrorStatement& node) const {
    of_.messages_.RaiseError(node, line_, activation_);
    return Flow::kNormal;
  }
  [[noreturn]] Flow operator()(const ThrowStatement& node) const { of_.messages_.Throw(node, activation_); }

  // Transactions
  Flow operator()(const BeginTransactionStatement& node) const {
    of_.transaction_.Begin(node);
    return of_.Done();
  }
  Flow operator()(const CommitStatement& /*node*/) const {
    of_.transaction_.Commit();
    return of_.Done();
  }
  Flow operator()(const RollbackStatement& node) const {
    of_.transaction_.Rollback(node);
    return of_.Done();
  }
  Flow operator()(const SaveTransactionStatement& node) const {
    of_.transaction_.Save(node);
    return of_.Done();
  }

  // Calls
  Flow operator()(const CallStatement& node) const {
    of_.procedures_.Execute(node, activation_);
    return of_.Done();
  }
  Flow operator()(const ExecuteTextStatement& node) const {
    of_.procedures_.Execute(node, activation_);
    return of_.Done();
  }

  // Definitions
  Flow operator()(const CreateTableStatement& node) const {
    of_.definitions_.CreateTable(node, activation_);
    return of_.Done();
  }
  Flow operator()(const AlterTableStatement& node) const {
    of_.definitions_.AlterTable(node, activation_);
    return of_.Done();
  }
  Flow operator()(const DropStatement& node) const {
    of_.definitions_.Drop(node);
    return of_.Done();
  }
  Flow operator()(const CreateIndexStatement& node) const {
    of_.definitions_.CreateIndex(node, line_, activation_);
    return of_.Done();
  }
  Flow operator()(const DropIndexStatement& node) const {
    of_.definitions_.DropIndex(node);
    return of_.Done();
  }
  Flow operator()(const CreateViewStatement& node) const {
    of_.definitions_.CreateView(node, activation_);
    return of_.Done();
  }
  Flow operator()(const CreateProcedureStatement& node) const {
    of_.definitions_.CreateProcedure(node);
    return of_.Done();
  }
  Flow operator()(const CreateTriggerStatement& node) const {
    of_.definitions_.CreateTrigger(node, line_);
    return of_.Done();
  }
  Flow operator()(const SwitchTriggersStatement& node) const {
    of_.definitions_.SwitchTriggers(node);
    return of_.Done();
  }
  Flow operator()(const CreateFunctionStatement& node) const {
    of_.definitions_.CreateFunction(node, activation_);
    return of_.Done();
  }
  Flow operator()(const SequenceStatement& node) const {
    of_.definitions_.DefineSequence(node, of_.transaction_.numbers());
    return of_.Done();
  }
  Flow operator()(const CreateSchemaStatement& node) const {
    of_.definitions_.CreateSchema(node);
    return of_.Done();
  }
  Flow operator()(const DropSchemaStatement& node) const {
    of_.definitions_.DropSchema(node);
    return of_.Done();
  }
  Flow operator()(const TransferStatement& node) const {
    of_.definitions_.Transfer(node);
    return of_.Done();
  }

 private:
  [[nodiscard]] Flow Change() const {
    of_.rows_.Change(statement_, activation_);
    return of_.Done();
  }

  Interpreter& of_;
  const Statement& statement_;
  std::uint32_t line_;
  Activation& activation_;
};

Interpreter::Flow Interpreter::Execute(const Statement& statement, Activation& activation) {
  if (options_.format_only() && !IsOption(statement)) {
    if (As<SelectStatement>(statement) != nullptr) rows_.Describe(statement, activation);
    return Flow::kNormal;
  }
  if (options_.implicit_transactions() && transaction_.depth() == 0) transaction_.BeginFor(statement);
  transaction_.LockFor(statement);
  constexpr int kMostTables = 1000;
  for (int tables = 0;; ++tables) {
    try {
      return std::visit(Runner(*this, statement, activation), statement.node);
    } catch (const SqlError&) {
      // A function that a change calls wants a table variable: SQLite makes none while a change runs.
      if (errors_.in_function || tables == kMostTables || !definitions_.MakeWanted(activation)) throw;
    }
  }
}

Interpreter::Flow Interpreter::Declare(const DeclareStatement& declare, Activation& activation) {
  for (const VariableDeclaration& variable : declare.variables) {
    if (variable.initial == nullptr) continue;
    const SqlType type = activation.frame->Get(variable.name).type;
    Datum value = evaluator_.Value(*variable.initial, type, activation);
    activation.frame->Get(variable.name).value = std::move(value);
    results_.set_row_count(1);
  }
  return Flow::kNormal;
}

Interpreter::Flow Interpreter::Set(const SetStatement& set, Activation& activation) {
  const Assignment& assignment = set.assignment;
  const SqlType type = activation.frame->Get(assignment.variable).type;
  Datum value = assignment.compound ? evaluator_.Compound(assignment, type, activation)
                                    : evaluator_.Value(*assignment.value, type, activation);
  activation.frame->Get(assignment.variable).value = std::move(value);
  results_.set_row_count(1);
  return Flow::kNormal;
}

Interpreter::Flow Interpreter::If(const IfStatement& branch, Activation& activation) {
  if (evaluator_.Holds(*branch.condition, activation)) return Guarded(*branch.then, activation);
  return branch.otherwise == nullptr ? Flow::kNormal : Guarded(*branch.otherwise, activation);
}

Interpreter::Flow Interpreter::While(const WhileStatement& loop, Activation& activation) {
  while (evaluator_.Holds(*loop.condition, activation)) {
    database_.runtime().CheckCancelled();
    const Flow flow = Guarded(*loop.body, activation);
    if (flow == Flow::kBreak) break;
    if (flow == Flow::kReturn) return flow;
  }
  return Flow::kNormal;
}

Interpreter::Flow Interpreter::Return(const ReturnStatement& statement, Activation& activation) {
  if (!activation.returned_table.empty()) {
    activation.returned = PackedRowsOf(activation.returned_table);
  } else if (activation.returns != nullptr) {
    activation.returned = evaluator_.Value(*statement.value, *activation.returns, activation);
  } else if (statement.value != nullptr) {
    activation.return_value = static_cast<int>(evaluator_.Integer(*statement.value, activation).value_or(0));
  }
  return Flow::kReturn;
}

Datum Interpreter::PackedRowsOf(const std::string& table) {
  const CatalogObjectPtr object = database_.catalog().Get(table);
  std::string columns;
  for (const Column& column : object->columns) columns += (columns.empty() ? "" : ", ") + QuoteName(column.name);
  SqliteStatement rows = database_.Prepare("SELECT ts_pack(" + columns + ") FROM (SELECT * FROM " + TableSql(*object) +
                                           " ORDER BY _rowid_)");
  return rows.Step("SELECT") ? rows.Value(0) : Datum();
}

Interpreter::Flow Interpreter::Try(const TryCatchStatement& attempt, Activation& activation) {
  const int depth = errors_.try_depth;
  try {
    ++errors_.try_depth;
    const Flow flow = Body(attempt.body, activation);
    errors_.try_depth = depth;
    return flow;
  } catch (const SqlError& error) {
    errors_.try_depth = depth;
    constexpr std::int32_t kCancelledNumber = 3617;
    if (error.number() == kCancelledNumber || error.severity() >= 20) throw;
    if (error.misunderstood_at() == errors_.call_depth) throw;
    // An error that would have ended the batch leaves a transaction that can only be rolled back.
    if (transaction_.depth() > 0 && error.ends_transaction()) transaction_.Doom();
    errors_.caught.push_back(error);
  }
  struct Leave {
    std::vector<SqlError>& caught;
    ~Leave() { caught.pop_back(); }
  } leave{errors_.caught};
  return Body(attempt.handler, activation);
}

Interpreter::Flow Interpreter::WaitFor(const WaitForStatement& wait, Activation& activation) {
  const Datum value = evaluator_.Value(*wait.delay, SqlType{FieldType::kTime, 0, 0, 3, false}, activation);
  const auto* delay = std::get_if<std::int64_t>(&value);
  const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(delay == nullptr ? 0 : *delay);
  while (std::chrono::steady_clock::now() < until) {
    database_.runtime().CheckCancelled();
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return Done();
}

void Interpreter::InsertExecuted(const InsertStatement& insert, Activation& activation) {
  if (results_.taking()) throw SqlError(8164, "An INSERT EXEC statement cannot be nested.");
  MemoryBudget& memory = database_.runtime().memory;
  const std::size_t used = memory.used();
  std::vector<TakenRows> taken;
  {
    const Results::Taking taking(results_, taken);
    const Statement& execute = *insert.execute();
    if (const auto* call = As<CallStatement>(execute)) {
      procedures_.Execute(*call, activation);
    } else {
      procedures_.Execute(std::get<ExecuteTextStatement>(execute.node), activation);
    }
  }
  rows_.InsertAnswers(insert, taken, activation);
  memory.ReleaseTo(used);
  results_.TellRowCount();
}

}  // namespace tessarlorn::tsql
