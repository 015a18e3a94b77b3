// Types and operators as a batch writes them.
#pragma once

#include <cstdint>
#include <string>

namespace tessarlorn::tsql {

/// A type as written: name in lower case ("nvarchar"), and its arguments. length -1 is (max), -2 none given.
struct TypeName {
  std::string name;
  int length = -2;  // first argument: length or precision
  int scale = -2;   // second argument
};

enum class BinaryOp : std::uint8_t { kAdd, kSubtract, kMultiply, kDivide, kModulo, kBitAnd, kBitOr, kBitXor };

}  // namespace tessarlorn::tsql
