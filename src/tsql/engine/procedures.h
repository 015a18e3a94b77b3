// EXEC: stored procedures, texts, and sp_executesql; and the scalar functions of the database.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tsql/engine/call_arguments.h"
#include "tsql/engine/definitions/definitions.h"
#include "tsql/engine/plans/evaluate.h"
#include "tsql/engine/plans/plan_store.h"
#include "tsql/engine/state/error_state.h"
#include "tsql/engine/state/results.h"
#include "tsql/engine/state/session_options.h"
#include "tsql/engine/state/transaction.h"

namespace tessarlorn::tsql {

/// How the statements of what is called are run; the interpreter hands it in.
struct CallRunner {
  /// Runs a text as a batch whose variables stand in the frame.
  std::function<void(std::string_view text, Frame& frame)> run_text;
  /// Runs statements that are parsed and declared.
  std::function<void(const std::vector<StatementPtr>& body, Activation& activation)> run_body;
};

class Procedures {
 public:
  Procedures(SessionDatabase& database, SessionOptions& options, Results& results, ErrorState& errors,
             Transaction& transaction, PlanStore& plans, Evaluator& evaluator, Definitions& definitions,
             CallRunner runner);
  Procedures(const Procedures&) = delete;
  Procedures& operator=(const Procedures&) = delete;
  ~Procedures() = default;

  // The statements.
  void Execute(const CallStatement& call, const Activation& activation);
  void Execute(const ExecuteTextStatement& statement, const Activation& activation);

  /// sp_executesql, a procedure of the server's or one of the database's. Raises 2812 for a name that is none.
  /// @param schema that of the object whose text calls it, "" for dbo and for a batch
  void Call(const ObjectName& name, CallArguments& arguments, const std::string& schema = {});
  /// Runs the body of a trigger. Raises 217.
  void Fire(const CatalogObject& trigger);

 private:
  class Nested;
  class InFunction;
  class WrittenArguments;
  /// A parameter of sp_executesql.
  struct Declared {
    std::string name;
    SqlType type;
  };

  /// Raises 266 when `body` leaves another number of transactions open.
  template <typename Body>
  void Balanced(const Body& body);
  void CallProcedure(const CatalogObject& procedure, CallArguments& arguments);
  /// Declares the parameters and variables of a body, and gives the former their values; answers the parameter of each
  /// argument, but of DEFAULT.
  std::vector<std::size_t> Begin(const CatalogObject& object, const std::vector<Parameter>& parameters,
                                 CallArguments& arguments, const Activation& inner);
  // functions.cpp
  void CallFunction(const CatalogObject& function, CallArguments& arguments);
  /// The call of a statement of SQLite's, for one row.
  Datum CallFunction(std::string_view name, std::vector<Datum> values);
  /// Puts the arguments into the frame; answers the parameter of each, but of DEFAULT.
  static std::vector<std::size_t> TakeArguments(const CatalogObject& procedure,
                                                const std::vector<Parameter>& parameters, CallArguments& arguments,
                                                Frame& frame);
  /// Gives their defaults to the parameters that no argument was for. Raises 201.
  void TakeDefaults(const CatalogObject& procedure, const std::vector<Parameter>& parameters,
                    const std::vector<std::size_t>& given, const Activation& inner);
  /// What sp_rename calls, with its three arguments.
  void Rename(CallArguments& arguments);
  /// sp_executesql
  void ExecuteSql(CallArguments& arguments);
  const std::vector<Declared>& DeclaredBy(const std::string& declarations);
  void RunText(std::string_view text, Frame& frame);

  SessionDatabase& database_;
  SessionOptions& options_;
  Results& results_;
  ErrorState& errors_;
  Transaction& transaction_;
  PlanStore& plans_;
  Evaluator& evaluator_;
  Definitions& definitions_;
  CallRunner runner_;
  std::unordered_map<std::string, std::vector<Declared>> declared_;  // by the text of the declarations
};

}  // namespace tessarlorn::tsql
