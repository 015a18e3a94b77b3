#include "tsql/translate/queries/table_function.h"

#include "tsql/translate/common/conversion.h"
#include "tsql/translate/queries/query.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

// STRING_SPLIT(text, separator)
TranslatedTable Split(Translation& translation, const TableFunction& function, Scope& scope) {
  if (function.arguments.size() != 2) {
    throw SqlError(174, "The string_split function requires 2 argument(s).", 15);
  }
  const Typed text = translation.Value(*function.arguments[0], scope);
  const Typed separator = translation.Value(*function.arguments[1], scope);
  const SqlType type = text.type.is_text() ? text.type : NVarCharType(4000);
  return {"ts_split(" + AsText(translation.parameters, text) + ", " + AsText(translation.parameters, separator) + ")",
          {{"value", type, true, false}}};
}

}  // namespace

TranslatedTable TranslateTableFunction(Translation& translation, const TableFunction& function, Scope& scope) {
  TranslatedTable table = Split(translation, function, scope);
  if (!function.column_aliases.empty()) Rename(table.columns, function.column_aliases, function.alias);
  return table;
}

}  // namespace tessarlorn::tsql
