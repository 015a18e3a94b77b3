// The questions of the workbench's figures, with a million orders and with a tenth of them.
#include "bench/databases.h"
#include "bench/ratios.h"
#include "tessarlorn/date_time.h"
#include "workbench/question.h"

namespace tessarlorn::bench {
namespace {

constexpr int kMillion = 1'000'000;
constexpr int kTenth = 100'000;

const Dictionary& LastDays() {
  static const Dictionary days{{"day", *DateTime::FromCivil({.year = 2026, .month = 6, .day = 20})}, {"days", 30}};
  return days;
}

constexpr char kTabs[] = "tabs";
constexpr char kBacklog[] = "backlog";
constexpr char kWork[] = "work";
constexpr char kCarriers[] = "carriers";
constexpr char kFailures[] = "failures";

template <const char* kName, int kOrders>
void Ask(benchmark::State& state) {
  const auto connection = TheHost().OpenConnection("Embedded=" + SampleFile(kOrders));
  const workbench::Question& question = *workbench::FindQuestion(kName);
  const workbench::Asker asker{.user = 16394, .language = "CHS", .every_shop = true};
  const Dictionary values = question.keys.empty() ? Dictionary() : LastDays();
  for (auto _ : state) benchmark::DoNotOptimize(question.ask(*connection, asker, values)->RecordCount());
}

}  // namespace

void AddFigureBenchmarks() {
  constexpr const char* kWanted = "<= 100 ms at a million";
  AddRatio("tabs, 1,000,000 orders : 100,000", kWanted, Ask<kTabs, kMillion>, Ask<kTabs, kTenth>);
  AddRatio("backlog, 1,000,000 orders : 100,000", kWanted, Ask<kBacklog, kMillion>, Ask<kBacklog, kTenth>);
  AddRatio("work of thirty days, 1,000,000 orders : 100,000", kWanted, Ask<kWork, kMillion>, Ask<kWork, kTenth>);
  AddRatio("carriers of thirty days, 1,000,000 orders : 100,000", kWanted, Ask<kCarriers, kMillion>,
           Ask<kCarriers, kTenth>);
  AddRatio("failures, 1,000,000 orders : 100,000", kWanted, Ask<kFailures, kMillion>, Ask<kFailures, kTenth>);
}

}  // namespace tessarlorn::bench
