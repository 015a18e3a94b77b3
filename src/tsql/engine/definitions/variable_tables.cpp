// Table variables: those of branches, and those of functions, which come and go while the statement that calls runs.
#include <utility>

#include "tsql/engine/definitions/definitions.h"
#include "tsql/syntax/ast_walk.h"

namespace tessarlorn::tsql {

void Definitions::MakeVariables(const DeclareStatement& declare, const Activation& activation) {
  for (const CreateTableStatement& table : declare.tables) {
    // In a loop it stands, with its rows.
    if (database_.catalog().Find(table.table.name) == nullptr) CreateTable(table, activation);
  }
}

void Definitions::MakeVariablesWithin(const Statement& statement, const Activation& activation) {
  const bool has_branches = As<IfStatement>(statement) != nullptr || As<WhileStatement>(statement) != nullptr ||
                            As<BlockStatement>(statement) != nullptr || As<TryCatchStatement>(statement) != nullptr;
  if (!has_branches) return;
  ForEachChild(statement, [&](const Statement& child) {
    if (const auto* declare = As<DeclareStatement>(child)) MakeVariables(*declare, activation);
    MakeVariablesWithin(child, activation);
  });
}

std::string Definitions::VariableName(const CreateTableStatement& statement, const Activation& activation) {
  std::string name = statement.table.name + "$" + std::to_string(database_.catalog().scope_depth());
  if (activation.returns == nullptr) return name;
  // One that is left of an earlier call has the columns of this statement.
  const std::size_t number = declared_.try_emplace(&statement, declared_.size()).first->second;
  name += "$" + std::to_string(number);
  if (database_.HasLeft(name) || !database_.changing()) return name;
  wanted_ = {&statement, std::move(name)};
  RaiseUnsupported("A table variable within a function that a change calls");
}

bool Definitions::MakeWanted(const Activation& activation) {
  if (wanted_.statement == nullptr) return false;
  const Wanted wanted = wanted_;
  Catalog& catalog = database_.catalog();
  catalog.EnterScope();
  try {
    CreateTable(*wanted.statement, activation);
  } catch (...) {
    catalog.LeaveScope();
    throw;
  }
  // It stays for the call.
  catalog.LeaveScope();
  database_.Leave(wanted.stored_name);
  wanted_ = {};
  return true;
}

}  // namespace tessarlorn::tsql
