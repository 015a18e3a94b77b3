// Users who may call: they are added, changed, listed and removed.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tessarlorn/connection.h"

namespace tessarlorn::http {

/// What is to be set of a user; nothing for what stays as it is.
struct UserSettings {
  std::optional<std::int32_t> erp_user = {};
  std::optional<std::string> role = {};
  std::optional<std::string> language = {};
  /// Only administrators may be given SQL. Whoever gets another role loses it.
  std::optional<bool> sql = {};
  std::optional<bool> disabled = {};
  std::optional<std::string> password = {};
};

/// Raises 5 naming what is at fault: a name that is taken or is none, an unknown role, an id below 1, a language that
/// is no code, SQL for another role than administrator, a password of less than eight characters.
/// @pre erp_user, role and password are given; the language is CHS when it is not
void AddUser(Connection& connection, std::string_view name, const UserSettings& settings);

/// Raises 5 as AddUser would, and adds nobody: before somebody is asked for a password.
void CheckNewUser(Connection& connection, std::string_view name, const UserSettings& settings);

/// Raises 5 as AddUser, and when there is no such user. A new password and disabling end the user's sessions; tokens
/// of a disabled user do nothing until the user is enabled.
void ChangeUser(Connection& connection, std::string_view name, const UserSettings& settings);

/// With tokens and sessions. Raises 5 when there is no such user.
void RemoveUser(Connection& connection, std::string_view name);

/// Raises 5 when there is no such user. Answers the name as it was added.
std::string RequireUser(Connection& connection, std::string_view name);

/// Name, ErpUser, Language, Role, SQL, Disabled, Tokens (their number), Made (UTC).
RecordsetPtr ListUsers(Connection& connection);

}  // namespace tessarlorn::http
