// Functions of the database under translation: their texts, and the arguments of their calls.
#pragma once

#include <string>
#include <vector>

#include "tsql/syntax/statement.h"
#include "tsql/translate/common/translation.h"

namespace tessarlorn::tsql {

/// The statement that made a view or function. Raises 217 for definitions within definitions without an end.
StatementPtr ParsedDefinition(const Translation& translation, const CatalogObject& object);

/// The arguments of a call as the function's parameters take them. Raises 201, 313 and 8144.
/// @param function its name for messages
std::vector<Typed> FunctionArguments(Translation& translation, const std::string& function,
                                     const std::vector<Parameter>& parameters,
                                     const std::vector<ExpressionPtr>& arguments, Scope& scope);

/// "dbo.f", as it was written.
std::string WrittenName(const ObjectName& name);

}  // namespace tessarlorn::tsql
