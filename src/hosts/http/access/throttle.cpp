#include "hosts/http/access/throttle.h"

#include "hosts/http/access/statements.h"
#include "platform/text/text.h"

namespace tessarlorn::http {
namespace {

/// The rows are made and locked first. So of several attempts at once each sees those before it.
constexpr const char* kCount = R"(SET XACT_ABORT ON
DECLARE @now datetime2(3), @until datetime2(3), @userBefore datetime2(3), @addressBefore datetime2(3)
BEGIN TRANSACTION
INSERT INTO DoorThrottle (FKey,FFailures,FLast) SELECT @address,0,SYSUTCDATETIME()
WHERE NOT EXISTS (SELECT 1 FROM DoorThrottle WITH (UPDLOCK,HOLDLOCK) WHERE FKey=@address)
INSERT INTO DoorThrottle (FKey,FFailures,FLast) SELECT @user,0,SYSUTCDATETIME()
WHERE NOT EXISTS (SELECT 1 FROM DoorThrottle WITH (UPDLOCK,HOLDLOCK) WHERE FKey=@user)
SET @now=SYSUTCDATETIME()
SELECT @until=MAX(DATEADD(second,CASE WHEN FFailures<5 OR FLast<DATEADD(hour,-1,@now) THEN 0
  WHEN FFailures>13 THEN 300 ELSE POWER(2,FFailures-5) END,FLast))
FROM DoorThrottle WHERE FKey IN (@address,@user)
IF @until>@now
BEGIN
  ROLLBACK TRANSACTION
  SELECT DATEDIFF(millisecond,@now,@until) AS FWait,@now AS FAt,@now AS FUser,@now AS FAddress
  RETURN
END
SELECT @addressBefore=FLast FROM DoorThrottle WHERE FKey=@address
SELECT @userBefore=FLast FROM DoorThrottle WHERE FKey=@user
UPDATE DoorThrottle SET FFailures=CASE WHEN FLast<DATEADD(hour,-1,@now) THEN 1 ELSE FFailures+1 END,FLast=@now
WHERE FKey IN (@address,@user)
COMMIT TRANSACTION
SELECT 0 AS FWait,@now AS FAt,@userBefore AS FUser,@addressBefore AS FAddress)";

constexpr const char* kTakeBack =
    R"(UPDATE DoorThrottle SET FFailures=CASE WHEN FFailures>0 THEN FFailures-1 ELSE 0 END,
  FLast=CASE WHEN FLast<>@at THEN FLast WHEN FKey=@user THEN @userBefore ELSE @addressBefore END
WHERE FKey IN (@address,@user))";

constexpr std::size_t kAddressWidth = 64;

}  // namespace

Attempt::Attempt(Connection& connection, std::string_view user, std::string_view address)
    : user_("u:" + std::string(user)), address_("a:" + std::string(address.substr(0, kAddressWidth))) {
  SqlParameter parameters[] = {{"@user", "nvarchar(100)", user_}, {"@address", "nvarchar(100)", address_}};
  const RecordsetPtr row = RunStatement(connection, {kCount, parameters});
  wait_ = std::chrono::milliseconds(row->Get("FWait").ToInt32());
  at_ = row->Get("FAt");
  user_before_ = row->Get("FUser");
  address_before_ = row->Get("FAddress");
}

std::vector<SqlParameter> Attempt::Parameters() const {
  return {{"@user", "nvarchar(100)", user_},
          {"@address", "nvarchar(100)", address_},
          {"@at", "datetime2(3)", at_},
          {"@userBefore", "datetime2(3)", user_before_},
          {"@addressBefore", "datetime2(3)", address_before_}};
}

void Attempt::TakeBack(Connection& connection) const {
  std::vector<SqlParameter> parameters = Parameters();
  RunStatement(connection, {kTakeBack, parameters});
}

void SweepThrottle(Connection& connection) {
  RunStatement(connection, {"DELETE FROM DoorThrottle WHERE FLast<DATEADD(hour,-1,SYSUTCDATETIME())"});
}

}  // namespace tessarlorn::http
