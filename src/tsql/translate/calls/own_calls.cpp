// Scalar functions of the database.
#include "tsql/translate/calls/call_topics.h"
#include "tsql/translate/common/function_text.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {

Typed OwnCall(const Call& call) {
  const ObjectName name = MakeObjectName(call.qualifier(), call.name());
  const std::string written = WrittenName(name);
  const CatalogObjectPtr function = call.translation().FindFunction(name);
  if (function == nullptr) {
    SqlError error(4121, "Cannot find either column \"" + call.qualifier() +
                             "\" or the user-defined function or aggregate \"" + written +
                             "\", or the name is ambiguous.");
    error.set_line(call.line());
    throw error;
  }
  if (call.translation().for_table)
    RaiseUnsupported("The function " + written + " in a constraint or index", call.line());
  const StatementPtr statement = ParsedDefinition(call.translation(), *function);
  const auto& definition = std::get<CreateFunctionStatement>(statement->node);
  std::string sql = "ts_call(" + QuoteText(function->name);
  for (const Typed& argument :
       FunctionArguments(call.translation(), written, definition.parameters, call.arguments(), call.scope())) {
    sql += ", " + argument.sql;
  }
  return {sql + ")", ResolveType(definition.returns, false), true, -1};
}

}  // namespace tessarlorn::tsql
