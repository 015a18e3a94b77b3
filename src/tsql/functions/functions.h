// The row functions that translated statements call in SQLite. Their names begin with "ts_".
#pragma once

#include <new>
#include <span>
#include <sqlite3.h>

#include "tsql/functions/runtime.h"
#include "tsql/values/datum.h"

namespace tessarlorn::tsql {

/// Registers the collation TSQL and every row function on a connection. `runtime` outlives the connection.
void RegisterFunctions(sqlite3* database, Runtime& runtime);

// The topics; each registers its own.
void RegisterConversionFunctions(sqlite3* database, Runtime& runtime);
void RegisterTextFunctions(sqlite3* database, Runtime& runtime);
void RegisterWordFunctions(sqlite3* database, Runtime& runtime);
void RegisterNumberFunctions(sqlite3* database, Runtime& runtime);
void RegisterDateFunctions(sqlite3* database, Runtime& runtime);
void RegisterDateMaking(sqlite3* database, Runtime& runtime);
void RegisterTimeZones(sqlite3* database, Runtime& runtime);
void RegisterFormatFunction(sqlite3* database, Runtime& runtime);
void RegisterAggregates(sqlite3* database, Runtime& runtime);
void RegisterStatistics(sqlite3* database, Runtime& runtime);
void RegisterDigestFunctions(sqlite3* database, Runtime& runtime);
void RegisterJsonFunctions(sqlite3* database, Runtime& runtime);

using Arguments = std::span<sqlite3_value*>;
/// A type that the translator wrote into the call.
SqlType TypeArgument(sqlite3_value* value);
using RowFunction = void (*)(sqlite3_context*, Runtime&, Arguments);

/// Registers one function; what it throws becomes `Runtime::error` and fails the statement. `constant`: the same
/// arguments always give the same result.
void RegisterFunction(sqlite3* database, Runtime& runtime, const char* name, int argument_count, RowFunction function,
                      bool constant = true);

/// Runs `body`, turning what it throws into `runtime.error`.
template <typename Body>
void Guarded(sqlite3_context* context, Runtime& runtime, Body&& body) noexcept {
  try {
    body();
  } catch (const SqlError& error) {
    runtime.error = error;
    sqlite3_result_error(context, error.what(), -1);
  } catch (const std::bad_alloc&) {
    sqlite3_result_error_nomem(context);
  } catch (const std::exception&) {
    runtime.error = InnerError();
    sqlite3_result_error(context, "inner error", -1);
  }
}

/// The text between the quotes of a JSON string.
std::string EscapedForJson(std::string_view text);
/// A whole number that has to fit in an int. Raises 8115.
std::int32_t IntOf(sqlite3_value* value);
inline bool IsNull(sqlite3_value* value) { return sqlite3_value_type(value) == SQLITE_NULL; }
/// Raises 2628 for text that is too long for a column.
[[noreturn]] void RaiseTruncated(std::string_view table, std::string_view column, std::string_view value,
                                 const SqlType& type);
/// Whether any argument is NULL; the result is then NULL, which is what a function's result is unless it sets one.
bool AnyNull(Arguments arguments);

}  // namespace tessarlorn::tsql
