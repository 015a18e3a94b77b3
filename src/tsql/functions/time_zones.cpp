// AT TIME ZONE: the usual zones by their Windows names, with the rules of daylight-saving time that hold today.
#include <algorithm>
#include <array>

#include "platform/text/text.h"
#include "tessarlorn/date_time.h"
#include "tsql/functions/date_part.h"
#include "tsql/functions/functions.h"
#include "tsql/functions/sqlite_value.h"
#include "tsql/values/moment.h"

namespace tessarlorn::tsql {
namespace {

constexpr std::int64_t kMinuteLength = 60'000;
constexpr std::int64_t kHourLength = 60 * kMinuteLength;
constexpr std::int64_t kOneDay = 24 * kHourLength;

/// A Sunday of a month, and the time at which clocks change on it.
struct Change {
  int month;
  int sunday;  // 1 for the first; 5 for the last
  int hour;    // of the clock that shows standard time; of UTC in Europe
};

struct Summer {
  Change begin;
  Change end;
  bool by_utc;
};

constexpr Summer kEurope{{3, 5, 1}, {10, 5, 1}, true};
constexpr Summer kAmerica{{3, 2, 2}, {11, 1, 1}, false};
constexpr Summer kAustralia{{10, 1, 2}, {4, 1, 2}, false};
constexpr Summer kNewZealand{{9, 5, 2}, {4, 1, 2}, false};

struct Zone {
  std::string_view name;
  int offset;            // of standard time, minutes before UTC
  const Summer* summer;  // null where clocks are not changed
};

constexpr std::array kZones = {
    Zone{"UTC", 0, nullptr},
    Zone{"Dateline Standard Time", -720, nullptr},
    Zone{"Hawaiian Standard Time", -600, nullptr},
    Zone{"Alaskan Standard Time", -540, &kAmerica},
    Zone{"Pacific Standard Time", -480, &kAmerica},
    Zone{"US Mountain Standard Time", -420, nullptr},
    Zone{"Mountain Standard Time", -420, &kAmerica},
    Zone{"Central Standard Time", -360, &kAmerica},
    Zone{"Central America Standard Time", -360, nullptr},
    Zone{"Canada Central Standard Time", -360, nullptr},
    Zone{"Central Standard Time (Mexico)", -360, nullptr},
    Zone{"Eastern Standard Time", -300, &kAmerica},
    Zone{"US Eastern Standard Time", -300, &kAmerica},
    Zone{"SA Pacific Standard Time", -300, nullptr},
    Zone{"Atlantic Standard Time", -240, &kAmerica},
    Zone{"Newfoundland Standard Time", -210, &kAmerica},
    Zone{"E. South America Standard Time", -180, nullptr},
    Zone{"Argentina Standard Time", -180, nullptr},
    Zone{"Azores Standard Time", -60, &kEurope},
    Zone{"GMT Standard Time", 0, &kEurope},
    Zone{"Greenwich Standard Time", 0, nullptr},
    Zone{"W. Europe Standard Time", 60, &kEurope},
    Zone{"Central Europe Standard Time", 60, &kEurope},
    Zone{"Central European Standard Time", 60, &kEurope},
    Zone{"Romance Standard Time", 60, &kEurope},
    Zone{"W. Central Africa Standard Time", 60, nullptr},
    Zone{"E. Europe Standard Time", 120, &kEurope},
    Zone{"FLE Standard Time", 120, &kEurope},
    Zone{"GTB Standard Time", 120, &kEurope},
    Zone{"South Africa Standard Time", 120, nullptr},
    Zone{"Kaliningrad Standard Time", 120, nullptr},
    Zone{"Arab Standard Time", 180, nullptr},
    Zone{"Arabic Standard Time", 180, nullptr},
    Zone{"E. Africa Standard Time", 180, nullptr},
    Zone{"Russian Standard Time", 180, nullptr},
    Zone{"Turkey Standard Time", 180, nullptr},
    Zone{"Iran Standard Time", 210, nullptr},
    Zone{"Arabian Standard Time", 240, nullptr},
    Zone{"Pakistan Standard Time", 300, nullptr},
    Zone{"West Asia Standard Time", 300, nullptr},
    Zone{"India Standard Time", 330, nullptr},
    Zone{"Sri Lanka Standard Time", 330, nullptr},
    Zone{"Nepal Standard Time", 345, nullptr},
    Zone{"Bangladesh Standard Time", 360, nullptr},
    Zone{"Myanmar Standard Time", 390, nullptr},
    Zone{"SE Asia Standard Time", 420, nullptr},
    Zone{"China Standard Time", 480, nullptr},
    Zone{"Singapore Standard Time", 480, nullptr},
    Zone{"Taipei Standard Time", 480, nullptr},
    Zone{"W. Australia Standard Time", 480, nullptr},
    Zone{"Ulaanbaatar Standard Time", 480, nullptr},
    Zone{"Tokyo Standard Time", 540, nullptr},
    Zone{"Korea Standard Time", 540, nullptr},
    Zone{"AUS Central Standard Time", 570, nullptr},
    Zone{"Cen. Australia Standard Time", 570, &kAustralia},
    Zone{"AUS Eastern Standard Time", 600, &kAustralia},
    Zone{"E. Australia Standard Time", 600, nullptr},
    Zone{"Vladivostok Standard Time", 600, nullptr},
    Zone{"New Zealand Standard Time", 720, &kNewZealand},
};

const Zone& FindZone(std::string_view name) {
  const auto* const found =
      std::find_if(kZones.begin(), kZones.end(), [&](const Zone& zone) { return EqualsIgnoreCase(zone.name, name); });
  if (found != kZones.end()) return *found;
  throw SqlError(9820,
                 "The time zone parameter '" + std::string(name) + "' provided to AT TIME ZONE clause is invalid.");
}

/// In milliseconds since 1900-01-01, of the clock that the change is told by.
std::int64_t TimeOf(const Change& change, int year) {
  constexpr int kSundayFirst = 7;
  const int last = DaysInMonth(year, change.month);
  const std::int64_t end = DaysFromCivil(year, change.month, std::min(change.sunday * 7, last)) * kOneDay;
  return end - DayOfWeek(end, kSundayFirst) * kOneDay + change.hour * kHourLength;
}

/// Minutes before UTC at that time of UTC.
int OffsetAt(const Zone& zone, std::int64_t utc) {
  if (zone.summer == nullptr) return zone.offset;
  const std::int64_t told = zone.summer->by_utc ? utc : utc + zone.offset * kMinuteLength;
  const int year = DateTime(told).ToCivil().year;
  const std::int64_t begin = TimeOf(zone.summer->begin, year);
  const std::int64_t end = TimeOf(zone.summer->end, year);
  // In the south it lasts beyond the turn of the year.
  const bool summer = begin < end ? told >= begin && told < end : told >= begin || told < end;
  return zone.offset + (summer ? 60 : 0);
}

/// What the zone's clock shows. A time that it shows twice counts as standard time, one that it leaves out as an hour
/// later.
Moment MomentOfClock(const Zone& zone, std::int64_t local) {
  const Moment standard = Moment::OfClock(local, zone.offset);
  const int offset = OffsetAt(zone, standard.utc);
  if (offset == zone.offset) return standard;
  const Moment summer = Moment::OfClock(local, offset);
  return OffsetAt(zone, summer.utc) == offset ? summer : Moment{standard.utc, offset};
}

// ts_of_zone(date, zone, type): what the zone's clock shows becomes a moment
void OfZone(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (AnyNull(arguments)) return;
  const SqlType type = TypeArgument(arguments[2]);
  const Moment moment = MomentOfClock(FindZone(TextOf(arguments[1])), sqlite3_value_int64(arguments[0]));
  SetText(context, StoredMoment(FitMoment(moment, type, type)));
}

// ts_to_zone(moment, zone, type): the moment by the zone's clock
void ToZone(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (AnyNull(arguments)) return;
  const SqlType type = TypeArgument(arguments[2]);
  Moment moment = ReadStoredMoment(TextOf(arguments[0]));
  moment.offset = OffsetAt(FindZone(TextOf(arguments[1])), moment.utc);
  SetText(context, StoredMoment(FitMoment(moment, type, type)));
}

}  // namespace

void RegisterTimeZones(sqlite3* database, Runtime& runtime) {
  RegisterFunction(database, runtime, "ts_of_zone", 3, OfZone);
  RegisterFunction(database, runtime, "ts_to_zone", 3, ToZone);
}

}  // namespace tessarlorn::tsql
