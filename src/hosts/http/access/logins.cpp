#include "hosts/http/access/logins.h"

#include <algorithm>
#include <semaphore>

#include "hosts/http/access/names.h"
#include "hosts/http/access/secrets.h"
#include "hosts/http/access/statements.h"
#include "hosts/http/access/throttle.h"

namespace tessarlorn::http {
namespace {

using std::chrono::seconds;

constexpr seconds kUseKept{60};

std::int32_t Seconds(seconds time) {
  constexpr std::int64_t kMost = 86'400'000;  // a thousand days
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(time.count(), 0, kMost));
}

SqlParameter HashParameter(std::string_view secret) { return {"@hash", "binary(32)", Sha256(secret)}; }

/// The current row of a statement that reads callers.
Caller ReadCaller(const Recordset& row) {
  Caller caller;
  caller.name = row.Get("FName").ToText();
  caller.user = row.Get("FErpUser").ToInt32();
  caller.language = row.Get("FLanguage").ToText();
  caller.role = MakeRole(row.Get("FRole").ToText(),
                         row.IsNull(*row.FindField("FOperations")) ? "" : row.Get("FOperations").ToText());
  caller.sql = caller.role->administrator() && row.Get("FSql").ToBool();
  caller.token = row.Get("FToken").ToText();
  return caller;
}

/// Keeps the time of the use. Nothing is lost when others hold the table just then, and nobody waits for them: an
/// embedded database has one writer, who may take long.
void NoteUse(Connection& connection, std::string_view statement, std::span<SqlParameter> parameters) {
  constexpr std::int32_t kLockTimeout = 1222;
  const std::string batch = "SET LOCK_TIMEOUT 50\n" + std::string(statement) + "\nSET LOCK_TIMEOUT -1";
  try {
    RunStatement(connection, {batch, parameters});
  } catch (const Error& error) {
    const bool held = error.number() == error_number::kTimeout || error.number() == error_number::kAbortedDeadlock ||
                      error.native().number == kLockTimeout;
    if (!held) throw;
    connection.Execute("SET LOCK_TIMEOUT -1");
  }
}

/// A place to check a password in, which takes 64 MB: there are two.
class HashPlace {
 public:
  HashPlace() : taken_(places_.try_acquire_for(seconds(3))) {}
  HashPlace(const HashPlace&) = delete;
  HashPlace& operator=(const HashPlace&) = delete;
  ~HashPlace() {
    if (taken_) places_.release();
  }
  [[nodiscard]] bool taken() const noexcept { return taken_; }

 private:
  static inline std::counting_semaphore<2> places_{2};
  bool taken_;
};

/// What is checked for users that there are not.
const std::string& HashOfNobody() {
  static const std::string hash = HashPassword(RandomText());
  return hash;
}

constexpr const char* kReadUser = R"(
SELECT u.FID,u.FHash,u.FName,u.FErpUser,u.FLanguage,u.FRole,u.FSql,r.FOperations,N'' AS FToken
FROM DoorUser u LEFT JOIN DoorRole r ON r.FName=u.FRole
WHERE u.FName=@name AND u.FDisabled=0)";

/// No session begins when the user was changed while the password was checked.
constexpr std::string_view kBegin = R"(SET XACT_ABORT ON
DECLARE @begun int
BEGIN TRANSACTION
INSERT INTO DoorSession (FHash,FUserID,FBegun,FUsed) SELECT @hash,FID,SYSUTCDATETIME(),SYSUTCDATETIME()
FROM DoorUser WITH (HOLDLOCK) WHERE FID=@id AND FHash=@password AND FDisabled=0
SET @begun=@@ROWCOUNT
)";
constexpr std::string_view kRenew = "UPDATE DoorUser SET FHash=@renewed WHERE FID=@id AND FHash=@password\n";
constexpr std::string_view kEnd = "COMMIT TRANSACTION\nSELECT @begun AS FBegun";

/// Begins a session of the user in the row; nothing when the user has been changed.
std::optional<std::string> BeginSession(Connection& connection, const Recordset& user, const Attempt& attempt,
                                        const std::string& renewed) {
  std::string cookie = RandomText();
  std::vector<SqlParameter> parameters = attempt.Parameters();
  parameters.push_back(HashParameter(cookie));
  parameters.push_back({"@id", "int", user.Get("FID")});
  parameters.push_back({"@password", "nvarchar(128)", user.Get("FHash")});
  std::string text = std::string(kBegin).append(Attempt::kForgive);
  if (!renewed.empty()) {
    parameters.push_back({"@renewed", "nvarchar(128)", renewed});
    text += kRenew;
  }
  const RecordsetPtr row = RunStatement(connection, {text.append(kEnd), parameters});
  if (row->Get("FBegun").ToInt32() == 0) return std::nullopt;
  return cookie;
}

}  // namespace

