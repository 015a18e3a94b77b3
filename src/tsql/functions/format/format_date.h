// Dates and times as texts by the masks of FORMAT.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tsql/functions/format/culture.h"
#include "tsql/values/moment.h"

namespace tessarlorn::tsql {

/// By a mask of one letter ("d"), or one that is drawn ("yyyy-MM-dd"). std::nullopt for a letter that is no mask.
/// @param has_offset the moment is a datetimeoffset
std::optional<std::string> FormatDateMask(const Moment& moment, bool has_offset, std::string_view mask,
                                          const Culture& culture);

/// The time of a day by "c", "g", "G", or a drawn mask of h, m, s, f and F ("hh\:mm"). std::nullopt for a mask that has
/// anything else but quoted text and escapes.
/// @param time milliseconds since midnight
std::optional<std::string> FormatTimeMask(std::int64_t time, std::string_view mask);

}  // namespace tessarlorn::tsql
