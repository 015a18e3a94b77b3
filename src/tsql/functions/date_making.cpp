// Dates that are made: of their parts, and by cutting others off.
#include "tessarlorn/date_time.h"
#include "tsql/functions/date_part.h"
#include "tsql/functions/functions.h"
#include "tsql/functions/sqlite_value.h"
#include "tsql/values/moment.h"

namespace tessarlorn::tsql {
namespace {

constexpr std::int64_t kDayLength = 86'400'000;

[[noreturn]] void RaiseNoDate(const SqlType& type) {
  throw SqlError(289, "Cannot construct data type " + std::string(TypeNameText(type)) +
                          ", some of the arguments have values which are not valid.");
}

/// Minutes of an offset's hours and minutes, which have one sign.
std::optional<int> OffsetOf(int hours, int minutes) {
  constexpr int kMostHours = 14;
  const int offset = hours * 60 + minutes;
  const bool one_sign = (hours >= 0 && minutes >= 0) || (hours <= 0 && minutes <= 0);
  if (!one_sign || std::abs(hours) > kMostHours || std::abs(minutes) > 59 || std::abs(offset) > kMostHours * 60) {
    return std::nullopt;
  }
  return offset;
}

// ts_fromparts(type, year, month, day, hour, minute, second, fraction, places, offset hours, offset minutes): the
// fraction counts units of so many decimal places of a second
void FromParts(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (AnyNull(arguments)) return;
  const SqlType type = TypeArgument(arguments[0]);
  const auto part = [&](std::size_t i) { return IntOf(arguments[i]); };
  CivilTime civil{part(1), part(2), part(3), part(4), part(5), part(6), 0};
  std::int64_t units = 1;
  for (int places = part(8); places > 0; --places) units *= 10;
  if (part(7) < 0 || part(7) >= units) RaiseNoDate(type);
  civil.millisecond = static_cast<int>(std::int64_t{part(7)} * 1000 / units);
  const std::optional<DateTime> time = DateTime::FromCivil(civil);
  const std::optional<int> offset = OffsetOf(part(9), part(10));
  if (!time || !offset) RaiseNoDate(type);
  try {
    if (type.has_offset()) {
      SetText(context, StoredMoment(FitMoment(Moment::OfClock(time->milliseconds(), *offset), type, type)));
    } else {
      sqlite3_result_int64(context, FitDate(time->milliseconds(), type, type));
    }
  } catch (const SqlError&) {
    RaiseNoDate(type);
  }
}

/// The beginning of the year, month, day, hour … that the time lies in.
/// @param first SET DATEFIRST
std::int64_t BeginOf(DatePart part, std::int64_t time, int first) {
  CivilTime civil = DateTime(time).ToCivil();
  if (part < DatePart::kHour) civil.hour = 0;
  if (part < DatePart::kMinute) civil.minute = 0;
  if (part < DatePart::kSecond) civil.second = 0;
  if (part < DatePart::kMillisecond) civil.millisecond = 0;
  if (part <= DatePart::kMonth) civil.day = 1;
  if (part == DatePart::kYear) civil.month = 1;
  if (part == DatePart::kQuarter) civil.month -= (civil.month - 1) % 3;
  const std::int64_t begin = DateTime::FromCivil(civil).value_or(DateTime()).milliseconds();
  if (part == DatePart::kWeek) return begin - DayOfWeek(begin, first) * kDayLength;
  if (part == DatePart::kIsoWeek) return begin - DayOfWeek(begin, 1) * kDayLength;
  return begin;
}

// ts_datetrunc(part, date, type)
void TruncateDate(sqlite3_context* context, Runtime& runtime, Arguments arguments) {
  if (AnyNull(arguments)) return;
  const auto part = static_cast<DatePart>(sqlite3_value_int(arguments[0]));
  const SqlType type = TypeArgument(arguments[2]);
  if (type.has_offset()) {
    const Moment moment = ReadStoredMoment(TextOf(arguments[1]));
    const std::int64_t begin = BeginOf(part, moment.local(), runtime.first_weekday);
    SetText(context, StoredMoment(FitMoment(Moment::OfClock(begin, moment.offset), type, type)));
    return;
  }
  const std::int64_t begin = BeginOf(part, sqlite3_value_int64(arguments[1]), runtime.first_weekday);
  sqlite3_result_int64(context, FitDate(begin, type, type));
}

// ts_offset(moment, as text): minutes, or '+08:00'
void OffsetOfMoment(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (AnyNull(arguments)) return;
  const std::string_view stored = TextOf(arguments[0]);
  if (sqlite3_value_int(arguments[1]) != 0) {
    SetText(context, stored.substr(stored.find('Z') + 1));
  } else {
    sqlite3_result_int(context, ReadStoredMoment(stored).offset);
  }
}

// ts_datefirst()
void FirstWeekdayNow(sqlite3_context* context, Runtime& runtime, Arguments) {
  sqlite3_result_int(context, runtime.first_weekday);
}

}  // namespace

void RegisterDateMaking(sqlite3* database, Runtime& runtime) {
  RegisterFunction(database, runtime, "ts_fromparts", 11, FromParts);
  RegisterFunction(database, runtime, "ts_datetrunc", 3, TruncateDate);
  RegisterFunction(database, runtime, "ts_offset", 2, OffsetOfMoment);
  RegisterFunction(database, runtime, "ts_datefirst", 0, FirstWeekdayNow, false);
}

}  // namespace tessarlorn::tsql
