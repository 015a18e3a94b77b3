// The session string that callers pass as sDsn: the database's own connection string, and who is calling.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tessarlorn {

/// `Connect={…};User=16394;Language=CHS;Client=10.0.0.5`. A string without `Connect=` is taken whole as the database's.
struct SessionString {
  /// The database's connection string, not empty.
  std::string database;
  /// Id of the acting user; 0 when the string names none.
  std::int32_t user = 0;
  /// Language code as given, "CHS" when none.
  std::string language = "CHS";
  /// Address of the client machine, "" when none.
  std::string client;
  /// Whether single quotes are doubled in the texts that operations put between quotes.
  bool escape = false;
};

/// Raises 0x80040E4D with a text that names the fault: an unknown or doubled key, a key without "=", an unclosed brace,
/// a user id that is no 32-bit number, an Escape that is neither Yes nor No, an empty database string.
SessionString ParseSessionString(std::string_view text);

/// Splits `Key=value;…` into pairs in their order; a value may stand in braces, `}}` in it is a brace. Blanks around
/// keys and unbraced values are dropped. Raises 0x80040E4D for text that is no such list, and for a key that stands
/// twice without regard to case, naming it.
std::vector<std::pair<std::string, std::string>> ParsePairs(std::string_view text);

}  // namespace tessarlorn
