// Conditions on the rows of a recordset: "FOrderStatus = 6 AND FBuyer LIKE 'A*'", as ADO's Filter and Find take them.
#pragma once

#include <memory>
#include <string_view>

#include "tessarlorn/recordset.h"

namespace tessarlorn {

/// Comparisons (=, <>, <, <=, >, >=, LIKE) of a field with a number, TRUE, FALSE, NULL, or a text or date between '' or
/// ##, joined by AND and OR, with parentheses; AND goes before OR. The value is taken in the field's type and compared
/// as the database compares. LIKE knows * and % at the ends of its text. A null meets only = NULL, and no null <> NULL.
class RowCondition {
 public:
  /// Raises 3001 naming what cannot be read or does not fit the field, 3265 for a field that the rows do not have.
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
