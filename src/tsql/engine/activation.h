// A batch or procedure body that runs.
#pragma once

#include <span>
#include <vector>

#include "tsql/engine/plan.h"
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
};

}  // namespace tessarlorn::tsql
