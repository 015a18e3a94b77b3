// The calls of operations that do nothing without a connection string and keys to work on.
#pragma once

#include <string>
#include <string_view>
#include <type_traits>

#include "frame/call_frame.h"
#include "frame/parameters.h"

namespace tessarlorn {

struct OrderCall {
  Connection& connection;
  const Parameters& parameters;
  /// The list FID.
  const std::string& orders;
};

/// Runs `body(Connection&, const Parameters&)` as CallOperation does. Without a key that the contract says is needed
/// nothing is done, and the answer is empty: False, 0, "" or Nothing.
template <typename Body>
auto CallForDictionary(InstanceState instance, const Contract& contract, const Dictionary* values, const Body& body,
                       OldSession old_session = OldSession::kReset)
    -> std::invoke_result_t<Body, Connection&, const Parameters&> {
  const Parameters parameters(values);
  if (!parameters.HasAllOf(contract.keys())) return {};
  return CallOperation(
      instance, contract, parameters.Dsn(contract.keys()),
      [&](Connection& connection) { return body(connection, parameters); }, old_session);
}

/// The same for `body(const OrderCall&)`: an operation on the orders of the list FID.
template <typename Body>
auto CallForOrders(InstanceState instance, const Contract& contract, const Dictionary* values, const Body& body)
    -> std::invoke_result_t<Body, const OrderCall&> {
  return CallForDictionary(instance, contract, values, [&](Connection& connection, const Parameters& parameters) {
    const std::string orders = parameters.Text("FID");
    return body(OrderCall{connection, parameters, orders});
  });
}

}  // namespace tessarlorn
