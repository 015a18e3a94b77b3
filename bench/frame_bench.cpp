// What the frame of an operation costs above its statement.
#include "bench/databases.h"
#include "bench/ratios.h"
#include "tessarlorn/clsGetData.h"
#include "tessarlorn/connection.h"

namespace tessarlorn::bench {
namespace {

constexpr int kOrders = 10000;

void SwitchOurs(benchmark::State& state) {
  const std::string dsn = Dsn(SampleFile(kOrders));
  clsGetData service(TheHost());
  for (auto _ : state) benchmark::DoNotOptimize(service.bIsWeightting(dsn));
}

void SwitchAgainst(benchmark::State& state) {
  const auto connection = TheHost().OpenConnection("Embedded=" + SampleFile(kOrders));
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        connection->Execute("select COUNT(1) as flag  from t_SystemProfile where FKey ='ECWeightting' and FValue =1 "));
  }
}

}  // namespace

void AddFrameBenchmarks() {
  AddDifference("bIsWeightting - its statement on the open connection", "<= 15 us more", SwitchOurs, SwitchAgainst);
}

}  // namespace tessarlorn::bench
