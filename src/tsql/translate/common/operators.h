// Operators between values whose SQL stands: arithmetic, concatenation, comparison, each with the types of SQL Server.
#pragma once

#include <string>

#include "tsql/syntax/ast.h"
#include "tsql/translate/common/parameters.h"
#include "tsql/translate/common/typed.h"

namespace tessarlorn::tsql {

/// a op b. Raises 206 and 8117 for types that the operator does not take.
Typed Arithmetic(Parameters& parameters, BinaryOp op, Typed a, Typed b);
/// -value. Raises 8117.
Typed Negative(Typed value);
/// ~value. Raises 8117.
/// a + b - c …: SQLite reads calls within calls only so deep, a long chain is one call for many of its steps.
class ArithmeticChain {
 public:
  ArithmeticChain(Parameters& parameters, Typed first) : parameters_(parameters), value_(std::move(first)) {}
  /// As Arithmetic.
  void Add(BinaryOp op, Typed value);
  [[nodiscard]] const Typed& value() const { return value_; }

 private:
  Parameters& parameters_;
  Typed value_;
  int steps_ = 0;
};

Typed BitComplement(const Typed& value);
/// a op b as a condition.
std::string Compared(Parameters& parameters, CompareOp op, const Typed& a, const Typed& b);
/// The call of the row function that computes with decimals of any size.
std::string DecimalCall(BinaryOp op, const std::string& a, const SqlType& a_type, const std::string& b,
                        const SqlType& b_type, const SqlType& type);

}  // namespace tessarlorn::tsql
