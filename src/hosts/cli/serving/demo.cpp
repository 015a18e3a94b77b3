#include "hosts/cli/serving/demo.h"

#include <memory>

#include "hosts/cli/console/progress.h"
#include "hosts/cli/console/usage_error.h"
#include "hosts/http/access/secrets.h"
#include "hosts/http/access/users.h"
#include "samples/seed.h"
#include "schema/schema_files.h"

namespace tessarlorn::cli {
namespace {

constexpr const char* kUser = "demo";
/// The administrator of the sample data.
constexpr std::int32_t kErpUser = 16394;
constexpr int kOrders = 2000;
constexpr int kDeliveredDays = 30;
constexpr int kOpenDays = 1;
constexpr std::size_t kPasswordSize = 12;

/// What the log would hold had people worked here: picking checks and weighings.
constexpr const char* kLog = R"(
INSERT INTO IC_TradeLog (FOrderFID, FOPUserID, FOPCode, FUserIP, FOPTime, FOldValue, FNewValue)
SELECT FID, FPickingGoodMan, 3014, '10.0.0.21', FOrderPickingDate, '', '' FROM IC_Web2ERPOrders
WHERE FPIckingGoodsStatus = 1 AND FPickingGoodMan > 0
INSERT INTO IC_TradeLog (FOrderFID, FOPUserID, FOPCode, FUserIP, FOPTime, FOldValue, FNewValue)
SELECT FID, FWeighttingMan, 3008, '10.0.0.22', DATEADD(minute, 6, FOrderPickingDate), '', '' FROM IC_Web2ERPOrders
WHERE FWeighttingStatus = 1 AND FWeighttingMan > 0 AND FOrderPickingDate < DATEADD(minute, -6, GETDATE())
)";

std::int32_t Count(Connection& connection, const char* query) {
  return connection.Query(query)->Get(std::size_t{0}).ToInt32();
}

bool HasOrders(Connection& connection) {
  if (Count(connection, "SELECT CASE WHEN OBJECT_ID('IC_Web2ERPOrders') IS NULL THEN 0 ELSE 1 END") == 0) return false;
  return Count(connection, "SELECT CASE WHEN EXISTS (SELECT 1 FROM IC_Web2ERPOrders) THEN 1 ELSE 0 END") == 1;
}

bool HasDemoUser(Connection& connection) {
  if (Count(connection, "SELECT CASE WHEN OBJECT_ID('DoorUser') IS NULL THEN 0 ELSE 1 END") == 0) return false;
  return Count(connection,
               "SELECT COUNT(*) FROM DoorUser WHERE FName = 'demo' AND FErpUser = 16394 AND FRole = "
               "'administrator' AND FDisabled = 0") == 1;
}

}  // namespace

std::string PrepareDemo(CommandContext& context) {
  if (context.FindDsn().empty()) context.dsn = "Embedded=demo.db";
  const std::unique_ptr<Connection> connection = context.OpenDatabase();
  const bool filled = HasOrders(*connection);
  if (filled && !HasDemoUser(*connection)) {
    throw UsageError("--demo wants a database without orders, or one that it made: this one has orders of its own");
  }
  ApplySchema(*connection);
  if (!filled) {
    Progress progress("orders");
    const SampleDays days{.end = DateTime::Now(), .delivered = kDeliveredDays, .open = kOpenDays, .until_end = true};
    Seed(*connection, {.orders = kOrders, .days = days},
         [&progress](int done, int total) { progress.Show(done, total); });
  }
  if (!filled) connection->Execute(kLog);
  http::UserSettings settings;
  settings.password = http::RandomText().substr(0, kPasswordSize);
  if (HasDemoUser(*connection)) {
    http::ChangeUser(*connection, kUser, settings);
  } else {
    settings.erp_user = kErpUser;
    settings.role = "administrator";
    http::AddUser(*connection, kUser, settings);
  }
  return *settings.password;
}

}  // namespace tessarlorn::cli