std::optional<Caller> CallerOfToken(Connection& connection, std::string_view token) {
  if (!token.starts_with("tl_")) return std::nullopt;
  SqlParameter parameters[] = {HashParameter(token)};
  const RecordsetPtr row = RunStatement(connection, {R"(
SELECT u.FName,u.FErpUser,u.FLanguage,u.FRole,u.FSql,r.FOperations,t.FName AS FToken,
  CASE WHEN t.FUsed>DATEADD(second,-60,SYSUTCDATETIME()) THEN 1 ELSE 0 END AS FFresh
FROM DoorToken t INNER JOIN DoorUser u ON u.FID=t.FUserID LEFT JOIN DoorRole r ON r.FName=u.FRole
WHERE t.FHash=@hash AND u.FDisabled=0 AND (t.FExpires IS NULL OR t.FExpires>SYSUTCDATETIME()))",
                                                     parameters});
  if (row->eof()) return std::nullopt;
  if (row->Get("FFresh").ToInt32() == 0) {
    NoteUse(connection, "UPDATE DoorToken SET FUsed=SYSUTCDATETIME() WHERE FHash=@hash", parameters);
  }
  return ReadCaller(*row);
}

std::optional<Caller> CallerOfSession(Connection& connection, std::string_view cookie, const SessionTimes& times) {
  if (cookie.empty()) return std::nullopt;
  const seconds kept = std::min(kUseKept, times.idle / 2);
  SqlParameter parameters[] = {HashParameter(cookie),
                               {"@idle", "int", Seconds(times.idle)},
                               {"@whole", "int", Seconds(times.whole)},
                               {"@kept", "int", Seconds(kept)}};
  const RecordsetPtr row = RunStatement(connection, {R"(
SELECT u.FName,u.FErpUser,u.FLanguage,u.FRole,u.FSql,r.FOperations,N'' AS FToken,
  CASE WHEN s.FUsed>DATEADD(second,-@kept,SYSUTCDATETIME()) THEN 1 ELSE 0 END AS FFresh
FROM DoorSession s INNER JOIN DoorUser u ON u.FID=s.FUserID LEFT JOIN DoorRole r ON r.FName=u.FRole
WHERE s.FHash=@hash AND u.FDisabled=0 AND s.FUsed>DATEADD(second,-@idle,SYSUTCDATETIME())
  AND s.FBegun>DATEADD(second,-@whole,SYSUTCDATETIME()))",
                                                     parameters});
  if (row->eof()) return std::nullopt;
  if (row->Get("FFresh").ToInt32() == 0) {
    NoteUse(connection, "UPDATE DoorSession SET FUsed=SYSUTCDATETIME() WHERE FHash=@hash",
            std::span(parameters).first(1));
  }
  return ReadCaller(*row);
}

Login LogIn(Connection& connection, std::string_view user, std::string_view password, std::string_view address) {
  const std::string_view name = IsName(user) ? user : std::string_view();
  const Attempt attempt(connection, name, address);
  Login login;
  if (attempt.wait().count() > 0) {
    login.wait = std::chrono::ceil<seconds>(attempt.wait());
    return login;
  }
  SqlParameter parameters[] = {NameParameter("@name", name)};
  const RecordsetPtr row = RunStatement(connection, {kReadUser, parameters});
  std::string renewed;
  {
    const HashPlace place;
    if (!place.taken()) {
      attempt.TakeBack(connection);
      login.wait = seconds(1);
      return login;
    }
    const std::string& nobody = HashOfNobody();
    const bool right = IsPassword(password, row->eof() ? nobody : row->Get("FHash").ToText());
    if (!right || row->eof()) return login;
    if (IsOutdatedHash(row->Get("FHash").ToText())) renewed = HashPassword(password);
  }
  if (const auto cookie = BeginSession(connection, *row, attempt, renewed)) {
    login.cookie = *cookie;
    login.caller = ReadCaller(*row);
  }
  return login;
}

void LogOut(Connection& connection, std::string_view cookie) {
  SqlParameter parameters[] = {HashParameter(cookie)};
  RunStatement(connection, {"DELETE FROM DoorSession WHERE FHash=@hash", parameters});
}

void LogOutEverywhere(Connection& connection, std::string_view user) {
  if (!IsName(user)) return;
  SqlParameter parameters[] = {NameParameter("@name", user)};
  RunStatement(connection,
               {"DELETE FROM DoorSession WHERE FUserID IN (SELECT FID FROM DoorUser WHERE FName=@name)", parameters});
}

void SweepAccess(Connection& connection, const SessionTimes& times) {
  SqlParameter parameters[] = {{"@idle", "int", Seconds(times.idle)}, {"@whole", "int", Seconds(times.whole)}};
  RunStatement(connection, {R"(
DELETE FROM DoorSession WHERE FUsed<=DATEADD(second,-@idle,SYSUTCDATETIME())
  OR FBegun<=DATEADD(second,-@whole,SYSUTCDATETIME()))",
                            parameters});
  SweepThrottle(connection);
}

}  // namespace tessarlorn::http
