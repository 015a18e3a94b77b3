// A batch or procedure body that runs.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "tsql/engine/plans/plan.h"
#include "tsql/functions/runtime.h"

namespace tessarlorn::tsql {

/// What its statements share. The plan and the literals are those of the top-level statement that runs.
struct Activation {
  Frame* frame = nullptr;
  Plan* plan = nullptr;
  std::span<const Token> literals;
  std::span<const Token> lists;
  const std::vector<Token>* list_items = nullptr;
  int return_value = 0;
  /// Of a scalar function: the type that it returns, and the value once there is one.
  const SqlType* returns = nullptr;
  /// Of one that fills a table: its name. Its rows are packed into the value.
  std::string returned_table = {};
  Datum returned = {};
};

}  // namespace tessarlorn::tsql
