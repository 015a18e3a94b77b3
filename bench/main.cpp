// Runs the benchmarks and prints what they are worth against each other.
#include <cstdio>
#include <map>
#include <unistd.h>
#include <vector>

#include "bench/databases.h"
#include "bench/ratios.h"
#include "tessarlorn/embedded_driver.h"
#include "tessarlorn/error.h"
#include "tessarlorn/siblings.h"

namespace tessarlorn::bench {
namespace {

enum class Kind { kRatio, kDifference, kRate };

struct Entry {
  std::string name;
  std::string wanted;
  Kind kind;
};

std::vector<Entry>& Entries() {
  static std::vector<Entry> entries;
  return entries;
}

void Add(const std::string& name, Function function) {
  benchmark::RegisterBenchmark(name.c_str(), function)
      ->Unit(benchmark::kMicrosecond)
      ->Repetitions(5)
      ->ReportAggregatesOnly(true)
      ->MinWarmUpTime(0.1)
      ->MinTime(0.3)
      ->UseRealTime();
}

/// Notes the medians while the console shows everything.
class Reporter : public benchmark::ConsoleReporter {
 public:
  Reporter() : ConsoleReporter(isatty(STDOUT_FILENO) != 0 ? OO_Defaults : OO_None) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      const bool median = run.aggregate_name == "median";
      const std::string name = run.run_name.function_name;
      if (median) microseconds_[name] = run.GetAdjustedRealTime();
      const auto rate = run.counters.find("orders/s");
      if (median && rate != run.counters.end()) rates_[name] = rate->second.value;
    }
    ConsoleReporter::ReportRuns(runs);
  }

  void PrintTable() const {
    std::printf("\n| work | ours | against | result | wanted |\n|---|---|---|---|---|\n");
    for (const Entry& entry : Entries()) {
      const auto ours = microseconds_.find(entry.name + "/ours");
      if (ours == microseconds_.end()) continue;
      if (entry.kind == Kind::kRate) {
        std::printf("| %s | %.0f us | | %.0f orders/s | %s |\n", entry.name.c_str(), ours->second,
                    rates_.at(entry.name + "/ours"), entry.wanted.c_str());
        continue;
      }
      const auto against = microseconds_.find(entry.name + "/against");
      if (against == microseconds_.end()) continue;
      const bool ratio = entry.kind == Kind::kRatio;
      std::printf("| %s | %.2f us | %.2f us | %.2f %s | %s |\n", entry.name.c_str(), ours->second, against->second,
                  ratio ? ours->second / against->second : ours->second - against->second, ratio ? "x" : "us more",
                  entry.wanted.c_str());
    }
  }

 private:
  std::map<std::string, double> microseconds_;
  std::map<std::string, double> rates_;
};

}  // namespace

void AddRatio(const std::string& name, const std::string& wanted, Function ours, Function against) {
  Entries().push_back({name, wanted, Kind::kRatio});
  Add(name + "/ours", ours);
  Add(name + "/against", against);
}

void AddDifference(const std::string& name, const std::string& wanted, Function ours, Function against) {
  AddRatio(name, wanted, ours, against);
  Entries().back().kind = Kind::kDifference;
}

void AddRate(const std::string& name, const std::string& remark, Function ours) {
  Entries().push_back({name, remark, Kind::kRate});
  Add(name + "/ours", ours);
}

}  // namespace tessarlorn::bench

int main(int argc, char** argv) {
  using namespace tessarlorn;
  benchmark::Initialize(&argc, argv);
  if (argc > 2) {
    std::fprintf(stderr,
                 "usage: tessarlorn_bench [--benchmark_filter=REGEX] [FOLDER]\n"
                 "FOLDER keeps the sample databases from run to run (default: bench-data here).\n");
    return 2;
  }
  AddEmbeddedDriver(bench::TheHost());
  AddDefaultSiblings(bench::TheHost());
  try {
    bench::SetDataFolder(argc > 1 ? argv[1] : "bench-data");
    bench::AddFrameBenchmarks();
    bench::AddQueueBenchmarks();
    bench::AddListBenchmarks();
    bench::AddStateBenchmarks();
    bench::AddStatementBenchmarks();
    bench::AddUploadBenchmarks();
    bench::AddOrderBenchmarks();
    bench::AddDayBenchmarks();
    bench::AddServeBenchmarks();
    bench::AddDoorBenchmarks();
    bench::AddFigureBenchmarks();
    bench::AddOdbcBenchmarks();
    bench::Reporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.PrintTable();
  } catch (const Error& error) {
    std::fprintf(stderr, "%s: %s\n", error.source().c_str(), error.what());
    return 1;
  }
  return 0;
}
