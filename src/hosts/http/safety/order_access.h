// Which orders a call names, and which of them its user may see: those of the web shops that he has access to.
#pragma once

#include <cstdint>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "tessarlorn/connection.h"
#include "tessarlorn/operations.h"

namespace tessarlorn::http {

struct OrderAccess {
  /// The keys of the orders that are named and may be seen, each once, in the order given. Lines, waybill numbers,
  /// unique codes and invoices stand for their orders, unless the user may see every shop: they are not looked up then.
  std::vector<std::int32_t> orders;
  /// What was named and may not be seen, or does not exist, each once and as it was given: "12".
  std::vector<std::string> hidden;
  /// Something is hidden, and it was all that was named, or the place takes one order only: nothing is left to do.
  bool single = false;
  /// The operation works on orders that no value names, and the user may not see every shop: it is not for him.
  bool unbounded = false;
};

/// Finds the orders that the arguments name, and takes those out that the user may not see: keys out of lists, items
/// out of Vectors, keys out of a Dictionary of which every key counts. A single value stays, and the call must not be
/// made. The caller's collections are not changed: an argument gets a copy.
///
/// The user may see every shop when the setting WebShopAccess is 0 or he is in group 1; nothing is hidden then. Else
/// these are the shops that IC_WebShopAccessData gives him. A value that names several orders is hidden when one of
/// them is. What does not exist is hidden, and so is a waybill number that is empty or missing: it means all orders
/// that have none.
///
/// One statement asks for switch and group, when the operation names orders at all; one more for each 2000 keys, for
/// users who may not see every shop. Raises what the connection raises.
/// @pre FindRefusedValue found nothing; a key that is no number is hidden nevertheless
OrderAccess CutHiddenOrders(const Operation& operation, std::span<Variant> arguments, std::int32_t user,
                            Connection& connection);

/// The same for a user who sees every shop: nothing is hidden, and nobody is asked.
OrderAccess NamedOrders(const Operation& operation, std::span<Variant> arguments);

/// Whether the setting or the user's group lets him see every web shop. Raises what the connection raises.
bool SeesEveryShop(Connection& connection, std::int32_t user);

/// Those of the orders that the user may not see, or that do not exist. Raises what the connection raises.
std::set<std::int32_t> HiddenOrders(std::span<const std::int32_t> orders, std::int32_t user, Connection& connection);

}  // namespace tessarlorn::http
