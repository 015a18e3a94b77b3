#include "tsql/translate/common/argument.h"

#include <vector>

#include "tsql/translate/common/conversion.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {

std::string TextArgument(Translation& translation, const Expression& expression, Scope& scope) {
  return AsText(translation.parameters, translation.Value(expression, scope));
}

std::string IntArgument(Translation& translation, const Expression& expression, Scope& scope) {
  return Coerce(translation.parameters, translation.Value(expression, scope), BigIntType());
}

std::string RowLimitArgument(Translation& translation, const Expression& expression, Scope& scope, RowLimit limit) {
  std::string number = IntArgument(translation, expression, scope);
  if (As<Literal>(expression) != nullptr && limit != RowLimit::kFetch) return number;
  return "ts_rows_wanted(" + number + ", " + std::to_string(static_cast<int>(limit)) + ")";
}

std::string FloatArgument(Translation& translation, const Expression& expression, Scope& scope) {
  return Coerce(translation.parameters, translation.Value(expression, scope), FloatType());
}

std::string DateArgument(Translation& translation, const Expression& expression, Scope& scope) {
  return AsDate(translation.parameters, translation.Value(expression, scope));
}

TranslatedQuery SingleColumn(Translation& translation, const Query& query, const Scope& scope) {
  static const std::vector<std::string> kNames = {"c"};
  SelectOptions options;
  options.names = &kNames;
  TranslatedQuery translated = translation.QueryText(query, &scope, options);
  if (translated.columns.size() == 1) return translated;
  throw SqlError(116,
                 "Only one expression can be specified in the select list when the subquery is not introduced with "
                 "EXISTS.");
}

}  // namespace tessarlorn::tsql
