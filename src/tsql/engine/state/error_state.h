// Where a batch stands between its errors, its TRY blocks and its calls.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {

struct ErrorState {
  std::int32_t last_number = 0;   // @@ERROR
  std::optional<SqlError> first;  // of the batch, when it goes on behind an error
  std::vector<SqlError> caught;   // the errors of the CATCH blocks that are running, innermost last
  int try_depth = 0;
  int call_depth = 0;
  std::string_view procedure;  // whose body runs, "" in a batch
  bool in_function = false;

  void BeginBatch() {
    first.reset();
    caught.clear();
    try_depth = 0;
    call_depth = 0;
    in_function = false;
  }

  /// Whether a server finds the error only when the statement runs: what SET IDENTITY_INSERT allows.
  static bool IsOfRun(const SqlError& error) { return error.number() == 544 || error.number() == 545; }

  /// Runs what parses or translates: its errors end the batch or procedure at hand, TRY or not.
  template <typename Body>
  void Understanding(const Body& body) const {
    try {
      body();
    } catch (SqlError& error) {
      if (!IsOfRun(error)) error.set_misunderstood_at(call_depth);
      throw;
    }
  }
};

}  // namespace tessarlorn::tsql
