#include "workbench/tabs.h"

#include <algorithm>
#include <array>

#include "platform/text/text.h"
#include "workbench/statement.h"

namespace tessarlorn::workbench {
namespace {

const std::string kUnlocked = "ISNULL(t22.FIsLock, 0) = 0";
const std::string kOrders = "IC_Web2ERPOrders t1 with(nolock)";
/// For orders that are found by their keys: where they stand, without a look at the orders themselves.
const std::string kStates = "IC_Web2ERPOrders t1 with(nolock, index(" + std::string(kStateIndex) + "))";
const std::string kOfExtension = "IC_Web2ERPOrdersEx t22 with(nolock) INNER JOIN " + kStates + " ON t1.FID = t22.FID";
const std::string kLocked = "t1.FCheckStatus = 1 AND t1.FOrderStatus > 1 AND t22.FIsLock = 1 AND t22.FLockStatus = 2";
/// Keys of orders that are refunded or have a closed line.
const std::string kRefunded =
    "SELECT FID FROM IC_Web2ERPOrdersRefund with(nolock) WHERE FRefundStatus = 1 AND FIsShowWaitVerifyTemp = 0 UNION "
    "SELECT FID FROM IC_Web2ERPOrdersEntry with(nolock) WHERE FStatus IN ('TRADE_CLOSED', 'TRADE_AUTOMATIC_CLOSED', "
    "'TRADE_MANUAL_CLOSED')";

std::string Count(const std::string& from, const std::string& condition) {
  return "(SELECT COUNT(*) FROM " + from + " WHERE " + condition + "{shops})";
}

/// All orders in a state are a range of an index.
std::string InState(const std::string& state) { return Count(kOrders, "t1.FOrderStatus = " + state); }

/// Most orders are delivered. All orders are counted without a look at them, the others as ranges of an index.
std::string Delivered() {
  return "(SELECT COUNT(*) FROM " + kOrders + "{where shops}) - @in2 - @in6 - " +
         Count(kOrders,
               "(t1.FOrderStatus < 2 OR t1.FOrderStatus BETWEEN 3 AND 5 OR t1.FOrderStatus BETWEEN 7 AND 13 OR "
               "t1.FOrderStatus > 14)");
}

/// Orders that are refunded or have a closed line and are not locked: cheaper than a look at each with kNotLocked.
std::string Refunded() {
  return Count(kStates, "t1.FID IN (" + kRefunded + " EXCEPT SELECT FID FROM IC_Web2ERPOrdersEx with(nolock) WHERE " +
                            "FIsLock > 0 OR FIsLock < 0) AND t1.FOrderStatus > 1");
}

/// How many of the rows fulfil a condition.
std::string Those(const std::string& condition) { return "COUNT(CASE WHEN " + condition + " THEN 1 END)"; }

Tab Waiting(std::string_view name, const std::string& state) {
  return {.name = name,
          .condition = "t1.FOrderStatus = " + state + " AND ISNULL(t23.FStockBillStatus, 0) <> 1 AND " + kUnlocked,
          .count = "@in" + state + " - @locked" + state + " - @queued" + state};
}

}  // namespace

std::span<const Tab> Tabs() {
  static const std::array kTabs = {
      Waiting("toBePicked", "2"),
      Waiting("toBeDelivered", "6"),
      Tab{.name = "delivered",
          // Most orders are delivered: a search for them by their state would be longer than one by the list's order.
          .condition =
              "CASE WHEN t1.FOrderStatus = 14 OR (t1.FOrderStatus = 6 AND t23.FStockBillStatus = 1) THEN 1 ELSE "
              "0 END = 1 AND " +
              kUnlocked,
          .count = Delivered() + " - @locked14 + @queued6"},
      Tab{.name = "failedUploads",
          .condition = "t1.FUpLoadStatus = 2 AND " + kUnlocked,
          .count = Count(kOrders, "t1.FUpLoadStatus = 2") + " - @lockedFailed"},
      Tab{.name = "refunds",
          .condition = "t1.FOrderStatus > 1 AND t1.FID IN (" + kRefunded + ") AND " + kUnlocked,
          .count = Refunded()},
      Tab{.name = "locked", .condition = kLocked, .count = "@locked"},
  };
  return kTabs;
}

std::string TabsStatement(std::string_view shops) {
  const auto in_state = [](const char* state) { return Those(std::string("t1.FOrderStatus = ") + state); };
  std::string text =
      "DECLARE @in2 int, @in6 int, @locked int, @locked2 int, @locked6 int, @locked14 int, @lockedFailed int, "
      "@queued2 int, @queued6 int;\r\nSELECT @in2 = " +
      InState("2") + ", @in6 = " + InState("6") + ";\r\nSELECT @locked = " + Those(kLocked) +
      ", @locked2 = " + in_state("2") + ", @locked6 = " + in_state("6") + ", @locked14 = " + in_state("14") +
      ", @lockedFailed = " + Those("t1.FUpLoadStatus = 2") + " FROM " + kOfExtension +
      " WHERE (t22.FIsLock > 0 OR t22.FIsLock < 0){shops};\r\nSELECT @queued2 = " + in_state("2") +
      ", @queued6 = " + in_state("6") + " FROM IC_StockBillOrdersStatus t23 with(nolock) INNER JOIN " + kStates +
      " ON t1.FID = t23.FID WHERE t23.FStockBillStatus = 1 AND (t1.FOrderStatus = 2 OR t1.FOrderStatus = 6) AND " +
      std::string(kNotLocked) + "{shops};\r\n";
  for (const Tab& tab : Tabs()) {
    text.append(&tab == Tabs().data() ? "SELECT '" : " UNION ALL SELECT '").append(tab.name);
    text.append("' AS FTab, ").append(tab.count).append(" AS FOrders");
  }
  // Of all orders those of few shops are a range of an index each.
  constexpr std::string_view kOfThem =
      " WHERE t1.FWebshopID IN (SELECT a.FWebShopID FROM IC_WebShopAccessData a with(nolock) WHERE a.FIsAccess = 1 AND "
      "a.FUserID = @user)";
  text = ReplaceAll(text, "{where shops}", shops.empty() ? "" : kOfThem);
  return ReplaceAll(text, "{shops}", shops);
}

const Tab* FindTab(std::string_view name) {
  const std::span<const Tab> tabs = Tabs();
  const auto found = std::find_if(tabs.begin(), tabs.end(), [&](const Tab& tab) { return tab.name == name; });
  return found == tabs.end() ? nullptr : &*found;
}

}  // namespace tessarlorn::workbench
