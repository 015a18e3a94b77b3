// The day of 1,000 orders of three lines on a file, every call committed: one call a step for all, and one an order.
#include <numeric>
#include <vector>

#include "bench/databases.h"
#include "bench/ratios.h"
#include "tessarlorn/clsGetData.h"
#include "tessarlorn/clsSaveData.h"

namespace tessarlorn::bench {
namespace {

constexpr int kOrders = 1000;
constexpr int kFirstKey = 50000000;

/// A database in which, besides the sample, 1,000 orders of three lines wait for picking.
std::string MakeDay(const std::string& name) {
  const std::string file = SampleCopy(10000, name);
  const Sqlite database = OpenSqlite(file);
  RunSqlite(database.get(), "BEGIN");
  for (int i = 0; i < kOrders; ++i) {
    const std::string key = std::to_string(kFirstKey + i);
    RunSqlite(
        database.get(),
        "CREATE TEMP TABLE copied AS SELECT * FROM IC_Web2ERPOrders ORDER BY FID LIMIT 1; UPDATE copied SET FID = " +
            key +
            ", FOrderStatus = 2, FPIckingGoodsStatus = 0, FUpLoadStatus = 0; INSERT INTO IC_Web2ERPOrders SELECT * FROM copied; DROP TABLE copied");
    for (int line = 0; line < 3; ++line) {
      RunSqlite(
          database.get(),
          "CREATE TEMP TABLE copied AS SELECT * FROM IC_Web2ERPOrdersEntry ORDER BY FEntryID LIMIT 1; UPDATE copied SET FID = " +
              key + ", FEntryID = " + std::to_string(kFirstKey + i * 3 + line) +
              "; INSERT INTO IC_Web2ERPOrdersEntry SELECT * FROM copied; DROP TABLE copied");
    }
  }
  RunSqlite(database.get(), "COMMIT");
  return file;
}

template <typename Call>
void Committed(Call call) {
  ContainerTransaction transaction(TheHost());
  call();
  transaction.Commit();
}

/// The seven steps for one list of orders: list, confirm, check, weigh, number and cost, deliver, mark as uploaded.
void Work(const std::string& dsn, const std::vector<int>& orders) {
  clsSaveData save(TheHost());
  clsGetData get(TheHost());
  std::string keys;
  Vector weights;
  Vector numbers;
  for (const int order : orders) {
    const std::string key = std::to_string(order);
    keys += (keys.empty() ? "" : ",") + key;
    weights.Add(Dictionary{{"FID", key},
                           {"FWeight", "1.25"},
                           {"FLogisticsCost", "8"},
                           {"FWeighttingMan", "7"},
                           {"FWeighttingStatus", "1"}});
    numbers.Add(
        Dictionary{{"FID", key}, {"FLogisticsOrder", "YD" + key}, {"FWeight", "1.25"}, {"FLogisticsCost", "8"}});
  }
  const Dictionary filter{{"AdvancedFilter", " AND t1.FID IN (" + keys + ")"}};
  const Dictionary confirm{{"sDSN", dsn}, {"FID", keys}, {"FPickManNumber", "E001"}, {"FPickRem", ""}};
  const Dictionary check{{"sDsn", dsn}, {"FID", keys}, {"UserId", "7"}};
  const Dictionary deliver{{"sDSN", dsn}, {"FID", keys}};
  Committed([&] { benchmark::DoNotOptimize(get.GetListData(dsn, &filter)); });
  Committed([&] { save.ConfirmBill(&confirm); });
  Committed([&] { save.MarkPickingGoodsStatus(&check); });
  Committed([&] { save.SaveLogWeight(dsn, &weights); });
  Committed([&] { save.SetUpLogisticsNumberAndWeight(dsn, &numbers); });
  Committed([&] { save.Delivery(&deliver); });
  Committed([&] { save.UploadStatus(&deliver); });
}

void CountOrders(benchmark::State& state) {
  state.counters["orders/s"] =
      benchmark::Counter(static_cast<double>(state.iterations()) * kOrders, benchmark::Counter::kIsRate);
}

void DayAtOnce(benchmark::State& state) {
  const std::string dsn = Dsn(MakeDay("day-at-once"));
  std::vector<int> orders(kOrders);
  std::iota(orders.begin(), orders.end(), kFirstKey);
  for (auto _ : state) Work(dsn, orders);
  CountOrders(state);
}

void DayOneByOne(benchmark::State& state) {
  const std::string dsn = Dsn(MakeDay("day-one-by-one"));
  for (auto _ : state) {
    for (int i = 0; i < kOrders; ++i) Work(dsn, {kFirstKey + i});
  }
  CountOrders(state);
}

}  // namespace

void AddDayBenchmarks() {
  AddRate("day of 1,000 orders, one call a step for all", "a good peer: 14 to 34", DayAtOnce);
  AddRate("day of 1,000 orders, one call an order", "a good peer: 14 to 34", DayOneByOne);
}

}  // namespace tessarlorn::bench
