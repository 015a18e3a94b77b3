// What was compiled: the plans of batches and procedures, and the compiled statements of each.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "tsql/engine/plans/activation.h"
#include "tsql/engine/plans/plan.h"
#include "tsql/engine/state/error_state.h"
#include "tsql/engine/state/session_database.h"
#include "tsql/engine/state/session_options.h"
#include "tsql/translate/translator.h"

namespace tessarlorn::tsql {

class PlanStore {
 public:
  /// A batch while it runs. It lends its room for tokens, and gives it back for the next batch.
  class OpenBatch {
   public:
    explicit OpenBatch(PlanStore& plans);
    OpenBatch(const OpenBatch&) = delete;
    OpenBatch& operator=(const OpenBatch&) = delete;
    ~OpenBatch();
    [[nodiscard]] const std::vector<BatchStatement>& statements() const { return batch_->statements; }
    [[nodiscard]] Activation ActivationOf(const BatchStatement& entry, Frame& frame) const {
      return {&frame, entry.plan.get(), entry.literals, entry.lists, &batch_->tokens.list_items};
    }

   private:
    friend class PlanStore;
    PlanStore& plans_;
    std::unique_ptr<PlanCache::Batch> batch_;
    std::size_t used_;  // of the memory's budget, before
  };

  PlanStore(SessionDatabase& database, const SessionOptions& options, const ErrorState& errors)
      : database_(database), options_(options), errors_(errors), cache_(database.names()) {}

  /// Cuts the text into statements, declares its variables in the frame and compiles what can be understood already.
  void Open(std::string_view text, OpenBatch& batch, Frame& frame);
  /// The plan of a procedure, whose statement is its definition.
  std::shared_ptr<Plan> OfProcedure(const CatalogObject& procedure);
  /// A plan of a scalar function for one call: another call may run within it, and begins its statements anew.
  class FunctionPlan {
   public:
    FunctionPlan(PlanStore& plans, const CatalogObject& function);
    FunctionPlan(const FunctionPlan&) = delete;
    FunctionPlan& operator=(const FunctionPlan&) = delete;
    ~FunctionPlan() { idle_.push_back(std::move(plan_)); }
    [[nodiscard]] Plan& plan() const { return *plan_; }

   private:
    std::vector<std::shared_ptr<Plan>>& idle_;
    std::shared_ptr<Plan> plan_;
  };
  /// Forgets what was compiled from definitions that are others now.
  void Revalidate(Plan& plan, Frame& frame);
  /// Declares the variables of a statement and of those within it.
  static void Declare(const Statement& statement, Frame& frame);
  /// Lets go of names and plans when there are too many.
  void Trim();

  // Compiled once for each node and plan.
  /// SELECT, INSERT, UPDATE, DELETE or MERGE.
  Compiled& OfStatement(const Statement& statement, const Activation& activation);
  Compiled& OfCondition(const Expression& condition, const Activation& activation);
  Compiled& OfValue(const Expression& value, const SqlType& type, const Activation& activation);
  Compiled& OfCompound(const Assignment& assignment, const SqlType& type, const Activation& activation);

  /// For what is compiled anew each time.
  Translator MakeTranslator(const Activation& activation);
  /// The same, of the text of an object in that schema.
  Translator MakeTranslator(const Activation& activation, const std::string& schema);

 private:
  std::shared_ptr<Plan> PlanOf(const CatalogObject& object);
  template <typename Make>
  Compiled& CompiledFor(const void* node, const Activation& activation, const Make& make);
  void Precompile(const OpenBatch& batch, Frame& frame);
  void CompileTree(const Statement& statement, const Activation& activation);
  void CompileNode(const Statement& statement, const Activation& activation);

  SessionDatabase& database_;
  const SessionOptions& options_;
  const ErrorState& errors_;
  PlanCache cache_;
  std::unordered_map<std::string, std::shared_ptr<Plan>> procedures_;              // by signature
  std::unordered_map<std::string, std::vector<std::shared_ptr<Plan>>> functions_;  // those that no call uses
  std::vector<std::unique_ptr<PlanCache::Batch>> spare_batches_;
};

}  // namespace tessarlorn::tsql
