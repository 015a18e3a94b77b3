#include <algorithm>

#include "hosts/http/access/names.h"
#include "hosts/http/access/roles.h"
#include "hosts/http/access/statements.h"
#include "platform/text/text.h"

namespace tessarlorn::http {
namespace {

RolePtr FindBuiltIn(std::string_view name) {
  for (const RolePtr& role : BuiltInRoles()) {
    if (EqualsIgnoreCase(role->name(), name)) return role;
  }
  return nullptr;
}

/// The row of an own role; at its end when there is none.
RecordsetPtr ReadRole(Connection& connection, std::string_view name) {
  SqlParameter parameters[] = {NameParameter("@name", name)};
  return RunStatement(connection, {"SELECT FName,FOperations FROM DoorRole WHERE FName=@name", parameters});
}

}  // namespace

RolePtr MakeRole(std::string_view name, std::string_view operations) {
  if (RolePtr role = FindBuiltIn(name)) return role;
  std::set<const Operation*> allowed;
  for (const std::string_view word : Split(operations, ',')) {
    const Operation* const operation = FindOperation(word);
    if (operation != nullptr && !IsForAdministrators(*operation)) allowed.insert(operation);
  }
  return std::make_shared<Role>(std::string(name), std::move(allowed));
}

RolePtr FindRole(Connection& connection, std::string_view name) {
  if (RolePtr role = FindBuiltIn(name)) return role;
  if (!IsName(name)) return nullptr;
  const RecordsetPtr row = ReadRole(connection, name);
  return row->eof() ? nullptr : MakeRole(row->Get("FName").ToText(), row->Get("FOperations").ToText());
}

std::vector<RolePtr> AllRoles(Connection& connection) {
  std::vector<RolePtr> roles = BuiltInRoles();
  const RecordsetPtr rows = RunStatement(connection, {"SELECT FName,FOperations FROM DoorRole ORDER BY FName"});
  for (; !rows->eof(); rows->MoveNext()) {
    roles.push_back(MakeRole(rows->Get("FName").ToText(), rows->Get("FOperations").ToText()));
  }
  return roles;
}

std::string RequireRole(Connection& connection, std::string_view name) {
  if (const RolePtr role = FindRole(connection, name)) return role->name();
  const std::vector<RolePtr> roles = AllRoles(connection);
  std::vector<std::string_view> names;
  std::string list;
  for (const RolePtr& role : roles) {
    names.emplace_back(role->name());
    list += (list.empty() ? "" : ", ") + role->name();
  }
  RaiseInvalid("unknown role " + std::string(name) + DidYouMean(name, names, "; the roles are " + list));
}

void AddRole(Connection& connection, std::string_view name, const std::vector<std::string>& operations) {
  RequireName("role", name);
  if (FindRole(connection, name) != nullptr) RaiseInvalid("there is a role " + std::string(name) + " already");
  std::string list;
  std::set<const Operation*> seen;
  for (const std::string& word : operations) {
    const Operation* const operation = FindOperation(Trim(word));
    if (operation == nullptr) {
      std::vector<std::string_view> names;
      for (const Operation* const known : Operations()) names.push_back(known->name);
      RaiseInvalid("unknown operation " + word + DidYouMean(word, names));
    }
    if (IsForAdministrators(*operation)) {
      RaiseInvalid("only administrators may call " + std::string(operation->name) +
                   ", which takes SQL or names of tables");
    }
    if (seen.insert(operation).second) list.append(list.empty() ? "" : ",").append(operation->name);
  }
  if (list.empty()) RaiseInvalid("a role needs an operation");
  SqlParameter parameters[] = {NameParameter("@name", name), {"@operations", "nvarchar(max)", list}};
  RunStatement(connection, {"INSERT INTO DoorRole (FName,FOperations) VALUES (@name,@operations)", parameters});
}

void RemoveRole(Connection& connection, std::string_view name) {
  if (FindBuiltIn(name) != nullptr)
    RaiseInvalid("the role " + std::string(name) + " is built in and cannot be removed");
  const std::string own = RequireRole(connection, name);
  SqlParameter parameters[] = {NameParameter("@name", own)};
  const RecordsetPtr users = RunStatement(connection, {R"(
DELETE FROM DoorRole WHERE FName=@name AND NOT EXISTS (SELECT 1 FROM DoorUser WITH (HOLDLOCK) WHERE FRole=@name)
SELECT FName FROM DoorUser WHERE FRole=@name ORDER BY FName)",
                                                       parameters});
  std::string list;
  for (; !users->eof(); users->MoveNext()) list += (list.empty() ? "" : ", ") + users->Get("FName").ToText();
  if (!list.empty()) RaiseInvalid("the role " + own + " is that of " + list + "; give them another one first");
}

}  // namespace tessarlorn::http
