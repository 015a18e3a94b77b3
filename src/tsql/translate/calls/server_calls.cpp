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
    System{"rowcount_big", FieldType::kBigInt},
    System{"@@error", FieldType::kInt},
    System{"@@trancount", FieldType::kInt},
    System{"@@identity", FieldType::kDecimal},
    System{"@@spid", FieldType::kInt},
    System{"@@fetch_status", FieldType::kInt},
    System{"@@cursor_rows", FieldType::kInt},
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
    System{"trigger_nestlevel", FieldType::kInt},
};

std::optional<Typed> SystemOf(Parameters& parameters, const std::string& name) {
  for (const System& system : kSystems) {
    if (system.name != name) continue;
    return parameters.System(name, system.kind == FieldType::kNVarChar  ? NVarCharType(4000)
                                   : system.kind == FieldType::kDecimal ? DecimalType(38, 0)
                                   : system.kind == FieldType::kBigInt  ? BigIntType()
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
    LookUp{"object_schema_name", "objects", "schema_name", {"object_id", ""}, false},
    LookUp{"object_definition", "sql_modules", "definition", {"object_id", ""}, false},
};

/// SQL in which {text} and {number} are the first argument, and {kind} is the second.
struct Fixed {
  std::string_view name;
  std::size_t least;
  std::size_t most;
  std::string_view sql;
  bool answers_name = false;
};

constexpr std::array kFixedAnswers = {
    Fixed{"db_id", 1, 1, "CASE {text} COLLATE TSQL WHEN 'main' THEN 1 WHEN 'tempdb' THEN 2 END"},
    Fixed{"db_name", 1, 1, "CASE {number} WHEN 1 THEN 'main' WHEN 2 THEN 'tempdb' END", true},
    Fixed{"user_name", 1, 1, "CASE {number} WHEN 0 THEN 'public' WHEN 1 THEN 'dbo' WHEN 2 THEN 'guest' END", true},
    Fixed{"has_dbaccess", 1, 1, "CASE {text} COLLATE TSQL WHEN 'main' THEN 1 WHEN 'tempdb' THEN 1 END"},
    Fixed{"has_perms_by_name", 3, 5,
          "CASE WHEN upper({kind}) = 'OBJECT' AND ts_object_id({text}) IS NULL THEN NULL ELSE 1 END"},
    Fixed{"is_member", 1, 1, "CASE {text} COLLATE TSQL WHEN 'db_owner' THEN 1 WHEN 'public' THEN 1 END"},
    Fixed{"is_rolemember", 1, 2, "CASE {text} COLLATE TSQL WHEN 'db_owner' THEN 1 WHEN 'public' THEN 1 END"},
    Fixed{"is_srvrolemember", 1, 2, "CASE {text} COLLATE TSQL WHEN 'sysadmin' THEN 1 WHEN 'public' THEN 1 END"},
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
  const auto column = std::find_if(view.columns.begin(), view.columns.end(),
                                   [&](const SystemViewColumn& entry) { return entry.name == item.column; });
  return {"(SELECT " + std::string(item.column) + " FROM (" + view.sql + ")" + sql + ")",
          column == view.columns.end() ? NVarCharType(128) : column->type, true, -1};
}

/// A function of arguments alone: there are one database and one user, who may do everything.
Typed FixedAnswer(const Call& call) {
  const auto* const fixed = std::find_if(kFixedAnswers.begin(), kFixedAnswers.end(),
                                         [&](const Fixed& entry) { return entry.name == call.name(); });
  if (fixed == kFixedAnswers.end() || call.count() == 0) return {};
  call.Require(fixed->least, fixed->most);
  std::string sql(fixed->sql);
  if (sql.find("{number}") != std::string::npos) sql = ReplaceAll(sql, "{number}", call.Int(0));
  if (sql.find("{text}") != std::string::npos) sql = ReplaceAll(sql, "{text}", call.Text(0));
  if (sql.find("{kind}") != std::string::npos) sql = ReplaceAll(sql, "{kind}", call.Text(1));
  return {sql, fixed->answers_name ? NVarCharType(128) : IntType(), true, -1};
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
  if (Typed value = FixedAnswer(call); !value.sql.empty()) return value;
  if (std::optional<Typed> value = SystemOf(call.parameters(), name)) return *std::move(value);
  const bool of_identity = name == "ident_current" || name == "ident_seed" || name == "ident_incr";
  if (name != "object_id" && name != "col_length" && !of_identity) return {};
  call.Require(1, 2);
  // Answered when the statement runs: the objects are the database's, not the statement's.
  std::string sql = "ts_" + name + "(" + call.Text(0);
  if (call.count() > 1) sql += ", " + call.Text(1);
  if (!of_identity) return {sql + ")", IntType(), true, -1};
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
  return item == kLookUps.end() ? Typed{} : LookedUp(call, *item);
}

}  // namespace tessarlorn::tsql
