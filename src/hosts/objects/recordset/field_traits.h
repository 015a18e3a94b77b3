// What clients of ADO are told about the type of a field, and its values in that type.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "hosts/objects/value_taker.h"
#include "tessarlorn/recordset.h"

namespace tessarlorn {

struct FieldTraits {
  /// What stands for precision and scale of a type that has none.
  static constexpr std::int32_t kNone = 255;

  /// ADO's number of the type.
  std::int32_t type = 0;
  /// Characters of a text, bytes of anything else.
  std::int32_t size = 0;
  std::int32_t precision = kNone;
  std::int32_t scale = kNone;
  /// As the schema of a saved recordset has them; the second may be "".
  std::string_view xml_type;
  std::string_view xml_database_type;
  /// Whether every value has the same size.
  bool fixed_length = false;
  /// A text or binary without limit.
  bool unlimited = false;
};

FieldTraits TraitsOf(const Field& field);

/// Makes a field's value what clients have: in the type that they are told, a time on day zero of automation, an
/// identifier in braces. Of bigint, which scripts have no type for, it stays a Long or a Decimal.
void ToClientValue(const Field& field, Variant& value);
inline Variant ClientValue(const Field& field, Variant value) {
  ToClientValue(field, value);
  return value;
}
/// Whether clients have texts of the field as they are.
inline bool KeepsText(const Field& field) { return field.type != FieldType::kGuid; }
/// Hands over a field's value in the row where the rows stand, as clients have it. Raises 3021 behind the last row.
void HandOver(const Recordset& rows, std::size_t field, ValueTaker& taker);

}  // namespace tessarlorn
