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

void Ask(benchmark::State& state, const char* name, int orders) {
  const auto connection = TheHost().OpenConnection("Embedded=" + SampleFile(orders));
  const workbench::Question& question = *workbench::FindQuestion(name);
  const workbench::Asker asker{.user = 16394, .language = "CHS", .every_shop = true};
  const Dictionary values = question.keys.empty() ? Dictionary() : LastDays();
  for (auto _ : state) benchmark::DoNotOptimize(question.ask(*connection, asker, values)->RecordCount());
}

template <int kOrders>
void AskTabs(benchmark::State& state) {
  Ask(state, "tabs", kOrders);
}
template <int kOrders>
void AskBacklog(benchmark::State& state) {
  Ask(state, "backlog", kOrders);
}
template <int kOrders>
void AskWork(benchmark::State& state) {
  Ask(state, "work", kOrders);
}
template <int kOrders>
void AskCarriers(benchmark::State& state) {
  Ask(state, "carriers", kOrders);
}
template <int kOrders>
void AskFailures(benchmark::State& state) {
  Ask(state, "failures", kOrders);
}

}  // namespace

void AddFigureBenchmarks() {
  constexpr const char* kWanted = "<= 100 ms at a million";
  AddRatio("tabs, 1,000,000 orders : 100,000", kWanted, AskTabs<kMillion>, AskTabs<kTenth>);
  AddRatio("backlog, 1,000,000 orders : 100,000", kWanted, AskBacklog<kMillion>, AskBacklog<kTenth>);
  AddRatio("work of thirty days, 1,000,000 orders : 100,000", kWanted, AskWork<kMillion>, AskWork<kTenth>);
  AddRatio("carriers of thirty days, 1,000,000 orders : 100,000", kWanted, AskCarriers<kMillion>, AskCarriers<kTenth>);
  AddRatio("failures, 1,000,000 orders : 100,000", kWanted, AskFailures<kMillion>, AskFailures<kTenth>);
}

}  // namespace tessarlorn::bench
