// How values of a recordset are written as text, wherever they are shown or saved.
#pragma once

#include <string>

#include "tessarlorn/date_time.h"
#include "tessarlorn/recordset.h"

namespace tessarlorn {

/// Of a date or time what the field's type has: `2024-05-06`, `07:08:09`, `2024-05-06 07:08:09`. Milliseconds stand
/// behind it where there are some.
std::string DateText(DateTime value, FieldType type);

/// The fewest digits that read back as the same number.
std::string ExactText(double value);

}  // namespace tessarlorn
