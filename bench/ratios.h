// Pairs of benchmarks whose times are set against each other in one run.
#pragma once

#include <benchmark/benchmark.h>
#include <string>

namespace tessarlorn::bench {

using Function = void (*)(benchmark::State&);

/// Two benchmarks, `name/ours` and `name/against`, run in turns; the table at the end shows ours ÷ against.
/// @param wanted as the table shows it, such as "<= 2.5 x".
void AddRatio(const std::string& name, const std::string& wanted, Function ours, Function against);
/// The same with a difference instead of a quotient: ours − against, in microseconds.
void AddDifference(const std::string& name, const std::string& wanted, Function ours, Function against);
/// A benchmark whose own number counts: its counter `orders/s`.
void AddRate(const std::string& name, const std::string& remark, Function ours);

// Each topic adds its own.
void AddQueueBenchmarks();
void AddListBenchmarks();
void AddFrameBenchmarks();
void AddStateBenchmarks();
void AddStatementBenchmarks();
void AddUploadBenchmarks();
void AddOrderBenchmarks();
void AddDayBenchmarks();
void AddServeBenchmarks();
void AddDoorBenchmarks();
void AddFigureBenchmarks();
/// Nothing where there is no ODBC.
void AddOdbcBenchmarks();

}  // namespace tessarlorn::bench
