#include "hosts/calls/save_point.h"

#include <utility>

#include "tessarlorn/collections.h"

namespace tessarlorn {

void SetSavePoint(Connection& connection, std::string_view name) {
  const WatchedBatches unwatched(nullptr);
  connection.Execute("SAVE TRANSACTION " + std::string(name));
}

void TakeBackTo(Connection& connection, std::string_view name, const Error& cause) {
  const WatchedBatches unwatched(nullptr);
  std::int32_t state = 0;
  try {
    const RecordsetPtr rows = connection.Query("IF XACT_STATE() = 1 ROLLBACK TRANSACTION " + std::string(name) +
                                               " SELECT XACT_STATE() AS TransactionState");
    state = rows->Get(std::size_t{0}).ToInt32();
  } catch (const Error&) {
    // The connection is lost, and the transaction with it.
  }
  if (state != 1) throw TransactionLost(cause);
}

TransactionConnection::TransactionConnection(Host& host, std::string_view dsn)
    : session_(SessionFactory::ForThisThread(host).NewSession()) {
  session_->OpenSession(dsn);
}

std::vector<OrderOutcome> CallOrderByOrder(Host& host, Connection& connection, const Operation& operation,
                                           const std::vector<std::string>& orders,
                                           std::vector<std::vector<Variant>> calls) {
  std::vector<OrderOutcome> outcomes;
  for (std::size_t i = 0; i < calls.size(); ++i) {
    OrderOutcome& outcome = outcomes.emplace_back();
    outcome.order = orders[i];
    try {
      BehindSavePoint(connection, "one_order",
                      [&] { outcome.result = ServiceObject(host, operation.service).Invoke(operation, calls[i]); });
    } catch (const Error& error) {
      outcome.error = error;
    }
  }
  return outcomes;
}

std::string ConnectionStringOf(const Operation& operation, std::span<const Variant> arguments) {
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const Argument& argument = operation.arguments()[i];
    if (argument.is_connection) return arguments[i].ToText();
    const std::shared_ptr<Dictionary> values = arguments[i].ToDictionary();
    for (const Key& key : argument.keys) {
      if (key.is_connection() && values && values->Exists(key.name)) return values->GetValue(key.name).ToText();
    }
  }
  return "";
}

}  // namespace tessarlorn
