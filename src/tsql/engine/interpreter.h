// Runs statements one after the other: control flow, variables, errors. Each kind of statement is done by its own part.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "tsql/engine/cursors.h"
#include "tsql/engine/definitions/definitions.h"
#include "tsql/engine/messages.h"
#include "tsql/engine/plans/evaluate.h"
#include "tsql/engine/procedures.h"
#include "tsql/engine/row_statements.h"
#include "tsql/engine/state/error_state.h"
#include "tsql/engine/triggers.h"

namespace tessarlorn::tsql {

class Interpreter {
 public:
  Interpreter(SessionDatabase& database, SessionOptions& options, Results& results, ErrorState& errors,
              Transaction& transaction, PlanStore& plans, Binder& binder, CursorState& cursors, TriggerState& triggers);
  Interpreter(const Interpreter&) = delete;
  Interpreter& operator=(const Interpreter&) = delete;

  /// Runs a batch whose variables stand in the frame: those that are declared there already, and its own.
  void RunBatch(std::string_view text, Frame& frame);
  /// Calls a procedure outside of any batch.
  void Call(const ObjectName& procedure, CallArguments& arguments) { procedures_.Call(procedure, arguments); }
  void DropTemporaryTables() { definitions_.DropTemporaryTables(); }

 private:
  enum class Flow : std::uint8_t { kNormal, kBreak, kContinue, kReturn };
  class Runner;

  /// Runs a text among the table variables and cursors of the batch or procedure body that is running.
  void RunText(std::string_view text, Frame& frame);
  /// Runs the body of a procedure, whose variables stand in the activation's frame.
  void RunBody(const std::vector<StatementPtr>& body, Activation& activation);
  Flow Body(const std::vector<StatementPtr>& body, Activation& activation);
  /// Runs a statement; an error that ends no more than it is told here.
  Flow Guarded(const Statement& statement, Activation& activation);
  Flow Execute(const Statement& statement, Activation& activation);

  // Control flow and variables; the other statements are done by the parts below.
  Flow If(const IfStatement& branch, Activation& activation);
  Flow While(const WhileStatement& loop, Activation& activation);
  Flow Return(const ReturnStatement& statement, Activation& activation);
  Flow Try(const TryCatchStatement& attempt, Activation& activation);
  Flow WaitFor(const WaitForStatement& wait, Activation& activation);
  Flow Declare(const DeclareStatement& declare, Activation& activation);
  Flow Set(const SetStatement& set, Activation& activation);
  void InsertExecuted(const InsertStatement& insert, Activation& activation);
  /// The rows of a table variable as `ts_rows` takes them.
  Datum PackedRowsOf(const std::string& table);
  /// The end of a statement that sets @@ERROR back.
  Flow Done();

  SessionDatabase& database_;
  SessionOptions& options_;
  Results& results_;
  ErrorState& errors_;
  Transaction& transaction_;
  PlanStore& plans_;
  Evaluator evaluator_;
  Definitions definitions_;
  Triggers triggers_;
  RowStatements rows_;
  Messages messages_;
  Procedures procedures_;
  Cursors cursors_;
};

}  // namespace tessarlorn::tsql
