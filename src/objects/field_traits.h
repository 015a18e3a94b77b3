// What clients of ADO are told about the type of a field.
#pragma once

#include <cstdint>
#include <string_view>

#include "platform/recordset.h"

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

}  // namespace tessarlorn
