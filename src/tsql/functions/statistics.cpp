// Aggregates that serve groups and windows alike: deviations, variances and CHECKSUM_AGG.
#include <algorithm>
#include <cmath>

#include "tsql/functions/aggregate_state.h"
#include "tsql/functions/functions.h"
#include "tsql/functions/sqlite_value.h"

namespace tessarlorn::tsql {
namespace {

/// Mean and sum of squared distances from it, value by value, so that large values that lie close keep their digits.
struct Spread {
  std::int64_t count = 0;
  long double mean = 0;
  long double squares = 0;

  void Add(sqlite3_value* argument) {
    const long double value = sqlite3_value_double(argument);
    const long double distance = value - mean;
    mean += distance / static_cast<long double>(++count);
    squares += distance * (value - mean);
  }
  void Remove(sqlite3_value* argument) {
    const long double value = sqlite3_value_double(argument);
    if (--count == 0) {
      *this = {};
      return;
    }
    const long double distance = value - mean;
    mean -= distance / static_cast<long double>(count);
    squares -= distance * (value - mean);
  }
};

/// @tparam kRoot the deviation, not the variance
/// @tparam kSample divided by one less than the number of values
template <bool kRoot, bool kSample>
struct SpreadOf : Spread {
  [[nodiscard]] Datum Result() const {
    const std::int64_t divisor = count - (kSample ? 1 : 0);
    if (divisor < 1) return {};
    const auto variance = static_cast<double>(std::max(squares, 0.0L) / static_cast<long double>(divisor));
    return kRoot ? std::sqrt(variance) : variance;
  }
};

struct ChecksumOfRows {
  std::int64_t count = 0;
  std::uint32_t sum = 0;

  void Add(sqlite3_value* value) {
    ++count;
    sum ^= static_cast<std::uint32_t>(sqlite3_value_int64(value));
  }
  void Remove(sqlite3_value* value) {
    --count;
    sum ^= static_cast<std::uint32_t>(sqlite3_value_int64(value));
  }
  [[nodiscard]] Datum Result() const {
    if (count == 0) return {};
    return std::int64_t{static_cast<std::int32_t>(sum)};
  }
};

template <typename State>
void StepWindow(sqlite3_context* context, int, sqlite3_value** values) {
  if (IsNull(values[0])) return;
  Guarded(context, RuntimeOf(context), [&] { StateOf<State>(context, true)->Add(values[0]); });
}

template <typename State>
void StepBack(sqlite3_context* context, int, sqlite3_value** values) {
  State* state = IsNull(values[0]) ? nullptr : StateOf<State>(context, false);
  if (state != nullptr) state->Remove(values[0]);
}

template <typename State>
void GiveWindow(sqlite3_context* context) {
  Guarded(context, RuntimeOf(context), [&] {
    const State* state = StateOf<State>(context, false);
    if (state != nullptr) SetResult(context, state->Result());
  });
}

template <typename State>
void EndWindow(sqlite3_context* context) {
  if (const auto state = TakeState<State>(context)) SetResult(context, state->Result());
}

template <typename State>
void RegisterWindow(sqlite3* database, Runtime& runtime, const char* name) {
  constexpr int kFlags = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
  sqlite3_create_window_function(database, name, 1, kFlags, &runtime, StepWindow<State>, EndWindow<State>,
                                 GiveWindow<State>, StepBack<State>, nullptr);
}

}  // namespace

void RegisterStatistics(sqlite3* database, Runtime& runtime) {
  RegisterWindow<SpreadOf<true, true>>(database, runtime, "ts_stdev");
  RegisterWindow<SpreadOf<true, false>>(database, runtime, "ts_stdevp");
  RegisterWindow<SpreadOf<false, true>>(database, runtime, "ts_variance");
  RegisterWindow<SpreadOf<false, false>>(database, runtime, "ts_variancep");
  RegisterWindow<ChecksumOfRows>(database, runtime, "ts_checksum_agg");
}

}  // namespace tessarlorn::tsql
