// Date functions: DATEADD, DATEDIFF, DATEPART, DATENAME, EOMONTH and their like.
#include <array>

#include "platform/text/text.h"
#include "tessarlorn/date_time.h"
#include "tsql/functions/date_part.h"
#include "tsql/functions/functions.h"
#include "tsql/functions/sqlite_value.h"
#include "tsql/values/date_text.h"
#include "tsql/values/moment.h"

namespace tessarlorn::tsql {
namespace {

constexpr std::int64_t kSecond = 1000;
constexpr std::int64_t kMinute = 60 * kSecond;
constexpr std::int64_t kHour = 60 * kMinute;
constexpr std::int64_t kDay = 24 * kHour;

std::int64_t FloorDivide(std::int64_t value, std::int64_t by) { return value / by - (value % by < 0 ? 1 : 0); }

[[noreturn]] void RaiseDateOverflow(const SqlType& type = DateTimeType()) {
  throw SqlError(517, "Adding a value to a '" + std::string(TypeNameText(type)) + "' column caused an overflow.");
}

std::int64_t FromCivil(const CivilTime& civil) {
  const std::optional<DateTime> time = DateTime::FromCivil(civil);
  if (!time) RaiseDateOverflow();
  return time->milliseconds();
}

std::int64_t AddMonths(std::int64_t time, std::int64_t months) {
  constexpr std::int64_t kMost = 120000;
  if (months > kMost || months < -kMost) RaiseDateOverflow();
  CivilTime civil = DateTime(time).ToCivil();
  const std::int64_t total = std::int64_t{civil.year} * 12 + civil.month - 1 + months;
  if (total < 12 || total >= 120000) RaiseDateOverflow();
  civil.year = static_cast<int>(total / 12);
  civil.month = static_cast<int>(total % 12) + 1;
  civil.day = std::min(civil.day, DaysInMonth(civil.year, civil.month));
  return FromCivil(civil);
}

constexpr int kMonday = 1;
constexpr int kSunday = 7;

std::int64_t Unit(DatePart part) {
  switch (part) {
    case DatePart::kWeek:
      return 7 * kDay;
    case DatePart::kHour:
      return kHour;
    case DatePart::kMinute:
      return kMinute;
    case DatePart::kSecond:
      return kSecond;
    case DatePart::kMillisecond:
    case DatePart::kMicrosecond:
    case DatePart::kNanosecond:
      return 1;
    default:
      return kDay;
  }
}

std::int64_t PartsOfMillisecond(DatePart part) {
  return part == DatePart::kMicrosecond ? 1000 : part == DatePart::kNanosecond ? 1'000'000 : 1;
}

// ts_datetime(milliseconds, type): the result of an addition
void DateTimeOf(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (AnyNull(arguments)) return;
  const SqlType type = TypeArgument(arguments[1]);
  try {
    sqlite3_result_int64(context, FitDate(sqlite3_value_int64(arguments[0]), type, type));
  } catch (const SqlError&) {
    RaiseArithmeticOverflow(type);
  }
}

// ts_dateadd(part, number, date, type)
void DateAdd(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (AnyNull(arguments)) return;
  const auto part = static_cast<DatePart>(sqlite3_value_int(arguments[0]));
  const std::int64_t number = IntOf(arguments[1]);
  const SqlType type = TypeArgument(arguments[3]);
  Moment moment;
  if (type.has_offset()) moment = ReadStoredMoment(TextOf(arguments[2]));
  const std::int64_t time = type.has_offset() ? moment.local() : sqlite3_value_int64(arguments[2]);
  std::int64_t result = 0;
  if (part == DatePart::kYear || part == DatePart::kQuarter || part == DatePart::kMonth) {
    result = AddMonths(time, number * (part == DatePart::kYear ? 12 : part == DatePart::kQuarter ? 3 : 1));
  } else {
    result = time + number * Unit(part) / PartsOfMillisecond(part);
  }
  if (result < -kDay * 693595 || result >= kDay * 2958464) RaiseDateOverflow(type);
  try {
    if (type.has_offset()) {
      SetText(context, StoredMoment(FitMoment(Moment::OfClock(result, moment.offset), type, type)));
    } else {
      sqlite3_result_int64(context, FitDate(result, type, type));
    }
  } catch (const SqlError&) {
    RaiseDateOverflow(type);
  }
}

// ts_datediff(part, from, to): boundaries crossed
void DateDiff(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (AnyNull(arguments)) return;
  const auto part = static_cast<DatePart>(sqlite3_value_int(arguments[0]));
  const std::int64_t from = sqlite3_value_int64(arguments[1]);
  const std::int64_t to = sqlite3_value_int64(arguments[2]);
  const auto months = [](std::int64_t time) {
    const CivilTime civil = DateTime(time).ToCivil();
    return std::int64_t{civil.year} * 12 + civil.month - 1;
  };
  std::int64_t result = 0;
  switch (part) {
    case DatePart::kYear:
      result = months(to) / 12 - months(from) / 12;
      break;
    case DatePart::kQuarter:
      result = months(to) / 3 - months(from) / 3;
      break;
    case DatePart::kMonth:
      result = months(to) - months(from);
      break;
    case DatePart::kWeek:  // weeks begin on Sunday
      result = FloorDivide(to + kDay, 7 * kDay) - FloorDivide(from + kDay, 7 * kDay);
      break;
    default:
      result = (FloorDivide(to, Unit(part)) - FloorDivide(from, Unit(part))) * PartsOfMillisecond(part);
      break;
  }
  sqlite3_result_int64(context, result);
}

// ts_datediff_int(difference)
void CheckDifference(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (AnyNull(arguments)) return;
  const std::int64_t result = sqlite3_value_int64(arguments[0]);
  if (result > 2147483647 || result < -2147483648LL) {
    throw SqlError(535,
                   "The datediff function resulted in an overflow. The number of dateparts separating two "
                   "date/time instances is too large. Try to use datediff with a less precise datepart.");
  }
  sqlite3_result_int64(context, result);
}

/// The week that holds the Thursday of this one counts in the year of that day.
std::int64_t IsoWeek(std::int64_t time) {
  const std::int64_t thursday = time + (3 - DayOfWeek(time, kMonday)) * kDay;
  return (FloorDivide(thursday, kDay) - DaysFromCivil(DateTime(thursday).ToCivil().year, 1, 1)) / 7 + 1;
}

/// @param first SET DATEFIRST
std::int64_t PartOf(DatePart part, std::int64_t time, int first) {
  const CivilTime civil = DateTime(time).ToCivil();
  const auto first_of_year = DaysFromCivil(civil.year, 1, 1);
  const std::int64_t day_of_year = FloorDivide(time, kDay) - first_of_year + 1;
  switch (part) {
    case DatePart::kYear:
      return civil.year;
    case DatePart::kQuarter:
      return (civil.month + 2) / 3;
    case DatePart::kMonth:
      return civil.month;
    case DatePart::kDayOfYear:
      return day_of_year;
    case DatePart::kDay:
      return civil.day;
    case DatePart::kWeek:
      return (day_of_year + DayOfWeek(first_of_year * kDay, first) - 1) / 7 + 1;
    case DatePart::kWeekDay:
      return DayOfWeek(time, first) + 1;
    case DatePart::kIsoWeek:
      return IsoWeek(time);
    case DatePart::kHour:
      return civil.hour;
    case DatePart::kMinute:
      return civil.minute;
    case DatePart::kSecond:
      return civil.second;
    case DatePart::kMicrosecond:
      return std::int64_t{civil.millisecond} * 1000;
    case DatePart::kNanosecond:
      return std::int64_t{civil.millisecond} * 1'000'000;
    default:
      return civil.millisecond;
  }
}

// ts_datepart(part, date)
void DatePartOf(sqlite3_context* context, Runtime& runtime, Arguments arguments) {
  if (AnyNull(arguments)) return;
  sqlite3_result_int64(context, PartOf(static_cast<DatePart>(sqlite3_value_int(arguments[0])),
                                       sqlite3_value_int64(arguments[1]), runtime.first_weekday));
}

// ts_datename(part, date)
void DateName(sqlite3_context* context, Runtime& runtime, Arguments arguments) {
  if (AnyNull(arguments)) return;
  constexpr std::array<const char*, 12> kMonths = {"January",   "February", "March",    "April",
                                                   "May",       "June",     "July",     "August",
                                                   "September", "October",  "November", "December"};
  constexpr std::array<const char*, 7> kDays = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                "Thursday", "Friday", "Saturday"};
  const auto part = static_cast<DatePart>(sqlite3_value_int(arguments[0]));
  // The days have their names whichever comes first.
  const int first = part == DatePart::kWeekDay ? kSunday : runtime.first_weekday;
  const auto value = PartOf(part, sqlite3_value_int64(arguments[1]), first);
  if (part == DatePart::kMonth) {
    SetText(context, kMonths[static_cast<std::size_t>(value - 1)]);
  } else if (part == DatePart::kWeekDay) {
    SetText(context, kDays[static_cast<std::size_t>(value - 1)]);
  } else {
    SetText(context, std::to_string(value));
  }
}

// ts_eomonth(date, months)
void EndOfMonth(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (AnyNull(arguments)) return;
  CivilTime civil = DateTime(AddMonths(sqlite3_value_int64(arguments[0]), sqlite3_value_int64(arguments[1]))).ToCivil();
  civil.day = DaysInMonth(civil.year, civil.month);
  civil.hour = civil.minute = civil.second = civil.millisecond = 0;
  sqlite3_result_int64(context, FromCivil(civil));
}

/// The minutes that an offset's argument means: a text, or a whole number.
int OffsetArgument(sqlite3_value* value, const char* function) {
  constexpr int kMost = 14 * 60;
  const std::int64_t minutes = sqlite3_value_type(value) == SQLITE_TEXT ? ReadOffset(TextOf(value)).value_or(kMost + 1)
                                                                        : sqlite3_value_int64(value);
  if (minutes < -kMost || minutes > kMost) {
    throw SqlError(9812, "The timezone provided to builtin function " + std::string(function) + " is invalid.");
  }
  return static_cast<int>(minutes);
}

// ts_switchoffset(moment, offset, type)
void SwitchOffset(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (AnyNull(arguments)) return;
  Moment moment = ReadStoredMoment(TextOf(arguments[0]));
  moment.offset = OffsetArgument(arguments[1], "switchoffset");
  const SqlType type = TypeArgument(arguments[2]);
  SetText(context, StoredMoment(FitMoment(moment, type, type)));
}

// ts_todatetimeoffset(date, offset, type)
void ToDateTimeOffset(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (AnyNull(arguments)) return;
  const int offset = OffsetArgument(arguments[1], "todatetimeoffset");
  const SqlType type = TypeArgument(arguments[2]);
  SetText(context, StoredMoment(FitMoment(Moment::OfClock(sqlite3_value_int64(arguments[0]), offset), type, type)));
}

// ts_isdate(text)
void IsDate(sqlite3_context* context, Runtime& runtime, Arguments arguments) {
  bool date = false;
  if (!IsNull(arguments[0]) && !Trim(TextOf(arguments[0])).empty()) {
    const std::optional<CivilTime> civil = ReadDateText(TextOf(arguments[0]), StyleOfOrder(runtime.date_order), false);
    constexpr int kFirstYear = 1753;
    date = civil && civil->year >= kFirstYear && DateTime::FromCivil(*civil);
  }
  sqlite3_result_int(context, date ? 1 : 0);
}

}  // namespace

