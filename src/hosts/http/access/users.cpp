#include "hosts/http/access/users.h"

#include <algorithm>

#include "hosts/http/access/names.h"
#include "hosts/http/access/roles.h"
#include "hosts/http/access/secrets.h"
#include "hosts/http/access/statements.h"
#include "platform/text/text.h"

namespace tessarlorn::http {
namespace {

constexpr std::string_view kAdministratorRole = "administrator";

void RequireLanguage(const std::string& language) {
  const auto letter = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); };
  if (language.empty() || language.size() > 10 || !std::all_of(language.begin(), language.end(), letter)) {
    RaiseInvalid("'" + language + "' is no language code, as CHS or CHT");
  }
}

void CheckNewPassword(std::string_view password) {
  constexpr std::size_t kLeast = 8;
  if (password.empty()) RaiseInvalid("the password is empty");
  if (!IsValidUtf8(password)) RaiseInvalid("the password is not valid UTF-8");
  if (Utf16Length(password) < kLeast)
    RaiseInvalid("the password has less than " + std::to_string(kLeast) + " characters");
}

/// The settings with the role's own name, once they are checked.
UserSettings Checked(Connection& connection, UserSettings settings) {
  if (settings.role) settings.role = RequireRole(connection, *settings.role);
  if (settings.language) {
    RequireLanguage(*settings.language);
    settings.language = UpperCase(*settings.language);
  }
  if (settings.erp_user && *settings.erp_user <= 0) {
    RaiseInvalid(std::to_string(*settings.erp_user) + " is no id of a user in the ERP");
  }
  if (settings.password) CheckNewPassword(*settings.password);
  if (settings.role && *settings.role != kAdministratorRole) {
    if (settings.sql == true) {
      RaiseInvalid("only the role " + std::string(kAdministratorRole) + " may be given SQL, not " + *settings.role);
    }
    settings.sql = false;
  }
  return settings;
}

std::optional<std::string> FindUser(Connection& connection, std::string_view name) {
  if (!IsName(name)) return std::nullopt;
  SqlParameter parameters[] = {NameParameter("@name", name)};
  const RecordsetPtr row = RunStatement(connection, {"SELECT FName FROM DoorUser WHERE FName=@name", parameters});
  if (row->eof()) return std::nullopt;
  return row->Get("FName").ToText();
}

[[noreturn]] void RefuseTaken(std::string_view name) {
  RaiseInvalid("there is a user " + std::string(name) + " already; 'tessarlorn user set' changes one");
}

Variant OrNull(const auto& value) { return value ? Variant(*value) : Variant(Null{}); }

}  // namespace

void CheckNewUser(Connection& connection, std::string_view name, const UserSettings& settings) {
  RequireName("user", name);
  if (const auto taken = FindUser(connection, name)) RefuseTaken(*taken);
  Checked(connection, settings);
}

void AddUser(Connection& connection, std::string_view name, const UserSettings& settings) {
  RequireName("user", name);
  const UserSettings checked = Checked(connection, settings);
  SqlParameter parameters[] = {NameParameter("@name", name),
                               {"@password", "nvarchar(128)", HashPassword(checked.password.value())},
                               {"@erpUser", "int", checked.erp_user.value()},
                               {"@language", "nvarchar(10)", checked.language.value_or("CHS")},
                               {"@role", "nvarchar(64)", checked.role.value()},
                               {"@sql", "bit", checked.sql.value_or(false)}};
  const RecordsetPtr row = RunStatement(connection, {R"(
INSERT INTO DoorUser (FName,FHash,FErpUser,FLanguage,FRole,FSql)
SELECT @name,@password,@erpUser,@language,@role,@sql
WHERE NOT EXISTS (SELECT 1 FROM DoorUser WITH (UPDLOCK,HOLDLOCK) WHERE FName=@name)
SELECT @@ROWCOUNT AS FAdded)",
                                                     parameters});
  if (row->Get("FAdded").ToInt32() == 0) RefuseTaken(name);
}

void ChangeUser(Connection& connection, std::string_view name, const UserSettings& settings) {
  const std::string own = RequireUser(connection, name);
  const UserSettings checked = Checked(connection, settings);
  std::optional<std::string> hash;
  if (checked.password) hash = HashPassword(*checked.password);
  SqlParameter parameters[] = {NameParameter("@name", own),
                               {"@password", "nvarchar(128)", OrNull(hash)},
                               {"@erpUser", "int", OrNull(checked.erp_user)},
                               {"@language", "nvarchar(10)", OrNull(checked.language)},
                               {"@role", "nvarchar(64)", OrNull(checked.role)},
                               {"@sql", "bit", OrNull(checked.sql)},
                               {"@disabled", "bit", OrNull(checked.disabled)},
                               {"@ended", "bit", checked.password.has_value() || checked.disabled == true}};
  const RecordsetPtr row = RunStatement(connection, {R"(SET XACT_ABORT ON
DECLARE @changed int
BEGIN TRANSACTION
UPDATE DoorUser SET FHash=ISNULL(@password,FHash),FErpUser=ISNULL(@erpUser,FErpUser),
  FLanguage=ISNULL(@language,FLanguage),FRole=ISNULL(@role,FRole),FSql=ISNULL(@sql,FSql),
  FDisabled=ISNULL(@disabled,FDisabled)
WHERE FName=@name AND (ISNULL(@sql,0)=0 OR ISNULL(@role,FRole)='administrator')
SET @changed=@@ROWCOUNT
IF @changed=1 AND @ended=1 DELETE FROM DoorSession WHERE FUserID IN (SELECT FID FROM DoorUser WHERE FName=@name)
COMMIT TRANSACTION
SELECT @changed AS FChanged)",
                                                     parameters});
  if (row->Get("FChanged").ToInt32() == 0) {
    RaiseInvalid("only the role " + std::string(kAdministratorRole) + " may be given SQL, and " + own +
                 " has another one");
  }
}

void RemoveUser(Connection& connection, std::string_view name) {
  SqlParameter parameters[] = {NameParameter("@name", RequireUser(connection, name))};
  RunStatement(connection, {R"(SET XACT_ABORT ON
DECLARE @id int
BEGIN TRANSACTION
SELECT @id=FID FROM DoorUser WITH (UPDLOCK,HOLDLOCK) WHERE FName=@name
DELETE FROM DoorUser WHERE FID=@id
DELETE FROM DoorSession WHERE FUserID=@id
DELETE FROM DoorToken WHERE FUserID=@id
DELETE FROM DoorKept WHERE FUserID=@id
COMMIT TRANSACTION)",
                            parameters});
}

std::string RequireUser(Connection& connection, std::string_view name) {
  if (const auto found = FindUser(connection, name)) return *found;
  const RecordsetPtr rows = RunStatement(connection, {"SELECT FName FROM DoorUser ORDER BY FName"});
  std::vector<std::string> names;
  for (; !rows->eof(); rows->MoveNext()) names.push_back(rows->Get("FName").ToText());
  RaiseInvalid("unknown user " + std::string(name) +
               DidYouMean(name, {names.begin(), names.end()}, "; 'tessarlorn user list' lists them"));
}

RecordsetPtr ListUsers(Connection& connection) {
  return RunStatement(connection, {R"(
SELECT FName AS Name,FErpUser AS ErpUser,FLanguage AS Language,FRole AS Role,FSql AS [SQL],FDisabled AS Disabled,
  (SELECT COUNT(*) FROM DoorToken t WHERE t.FUserID=u.FID) AS Tokens,FMade AS Made
FROM DoorUser u ORDER BY FName)"});
}

}  // namespace tessarlorn::http
