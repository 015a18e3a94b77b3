// Arguments and results of SQLite's row functions as values.
#pragma once

#include <sqlite3.h>

#include "tsql/values/datum.h"

namespace tessarlorn::tsql {

inline std::string_view TextOf(sqlite3_value* value) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
  return text == nullptr ? std::string_view{}
                         : std::string_view(text, static_cast<std::size_t>(sqlite3_value_bytes(value)));
}

inline Datum ToDatum(sqlite3_value* value) {
  switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER:
      return std::int64_t{sqlite3_value_int64(value)};
    case SQLITE_FLOAT:
      return sqlite3_value_double(value);
    case SQLITE_TEXT:
      return std::string(TextOf(value));
    case SQLITE_BLOB: {
      const auto* bytes = static_cast<const char*>(sqlite3_value_blob(value));
      return Blob{std::string(bytes == nullptr ? "" : bytes, static_cast<std::size_t>(sqlite3_value_bytes(value)))};
    }
    default:
      return {};
  }
}

inline void SetText(sqlite3_context* context, std::string_view text) {
  sqlite3_result_text64(context, text.data() == nullptr ? "" : text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

inline void SetResult(sqlite3_context* context, const Datum& value) {
  if (const auto* integer = std::get_if<std::int64_t>(&value)) {
    sqlite3_result_int64(context, *integer);
  } else if (const auto* real = std::get_if<double>(&value)) {
    sqlite3_result_double(context, *real);
  } else if (const auto* text = std::get_if<std::string>(&value)) {
    SetText(context, *text);
  } else if (const auto* blob = std::get_if<Blob>(&value)) {
    sqlite3_result_blob64(context, blob->bytes.data(), blob->bytes.size(), SQLITE_TRANSIENT);
  } else {
    sqlite3_result_null(context);
  }
}

}  // namespace tessarlorn::tsql
