#include "workbench/tabs.h"

#include <algorithm>
#include <array>

namespace tessarlorn::workbench {
namespace {

const std::string kUnlocked = "ISNULL(t22.FIsLock, 0) = 0";
const std::string kOrders = "IC_Web2ERPOrders t1 with(nolock)";
const std::string kWithExtension = " LEFT JOIN IC_Web2ERPOrdersEx t22 with(nolock) ON t22.FID = t1.FID";
const std::string kOfExtension = "IC_Web2ERPOrdersEx t22 with(nolock) INNER JOIN " + kOrders + " ON t1.FID = t22.FID";
const std::string kLocked = "t1.FCheckStatus = 1 AND t1.FOrderStatus > 1 AND t22.FIsLock = 1 AND t22.FLockStatus = 2";
/// Keys of orders that are refunded or have a closed line.
const std::string kRefunded =
    "(SELECT FID FROM IC_Web2ERPOrdersRefund with(nolock) WHERE FRefundStatus = 1 AND FIsShowWaitVerifyTemp = 0 UNION "
    "SELECT FID FROM IC_Web2ERPOrdersEntry with(nolock) WHERE FStatus IN ('TRADE_CLOSED', 'TRADE_AUTOMATIC_CLOSED', "
    "'TRADE_MANUAL_CLOSED'))";

std::string Count(const std::string& from, const std::string& condition) {
  return "(SELECT COUNT(*) FROM " + from + " WHERE " + condition + "{shops})";
}

/// The unlocked orders in a state.
std::string InState(const std::string& state) {
  const std::string in_state = "t1.FOrderStatus = " + state;
  return Count(kOrders, in_state) + " - " + Count(kOfExtension, "(t22.FIsLock > 0 OR t22.FIsLock < 0) AND " + in_state);
}

/// Those of them whose stock bill is queued: they count as delivered.
std::string QueuedInState(const std::string& state) {
  const std::string from =
      "IC_StockBillOrdersStatus t23 with(nolock) INNER JOIN " + kOrders + " ON t1.FID = t23.FID" + kWithExtension;
  return Count(from, "t23.FStockBillStatus = 1 AND t1.FOrderStatus = " + state + " AND " + kUnlocked);
}

Tab Waiting(std::string_view name, const std::string& state) {
  return {.name = name,
          .condition = "t1.FOrderStatus = " + state + " AND ISNULL(t23.FStockBillStatus, 0) <> 1 AND " + kUnlocked,
          .count = InState(state) + " - " + QueuedInState(state)};
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
          .count = InState("14") + " + " + QueuedInState("6")},
      Tab{.name = "failedUploads",
          .condition = "t1.FUpLoadStatus = 2 AND " + kUnlocked,
          .count = Count(kOrders + kWithExtension, "t1.FUpLoadStatus = 2 AND " + kUnlocked)},
      Tab{.name = "refunds",
          .condition = "t1.FOrderStatus > 1 AND t1.FID IN " + kRefunded + " AND " + kUnlocked,
          .count = Count(kRefunded + " r INNER JOIN " + kOrders + " ON t1.FID = r.FID" + kWithExtension,
                         "t1.FOrderStatus > 1 AND " + kUnlocked)},
      Tab{.name = "locked", .condition = kLocked, .count = Count(kOfExtension, kLocked)},
  };
  return kTabs;
}

const Tab* FindTab(std::string_view name) {
  const std::span<const Tab> tabs = Tabs();
  const auto found = std::find_if(tabs.begin(), tabs.end(), [&](const Tab& tab) { return tab.name == name; });
  return found == tabs.end() ? nullptr : &*found;
}

}  // namespace tessarlorn::workbench
