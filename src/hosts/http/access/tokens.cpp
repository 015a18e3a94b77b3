#include "hosts/http/access/tokens.h"

#include "hosts/http/access/names.h"
#include "hosts/http/access/secrets.h"
#include "hosts/http/access/statements.h"
#include "hosts/http/access/users.h"

namespace tessarlorn::http {

std::string AddToken(Connection& connection, std::string_view name, std::string_view user, std::optional<int> days) {
  RequireName("token", name);
  const std::string owner = RequireUser(connection, user);
  std::string token = "tl_" + RandomText();
  SqlParameter parameters[] = {NameParameter("@name", name),
                               NameParameter("@user", owner),
                               {"@hash", "binary(32)", Sha256(token)},
                               {"@days", "int", days ? Variant(*days) : Variant(Null{})}};
  const RecordsetPtr row = RunStatement(connection, {R"(
INSERT INTO DoorToken (FUserID,FName,FHash,FExpires)
SELECT u.FID,@name,@hash,DATEADD(day,@days,SYSUTCDATETIME()) FROM DoorUser u WITH (HOLDLOCK) WHERE u.FName=@user
  AND NOT EXISTS (SELECT 1 FROM DoorToken t WITH (UPDLOCK,HOLDLOCK) WHERE t.FUserID=u.FID AND t.FName=@name)
SELECT @@ROWCOUNT AS FAdded)",
                                                     parameters});
  if (row->Get("FAdded").ToInt32() == 0) {
    RaiseInvalid(owner + " has a token " + std::string(name) + " already; revoke it first, or choose another name");
  }
  return token;
}

void RevokeToken(Connection& connection, std::string_view name, std::string_view user) {
  RequireName("token", name);
  const std::string owner = RequireUser(connection, user);
  SqlParameter parameters[] = {NameParameter("@name", name), NameParameter("@user", owner)};
  const RecordsetPtr row = RunStatement(connection, {R"(
DELETE FROM DoorToken WHERE FName=@name AND FUserID IN (SELECT FID FROM DoorUser WHERE FName=@user)
SELECT @@ROWCOUNT AS FRevoked)",
                                                     parameters});
  if (row->Get("FRevoked").ToInt32() > 0) return;
  const RecordsetPtr tokens = ListTokens(connection, owner);
  std::vector<std::string> names;
  for (; !tokens->eof(); tokens->MoveNext()) names.push_back(tokens->Get("Token").ToText());
  RaiseInvalid(owner + " has no token " + std::string(name) +
               DidYouMean(name, {names.begin(), names.end()}, "; 'tessarlorn token list' lists them"));
}

RecordsetPtr ListTokens(Connection& connection, std::string_view user) {
  const std::string owner = user.empty() ? "" : RequireUser(connection, user);
  SqlParameter parameters[] = {NameParameter("@user", owner)};
  return RunStatement(connection, {R"(
SELECT u.FName AS [User],t.FName AS Token,t.FMade AS Made,t.FExpires AS Expires,t.FUsed AS Used,
  CAST(CASE WHEN t.FExpires<=SYSUTCDATETIME() THEN 1 ELSE 0 END AS bit) AS Expired
FROM DoorToken t INNER JOIN DoorUser u ON u.FID=t.FUserID
WHERE @user='' OR u.FName=@user
ORDER BY u.FName,t.FName)",
                                   parameters});
}

}  // namespace tessarlorn::http
