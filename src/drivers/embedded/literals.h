// Which literals of a statement are values that may differ from run to run, and which are part of its meaning.
#pragma once

#include <set>

#include "drivers/embedded/ast.h"

namespace tessarlorn::embedded {

struct LiteralUse {
  /// The numbers (literal_index) of the literals that stand as expressions. All others are part of the grammar: a
  /// type's length, a window's frame, an identity's seed.
  std::set<int> values;
  /// Some of them may shape the translation: TOP's number, a position in ORDER BY, a style, a decimal's neighbour in
  /// arithmetic. Which they are is known when the statement is translated.
  bool may_shape = false;
};

LiteralUse FindLiterals(const Statement& statement);

}  // namespace tessarlorn::embedded
