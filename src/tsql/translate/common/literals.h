// Which literals of a statement are values that may differ from run to run, and which are part of its meaning.
#pragma once

#include <set>
#include <string_view>

#include "tsql/syntax/statement.h"
#include "tsql/values/datum.h"

namespace tessarlorn::tsql {

struct LiteralUse {
  /// The numbers (literal_index) of the literals that stand as expressions. All others are part of the grammar: a
  /// type's length, a window's frame, an identity's seed.
  std::set<int> values;
  /// Some of them may shape the translation: TOP's number, a position in ORDER BY, a style, a decimal's neighbour in
  /// arithmetic. Which they are is known when the statement is translated.
  bool may_shape = false;
};

LiteralUse FindLiterals(const Statement& statement);

/// Whether a text or binary literal is too long for varchar(8000), nvarchar(4000) or varbinary(8000): its type is
/// (max). `value` is what stands between the quotes, undoubled; of a binary literal all of it, "0x…".
bool IsLongLiteral(LiteralKind kind, std::string_view value);
/// The amount of "$1.50".
Datum MoneyLiteral(std::string_view text);
/// The bytes of "0x…". An odd number of digits begins with half a byte: 0x123 is 0x0123.
Blob BinaryLiteral(std::string_view text);

}  // namespace tessarlorn::tsql
