#include "automation/order_list.h"

#include <algorithm>

#include "platform/text/text.h"
#include "tessarlorn/collections.h"
#include "tessarlorn/error.h"

namespace tessarlorn {
namespace {

/// The key of the Vector's items that names an order; "" when none does.
std::string_view OrderOfItem(std::span<const Key> keys) {
  const auto key = std::find_if(keys.begin(), keys.end(), [](const Key& one) { return one.names == Names::kOrders; });
  return key == keys.end() ? std::string_view() : key->name;
}

}  // namespace

bool TakesKeyList(ValueType type, Standing stands, Names names) {
  const bool keys = names == Names::kOrders || names == Names::kOrderLines || names == Names::kCostInvoices;
  return stands == Standing::kKeyList || (keys && type == ValueType::kString);
}

std::optional<OrderList> FindOrderList(const Operation& operation) {
  for (std::size_t i = 0; i < operation.argument_count; ++i) {
    const Argument& argument = operation.arguments()[i];
    if (argument.names == Names::kOrders && TakesKeyList(argument.type, argument.stands, argument.names)) {
      return OrderList{.argument = i};
    }
    if (argument.type == ValueType::kVector) {
      const std::string_view item_key = OrderOfItem(argument.keys);
      if (!item_key.empty()) return OrderList{.argument = i, .items = true, .item_key = item_key};
      continue;
    }
    for (const Key& key : argument.keys) {
      const bool listed = key.names == Names::kOrders && TakesKeyList(key.type, key.stands, key.names);
      if (listed) return OrderList{.argument = i, .key = key.name};
      const std::string_view item_key = OrderOfItem(key.item_keys);
      if (!item_key.empty()) return OrderList{.argument = i, .key = key.name, .items = true, .item_key = item_key};
    }
  }
  return std::nullopt;
}

std::vector<std::vector<Variant>> SplitByOrder(const OrderList& list, std::span<const Variant> arguments,
                                               std::vector<std::string>& orders) {
  orders.clear();
  if (list.argument >= arguments.size()) return {};
  const std::shared_ptr<Dictionary> holder = list.key.empty() ? nullptr : arguments[list.argument].ToDictionary();
  if (!list.key.empty() && !holder) RaiseTypeMismatch();
  const Variant whole = holder ? holder->GetValue(list.key) : arguments[list.argument];
  std::vector<Variant> parts;
  if (list.items) {
    const std::shared_ptr<Vector> items = whole.ToVector();
    if (!items) RaiseTypeMismatch();
    for (const Variant& item : *items) {
      const std::shared_ptr<Dictionary> order = item.ToDictionary();
      if (!order) RaiseTypeMismatch();
      orders.push_back(order->GetValue(list.item_key).ToText());
      parts.emplace_back(Vector{item});
    }
  } else if (const std::string text = whole.ToText(); !text.empty()) {
    for (const std::string_view order : Split(text, ',')) {
      orders.emplace_back(order);
      parts.emplace_back(order);
    }
  }
  std::vector<std::vector<Variant>> calls;
  for (Variant& part : parts) {
    std::vector<Variant>& call = calls.emplace_back(arguments.begin(), arguments.end());
    if (holder) {
      Dictionary copy = *holder;
      copy.SetValue(list.key, std::move(part));
      call[list.argument] = std::move(copy);
    } else {
      call[list.argument] = std::move(part);
    }
  }
  return calls;
}

}  // namespace tessarlorn
