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
  kHour,
  kMinute,
  kSecond,
  kMillisecond,
};

/// The part that a name or abbreviation ("mm", "hour") means.
std::optional<DatePart> FindDatePart(std::string_view name);

}  // namespace tessarlorn::tsql
