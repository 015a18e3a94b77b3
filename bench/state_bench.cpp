// Operations that set the state of each of 10,000 orders, against the same statements prepared in SQLite.
#include <array>
#include <set>

#include "bench/databases.h"
#include "bench/ratios.h"
#include "tessarlorn/clsSaveData.h"

namespace tessarlorn::bench {
namespace {

constexpr int kOrders = 10000;

/// Calls in a transaction of its own each time, as a container does.
template <typename Call>
void RunOurs(benchmark::State& state, const std::string& name, const Call& call) {
  const std::string dsn = Dsn(SampleCopy(kOrders, name));
  clsSaveData service(TheHost());
  for (auto _ : state) {
    ContainerTransaction transaction(TheHost());
    call(service, dsn);
    transaction.Commit();
  }
}

template <typename Call>
void RunAgainst(benchmark::State& state, sqlite3* database, const Call& call) {
  for (auto _ : state) {
    RunSqlite(database, "BEGIN IMMEDIATE");
    call();
    RunSqlite(database, "COMMIT");
  }
}

void PrintOurs(benchmark::State& state) {
  Vector orders;
  for (int key = 1; key <= kOrders; ++key) orders.Add(Dictionary{{"FID", key}});
  RunOurs(state, "print-ours",
          [&](clsSaveData& service, const std::string& dsn) { service.SavePrintSerialNumber(dsn, &orders); });
}

void PrintAgainst(benchmark::State& state) {
  const Sqlite database = OpenSqlite(SampleCopy(kOrders, "print-against"));
  SqliteUpsert serial(database.get(), "SELECT 1 FROM IC_Web2ERPOrdersEx WHERE FID = ?1",
                      "UPDATE IC_Web2ERPOrdersEx SET FLotNumber = ?2, FSerialNumber = ?3 WHERE FID = ?1",
                      "INSERT INTO IC_Web2ERPOrdersEx(FID,FLotNumber,FSerialNumber,FOrderID) VALUES (?1,?2,?3,'')");
  int lot = 0;
  RunAgainst(state, database.get(), [&] {
    const std::string number = "202611" + std::to_string(++lot);
    for (int key = 1; key <= kOrders; ++key) serial.Run(1, key, number, std::to_string(key));
  });
}

void ReachableOurs(benchmark::State& state) {
  const std::string keys = KeyList(kOrders);
  RunOurs(state, "reachable-ours",
          [&](clsSaveData& service, const std::string& dsn) { service.UpdateAddressReachableState(dsn, keys, 1); });
}

void ReachableAgainst(benchmark::State& state) {
  const Sqlite database = OpenSqlite(SampleCopy(kOrders, "reachable-against"));
  SqliteUpsert reachable(database.get(), "SELECT 1 FROM IC_Web2ERPOrdersEx WHERE FID = ?1",
                         "UPDATE IC_Web2ERPOrdersEx SET FAddressReachable = ?2 WHERE FID = ?1",
                         "INSERT INTO IC_Web2ERPOrdersEx(FID,FOrderID,FLotNumber,FSerialNumber,FCreateDate,"
                         "FAddressReachable) VALUES (?1,'','','',4005072000000,?2)");
  const SqliteStatement addresses = PrepareSqlite(
      database.get(),
      "SELECT t1.FDeliveryProvince, t1.FDeliveryCity, t1.FDeliveryDistrict, t2.FNumber FROM IC_Web2ERPOrders t1 "
      "LEFT JOIN IC_Logistics t2 ON t1.FLogisticsID = t2.FItemID WHERE t1.FID BETWEEN 1 AND ?1 AND "
      "t1.FDeliveryProvince <> 0 AND t1.FDeliveryCity <> 0 AND t1.FDeliveryDistrict <> 0 AND t2.FNumber <> '' AND "
      "t1.FLogisticsID <> 0");
  const std::string condition =
      " WHERE FDeliveryProvince = ?1 AND FDeliveryCity = ?2 AND FDeliveryDistrict = ?3 AND FNumber = ?4";
  SqliteUpsert served(database.get(), "SELECT 1 FROM IC_SaveAddressReachableInfo" + condition,
                      "UPDATE IC_SaveAddressReachableInfo SET FArrive = ?5" + condition,
                      "INSERT INTO IC_SaveAddressReachableInfo(FDeliveryProvince,FDeliveryCity,FDeliveryDistrict,"
                      "FNumber,FArrive) VALUES (?1,?2,?3,?4,?5)");
  RunAgainst(state, database.get(), [&] {
    for (int key = 1; key <= kOrders; ++key) reachable.Run(1, key, 1);
    std::set<std::array<std::string, 4>> combinations;
    sqlite3_bind_int(addresses.get(), 1, kOrders);
    while (sqlite3_step(addresses.get()) == SQLITE_ROW) {
      std::array<std::string, 4> parts;
      for (int i = 0; i < 4; ++i) {
        parts[static_cast<std::size_t>(i)] = reinterpret_cast<const char*>(sqlite3_column_text(addresses.get(), i));
      }
      combinations.insert(parts);
    }
    sqlite3_reset(addresses.get());
    for (const auto& [province, city, district, carrier] : combinations) {
      served.Run(4, province, city, district, carrier, 1);
    }
  });
}

void SubmitOurs(benchmark::State& state) {
  const std::string keys = KeyList(kOrders);
  RunOurs(state, "submit-ours", [&](clsSaveData& service, const std::string& dsn) {
    service.SubMitTplOrderTask(dsn, keys, 1, "Ann", "WH-E1");
  });
}

void SubmitAgainst(benchmark::State& state) {
  const Sqlite database = OpenSqlite(SampleCopy(kOrders, "submit-against"));
  SqliteUpsert submitted(
      database.get(), "SELECT 1 FROM IC_Web2ERPOrdersEx WHERE FID = ?1",
      "UPDATE IC_Web2ERPOrdersEx SET FTplStatus = ?2 WHERE FTplStatus IN ('0','2') AND FID = ?1",
      "INSERT INTO IC_Web2ERPOrdersEx(FID,FOrderID,FLotNumber,FSerialNumber,FCreateDate,FAddressReachable,FTplStatus) "
      "VALUES (?1,'','','',4005072000000,0,?2)");
  const SqliteStatement task = PrepareSqlite(
      database.get(),
      "INSERT INTO TPLTaskFlow(FTaskType,FTaskName,FWebTplType,FWebTplID,FProgressPer,FUserName,FRefreshTime,FStatus,"
      "FPriority) VALUES (130,?1,1,'WH-E1',0,'Ann',4005072000000,0,10)");
  const std::string keys = KeyList(kOrders);
  RunAgainst(state, database.get(), [&] {
    sqlite3_bind_text(task.get(), 1, keys.data(), static_cast<int>(keys.size()), SQLITE_STATIC);
    sqlite3_step(task.get());
    sqlite3_reset(task.get());
    for (int key = 1; key <= kOrders; ++key) submitted.Run(1, key, "3");
  });
}

}  // namespace

void AddStateBenchmarks() {
  AddRatio("SavePrintSerialNumber, 10,000 orders : prepared", "<= 2.5 x", PrintOurs, PrintAgainst);
  AddRatio("UpdateAddressReachableState, 10,000 orders : prepared", "<= 2.5 x", ReachableOurs, ReachableAgainst);
  AddRatio("SubMitTplOrderTask, 10,000 orders : prepared", "<= 2.5 x", SubmitOurs, SubmitAgainst);
}

}  // namespace tessarlorn::bench
