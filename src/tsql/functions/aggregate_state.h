// What an aggregate keeps from row to row.
#pragma once

#include <memory>
#include <sqlite3.h>

#include "tsql/functions/runtime.h"

namespace tessarlorn::tsql {

/// Of a function that was registered with its runtime.
inline Runtime& RuntimeOf(sqlite3_context* context) { return *static_cast<Runtime*>(sqlite3_user_data(context)); }

/// SQLite hands out zeroed bytes for an aggregate's state; the state proper is made in them on the first row.
template <typename State>
State* StateOf(sqlite3_context* context, bool make) {
  auto** slot = static_cast<State**>(sqlite3_aggregate_context(context, make ? sizeof(State*) : 0));
  if (slot == nullptr) return nullptr;
  if (*slot == nullptr && make) *slot = std::make_unique<State>().release();
  return *slot;
}

/// The state, out of SQLite's hands; nullptr when there was no row.
template <typename State>
std::unique_ptr<State> TakeState(sqlite3_context* context) {
  auto** slot = static_cast<State**>(sqlite3_aggregate_context(context, 0));
  if (slot == nullptr) return nullptr;
  std::unique_ptr<State> state(*slot);
  *slot = nullptr;
  return state;
}

}  // namespace tessarlorn::tsql
