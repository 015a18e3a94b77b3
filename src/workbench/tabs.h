// The tabs of the list of orders: which orders stand in each. They are those that the list itself shows with the filter
// of the tab.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace tessarlorn::workbench {

struct Tab {
  std::string_view name;
  /// On the header t1, its extension t22 and its stock bill t23.
  std::string condition;
  /// How many there are, as an expression of TabsStatement.
  std::string count;
};

/// The index that the counts name: the database needs it.
inline constexpr std::string_view kStateIndex = "IX_Web2ERPOrders_State";

std::span<const Tab> Tabs();

/// Counts the orders of each tab: FTab and FOrders. The few that are locked or queued are looked at once, and taken
/// from the counts of the large states. @param shops the condition of web shops on t1, behind AND; "" for none
std::string TabsStatement(std::string_view shops);

/// nullptr when there is none.
const Tab* FindTab(std::string_view name);

}  // namespace tessarlorn::workbench
