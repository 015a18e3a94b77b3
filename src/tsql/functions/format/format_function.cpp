// FORMAT.
#include "tsql/functions/format/culture.h"
#include "tsql/functions/format/format_date.h"
#include "tsql/functions/format/format_number.h"
#include "tsql/functions/functions.h"
#include "tsql/functions/sqlite_value.h"

namespace tessarlorn::tsql {
namespace {

std::optional<std::string> Formatted(sqlite3_value* value, const SqlType& type, std::string_view mask,
                                     const Culture& culture) {
  if (type.has_offset()) return FormatDateMask(ReadStoredMoment(TextOf(value)), true, mask, culture);
  if (type.kind == FieldType::kTime) return FormatTimeMask(sqlite3_value_int64(value), mask);
  if (type.is_date()) return FormatDateMask({sqlite3_value_int64(value), 0}, false, mask, culture);
  if (type.is_float()) return FormatNumber(DigitText(sqlite3_value_double(value)), false, mask, culture);
  return FormatNumber(DigitText(ToDecimal(ToDatum(value), type)), type.is_integer(), mask, culture);
}

// ts_format(value, type, mask[, culture])
void Format(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (AnyNull(arguments)) return;
  const Culture* culture = arguments.size() > 3 ? FindCulture(TextOf(arguments[3])) : &DefaultCulture();
  if (culture == nullptr) {
    throw SqlError(9818, "The culture parameter '" + std::string(TextOf(arguments[3])) +
                             "' provided in the function call is not supported.");
  }
  const auto text = Formatted(arguments[0], TypeArgument(arguments[1]), TextOf(arguments[2]), *culture);
  if (text) SetText(context, *text);
}

}  // namespace

void RegisterFormatFunction(sqlite3* database, Runtime& runtime) {
  RegisterFunction(database, runtime, "ts_format", -1, Format);
}

}  // namespace tessarlorn::tsql
