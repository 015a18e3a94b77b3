// Where an operation takes its orders as a list, for calls order by order.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tessarlorn/operations.h"

namespace tessarlorn {

/// Whether the value is a list of keys with commas between them, by the row of an argument or of a key of a Dictionary.
bool TakesKeyList(ValueType type, Standing stands, Names names);

struct OrderList {
  std::size_t argument = 0;
  /// Of the argument's Dictionary; "" for the argument itself.
  std::string_view key = {};
  /// It is a Vector with an order in each item, not a list with commas.
  bool items = false;
  /// The key of each item that is the order; "" without items.
  std::string_view item_key = {};
};

/// Nothing when the operation takes one order, none, or order lines.
std::optional<OrderList> FindOrderList(const Operation& operation);

/// The arguments with only the n-th order, for each order of the list; the caller's collections are not changed. None
/// when the list is empty or missing. Raises 13 for a Vector or a Dictionary that is none.
/// @param orders the keys as they are given, one for each answer
std::vector<std::vector<Variant>> SplitByOrder(const OrderList& list, std::span<const Variant> arguments,
                                               std::vector<std::string>& orders);

}  // namespace tessarlorn
