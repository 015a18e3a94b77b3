// What a caller may call: roles, each a set of operations.
#pragma once

#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tessarlorn/connection.h"
#include "tessarlorn/operations.h"

namespace tessarlorn::http {

/// Does not change. May be asked by several threads at once.
class Role {
 public:
  Role(std::string name, std::set<const Operation*> operations, bool administrator = false)
      : name_(std::move(name)), operations_(std::move(operations)), administrator_(administrator) {}

  [[nodiscard]] const std::string& name() const noexcept { return name_; }
  /// TransMode, which tells nothing of the database, is everybody's.
  [[nodiscard]] bool Allows(const Operation& operation) const;
  /// May call everything, may be given SQL, and may see how the server does.
  [[nodiscard]] bool administrator() const noexcept { return administrator_; }

 private:
  std::string name_;
  std::set<const Operation*> operations_;
  bool administrator_;
};

using RolePtr = std::shared_ptr<const Role>;

/// reader, picker, packer, dispatcher, supervisor, integrator and administrator.
const std::vector<RolePtr>& BuiltInRoles();

/// Whether it takes SQL or names of tables, so that no role but administrator may have it.
bool IsForAdministrators(const Operation& operation);

/// By name without regard to case; nullptr when there is none. Own roles are read from the database.
RolePtr FindRole(Connection& connection, std::string_view name);

/// The same for a name whose row of DoorRole has been read: `operations` is what it holds, "" when there is none. A
/// role that there is not allows nothing. Names of operations that there are not, or that only administrators may
/// call, are passed over.
RolePtr MakeRole(std::string_view name, std::string_view operations);

/// The built-in roles, then the own ones by name.
std::vector<RolePtr> AllRoles(Connection& connection);

/// Makes an own role. Raises 5 naming what is at fault: a name that is taken or is none, no operation, one that there
/// is not or that only administrators may call.
void AddRole(Connection& connection, std::string_view name, const std::vector<std::string>& operations);
/// Raises 5 when it is built in, when there is no such role, and when users have it, with their names.
void RemoveRole(Connection& connection, std::string_view name);
/// Raises 5 when there is no such role. Answers the name as the role has it.
std::string RequireRole(Connection& connection, std::string_view name);

}  // namespace tessarlorn::http
