// UpdateDeliveryData against the same upserts prepared in SQLite; Delivery with short and long key lists.
#include "bench/databases.h"
#include "bench/ratios.h"
#include "tessarlorn/clsSaveData.h"

namespace tessarlorn::bench {
namespace {

constexpr int kOrders = 10000;

void QueueOurs(benchmark::State& state) {
  const std::string dsn = Dsn(SampleCopy(kOrders, "queue-ours"));
  const std::string keys = KeyList(kOrders);
  clsSaveData service(TheHost());
  for (auto _ : state) {
    ContainerTransaction transaction(TheHost());
    service.UpdateDeliveryData(dsn, keys);
    transaction.Commit();
  }
}

void QueueAgainst(benchmark::State& state) {
  const Sqlite database = OpenSqlite(SampleCopy(kOrders, "queue-against"));
  SqliteUpsert queue(database.get(), "SELECT 1 FROM IC_StockBillOrdersStatus WHERE FID = ?1",
                     "UPDATE IC_StockBillOrdersStatus SET FStockBillResult = ?2, FStockBillStatus = ?3 WHERE FID = ?1",
                     "INSERT INTO IC_StockBillOrdersStatus(FID,FStockBillStatus,FStockBillResult) VALUES (?1,?3,?2)");
  for (auto _ : state) {
    RunSqlite(database.get(), "BEGIN IMMEDIATE");
    for (int key = 1; key <= kOrders; ++key) queue.Run(1, key, "", 1);
    RunSqlite(database.get(), "COMMIT");
  }
}

/// 100,000 orders in lists of `count`, so that the two lengths can be set against each other.
void Deliver(benchmark::State& state, int count) {
  const std::string dsn = Dsn(SampleCopy(100000, "deliver-" + std::to_string(count)), ";Synchronous=Normal");
  const Dictionary parameters{{"sDSN", dsn}, {"FID", KeyList(count)}};
  clsSaveData service(TheHost());
  for (auto _ : state) {
    for (int i = 0; i < 100000 / count; ++i) service.Delivery(&parameters);
  }
}

void DeliverLong(benchmark::State& state) { Deliver(state, 100000); }
void DeliverShort(benchmark::State& state) { Deliver(state, 1000); }

}  // namespace

void AddQueueBenchmarks() {
  AddRatio("UpdateDeliveryData, 10,000 orders : prepared upserts", "<= 2.5 x", QueueOurs, QueueAgainst);
  AddRatio("Delivery of 100,000 orders, one list : a hundred lists of 1,000", "<= 1 x", DeliverLong, DeliverShort);
}

}  // namespace tessarlorn::bench
