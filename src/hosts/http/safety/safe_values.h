// Which values of a call may go into the statements of its operation, which splice them as they are.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>

#include "tessarlorn/operations.h"

namespace tessarlorn::http {

/// The longest text that is no SQL, in characters.
inline constexpr std::size_t kMostCharacters = 4000;
/// The most keys of a list, items of a Vector and keys of a Dictionary of which every key counts.
inline constexpr std::size_t kMostKeys = 100'000;

struct RefusedValue {
  /// "dctPara.FID", "vctPara[2].FWeight", counted from 1; for the name of a key the Dictionary, as "dctPara".
  std::string path;
  /// The end of a sentence that begins with the path: "is a list of order keys; \"1;drop\" is no whole number".
  std::string why;
  /// It is SQL, which this caller may not pass.
  bool wants_sql = false;
};

/// The first value that could change a statement, or that is not what the operation's contract says. Together with a
/// session that says Escape=Yes, what passes leaves every statement as it is meant. The connection strings are not
/// looked at.
///
/// - Bare, or as a number: plain digits with an optional minus. A Long has 32 bits; a Double has a point and up to 15
///   digits before and behind it.
/// - List of keys: numbers from 0 to 2147483647 with commas between them and no blanks, as one operation stores it.
/// - Name of a table: ASCII letters, digits and _, not first a digit, with up to two # in front. That of the page may
///   have its alias behind it.
/// - SQL: of a caller who may pass it. An empty key is none, as the operations take it for one that is not given.
/// - Boolean: a Boolean, 0, 1, -1, or true or false.
/// - Date: a date, or a text that begins with YYYY-MM-DD and may have a time behind it.
/// - Text: valid UTF-8 without NUL, up to kMostCharacters.
/// - Name of a key: a key of the contract. Where every key counts, up to 23 digits.
///
/// An empty value passes where the operation takes it for one that is not given.
/// @param arguments as they go to ServiceObject::Invoke, fewer than the operation has or all
std::optional<RefusedValue> FindRefusedValue(const Operation& operation, std::span<const Variant> arguments,
                                             bool sql_allowed);

}  // namespace tessarlorn::http
