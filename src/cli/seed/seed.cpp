#include "cli/seed/seed.h"

#include <algorithm>

#include "cli/seed/master_data.h"
#include "cli/seed/order_maker.h"
#include "cli/seed/order_records.h"
#include "cli/seed/order_writer.h"
#include "cli/seed/settings.h"
#include "platform/error.h"

namespace tessarlorn::cli {
namespace {

constexpr int kOrdersATransaction = 5000;

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

void CheckThatNoOrderIsThere(Connection& connection) {
  const RecordsetPtr order = connection.Execute("SELECT TOP 1 FID FROM IC_Web2ERPOrders");
  if (order->RecordCount() == 0) return;
  Raise(error_number::kInvalidArgument, "The database already holds orders (FID " +
                                            order->Get(std::size_t{0}).ToText() +
                                            " is one). Sample orders are only put into a database without any.");
}

}  // namespace

void Seed(Connection& connection, const SeedOptions& options,
          const std::function<void(int done, int total)>& progress) {
  if (options.orders < 0) Raise(error_number::kInvalidArgument, "The number of sample orders is negative");
  CheckThatNoOrderIsThere(connection);
  MasterData master;
  InTransaction(connection, [&] {
    WriteSettings(connection);
    master = PrepareMasterData(connection);
  });
  OrderMaker maker(master, options.random_seed, options.orders);
  OrderWriter writer(connection, master.country);
  for (int done = 0; done < options.orders;) {
    const int end = std::min(done + kOrdersATransaction, options.orders);
    InTransaction(connection, [&] {
      for (; done < end; ++done) writer.Write(maker.Next(), master);
      writer.Flush();
    });
    if (done == options.orders) InTransaction(connection, [&] { WriteOrderRecords(connection); });
    if (progress) progress(done, options.orders);
  }
}

}  // namespace tessarlorn::cli
