// The session string that callers pass as sDsn: the database's own connection string, and who is calling.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
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
  /// The connection string of a copy of the database that takes reads, "" when none. Servers use it; sessions do not.
  std::string replica;
  /// Whether single quotes are doubled in the texts that operations put between quotes.
  bool escape = false;
};

/// Raises 0x80040E4D with a text that names the fault: an unknown or doubled key, a key without "=", an unclosed brace,
/// a user id that is no 32-bit number, an Escape that is neither Yes nor No, an empty database string.
SessionString ParseSessionString(std::string_view text);

using Pairs = std::vector<std::pair<std::string, std::string>>;

/// Why a text is no list of pairs.
struct PairsFault {
  std::string description;
  /// The key that the description names as one whose value is at fault or that stands twice, else "".
  std::string key = {};
};

/// Splits `Key=value;…` into pairs in their order; a value may stand in braces, `}}` in it is a brace. Blanks around
/// keys and unbraced values are dropped. A key that stands twice, without regard to case, is a fault.
std::variant<Pairs, PairsFault> ReadPairs(std::string_view text);
/// The same for text of a session. Raises 0x80040E4D with the fault.
Pairs ParsePairs(std::string_view text);

}  // namespace tessarlorn
