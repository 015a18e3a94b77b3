// Functions that tell of the server, its schema and its objects by their numbers.
#include <array>

#include "platform/text.h"
#include "tsql/storage/system_views.h"
#include "tsql/translate/translator.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

/// A function that looks one value up in a view of sys, by the values of its columns that the arguments name.
struct LookUp {
  std::string_view name;
  std::string_view view;
  std::string_view column;
  std::array<std::string_view, 2> keys;
  bool text_key;
};

constexpr std::array kLookUps = {
    LookUp{"object_name", "objects", "name", {"object_id", ""}, false},
    LookUp{"col_name", "columns", "name", {"object_id", "column_id"}, false},
    LookUp{"type_name", "types", "name", {"user_type_id", ""}, false},
    LookUp{"type_id", "types", "user_type_id", {"name", ""}, true},
    LookUp{"schema_name", "schemas", "name", {"schema_id", ""}, false},
    LookUp{"schema_id", "schemas", "schema_id", {"name", ""}, true},
    LookUp{"db_id", "databases", "database_id", {"name", ""}, true},
};

struct Property {
  std::string_view name;
  std::string_view value;
};

constexpr std::array kProperties = {
    Property{"collation", "Chinese_PRC_CI_AS"},
    Property{"edition", "Embedded"},
    Property{"engineedition", "4"},
    Property{"isclustered", "0"},
    Property{"isintegratedsecurityonly", "0"},
    Property{"machinename", "localhost"},
    Property{"productlevel", "RTM"},
    Property{"productmajorversion", "11"},
    Property{"productversion", "11.0.7001.0"},
    Property{"servername", "localhost"},
    Property{"status", "ONLINE"},
    Property{"updateability", "READ_WRITE"},
    Property{"version", "706"},
};

}  // namespace

Typed Translator::ServerFunction(const Expression& expression, Scope& scope) {
  const std::string& name = expression.text;
  const std::size_t count = expression.operands.size();
  const auto text = [&](std::string_view value) { return Constant(std::string(value), NVarCharType(128)); };
  if (count == 0) {
    if (name == "schema_name" || name == "original_login" || name == "session_user" || name == "system_user" ||
        name == "current_user" || name == "user") {
      return text("dbo");
    }
    if (name == "schema_id" || name == "db_id") return Constant(std::int64_t{1}, IntType());
    if (name == "@@language") return text("us_english");
    if (name == "@@max_precision") return Constant(std::int64_t{Decimal::kMaxDigits}, IntType());
  }
  for (const LookUp& item : kLookUps) {
    if (item.name != name) continue;
    std::string sql;
    for (std::size_t i = 0; i < item.keys.size() && !item.keys[i].empty(); ++i) {
      if (i >= count) {
        throw SqlError(174, "The " + name + " function requires " + std::to_string(i + 1) + " argument(s).", 15);
      }
      const Expression& key = *expression.operands[i];
      sql += (i == 0 ? " WHERE " : " AND ") + std::string(item.keys[i]) + " = " +
             (item.text_key ? TextArgument(key, scope) + " COLLATE TSQL" : IntArgument(key, scope));
    }
    const SystemView& view = *FindSystemView("sys", item.view);
    return {"(SELECT " + std::string(item.column) + " FROM (" + view.sql + ")" + sql + ")",
            item.column == "name" ? NVarCharType(128) : IntType(), true, -1};
  }
  if ((name == "serverproperty" && count == 1) || (name == "databasepropertyex" && count == 2)) {
    std::string sql = "CASE lower(" + TextArgument(*expression.operands.back(), scope) + ")";
    for (const Property& property : kProperties) {
      sql += " WHEN '" + std::string(property.name) + "' THEN '" + std::string(property.value) + "'";
    }
    return {sql + " END", NVarCharType(128), true, -1};
  }
  if (!name.empty() && name[0] == '@') RaiseUnsupported("The variable " + name, expression.line);
  return {};
}

}  // namespace tessarlorn::tsql
