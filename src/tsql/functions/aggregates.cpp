// Aggregates that SQLite lacks: the only row of a scalar subquery, sums of long decimals, texts joined in an order,
// and percentiles.
#include <algorithm>
#include <cmath>
#include <memory>
#include <new>
#include <string>
#include <type_traits>
#include <vector>

#include "platform/unicode/collation.h"
#include "tsql/functions/aggregate_state.h"
#include "tsql/functions/functions.h"
#include "tsql/functions/sqlite_value.h"

namespace tessarlorn::tsql {
namespace {

struct Single {
  Datum value;
  bool seen = false;
};

void StepSingle(sqlite3_context* context, int, sqlite3_value** values) {
  Guarded(context, RuntimeOf(context), [&] {
    auto* state = StateOf<Single>(context, true);
    if (state->seen) {
      throw SqlError(512,
                     "Subquery returned more than 1 value. This is not permitted when the subquery follows =, !=, "
                     "<, <= , >, >= or when the subquery is used as an expression.");
    }
    state->value = ToDatum(values[0]);
    state->seen = true;
  });
}

void EndSingle(sqlite3_context* context) {
  if (const auto state = TakeState<Single>(context)) SetResult(context, state->value);
}

struct Sum {
  Decimal total;
  SqlType result;
  bool any = false;
};

// ts_sum(value, type, result type)
void StepSum(sqlite3_context* context, int, sqlite3_value** values) {
  if (IsNull(values[0])) return;
  Guarded(context, RuntimeOf(context), [&] {
    auto* state = StateOf<Sum>(context, true);
    state->result = UnpackType(sqlite3_value_int64(values[2]));
    const auto total =
        Decimal::Add(state->total, ToDecimal(ToDatum(values[0]), UnpackType(sqlite3_value_int64(values[1]))));
    if (!total) RaiseArithmeticOverflow(state->result);
    state->total = *total;
    state->any = true;
  });
}

void EndSum(sqlite3_context* context) {
  const auto state = TakeState<Sum>(context);
  if (state == nullptr || !state->any) return;
  Guarded(context, RuntimeOf(context), [&] { SetResult(context, FromDecimal(state->total, state->result)); });
}

struct JoinedText {
  std::vector<Datum> keys;
  std::string text;
};

struct Joined {
  std::vector<JoinedText> texts;
  std::string separator;
  std::string directions;  // 'a' or 'd' for each key, and the number of its TextOrder: 0 for the database's
};

/// As SQLite orders a column: NULL first.
int CompareKeys(TextOrder order, const Datum& a, const Datum& b) {
  if (a.index() != b.index()) return a.index() < b.index() ? -1 : 1;
  return std::visit(
      [order, &b](const auto& left) {
        using T = std::decay_t<decltype(left)>;
        const auto& right = std::get<T>(b);
        if constexpr (std::is_same_v<T, std::monostate>) {
          return 0;
        } else if constexpr (std::is_same_v<T, std::string>) {
          return CompareTextIn(order, left, right);
        } else if constexpr (std::is_same_v<T, Blob>) {
          return left.bytes.compare(right.bytes);
        } else {
          return left < right ? -1 : left > right ? 1 : 0;
        }
      },
      a);
}

// ts_string_agg(text, separator, directions, key, …)
void StepJoined(sqlite3_context* context, int count, sqlite3_value** values) {
  if (IsNull(values[0])) return;
  Guarded(context, RuntimeOf(context), [&] {
    auto* state = StateOf<Joined>(context, true);
    if (state->texts.empty()) {
      state->separator = TextOf(values[1]);
      state->directions = TextOf(values[2]);
    }
    JoinedText& joined = state->texts.emplace_back();
    joined.text = TextOf(values[0]);
    for (int i = 3; i < count; ++i) joined.keys.push_back(ToDatum(values[i]));
    RuntimeOf(context).memory.Charge(sizeof(JoinedText) + joined.text.size() + joined.keys.size() * sizeof(Datum));
  });
}

void EndJoined(sqlite3_context* context) {
  const auto state = TakeState<Joined>(context);
  if (state == nullptr) return;
  Guarded(context, RuntimeOf(context), [&] {
    std::stable_sort(state->texts.begin(), state->texts.end(), [&](const JoinedText& a, const JoinedText& b) {
      for (std::size_t i = 0; i < a.keys.size(); ++i) {
        const auto own = static_cast<TextOrder>(state->directions[2 * i + 1] - '0');
        const TextOrder text_order = own == TextOrder::kCodePoints ? RuntimeOf(context).text_order : own;
        const int order = CompareKeys(text_order, a.keys[i], b.keys[i]);
        if (order != 0) return (order < 0) == (state->directions[2 * i] == 'a');
      }
      return false;
    });
    std::string all;
    for (const JoinedText& joined : state->texts) {
      if (&joined != state->texts.data()) all += state->separator;
      all += joined.text;
    }
    SetText(context, all);
  });
}

/// What the arguments of ts_percentile say but for the value.
struct PercentileOptions {
  double fraction = 0;
  /// Between two values, not one of them.
  bool continuous = false;
  bool descending = false;
};

Datum PercentileOf(const std::vector<Datum>& sorted, const PercentileOptions& options) {
  const auto count = static_cast<double>(sorted.size());
  const auto at = [&](double place) {
    const auto i = static_cast<std::size_t>(place);
    return sorted[options.descending ? sorted.size() - 1 - i : i];
  };
  if (!options.continuous) return at(std::max(0.0, std::ceil(options.fraction * count) - 1));
  const double place = options.fraction * (count - 1);
  const double low = std::get<double>(at(std::floor(place)));
  const double high = std::get<double>(at(std::ceil(place)));
  return low + (high - low) * (place - std::floor(place));
}

struct Percentile {
  PercentileOptions options;
  std::vector<Datum> values;
  bool sorted = false;
};

// ts_percentile(value, fraction, continuous, descending) OVER (PARTITION BY …)
void StepPercentile(sqlite3_context* context, int, sqlite3_value** values) {
  if (IsNull(values[0])) return;
  Guarded(context, RuntimeOf(context), [&] {
    auto* state = StateOf<Percentile>(context, true);
    state->options = {sqlite3_value_double(values[1]), sqlite3_value_int(values[2]) != 0,
                      sqlite3_value_int(values[3]) != 0};
    if (!(state->options.fraction >= 0 && state->options.fraction <= 1)) {
      RaiseUnsupported("A percentile outside of 0 to 1");
    }
    state->values.push_back(ToDatum(values[0]));
    state->sorted = false;
    RuntimeOf(context).memory.Charge(sizeof(Datum) + static_cast<std::size_t>(sqlite3_value_bytes(values[0])));
  });
}

void GivePercentile(sqlite3_context* context) {
  Guarded(context, RuntimeOf(context), [&] {
    auto* state = StateOf<Percentile>(context, false);
    if (state == nullptr || state->values.empty()) return;
    if (!state->sorted) {
      std::sort(state->values.begin(), state->values.end(),
                [order = RuntimeOf(context).text_order](const Datum& a, const Datum& b) {
                  return CompareKeys(order, a, b) < 0;
                });
    }
    state->sorted = true;
    SetResult(context, PercentileOf(state->values, state->options));
  });
}

void EndPercentile(sqlite3_context* context) {
  GivePercentile(context);
  TakeState<Percentile>(context);
}

/// The window is always the whole partition: no row leaves it.
void LeavePercentile(sqlite3_context*, int, sqlite3_value**) {}

}  // namespace

void RegisterAggregates(sqlite3* database, Runtime& runtime) {
  constexpr int kFlags = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
  sqlite3_create_function_v2(database, "ts_single", 1, kFlags, &runtime, nullptr, StepSingle, EndSingle, nullptr);
  sqlite3_create_function_v2(database, "ts_sum", 3, kFlags, &runtime, nullptr, StepSum, EndSum, nullptr);
  sqlite3_create_function_v2(database, "ts_string_agg", -1, kFlags, &runtime, nullptr, StepJoined, EndJoined, nullptr);
  sqlite3_create_window_function(database, "ts_percentile", 4, kFlags, &runtime, StepPercentile, EndPercentile,
                                 GivePercentile, LeavePercentile, nullptr);
}

}  // namespace tessarlorn::tsql
