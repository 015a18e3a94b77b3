// Names of tables and procedures as clients write them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tessarlorn::tds {

/// Reads a name of one or more parts at `position`, each plain, in brackets or in double quotes, and answers it with
/// each part in brackets: nothing in it can be read as anything but a name. Parts but the last may be empty. Nothing
/// when there is no such name; `position` stands behind what was read.
std::optional<std::string> TakeName(std::string_view text, std::size_t& position);

}  // namespace tessarlorn::tds
