// Conditions on the rows of a recordset: "FOrderStatus = 6 AND FBuyer LIKE 'A*'", as ADO's Filter and Find take them.
#pragma once

#include <memory>
#include <string_view>

#include "platform/recordset.h"

namespace tessarlorn {

/// -1, 0 or 1 as values of one column are ordered: null first, numbers and dates by value, texts without regard to
/// case.
int CompareValues(const Variant& a, const Variant& b);

/// Comparisons (=, <>, <, <=, >, >=, LIKE) of a field with a number, a 'text', a #date# or NULL, joined by AND and OR,
/// with parentheses. LIKE knows * and % at the ends of its text. A comparison with a null holds only for = NULL.
class RowCondition {
 public:
  /// Raises 3001 naming what cannot be read, 3265 for a field that the rows do not have.
  RowCondition(std::string_view text, const Recordset& rows);
  ~RowCondition();
  RowCondition(const RowCondition&) = delete;
  RowCondition& operator=(const RowCondition&) = delete;

  /// For the current row.
  [[nodiscard]] bool Holds(const Recordset& rows) const;

  struct Node;

 private:
  std::unique_ptr<Node> root_;
};

}  // namespace tessarlorn
