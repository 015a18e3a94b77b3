// Users, tokens and roles, for administrators.
#include <array>
#include <nlohmann/json.hpp>

#include "hosts/http/access/roles.h"
#include "hosts/http/access/tokens.h"
#include "hosts/http/access/users.h"
#include "hosts/http/answers/answer.h"
#include "hosts/http/answers/problem.h"
#include "hosts/http/call.h"
#include "hosts/http/house/members.h"
#include "hosts/http/house/resource.h"

namespace tessarlorn::http {
namespace {

using Json = nlohmann::ordered_json;

Response RowsResponse(const RecordsetPtr& rows) { return JsonResponse(AnswerText(AnswerFormat::kJson, {}, rows, {})); }

Response Done() { return {.status = 204}; }

Response Made() { return JsonResponse("{}", 201); }

UserSettings ReadSettings(const Members& members) {
  return {.erp_user = members.FindNumber("erpUser"),
          .role = members.FindText("role"),
          .language = members.FindText("language"),
          .sql = members.FindFlag("sql"),
          .disabled = members.FindFlag("disabled"),
          .password = members.FindText("password")};
}

Response GetUsers(Connection& connection, const Wish&) { return RowsResponse(ListUsers(connection)); }

/// SQL reaches every table. So only who has it gives it, and changes those who have it.
void RequireSql(Connection& connection, const Wish& wish, const std::string& user, bool given) {
  if (wish.caller.sql) return;
  if (given) Refuse(403, "only those who may pass SQL can allow it to others", "sql");
  const RecordsetPtr users = ListUsers(connection);
  for (; !users->eof(); users->MoveNext()) {
    if (users->Get("Name").ToText() != user || !users->Get("SQL").ToBool()) continue;
    Refuse(403, user + " may pass SQL: only those who may as well can change this user, and make tokens for it",
           "name");
  }
}

Response PostUser(Connection& connection, const Wish& wish) {
  const Members members(ReadBody(wish.request), {"name", "password", "erpUser", "role", "language", "sql"});
  UserSettings settings = ReadSettings(members);
  settings.password = members.RequireText("password");
  settings.erp_user = members.RequireNumber("erpUser");
  settings.role = members.RequireText("role");
  RequireSql(connection, wish, "", settings.sql.value_or(false));
  AddUser(connection, members.RequireText("name"), settings);
  return Made();
}

/// Whoever locks himself out can no longer undo it.
void RefuseSelf(const Wish& wish, const std::string& user, const char* what) {
  if (user == wish.caller.name) Refuse(422, std::string("nobody can ") + what + " himself", "name");
}

Response PatchUser(Connection& connection, const Wish& wish) {
  const Members members(ReadBody(wish.request), {"password", "erpUser", "role", "language", "sql", "disabled"});
  const std::string user = RequireUser(connection, wish.names.front());
  const UserSettings settings = ReadSettings(members);
  RequireSql(connection, wish, user, settings.sql.value_or(false));
  if (settings.disabled.value_or(false)) RefuseSelf(wish, user, "disable");
  if (settings.role && *settings.role != wish.caller.role->name()) RefuseSelf(wish, user, "take the role from");
  ChangeUser(connection, user, settings);
  return Done();
}

Response DeleteUser(Connection& connection, const Wish& wish) {
  const std::string user = RequireUser(connection, wish.names.front());
  RefuseSelf(wish, user, "remove");
  RequireSql(connection, wish, user, false);
  RemoveUser(connection, user);
  return Done();
}

Response GetTokens(Connection& connection, const Wish&) { return RowsResponse(ListTokens(connection, "")); }

Response PostToken(Connection& connection, const Wish& wish) {
  const Members members(ReadBody(wish.request), {"user", "name", "days"});
  const std::optional<std::int32_t> days = members.FindNumber("days");
  constexpr std::int32_t kMostDays = 36'500;
  if (days && (*days < 1 || *days > kMostDays)) Refuse(422, "days is 1 to 36500", "days");
  const std::string user = RequireUser(connection, members.RequireText("user"));
  RequireSql(connection, wish, user, false);
  const std::string token = AddToken(connection, members.RequireText("name"), user, days);
  return JsonResponse(Json{{"token", token}}.dump(), 201);
}

Response DeleteToken(Connection& connection, const Wish& wish) {
  RevokeToken(connection, wish.names[1], wish.names[0]);
  return Done();
}

Response GetRoles(Connection& connection, const Wish&) {
  Json roles = Json::array();
  const std::size_t built_in = BuiltInRoles().size();
  for (const RolePtr& role : AllRoles(connection)) {
    Json operations = Json::array();
    for (const Operation* const operation : Operations()) {
      // Everybody may call TransMode, of both classes.
      if (operation->name != "TransMode" && role->Allows(*operation))
        operations.push_back(std::string(operation->name));
    }
    roles.push_back({{"name", role->name()},
                     {"builtIn", roles.size() < built_in},
                     {"administrator", role->administrator()},
                     {"operations", std::move(operations)}});
  }
  return JsonResponse(Json{{"roles", std::move(roles)}}.dump());
}

Response PostRole(Connection& connection, const Wish& wish) {
  const Members members(ReadBody(wish.request), {"name", "operations"});
  AddRole(connection, members.RequireText("name"), members.RequireTexts("operations"));
  return Made();
}

Response DeleteRole(Connection& connection, const Wish& wish) {
  RemoveRole(connection, wish.names.front());
  return Done();
}

constexpr std::array kAdministration = {
    Resource{.name = "users", .method = "GET", .answer = GetUsers},
    Resource{.name = "users", .method = "POST", .answer = PostUser},
    Resource{.name = "users", .method = "PATCH", .names = 1, .answer = PatchUser},
    Resource{.name = "users", .method = "DELETE", .names = 1, .answer = DeleteUser},
    Resource{.name = "tokens", .method = "GET", .answer = GetTokens},
    Resource{.name = "tokens", .method = "POST", .answer = PostToken},
    Resource{.name = "tokens", .method = "DELETE", .names = 2, .answer = DeleteToken},
    Resource{.name = "roles", .method = "GET", .answer = GetRoles},
    Resource{.name = "roles", .method = "POST", .answer = PostRole},
    Resource{.name = "roles", .method = "DELETE", .names = 1, .answer = DeleteRole},
};

}  // namespace

std::span<const Resource> AdministrationResources() { return kAdministration; }

}  // namespace tessarlorn::http
