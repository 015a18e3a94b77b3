// The table variables of functions, which come and go while the statement that calls runs.
#include <utility>

#include "tsql/engine/definitions/definitions.h"

namespace tessarlorn::tsql {

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
