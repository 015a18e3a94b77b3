// Functions and variables of the session, its objects, the server and its schema.
#include <algorithm>
#include <array>
#include <optional>

#include "platform/text/text.h"
#include "tsql/storage/system_views.h"
#include "tsql/translate/calls/call_topics.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

/// What the session answers when a statement runs.
struct System {
  std::string_view name;
  FieldType kind;
};
constexpr std::array kSystems = {
    System{"@@rowcount", FieldType::kInt},
    System{"@@error", FieldType::kInt},
    System{"@@trancount", FieldType::kInt},
    System{"@@identity", FieldType::kDecimal},
    System{"@@spid", FieldType::kInt},
    System{"@@version", FieldType::kNVarChar},
    System{"@@servername", FieldType::kNVarChar},
    System{"scope_identity", FieldType::kDecimal},
    System{"error_number", FieldType::kInt},
    System{"error_severity", FieldType::kInt},
    System{"error_state", FieldType::kInt},
    System{"error_line", FieldType::kInt},
    System{"error_message", FieldType::kNVarChar},
    System{"error_procedure", FieldType::kNVarChar},
    System{"db_name", FieldType::kNVarChar},
    System{"host_name", FieldType::kNVarChar},
    System{"suser_sname", FieldType::kNVarChar},
    System{"suser_name", FieldType::kNVarChar},
    System{"user_name", FieldType::kNVarChar},
    System{"app_name", FieldType::kNVarChar},
    System{"xact_state", FieldType::kInt},
};

std::optional<Typed> SystemOf(Parameters& parameters, const std::string& name) {
  for (const System& system : kSystems) {
    if (system.name != name) continue;
    return parameters.System(name, system.kind == FieldType::kNVarChar  ? NVarCharType(4000)
                                   : system.kind == FieldType::kDecimal ? DecimalType(38, 0)
                                                                        : IntType());
  }
  return std::nullopt;
}

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

Typed TextConstant(Parameters& parameters, std::string_view text) {
  return parameters.Constant(std::string(text), NVarCharType(128));
}

Typed WithoutArguments(const Call& call) {
  const std::string& name = call.name();
  if (name == "schema_name" || name == "original_login" || name == "session_user" || name == "system_user" ||
      name == "current_user" || name == "user") {
    return TextConstant(call.parameters(), "dbo");
  }
  if (name == "schema_id" || name == "db_id") return call.parameters().Constant(std::int64_t{1}, IntType());
  return {};
}

Typed LookedUp(const Call& call, const LookUp& item) {
  std::string sql;
  for (std::size_t i = 0; i < item.keys.size() && !item.keys[i].empty(); ++i) {
    if (i >= call.count()) {
      throw SqlError(174, "The " + call.name() + " function requires " + std::to_string(i + 1) + " argument(s).", 15);
    }
    sql += (i == 0 ? " WHERE " : " AND ") + std::string(item.keys[i]) + " = " +
           (item.text_key ? call.Text(i) + " COLLATE TSQL" : call.Int(i));
  }
  const SystemView& view = *FindSystemView("sys", item.view);
  return {"(SELECT " + std::string(item.column) + " FROM (" + view.sql + ")" + sql + ")",
          item.column == "name" ? NVarCharType(128) : IntType(), true, -1};
}

/// SERVERPROPERTY and DATABASEPROPERTYEX.
Typed PropertyCall(const Call& call) {
  std::string sql = "CASE lower(" + call.Text(call.count() - 1) + ")";
  for (const Property& property : kProperties) {
    sql += " WHEN '" + std::string(property.name) + "' THEN '" + std::string(property.value) + "'";
  }
  return {sql + " END", NVarCharType(128), true, -1};
}

}  // namespace

Typed GlobalValue(Parameters& parameters, const std::string& name, std::uint32_t line) {
  if (std::optional<Typed> value = SystemOf(parameters, name)) return *std::move(value);
  if (name == "@@datefirst") return {"ts_datefirst()", SqlType{FieldType::kTinyInt, 0, 0, 0, false}, false, -1};
  if (name == "@@language") return TextConstant(parameters, "us_english");
  if (name == "@@max_precision") return parameters.Constant(std::int64_t{Decimal::kMaxDigits}, IntType());
  RaiseUnsupported("The variable " + name, line);
}

Typed SessionCall(const Call& call) {
  const std::string& name = call.name();
  if (std::optional<Typed> value = SystemOf(call.parameters(), name)) return *std::move(value);
  if (name != "object_id" && name != "col_length" && name != "ident_current") return {};
  call.Require(1, 2);
  // Answered when the statement runs: the objects are the database's, not the statement's.
  std::string sql = "ts_" + name + "(" + call.Text(0);
  if (call.count() > 1) sql += ", " + call.Text(1);
  if (name != "ident_current") return {sql + ")", IntType(), true, -1};
  const SqlType type = DecimalType(38, 0);
  return {call.Coerced({sql + ")", BigIntType(), true, -1}, type), type, true, -1};
}

Typed ServerCall(const Call& call) {
  const std::string& name = call.name();
  if (call.count() == 0) {
    Typed value = WithoutArguments(call);
    if (!value.sql.empty()) return value;
  }
  const auto* const item =
      std::find_if(kLookUps.begin(), kLookUps.end(), [&](const LookUp& entry) { return entry.name == name; });
  if (item != kLookUps.end()) return LookedUp(call, *item);
  const bool property =
      (name == "serverproperty" && call.count() == 1) || (name == "databasepropertyex" && call.count() == 2);
  return property ? PropertyCall(call) : Typed{};
}

}  // namespace tessarlorn::tsql
