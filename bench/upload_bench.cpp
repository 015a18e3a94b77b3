// GetUploadDataByFID with many lines and few, and against its own queries; GetUniqueCodeIndex with many orders and few.
#include <vector>

#include "bench/databases.h"
#include "bench/ratios.h"
#include "tessarlorn/clsGetData.h"
#include "tessarlorn/clsSaveData.h"

namespace tessarlorn::bench {
namespace {

constexpr int kOrders = 100000;

/// The first orders that have that many lines together.
std::string OrdersWithLines(int lines) {
  const auto connection = TheHost().OpenConnection("Embedded=" + SampleFile(kOrders));
  const RecordsetPtr last = connection->Execute("SELECT MAX(FID) FROM (SELECT TOP " + std::to_string(lines) +
                                                " FID FROM IC_Web2ERPOrdersEntry ORDER BY FID) t");
  return KeyList(last->Get(std::size_t{0}).ToInt32());
}

void Upload(benchmark::State& state, int lines) {
  const std::string dsn = Dsn(SampleFile(kOrders));
  const std::string keys = OrdersWithLines(lines);
  clsGetData service(TheHost());
  for (auto _ : state) benchmark::DoNotOptimize(service.GetUploadDataByFID(dsn, keys));
}

void UploadMany(benchmark::State& state) { Upload(state, 100000); }
void UploadFew(benchmark::State& state) { Upload(state, 10000); }

/// The texts that the operation sends, on the same connection, without what it makes of the answers.
void UploadQueries(benchmark::State& state) {
  const std::string dsn = Dsn(SampleFile(kOrders));
  std::vector<std::string> queries;
  TheHost().ObserveStatements([&queries](std::string_view text) { queries.emplace_back(text); });
  clsGetData service(TheHost());
  service.GetUploadDataByFID(dsn, OrdersWithLines(100000));
  TheHost().ObserveStatements({});
  queries.erase(queries.begin(), queries.end() - 3);
  for (auto _ : state) {
    const auto session = SessionFactory::ForThisThread(TheHost()).NewSession();
    session->OpenSession(dsn);
    for (const std::string& query : queries) benchmark::DoNotOptimize(session->GetConnection().Execute(query));
  }
}

void Index(benchmark::State& state, int orders) {
  const std::string dsn = Dsn(SampleFile(kOrders));
  const Dictionary parameters{{"sDSN", dsn}, {"FID", KeyList(orders)}};
  clsSaveData service(TheHost());
  for (auto _ : state) benchmark::DoNotOptimize(service.GetUniqueCodeIndex(&parameters));
}

void IndexMany(benchmark::State& state) { Index(state, 2000); }
void IndexFew(benchmark::State& state) { Index(state, 200); }

}  // namespace

void AddUploadBenchmarks() {
  AddRatio("GetUploadDataByFID, 100,000 lines : 10,000", "<= 12 x", UploadMany, UploadFew);
  AddRatio("GetUploadDataByFID, 100,000 lines : its queries", "<= 1.5 x, its own work being half of them", UploadMany,
           UploadQueries);
  AddRatio("GetUniqueCodeIndex, 2,000 orders : 200", "<= 12 x", IndexMany, IndexFew);
}

}  // namespace tessarlorn::bench
