// PRINT, RAISERROR and THROW.
#pragma once

#include <cstdint>
#include <string>

#include "tsql/engine/plans/evaluate.h"
#include "tsql/engine/state/error_state.h"
#include "tsql/engine/state/results.h"

namespace tessarlorn::tsql {

class Messages {
 public:
  Messages(Results& results, const ErrorState& errors, Evaluator& evaluator)
      : results_(results), errors_(errors), evaluator_(evaluator) {}

  void Print(const PrintStatement& statement, std::uint32_t line, const Activation& activation);
  /// Raises, or hands over a message when the severity is no error's.
  void RaiseError(const RaiseErrorStatement& statement, std::uint32_t line, const Activation& activation);
  [[noreturn]] void Throw(const ThrowStatement& statement, const Activation& activation);
  /// Hands the sink a message of a statement.
  void Say(std::uint32_t line, const std::string& text, std::int32_t number, int severity = 0, int state = 1);

 private:
  Results& results_;
  const ErrorState& errors_;
  Evaluator& evaluator_;
};

}  // namespace tessarlorn::tsql
