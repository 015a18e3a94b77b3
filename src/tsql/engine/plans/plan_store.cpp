#include "tsql/engine/plans/plan_store.h"

#include <utility>

#include "tsql/syntax/ast_walk.h"

namespace tessarlorn::tsql {

PlanStore::OpenBatch::OpenBatch(PlanStore& plans) : plans_(plans), used_(plans.database_.runtime().memory.used()) {
  if (plans.spare_batches_.empty()) {
    batch_ = std::make_unique<PlanCache::Batch>();
  } else {
    batch_ = std::move(plans.spare_batches_.back());
    plans.spare_batches_.pop_back();
  }
  // Giving it back takes no memory.
  plans.spare_batches_.reserve(plans.spare_batches_.size() + 1);
  batch_->tokens.memory = &plans.database_.runtime().memory;
}

PlanStore::OpenBatch::~OpenBatch() {
  batch_->statements.clear();
  plans_.database_.runtime().memory.ReleaseTo(used_);
  constexpr std::size_t kMostKept = 65536;
  const Tokens& tokens = batch_->tokens;
  if (tokens.tokens.capacity() + tokens.list_items.capacity() > kMostKept) return;
  plans_.spare_batches_.push_back(std::move(batch_));
}

void PlanStore::Open(std::string_view text, OpenBatch& batch, Frame& frame) {
  errors_.Understanding([&] {
    cache_.Parse(text, *batch.batch_);
    for (const BatchStatement& entry : batch.statements()) {
      if (entry.plan->declares) Declare(*entry.plan->statement, frame);
    }
    Precompile(batch, frame);
  });
}

std::shared_ptr<Plan> PlanStore::OfProcedure(const CatalogObject& procedure) {
  std::shared_ptr<Plan>& plan = procedures_[procedure.signature()];
  if (plan == nullptr) plan = PlanOf(procedure);
  return plan;
}

std::shared_ptr<Plan> PlanStore::PlanOf(const CatalogObject& object) {
  Tokens tokens;
  TokenizeDefinition(object.definition, database_.names(), tokens);
  std::vector<StatementPtr> statements = ParseStatements(object.definition, tokens);
  auto plan = std::make_shared<Plan>();
  plan->statement = std::move(statements.at(0));
  plan->schema = object.schema;
  return plan;
}

PlanStore::FunctionPlan::FunctionPlan(PlanStore& plans, const CatalogObject& function)
    : idle_(plans.functions_[function.signature()]) {
  if (idle_.empty()) {
    plan_ = plans.PlanOf(function);
  } else {
    plan_ = std::move(idle_.back());
    idle_.pop_back();
  }
  // Giving it back takes no memory.
  idle_.reserve(idle_.size() + 1);
}

void PlanStore::Trim() {
  constexpr std::size_t kMostNames = 100'000;
  if (database_.names().size() <= kMostNames) return;
  // The shapes of plans are made of the names' numbers.
  cache_.Clear();
  database_.names() = NameTable();
}

void PlanStore::Declare(const Statement& statement, Frame& frame) {
  if (const auto* declare = As<DeclareStatement>(statement)) {
    for (const VariableDeclaration& variable : declare->variables) {
      frame.Declare(variable.name, ResolveType(variable.type, false));
    }
    for (const CreateTableStatement& table : declare->tables) frame.DeclareTable(table.table.name);
  }
  ForEachChild(statement, [&](const Statement& child) { Declare(child, frame); });
}

namespace {

/// Whether the definition is another one, should it have been read anew.
bool IsSame(const CatalogObjectPtr& one, const CatalogObjectPtr& other) {
  return one == other || (one != nullptr && other != nullptr && one->signature() == other->signature());
}

}  // namespace

void PlanStore::Revalidate(Plan& plan, Frame& frame) {
  Catalog& catalog = database_.catalog();
  bool same = plan.identity_insert == options_.identity_insert();
  if (same && plan.checked_generation != catalog.generation()) {
    for (const Dependencies::Object& object : plan.dependencies.objects) {
      same = same && IsSame(catalog.Find(object.name), object.object);
    }
  }
  for (const Dependencies::Variable& variable : plan.dependencies.variables) {
    const Variable* now = frame.Find(variable.name);
    same = same && now != nullptr && now->type == variable.type;
  }
  plan.checked_generation = catalog.generation();
  if (same) return;
  plan.compiled.clear();
  plan.dependencies = {};
  plan.complete = false;
  plan.identity_insert = options_.identity_insert();
}

Translator PlanStore::MakeTranslator(const Activation& activation) {
  return MakeTranslator(activation, activation.plan->schema);
}

Translator PlanStore::MakeTranslator(const Activation& activation, const std::string& schema) {
  return Translator({database_.catalog(), *activation.frame, database_.names(), activation.plan->lifted,
                     activation.plan->dependencies, database_.runtime().memory, schema});
}

template <typename Make>
Compiled& PlanStore::CompiledFor(const void* node, const Activation& activation, const Make& make) {
  Plan& plan = *activation.plan;
  if (plan.checked_generation != database_.catalog().generation()) Revalidate(plan, *activation.frame);
  const auto found = plan.compiled.find(node);
  if (found != plan.compiled.end()) return *found->second;
  std::unique_ptr<Compiled> compiled;
  errors_.Understanding([&] {
    Translator translator = MakeTranslator(activation);
    compiled = std::make_unique<Compiled>(make(translator));
  });
  return *(plan.compiled[node] = std::move(compiled));
}

Compiled& PlanStore::OfStatement(const Statement& statement, const Activation& activation) {
  return CompiledFor(&statement, activation, [&](Translator& translator) {
    if (const auto* insert = As<InsertStatement>(statement)) {
      return translator.CompileInsert(*insert, options_.AllowsIdentityOf(insert->table.name));
    }
    if (const auto* update = As<UpdateStatement>(statement)) {
      return translator.CompileUpdate(*update, statement.line);
    }
    if (const auto* removal = As<DeleteStatement>(statement)) {
      return translator.CompileDelete(*removal);
    }
    if (const auto* merge = As<MergeStatement>(statement)) {
      return translator.CompileMerge(*merge, options_.AllowsIdentityOf(merge->target.name.name));
    }
    return translator.CompileQuery(*std::get<SelectStatement>(statement.node).query);
  });
}

Compiled& PlanStore::OfCondition(const Expression& condition, const Activation& activation) {
  return CompiledFor(&condition, activation,
                     [&](Translator& translator) { return translator.CompileCondition(condition); });
}

Compiled& PlanStore::OfValue(const Expression& value, const SqlType& type, const Activation& activation) {
  const auto make = [&](Translator& translator) {
    Compiled compiled = translator.CompileValue(value, type);
    compiled.target = type;
    return compiled;
  };
  Compiled& compiled = CompiledFor(&value, activation, make);
  // The arguments of a call go to parameters whose types are those of the procedure or text that it names this time.
  if (compiled.target != type) {
    Translator translator = MakeTranslator(activation);
    compiled = make(translator);
  }
  return compiled;
}

Compiled& PlanStore::OfCompound(const Assignment& assignment, const SqlType& type, const Activation& activation) {
  return CompiledFor(&assignment, activation,
                     [&](Translator& translator) { return translator.CompileCompound(assignment, type); });
}

void PlanStore::CompileNode(const Statement& statement, const Activation& activation) {
  const auto as_statement = [&](const auto& /*node*/) { OfStatement(statement, activation); };
  std::visit(Overloaded{
                 [&](const SelectStatement& node) { as_statement(node); },
                 [&](const UpdateStatement& node) { as_statement(node); },
                 [&](const DeleteStatement& node) { as_statement(node); },
                 [&](const MergeStatement& node) { as_statement(node); },
                 [&](const InsertStatement& node) {
                   if (node.execute() == nullptr) as_statement(node);
                 },
                 [&](const IfStatement& node) { OfCondition(*node.condition, activation); },
                 [&](const WhileStatement& node) { OfCondition(*node.condition, activation); },
                 [&](const DeclareStatement& node) {
                   for (const VariableDeclaration& variable : node.variables) {
                     if (variable.initial == nullptr) continue;
                     OfValue(*variable.initial, activation.frame->Get(variable.name).type, activation);
                   }
                 },
                 [&](const SetStatement& node) {
                   // @v += x is compiled when it runs, as it is put together then.
                   const Variable& variable = activation.frame->Get(node.assignment.variable);
                   if (!node.assignment.compound) OfValue(*node.assignment.value, variable.type, activation);
                 },
                 [](const auto& /*node*/) {},
             },
             statement.node);
}

void PlanStore::CompileTree(const Statement& statement, const Activation& activation) {
  try {
    CompileNode(statement, activation);
  } catch (SqlError& error) {
    error.set_line(statement.line);
    // A table that is missing now may be there when the statement's turn comes.
    if (error.number() != 208 && !ErrorState::IsOfRun(error)) throw;
    activation.plan->complete = false;
  }
  ForEachChild(statement, [&](const Statement& child) { CompileTree(child, activation); });
}

void PlanStore::Precompile(const OpenBatch& batch, Frame& frame) {
  for (const BatchStatement& entry : batch.statements()) {
    // What comes behind a new definition can only be understood when that has run.
    if (entry.plan->defines) break;
    Revalidate(*entry.plan, frame);
    if (entry.plan->complete) continue;
    entry.plan->complete = true;
    try {
      CompileTree(*entry.plan->statement, batch.ActivationOf(entry, frame));
    } catch (...) {
      entry.plan->complete = false;
      throw;
    }
  }
}

}  // namespace tessarlorn::tsql
