// Calls that can be taken back alone within a transaction.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "tessarlorn/connection.h"
#include "tessarlorn/operations.h"
#include "tessarlorn/session.h"

namespace tessarlorn {

/// Raised when the database ended the whole transaction with the error of one call in it.
class TransactionLost : public std::runtime_error {
 public:
  explicit TransactionLost(const Error& cause)
      : std::runtime_error("the database ended the transaction: " + cause.description()), cause_(cause) {}
  [[nodiscard]] const Error& cause() const noexcept { return cause_; }

 private:
  Error cause_;
};

// No watcher of batches hears of these.

/// Sets a save point in the connection's transaction. @param name of Transact-SQL
void SetSavePoint(Connection& connection, std::string_view name);
/// Takes back what was done behind it. Raises TransactionLost with the cause when that cannot be.
void TakeBackTo(Connection& connection, std::string_view name, const Error& cause);

/// Runs the body behind a save point of the connection's transaction. What it raises is raised here, and what it did is
/// taken back first. @param name of Transact-SQL
template <typename Body>
void BehindSavePoint(Connection& connection, std::string_view name, const Body& body) {
  SetSavePoint(connection, name);
  try {
    body();
  } catch (const Error& error) {
    TakeBackTo(connection, name, error);
    throw;
  } catch (const std::exception& error) {
    TakeBackTo(connection, name, Error(error_number::kInternalError, "", error.what()));
    throw;
  }
}

/// The connection of the thread's container transaction to the database of a session string, which calls with that
/// database share.
class TransactionConnection {
 public:
  /// Raises what opening a session raises.
  TransactionConnection(Host& host, std::string_view dsn);
  [[nodiscard]] Connection& get() { return session_->GetConnection(); }

 private:
  std::shared_ptr<DataSession> session_;
};

/// What became of one order.
struct OrderOutcome {
  std::string order;
  Variant result;
  std::optional<Error> error;
};

/// Calls the operation with each list of arguments, each behind a save point of its own: what can be done is done.
/// @param orders names them, in the same order. Raises TransactionLost; then nothing was done.
std::vector<OrderOutcome> CallOrderByOrder(Host& host, Connection& connection, const Operation& operation,
                                           const std::vector<std::string>& orders,
                                           std::vector<std::vector<Variant>> calls);

/// The connection string among the arguments of a call, "" when there is none.
std::string ConnectionStringOf(const Operation& operation, std::span<const Variant> arguments);

}  // namespace tessarlorn
