// The arguments of a call, from the command's words and from JSON.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tessarlorn/operations.h"

namespace tessarlorn {

/// By "Name" or "Class.Name" without regard to case. Raises WrongCall with the nearest name when there is none.
const Operation& RequireOperation(std::string_view name);

/// The arguments for ServiceObject::Invoke, one for each that the operation declares; one that is not given is empty.
///
/// @param json a Dictionary with an entry for each argument, or empty
/// @param words "argument=value" or "argument.Key=value"; they win over `json`. A value is text; for a Dictionary, a
///        Vector, or a key that wants one, it is JSON.
/// @param dsn goes to each connection string, argument or key, that is not given; "" when there is none
///
/// Arguments are found without regard to case, keys to the letter. Raises WrongCall that names the word, argument or
/// key: one that the operation does not have, one given twice, a connection string that nobody gives, a value that is
/// no Dictionary or Vector where one is declared, and the faults of ReadJson.
std::vector<Variant> ReadCallArguments(const Operation& operation, const Variant& json,
                                       std::span<const std::string> words, std::string_view dsn);

}  // namespace tessarlorn
