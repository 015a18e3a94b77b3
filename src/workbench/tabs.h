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
  /// How many there are, as a scalar expression; "{shops}" stands where the condition of web shops on t1 goes. Large
  /// states are counted in an index, less the few orders that do not belong to them.
  std::string count;
};

std::span<const Tab> Tabs();

/// nullptr when there is none.
const Tab* FindTab(std::string_view name);

}  // namespace tessarlorn::workbench
