// Dates and times as texts, both ways.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tessarlorn/date_time.h"
#include "tsql/values/types.h"

namespace tessarlorn::tsql {

/// In which order a text has year, month and day: SET DATEFORMAT.
enum class DateOrder : std::uint8_t { kMdy, kDmy, kYmd, kYdm, kMyd, kDym };

/// The style that stands for an order where CONVERT names none: 0 for the default, below 0 for the others.
constexpr int StyleOfOrder(DateOrder order) { return -static_cast<int>(order); }
/// The style for a conversion to `to` for which none, or `style`, was given.
inline int StyleFor(const SqlType& to, int style, DateOrder order) {
  return style == 0 && (to.is_date() || to.has_offset()) ? StyleOfOrder(order) : style;
}
/// The order that texts have in a style of CONVERT, or StyleOfOrder's.
DateOrder OrderOfStyle(int style);

/// What a text says: '20261103', '2026-11-03T09:08:07.5', '11/03/26 9:08PM', 'Nov 3 2026', '09:08', '2026'. Years of
/// two digits are those of 1950 to 2049; what is not written is 1900-01-01 and midnight. std::nullopt for anything
/// else. The parts are not checked: there may be a 31st of February in it, and a 1000th millisecond.
/// @param newer for the types that came after datetime: '2026-11-03' is the third of November whatever the order, and
/// an offset (' +08:00') may stand behind the time
/// @param offset takes the offset in minutes, 0 when there is none; nullptr when it does not matter
std::optional<CivilTime> ReadDateText(std::string_view text, int style, bool newer, int* offset = nullptr);

/// The minutes of '+08:00', -840 to 840. std::nullopt for anything else.
std::optional<int> ReadOffset(std::string_view text);

/// SQL Server's text of a date with a CONVERT style. Raises 281 for unknown styles.
std::string FormatDate(std::int64_t milliseconds, const SqlType& type, int style);

}  // namespace tessarlorn::tsql
