#include "workbench/figures.h"

#include <array>
#include <string>

#include "platform/text/text.h"
#include "workbench/statement.h"

namespace tessarlorn::workbench {
namespace {

constexpr std::int32_t kMostDays = 31;
constexpr int kHours = 24;

/// What somebody does with an order, and where that is kept. Every count is one range of an index.
struct Step {
  std::string_view name;
  /// FPersonID and FPersonName of everybody who may have done it.
  std::string_view people;
  /// Orders t1 of the person p.
  std::string_view orders;
  std::string_view time;
  std::string_view count = "COUNT(*)";
};
constexpr std::string_view kUsers =
    "SELECT CAST(FUserID AS nvarchar(50)) AS FPersonID, FName AS FPersonName, FUserID FROM t_User";
constexpr std::array kSteps = {
    Step{"picked", "SELECT FNumber AS FPersonID, FName AS FPersonName, 0 AS FUserID FROM t_Emp",
         "IC_Web2ERPOrders t1 with(nolock) WHERE t1.FPickMan = p.FPersonID", "t1.FPickDate"},
    Step{"checked", kUsers,
         "IC_Web2ERPOrders t1 with(nolock) WHERE t1.FPickingGoodMan = p.FUserID AND t1.FPIckingGoodsStatus = 1",
         "t1.FOrderPickingDate"},
    Step{"weighed", kUsers, "IC_TradeLog l with(nolock){logged} WHERE l.FOPCode = 3008 AND l.FOPUserID = p.FUserID",
         "l.FOPTime", "COUNT(DISTINCT l.FOrderFID)"},
    Step{"delivered", kUsers, "IC_Web2ERPOrders t1 with(nolock) WHERE t1.FShippingMan = p.FUserID", "t1.FSendDate"},
};

std::int32_t DaysOf(const Dictionary& values) {
  const std::int32_t days = values.GetValue("days", 1).ToInt32();
  if (days < 1 || days > kMostDays) {
    throw WrongValue("days", "days is 1 to " + std::to_string(kMostDays) + ", not " + std::to_string(days));
  }
  return days;
}

/// Keys of orders that do not wait in their state: locked ones, and those whose stock bill is queued.
constexpr std::string_view kNotWaiting =
    "(SELECT FID FROM IC_Web2ERPOrdersEx with(nolock) WHERE FIsLock > 0 OR FIsLock < 0 UNION SELECT FID FROM "
    "IC_StockBillOrdersStatus with(nolock) WHERE FStockBillStatus = 1)";

/// (0),(1),… for each bucket
std::string Numbers(int count) {
  std::string text = "(0)";
  for (int i = 1; i < count; ++i) text += ",(" + std::to_string(i) + ")";
  return text;
}

/// Sets @from, the begin of the first day, and @to, that of the day behind the last.
Statement& SetDays(Statement& statement, const Dictionary& values, std::int32_t days) {
  return statement.Set("@day", "date", values.GetValue("day")).Set("@days", "int", days);
}
constexpr std::string_view kDays =
    "DECLARE @from datetime = DATEADD(day, 1 - @days, @day), @to datetime = DATEADD(day, 1, @day);\r\n";

/// A weighing is of the log: only where shops are hidden its order is looked at.
std::string Logged(const Asker& asker) {
  return asker.every_shop ? "" : " INNER JOIN IC_Web2ERPOrders t1 with(nolock) ON t1.FID = l.FOrderFID";
}

}  // namespace

RecordsetPtr AskBacklog(Connection& connection, const Asker& asker, const Dictionary&) {
  const std::string shops(OfShops(asker));
  // All orders in a state are a range of an index. Few of them are locked or on their way out; those are counted once.
  Statement statement(
      "DECLARE @now datetime = DATEADD(minute, DATEDIFF(minute, 0, GETDATE()), 0);\r\n"
      "WITH b AS (SELECT FState, FAge, DATEADD(hour, -FOldest, @now) AS FFrom, DATEADD(hour, -FYoungest, @now) AS FTo "
      "FROM (VALUES (0, 4, -1), (1, 24, 4), (2, 48, 24), (3, 72, 48), (4, 168, 72), (5, 1000000, 168)) v(FAge, FOldest, "
      "FYoungest) CROSS JOIN (VALUES (2), (6)) s(FState)), x AS (SELECT b.FState, b.FAge, COUNT(*) AS FOrders FROM ");
  statement.Add(kNotWaiting)
      .Add(
          " n INNER JOIN IC_Web2ERPOrders t1 with(nolock) ON t1.FID = n.FID INNER JOIN b ON b.FState = t1.FOrderStatus "
          "AND t1.FSitePayDate >= b.FFrom AND t1.FSitePayDate < b.FTo WHERE t1.FOrderStatus IN (2, 6)")
      .Add(shops)
      .Add(
          " GROUP BY b.FState, b.FAge) SELECT b.FState, b.FAge, CASE b.FAge WHEN 5 THEN NULL ELSE b.FFrom END AS FFrom, "
          "b.FTo, (SELECT COUNT(*) FROM IC_Web2ERPOrders t1 with(nolock) WHERE t1.FOrderStatus = b.FState AND "
          "t1.FSitePayDate >= b.FFrom AND t1.FSitePayDate < b.FTo")
      .Add(shops)
      .Add(
          ") - ISNULL(x.FOrders, 0) AS FOrders FROM b LEFT JOIN x ON x.FState = b.FState AND x.FAge = b.FAge ORDER BY "
          "b.FState, b.FAge");
  return statement.SetShops(asker).Run(connection);
}

RecordsetPtr AskWork(Connection& connection, const Asker& asker, const Dictionary& values) {
  const std::int32_t days = DaysOf(values);
  const std::string unit = days == 1 ? "hour" : "day";
  const std::string buckets = "(SELECT DATEADD(" + unit + ", n, @from) AS FFrom, DATEADD(" + unit +
                              ", n + 1, @from) AS FTo FROM (VALUES " + Numbers(days == 1 ? kHours : days) + ") v(n)) b";
  Statement statement{std::string(kDays)};
  statement.Add("SELECT x.FStep, x.FFrom, x.FTo, x.FPersonID, x.FPersonName, x.FOrders FROM (");
  for (const Step& step : kSteps) {
    const std::string orders = ReplaceAll(step.orders, "{logged}", Logged(asker)) + std::string(OfShops(asker));
    const auto add_orders = [&](std::string_view from, std::string_view to) {
      statement.Add(orders).Add(" AND ").Add(step.time).Add(" >= ").Add(from).Add(" AND ").Add(step.time);
      statement.Add(" < ").Add(to);
    };
    statement.Add(&step == kSteps.data() ? "SELECT '" : " UNION ALL SELECT '")
        .Add(step.name)
        .Add("' AS FStep, b.FFrom, b.FTo, p.FPersonID, p.FPersonName, (SELECT ")
        .Add(step.count)
        .Add(" FROM ");
    add_orders("b.FFrom", "b.FTo");
    // Few of the ERP's users do any of this.
    statement.Add(") AS FOrders FROM (SELECT p.* FROM (").Add(step.people).Add(") p WHERE EXISTS (SELECT 1 FROM ");
    add_orders("@from", "@to");
    statement.Add(")) p CROSS JOIN ").Add(buckets);
  }
  statement.Add(") x WHERE x.FOrders > 0 ORDER BY x.FStep, x.FFrom, x.FPersonName, x.FPersonID").SetShops(asker);
  return SetDays(statement, values, days).Run(connection);
}

RecordsetPtr AskCarriers(Connection& connection, const Asker& asker, const Dictionary& values) {
  const std::int32_t days = DaysOf(values);
  Statement statement{std::string(kDays)};
  statement
      .Add("SELECT x.FCarrierID, ISNULL(c." + std::string(asker.language == "CHS" ? "FName" : "FName_CHT") +
           ", '') AS FCarrier, x.FOrders, x.FWeight, x.FCost FROM (SELECT t1.FLogisticsID AS FCarrierID, COUNT(*) AS "
           "FOrders, SUM(t1.FWeight) AS FWeight, SUM(t1.FLogisticsCost) AS FCost FROM IC_Web2ERPOrders t1 with(nolock) "
           "WHERE t1.FSendDate >= @from AND t1.FSendDate < @to")
      .Add(OfShops(asker))
      .Add(
          " GROUP BY t1.FLogisticsID) x LEFT JOIN IC_Logistics c with(nolock) ON c.FItemID = x.FCarrierID ORDER BY "
          "x.FOrders DESC, x.FCarrierID")
      .SetShops(asker);
  return SetDays(statement, values, days).Run(connection);
}

RecordsetPtr AskFailures(Connection& connection, const Asker& asker, const Dictionary&) {
  Statement statement(
      "SELECT TOP (200) t1.FReasonsForFailure AS FReason, t1.FUpLoadStatus AS FUpload, COUNT(*) AS FOrders FROM "
      "IC_Web2ERPOrders t1 with(nolock) WHERE (t1.FUpLoadStatus = 2 OR (t1.FUpLoadStatus = 0 AND t1.FOrderStatus = 14 "
      "AND t1.FReasonsForFailure <> '')) AND ");
  return statement.Add(kNotLocked)
      .Add(OfShops(asker))
      .Add(" GROUP BY t1.FReasonsForFailure, t1.FUpLoadStatus ORDER BY FOrders DESC, FReason, FUpload")
      .SetShops(asker)
      .Run(connection);
}

}  // namespace tessarlorn::workbench
