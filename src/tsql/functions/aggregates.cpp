// Aggregates that SQLite lacks: the only row of a scalar subquery, and sums of long decimals.
#include <memory>
#include <new>

#include "tsql/functions/functions.h"
#include "tsql/functions/sqlite_value.h"

namespace tessarlorn::tsql {
namespace {

Runtime& RuntimeOf(sqlite3_context* context) { return *static_cast<Runtime*>(sqlite3_user_data(context)); }

/// SQLite hands out zeroed bytes for an aggregate's state; the state proper is made in them on the first row.
template <typename State>
State* StateOf(sqlite3_context* context, bool make) {
  auto** slot = static_cast<State**>(sqlite3_aggregate_context(context, make ? sizeof(State*) : 0));
  if (slot == nullptr) return nullptr;
  if (*slot == nullptr && make) *slot = std::make_unique<State>().release();
  return *slot;
}

template <typename State>
std::unique_ptr<State> TakeState(sqlite3_context* context) {
  auto** slot = static_cast<State**>(sqlite3_aggregate_context(context, 0));
  if (slot == nullptr) return nullptr;
  std::unique_ptr<State> state(*slot);
  *slot = nullptr;
  return state;
}

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

}  // namespace

void RegisterAggregates(sqlite3* database, Runtime& runtime) {
  constexpr int kFlags = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
  sqlite3_create_function_v2(database, "ts_single", 1, kFlags, &runtime, nullptr, StepSingle, EndSingle, nullptr);
  sqlite3_create_function_v2(database, "ts_sum", 3, kFlags, &runtime, nullptr, StepSum, EndSum, nullptr);
}

}  // namespace tessarlorn::tsql
