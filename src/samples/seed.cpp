#include "samples/seed.h"

#include "samples/master_data.h"
#include "samples/order_maker.h"
#include "samples/order_records.h"
#include "samples/order_writer.h"
#include "samples/settings.h"
#include "tessarlorn/error.h"

namespace tessarlorn::cli {
namespace {

/// Between two reports of progress.
constexpr int kOrdersAStep = 5000;

/// Runs `body` in a transaction.
template <typename Body>
void InTransaction(Connection& connection, const Body& body) {
  connection.BeginTransaction();
  try {
    body();
    connection.CommitTransaction();
  } catch (...) {
    if (connection.usable()) connection.RollbackTransaction();
    throw;
  }
}

/// From here to the transaction's end nobody else writes orders.
void LockOrders(Connection& connection) {
  try {
    connection.Execute("UPDATE IC_Web2ERPOrders WITH (TABLOCKX) SET FOrderID = FOrderID WHERE FID < 0");
  } catch (const Error& error) {
    if (error.number() != error_number::kTimeout) throw;
    Raise(
        error_number::kTimeout,
        "Another program is writing to the database, perhaps another 'tessarlorn seed'. Nothing was put in; try again "
        "when it has ended. The database said: " +
            error.description());
  }
}

void CheckThatNoOrderIsThere(Connection& connection) {
  const RecordsetPtr order = connection.Execute("SELECT TOP 1 FID FROM IC_Web2ERPOrders");
  if (order->RecordCount() == 0) return;
  Raise(error_number::kInvalidArgument,
        "The database already holds orders (FID " + order->Get(std::size_t{0}).ToText() +
            " is one). Sample orders are only put into a database without any: take a new one, or delete its orders.");
}

}  // namespace

void Seed(Connection& connection, const SeedOptions& options,
          const std::function<void(int done, int total)>& progress) {
  if (options.orders < 0) Raise(error_number::kInvalidArgument, "The number of sample orders is negative");
  InTransaction(connection, [&] {
    LockOrders(connection);
    CheckThatNoOrderIsThere(connection);
    WriteSettings(connection);
    const MasterData master = PrepareMasterData(connection);
    OrderMaker maker(master, options);
    OrderWriter writer(connection, master.country);
    for (int done = 1; done <= options.orders; ++done) {
      writer.Write(maker.Next(), master);
      if (progress && done % kOrdersAStep == 0 && done < options.orders) progress(done, options.orders);
    }
    writer.Flush();
    WriteOrderRecords(connection);
  });
  if (progress) progress(options.orders, options.orders);
}

}  // namespace tessarlorn::cli