std::int64_t DayOfWeek(std::int64_t time, int first) {
  const std::int64_t since_monday = FloorDivide(time, kDay);  // 1900-01-01 was a Monday
  return (((since_monday - (first - 1)) % 7) + 7) % 7;
}

std::optional<DatePart> FindDatePart(std::string_view name) {
  struct Named {
    std::string_view name;
    DatePart part;
  };
  constexpr std::array kParts = {
      Named{"year", DatePart::kYear},       Named{"yy", DatePart::kYear},
      Named{"yyyy", DatePart::kYear},       Named{"quarter", DatePart::kQuarter},
      Named{"qq", DatePart::kQuarter},      Named{"q", DatePart::kQuarter},
      Named{"month", DatePart::kMonth},     Named{"mm", DatePart::kMonth},
      Named{"m", DatePart::kMonth},         Named{"dayofyear", DatePart::kDayOfYear},
      Named{"dy", DatePart::kDayOfYear},    Named{"y", DatePart::kDayOfYear},
      Named{"day", DatePart::kDay},         Named{"dd", DatePart::kDay},
      Named{"d", DatePart::kDay},           Named{"week", DatePart::kWeek},
      Named{"wk", DatePart::kWeek},         Named{"ww", DatePart::kWeek},
      Named{"weekday", DatePart::kWeekDay}, Named{"dw", DatePart::kWeekDay},
      Named{"w", DatePart::kWeekDay},       Named{"hour", DatePart::kHour},
      Named{"hh", DatePart::kHour},         Named{"minute", DatePart::kMinute},
      Named{"mi", DatePart::kMinute},       Named{"n", DatePart::kMinute},
      Named{"second", DatePart::kSecond},   Named{"ss", DatePart::kSecond},
      Named{"s", DatePart::kSecond},        Named{"millisecond", DatePart::kMillisecond},
      Named{"ms", DatePart::kMillisecond},  Named{"microsecond", DatePart::kMicrosecond},
      Named{"mcs", DatePart::kMicrosecond}, Named{"nanosecond", DatePart::kNanosecond},
      Named{"ns", DatePart::kNanosecond},   Named{"iso_week", DatePart::kIsoWeek},
      Named{"isowk", DatePart::kIsoWeek},   Named{"isoww", DatePart::kIsoWeek},
      Named{"tzoffset", DatePart::kOffset}, Named{"tz", DatePart::kOffset},
  };
  for (const Named& part : kParts) {
    if (EqualsIgnoreCase(part.name, name)) return part.part;
  }
  return std::nullopt;
}

void RegisterDateFunctions(sqlite3* database, Runtime& runtime) {
  RegisterFunction(database, runtime, "ts_dateadd", 4, DateAdd);
  RegisterFunction(database, runtime, "ts_datetime", 2, DateTimeOf);
  RegisterFunction(database, runtime, "ts_datediff_int", 1, CheckDifference);
  RegisterFunction(database, runtime, "ts_datediff", 3, DateDiff);
  RegisterFunction(database, runtime, "ts_datepart", 2, DatePartOf);
  RegisterFunction(database, runtime, "ts_datename", 2, DateName);
  RegisterFunction(database, runtime, "ts_eomonth", 2, EndOfMonth);
  RegisterFunction(database, runtime, "ts_switchoffset", 3, SwitchOffset);
  RegisterFunction(database, runtime, "ts_todatetimeoffset", 3, ToDateTimeOffset);
  RegisterFunction(database, runtime, "ts_isdate", 1, IsDate);
}

}  // namespace tessarlorn::tsql
