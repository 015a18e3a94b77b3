#include "tsql/translate/common/function_text.h"

#include <utility>

#include "tsql/syntax/parser.h"
#include "tsql/translate/common/conversion.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

Typed ArgumentValue(Translation& translation, const Parameter& parameter, const Expression& argument, Scope& scope) {
  const SqlType type = ResolveType(parameter.type, false);
  const Typed value = translation.Value(argument, scope);
  RequireImplicit(value.type, type);
  return {"(" + Coerce(translation.parameters, value, type) + ")", type, true, -1};
}

}  // namespace

StatementPtr ParsedDefinition(const Translation& translation, const CatalogObject& object) {
  constexpr int kMostLevels = 32;
  if (translation.parameters.definition_depth() >= kMostLevels) {
    throw SqlError(217, "Maximum view nesting level exceeded (limit 32).");
  }
  Tokens tokens;
  TokenizeDefinition(object.definition, translation.names, tokens);
  return std::move(ParseStatements(object.definition, tokens).at(0));
}

std::vector<Typed> FunctionArguments(Translation& translation, const std::string& function,
                                     const std::vector<Parameter>& parameters,
                                     const std::vector<ExpressionPtr>& arguments, Scope& scope) {
  if (arguments.size() > parameters.size()) {
    throw SqlError(8144, "Procedure or function " + function + " has too many arguments specified.");
  }
  if (arguments.size() < parameters.size()) {
    throw SqlError(313,
                   "An insufficient number of arguments were supplied for the procedure or function " + function + ".");
  }
  std::vector<Typed> values;
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    if (As<DefaultValue>(*arguments[i]) == nullptr) {
      values.push_back(ArgumentValue(translation, parameters[i], *arguments[i], scope));
      continue;
    }
    if (parameters[i].default_value == nullptr) {
      throw SqlError(201, "Procedure or function '" + function + "' expects parameter '" + parameters[i].name +
                              "', which was not supplied.");
    }
    const Parameters::InDefinition in_definition(translation.parameters);
    Scope nothing;
    values.push_back(ArgumentValue(translation, parameters[i], *parameters[i].default_value, nothing));
  }
  return values;
}

std::string WrittenName(const ObjectName& name) {
  return (name.qualifier.empty() ? "" : name.qualifier + ".") + name.name;
}

}  // namespace tessarlorn::tsql
