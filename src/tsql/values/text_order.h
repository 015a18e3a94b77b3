// How texts sort: by code points, or as a collation of the server's does. Which are equal is the same in each.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace tessarlorn::tsql {

/// The numbers stand in the headers of files, as SQLite's user_version.
enum class TextOrder : std::uint8_t { kCodePoints = 0, kPinyin = 1, kStroke = 2, kTaiwanStroke = 3 };

/// The order of a collation by its name without regard to case: "Chinese_PRC_CI_AS".
std::optional<TextOrder> FindTextOrder(std::string_view collation);
/// The collation's name, or "code points".
std::string_view TextOrderName(TextOrder order);
/// Whether this build can sort so: all but code points needs ICU.
bool CanSort(TextOrder order);

/// Less than, equal to or greater than 0. What CompareText finds equal is equal.
int CompareTextIn(TextOrder order, std::string_view a, std::string_view b);

}  // namespace tessarlorn::tsql
