// Values and rows as JSON. All JSON that the command prints is made here.
#pragma once

#include <string>
#include <vector>

#include "hosts/calls/result_rows.h"

namespace tessarlorn {

/// The value as JSON: numbers with all their digits, Booleans, dates in ISO form, null for Null, Empty and Nothing, a
/// recordset as an array of objects. Malformed UTF-8 becomes U+FFFD.
std::string JsonText(const Variant& value, FieldType type = FieldType::kNVarChar);

/// Rows as objects. Of fields with the same head the later ones get "_2" and so on behind it.
class JsonRows {
 public:
  /// `shown` must outlive it.
  explicit JsonRows(const ResultRows& shown);
  /// The recordset's current row.
  [[nodiscard]] std::string Object() const;

 private:
  const ResultRows& shown_;
  /// With quotes and colon.
  std::vector<std::string> keys_;
};

}  // namespace tessarlorn
