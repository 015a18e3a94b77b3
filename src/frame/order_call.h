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

/// Runs `body(Connection&, const Parameters&)` as CallOperation does. Without sDSN nothing is done, and the answer is
/// empty.
template <typename Body>
auto CallForDictionary(InstanceState instance, std::string_view source, const Dictionary* values, const Body& body,
                       OldSession old_session = OldSession::kReset)
    -> std::invoke_result_t<Body, Connection&, const Parameters&> {
  const Parameters parameters(values);
  if (!parameters.HasText("sDSN")) return {};
  return CallOperation(
      instance, source, parameters.Text("sDSN"), [&](Connection& connection) { return body(connection, parameters); },
      old_session);
}

/// Runs `body(const OrderCall&)` as CallOperation does. Without sDSN or FID nothing is done, and the answer is empty:
/// False, 0, "" or Nothing.
template <typename Body>
auto CallForOrders(InstanceState instance, std::string_view source, const Dictionary* values, const Body& body)
    -> std::invoke_result_t<Body, const OrderCall&> {
  if (!Parameters(values).HasText("FID")) return {};
  return CallForDictionary(instance, source, values, [&](Connection& connection, const Parameters& parameters) {
    const std::string orders = parameters.Text("FID");
    return body(OrderCall{connection, parameters, orders});
  });
}

/// Runs `body(Connection&)` as CallOperation does. Without a connection string or keys nothing is done, and the answer
/// is empty.
template <typename Body>
auto CallForKeys(InstanceState instance, std::string_view source, std::string_view dsn, std::string_view keys,
                 const Body& body) -> std::invoke_result_t<Body, Connection&> {
  if (dsn.empty() || keys.empty()) return {};
  return CallOperation(instance, source, dsn, body);
}

}  // namespace tessarlorn
