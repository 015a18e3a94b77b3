// Pick lists, checks and carriers of 10,000 orders against those of 1,000: what a list takes grows with its length.
#include "bench/databases.h"
#include "bench/ratios.h"
#include "tessarlorn/clsGetData.h"
#include "tessarlorn/clsSaveData.h"

namespace tessarlorn::bench {
namespace {

constexpr int kOrders = 10000;
constexpr int kFew = 1000;

template <int kMode, int kCount>
void PickList(benchmark::State& state) {
  const Dictionary keys{{"sDSN", Dsn(SampleFile(kOrders))}, {"FID", KeyList(kCount)}, {"Mode", kMode}};
  clsGetData service(TheHost());
  for (auto _ : state) benchmark::DoNotOptimize(service.GetPrintRecordsetForPick(&keys));
}

template <int kCount>
void Check(benchmark::State& state) {
  const Dictionary keys{{"sDSN", Dsn(SampleFile(kOrders))}, {"FID", KeyList(kCount)}};
  clsGetData service(TheHost());
  for (auto _ : state) benchmark::DoNotOptimize(service.CheckBillStatus(&keys));
}

/// Every time all of them that are not delivered get another carrier.
template <int kCount>
void Carrier(benchmark::State& state) {
  const std::string dsn = Dsn(SampleCopy(kOrders, "carrier-" + std::to_string(kCount)));
  Dictionary keys{{"sDSN", dsn}, {"FID", KeyList(kCount)}};
  {
    const auto session = SessionFactory::ForThisThread(TheHost()).NewSession();
    session->OpenSession(dsn);
    session->GetConnection().Execute("UPDATE IC_Web2ERPOrders SET FOrderStatus = 6");
  }
  clsSaveData service(TheHost());
  int carrier = 301;
  for (auto _ : state) {
    ContainerTransaction transaction(TheHost());
    keys.SetValue("FLogisticsID", carrier);
    service.SetUpLogisticsCompany(&keys);
    transaction.Commit();
    carrier = carrier == 301 ? 302 : 301;
  }
}

template <int kCount>
void Parcels(benchmark::State& state) {
  const Dictionary keys{{"sDSN", Dsn(SampleCopy(kOrders, "parcels-" + std::to_string(kCount)))},
                        {"FID", KeyList(kCount)},
                        {"FParcelQuantity", 2}};
  clsSaveData service(TheHost());
  for (auto _ : state) {
    ContainerTransaction transaction(TheHost());
    service.SetSFPackageQuantity(&keys);
    transaction.Commit();
  }
}

}  // namespace

void AddOrderBenchmarks() {
  AddRatio("GetPrintRecordsetForPick, 10,000 orders : 1,000", "<= 12 x", PickList<0, kOrders>, PickList<0, kFew>);
  AddRatio("GetPrintRecordsetForPick collected, 10,000 orders : 1,000", "<= 12 x", PickList<1, kOrders>,
           PickList<1, kFew>);
  AddRatio("CheckBillStatus, 10,000 orders : 1,000", "<= 12 x", Check<kOrders>, Check<kFew>);
  AddRatio("SetUpLogisticsCompany, 10,000 orders : 1,000", "<= 12 x", Carrier<kOrders>, Carrier<kFew>);
  AddRatio("SetSFPackageQuantity, 10,000 orders : 1,000", "<= 12 x", Parcels<kOrders>, Parcels<kFew>);
}

}  // namespace tessarlorn::bench
