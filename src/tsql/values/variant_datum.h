// Values of the platform as values of SQLite, and back: how the parameters of a command come in and go out.
#pragma once

#include "tessarlorn/variant.h"
#include "tsql/values/date_text.h"
#include "tsql/values/datum.h"

namespace tessarlorn::tsql {

/// The value as the type has it; Empty and Null are NULL. Raises what Convert raises, and 206 for an object.
/// @param order how a text that is to be a date stands for one
Datum DatumOf(const Variant& value, const SqlType& type, DateOrder order);
/// NULL is Null; a bigint that does not fit in 32 bits is a decimal; a datetimeoffset is its text.
Variant VariantOf(const Datum& value, const SqlType& type);

}  // namespace tessarlorn::tsql
