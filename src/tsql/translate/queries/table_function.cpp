#include "tsql/translate/queries/table_function.h"

#include "platform/text/text.h"
#include "tsql/functions/functions.h"
#include "tsql/translate/common/argument.h"
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

/// A column of WITH as arguments of ts_openjson_with: path, type, whether it is AS JSON.
std::string JsonColumnArguments(Translation& translation, const JsonColumnDefinition& column, const SqlType& type) {
  std::string path = "$.\"" + EscapedForJson(column.name) + "\"";
  if (column.path != nullptr) {
    const auto& literal = std::get<Literal>(column.path->node);
    translation.parameters.Pin(literal);
    path = literal.text;
  }
  if (type.is_binary()) RaiseUnsupported("OPENJSON … WITH a column of bytes");
  if (column.as_json && type != NVarCharType(0)) {
    throw SqlError(13618, "AS JSON option can be specified only for column of nvarchar(max) type in WITH clause.");
  }
  return ", " + QuoteText(path) + ", " + Packed(type) + (column.as_json ? ", 1" : ", 0");
}

// OPENJSON(text[, path]) [WITH (…)]
TranslatedTable OpenJson(Translation& translation, const TableFunction& function, Scope& scope) {
  if (function.arguments.size() > 2) throw SqlError(174, "The openjson function requires 2 argument(s).", 15);
  std::string call = TextArgument(translation, *function.arguments[0], scope);
  call += ", " + (function.arguments.size() > 1 ? TextArgument(translation, *function.arguments[1], scope) : "'$'");
  if (function.json_columns.empty()) {
    return {"ts_openjson(" + call + ")",
            {{"key", NVarCharType(4000), false, false},
             {"value", NVarCharType(0), true, false},
             {"type", SqlType{FieldType::kTinyInt, 0, 0, 0, false}, false, false}}};
  }
  TranslatedTable table;
  for (const JsonColumnDefinition& column : function.json_columns) {
    const SqlType type = ResolveType(column.type, false);
    call += JsonColumnArguments(translation, column, type);
    table.columns.push_back({column.name, type, true, false});
  }
  table.packed = "ts_openjson_with(" + call + ")";
  return table;
}

}  // namespace

TranslatedTable TranslateTableFunction(Translation& translation, const TableFunction& function, Scope& scope) {
  TranslatedTable table =
      function.name == "openjson" ? OpenJson(translation, function, scope) : Split(translation, function, scope);
  if (!function.column_aliases.empty()) Rename(table.columns, function.column_aliases, function.alias);
  return table;
}

}  // namespace tessarlorn::tsql
