// Which tables a batch changes, read off its text without a parser.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tessarlorn::odbc {

/// The table of each INSERT, UPDATE and DELETE, in their order and as the text spells it; of an alias the table that it
/// stands for. What is built at run time is not seen.
std::vector<std::string> ChangedTables(std::string_view text);

}  // namespace tessarlorn::odbc
