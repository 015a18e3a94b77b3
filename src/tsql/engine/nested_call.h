// What runs inside a batch: a procedure, a text or a function.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tsql/engine/procedures.h"

namespace tessarlorn::tsql {

/// A procedure or text that runs inside a batch; what it changed of the session's options and the temporary tables
/// that it made go with it.
class Procedures::Nested {
 public:
  /// Raises 217 when it is nested too deep. @param procedure its name, "" for a text; outlives this
  Nested(Procedures& calls, std::string_view procedure)
      : calls_(calls),
        options_(calls.options_.OfCaller()),
        temporary_tables_(calls.database_.catalog().TemporaryTables()) {
    constexpr int kMostCalls = 32;
    if (calls.errors_.call_depth >= kMostCalls) {
      throw SqlError(217, "Maximum stored procedure, function, trigger, or view nesting level exceeded (limit 32).");
    }
    ++calls.errors_.call_depth;
    procedure_ = std::exchange(calls.errors_.procedure, procedure);
    identity_ = std::exchange(calls.transaction_.scope_identity, std::nullopt);
  }
  Nested(const Nested&) = delete;
  Nested& operator=(const Nested&) = delete;
  ~Nested() {
    --calls_.errors_.call_depth;
    calls_.options_.GiveBack(options_);
    calls_.errors_.procedure = procedure_;
    calls_.transaction_.scope_identity = identity_;
    try {
      calls_.definitions_.DropTemporaryTables(temporary_tables_);
    } catch (const SqlError&) {
      // They go with the session.
      return;
    }
  }

 private:
  Procedures& calls_;
  CallOptions options_;
  std::string_view procedure_;  // of the caller
  std::optional<std::int64_t> identity_;
  std::vector<std::string> temporary_tables_;  // of the caller
};

}  // namespace tessarlorn::tsql
