// The parts of a date that DATEADD, DATEDIFF, DATEPART and DATENAME know.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace tessarlorn::tsql {

enum class DatePart : std::uint8_t {
  kYear,
  kQuarter,
  kMonth,
  kDayOfYear,
  kDay,
  kWeek,
  kWeekDay,
  kIsoWeek,
  kOffset,
  kHour,
  kMinute,
  kSecond,
  kMillisecond,
  kMicrosecond,
  kNanosecond,
};

/// The part that a name or abbreviation ("mm", "hour") means.
std::optional<DatePart> FindDatePart(std::string_view name);
/// Days since the week began, 0 to 6.
/// @param time milliseconds since 1900-01-01
/// @param first SET DATEFIRST: 1 for Monday to 7 for Sunday
std::int64_t DayOfWeek(std::int64_t time, int first);

}  // namespace tessarlorn::tsql
