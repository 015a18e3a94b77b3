// What the embedded database adds to SQLite for statements that it has not seen before, and for many of them in one
// batch.
#include "bench/databases.h"
#include "bench/ratios.h"
#include "platform/text/text.h"
#include "tessarlorn/connection.h"

namespace tessarlorn::bench {
namespace {

constexpr int kOrders = 10000;
constexpr int kStatements = 200;
constexpr int kRows = 10000;

/// A query of the kind that people write, with names that make each number another statement. It finds nothing.
std::string QueryNumber(int number) {
  return ReplaceAll(
      "SELECT t1.FID AS FKey{n}, t1.FOrderID, t1.FSitePayDate, t1.FBuyerName, t1.FConsignee, t1.FLogisticsOrder, t1.FWeight, "
      "t2.FName AS FCarrier, t22.FLotNumber, t22.FSerialNumber, CASE WHEN t1.FOrderStatus = 14 THEN t1.FWeight ELSE 0 END AS "
      "FDelivered FROM IC_Web2ERPOrders t1 INNER JOIN IC_Web2ERPOrdersEx t22 ON t22.FID = t1.FID LEFT JOIN IC_Logistics t2 ON "
      "t2.FItemID = t1.FLogisticsID WHERE t1.FID = -1 AND t1.FOrderStatus > 1 AND t1.FWebshopID IN (SELECT FWebshopID FROM "
      "IC_WebShopAccessData) ORDER BY t1.FSitePayDate DESC",
      "{n}", std::to_string(number));
}

/// So that no run of the benchmark sees a statement of another.
int NextNumber() {
  static int number = 0;
  return ++number;
}

void FirstSeenOurs(benchmark::State& state) {
  const auto connection = TheHost().OpenConnection("Embedded=" + SampleFile(kOrders));
  for (auto _ : state) {
    for (int i = 0; i < kStatements; ++i) benchmark::DoNotOptimize(connection->Execute(QueryNumber(NextNumber())));
  }
}

void FirstSeenAgainst(benchmark::State& state) {
  const Sqlite database = OpenSqlite(SampleFile(kOrders));
  for (auto _ : state) {
    for (int i = 0; i < kStatements; ++i) ReadAll(PrepareSqlite(database.get(), QueryNumber(NextNumber())).get());
  }
}

constexpr const char* kTable =
    "CREATE TABLE BenchRows (FKey int NOT NULL PRIMARY KEY, FName nvarchar(40), FAmount decimal(14,4), FState int)";

void LiteralsOurs(benchmark::State& state) {
  const auto connection = TheHost().OpenConnection("Embedded=:memory:");
  connection->Execute(kTable);
  std::string batch;
  for (int key = 1; key <= kRows; ++key) {
    const std::string number = std::to_string(key);
    batch += "INSERT INTO BenchRows (FKey, FName, FAmount, FState) VALUES (" + number + ", N'order " + number + "', " +
             std::to_string(key % 100) + ".25, 2)\r\n";
  }
  for (auto _ : state) {
    connection->Execute(batch);
    state.PauseTiming();
    connection->Execute("TRUNCATE TABLE BenchRows");
    state.ResumeTiming();
  }
}

void LiteralsAgainst(benchmark::State& state) {
  const Sqlite database = OpenSqlite(":memory:");
  RunSqlite(database.get(), kTable);
  const SqliteStatement insert = PrepareSqlite(database.get(), "INSERT INTO BenchRows VALUES (?1, ?2, ?3, 2)");
  for (auto _ : state) {
    RunSqlite(database.get(), "BEGIN IMMEDIATE");
    for (int key = 1; key <= kRows; ++key) {
      const std::string name = "order " + std::to_string(key);
      sqlite3_bind_int(insert.get(), 1, key);
      sqlite3_bind_text(insert.get(), 2, name.data(), static_cast<int>(name.size()), SQLITE_STATIC);
      sqlite3_bind_int64(insert.get(), 3, (key % 100) * 10000 + 2500);
      ReadAll(insert.get());
      sqlite3_reset(insert.get());
    }
    RunSqlite(database.get(), "COMMIT");
    state.PauseTiming();
    RunSqlite(database.get(), "DELETE FROM BenchRows");
    state.ResumeTiming();
  }
}

}  // namespace

void AddStatementBenchmarks() {
  AddRatio("200 statements seen for the first time : prepared by SQLite", "<= 3 x", FirstSeenOurs, FirstSeenAgainst);
  AddRatio("10,000 INSERTs with literals, one batch : prepared", "<= 2 x", LiteralsOurs, LiteralsAgainst);
}

}  // namespace tessarlorn::bench
