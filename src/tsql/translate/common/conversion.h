// Conversions that SQL Server makes by itself, as SQLite's words: calls of row functions, or a parameter's own type.
#pragma once

#include <string>

#include "tsql/storage/catalog.h"
#include "tsql/translate/common/parameters.h"
#include "tsql/translate/common/typed.h"

namespace tessarlorn::tsql {

/// The expression converted; `fit` as for Convert.
/// @param attempt NULL for what cannot be converted
std::string Coerce(Parameters& parameters, const Typed& value, const SqlType& to, Fit fit = Fit::kCast, int style = 0,
                   bool attempt = false);
/// The value as text, or as a date of any kind.
std::string AsText(Parameters& parameters, const Typed& value);
std::string AsDate(Parameters& parameters, const Typed& value);

/// Raises 257 for what only CAST and CONVERT convert.
void RequireImplicit(const SqlType& from, const SqlType& to);
/// The value as the column of that table takes it.
std::string Assigned(Parameters& parameters, const Typed& value, const Column& column, const std::string& table);
/// The value, or error 515 for NULL.
std::string Required(const std::string& sql, const Column& column, const std::string& table);

/// The value with the collation of its type, where it needs one.
std::string Collated(const Typed& value);
/// A type as a row function reads it.
std::string Packed(const SqlType& type);

}  // namespace tessarlorn::tsql
