// Functions on dates and times.
#include <algorithm>
#include <array>
#include <optional>

#include "platform/text/text.h"
#include "tsql/functions/date_part.h"
#include "tsql/translate/calls/call_topics.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

/// The most decimal places that a second can have.
constexpr int kMostPlaces = 7;
constexpr int kPlacesOfMilliseconds = 3;
constexpr SqlType kDateType{FieldType::kDate, 0, 0, 0, false};

DatePart FoundPart(const Call& call) {
  if (const std::optional<DatePart> found = FindDatePart(call.date_part())) return *found;
  throw SqlError(155, "'" + call.date_part() + "' is not a recognized " + call.name() + " option.", 15);
}

/// The date part as the row functions know it. Raises 155 for an unknown one.
std::string PartOf(const Call& call) { return std::to_string(static_cast<int>(FoundPart(call))); }

[[noreturn]] void RaisePart(const Call& call, const SqlType& type) {
  throw SqlError(9810, "The datepart " + LowerCase(call.date_part()) + " is not supported by date function " +
                           call.name() + " for data type " + std::string(TypeNameText(type)) + ".");
}

/// Parts that dates have, but that are no lengths of time.
bool IsPlaceOnly(DatePart part) { return part == DatePart::kIsoWeek || part == DatePart::kOffset; }

Typed DateAdd(const Call& call) {
  call.Require(2);
  const Typed date = call.Value(1);
  const SqlType type = date.type.is_date() || date.type.has_offset() ? date.type : DateTimeType();
  const DatePart part = FoundPart(call);
  const bool of_time = part >= DatePart::kHour;
  const bool other_half = (type.kind == FieldType::kDate && of_time) || (type.kind == FieldType::kTime && !of_time);
  if (other_half || IsPlaceOnly(part)) RaisePart(call, type);
  const std::string number = call.Int(0);
  return {"ts_dateadd(" + PartOf(call) + ", " + number + ", " + call.Coerced(date, type) + ", " + Packed(type) + ")",
          type, true, -1};
}

Typed DateDiff(const Call& call) {
  call.Require(2);
  // Between moments of different clocks, by UTC.
  const auto side = [&](std::size_t i) {
    const Typed value = call.Value(i);
    if (!value.type.has_offset()) return AsDate(call.parameters(), value);
    return AsDate(call.parameters(),
                  {"ts_switchoffset(" + value.sql + ", 0, " + Packed(value.type) + ")", value.type, true, -1});
  };
  if (IsPlaceOnly(FoundPart(call))) RaisePart(call, call.Value(0).type);
  const std::string from = side(0);
  const std::string difference = "ts_datediff(" + PartOf(call) + ", " + from + ", " + side(1) + ")";
  if (call.name() == "datediff_big") return {difference, BigIntType(), true, -1};
  return {"ts_datediff_int(" + difference + ")", IntType(), true, -1};
}

/// DATEPART and DATENAME of tzoffset.
Typed OffsetPart(const Call& call) {
  const Typed value = call.Value(0);
  const bool newer = value.type.kind == FieldType::kDateTime && !value.type.is_old_date();
  if (!value.type.has_offset() && !value.type.is_text() && !newer) RaisePart(call, value.type);
  const std::string moment = call.Coerced(value, DateTimeOffsetType(kMostPlaces));
  const bool as_text = call.name() == "datename";
  return {"ts_offset(" + moment + (as_text ? ", 1)" : ", 0)"), as_text ? NVarCharType(30) : IntType(), true, -1};
}

/// DATETRUNC. A text is a datetime2.
Typed Truncated(const Call& call) {
  call.Require(1);
  const Typed date = call.Value(0);
  const SqlType type = date.type.is_date() || date.type.has_offset() ? date.type : DateTime2Type(kMostPlaces);
  const DatePart part = FoundPart(call);
  const bool of_time = part >= DatePart::kHour;
  const bool other_half = (type.kind == FieldType::kDate && of_time) || (type.kind == FieldType::kTime && !of_time);
  if (other_half || part == DatePart::kWeekDay || part == DatePart::kOffset || part == DatePart::kNanosecond) {
    RaisePart(call, type);
  }
  return {"ts_datetrunc(" + PartOf(call) + ", " + call.Coerced(date, type) + ", " + Packed(type) + ")", type, true, -1};
}

Typed DatePartOf(const Call& call) {
  call.Require(1);
  const std::string part = PartOf(call);
  if (FoundPart(call) == DatePart::kOffset) return OffsetPart(call);
  return {"ts_" + call.name() + "(" + part + ", " + call.Date(0) + ")",
          call.name() == "datepart" ? IntType() : NVarCharType(30), true, -1};
}

/// YEAR, MONTH and DAY.
Typed NamedPart(const Call& call) {
  call.Require(1);
  const int part = static_cast<int>(*FindDatePart(call.name()));
  return {"ts_datepart(" + std::to_string(part) + ", " + call.Date(0) + ")", IntType(), true, -1};
}

/// The decimal places that a date of the type has as a datetimeoffset.
int PlacesOf(const SqlType& type) {
  if (type.is_old_date()) return type.form() == DateForm::kSmallDateTime ? 0 : kPlacesOfMilliseconds;
  return type.is_date() || type.has_offset() ? type.scale : kMostPlaces;
}

/// date AT TIME ZONE zone
Typed AtTimeZone(const Call& call) {
  const Typed value = call.Value(0);
  if (!value.type.has_offset() && value.type.kind != FieldType::kDateTime) {
    throw SqlError(8116, "Argument data type " + std::string(TypeNameText(value.type)) +
                             " is invalid for argument 1 of AT TIME ZONE function.");
  }
  const SqlType type = DateTimeOffsetType(PlacesOf(value.type));
  const std::string function = value.type.has_offset() ? "ts_to_zone(" : "ts_of_zone(";
  return {function + value.sql + ", " + call.Text(1) + ", " + Packed(type) + ")", type, true, -1};
}

/// SWITCHOFFSET and TODATETIMEOFFSET.
Typed WithOffset(const Call& call) {
  call.Require(2);
  const Typed value = call.Value(0);
  const Typed zone = call.Value(1);
  const SqlType type = DateTimeOffsetType(PlacesOf(value.type));
  const std::string moment = call.Coerced(value, call.name() == "switchoffset" ? type : DateTime2Type(type.scale));
  const std::string offset = zone.type.is_text() ? zone.sql : call.Coerced(zone, BigIntType());
  return {"ts_" + call.name() + "(" + moment + ", " + offset + ", " + Packed(type) + ")", type, true, -1};
}

Typed EndOfMonth(const Call& call) {
  call.Require(1, 2);
  const std::string date = call.Date(0);
  return {"ts_eomonth(" + date + ", " + call.Int(1, "0") + ")", kDateType, true, -1};
}

/// The last argument of DATETIME2FROMPARTS and its like: a constant.
int PlacesArgument(const Call& call, std::string_view type) {
  const Expression& written = call.Argument(call.count() - 1);
  const auto* literal = As<Literal>(written);
  if (literal == nullptr || literal->kind != LiteralKind::kInteger) {
    throw SqlError(10760, "Scale argument is not valid. Valid expressions for data type " + std::string(type) +
                              " scale argument are integer constants and integer constant expressions.");
  }
  call.parameters().Pin(*literal);
  const std::optional<int> places = WholeNumber<int>(literal->text, 0, kMostPlaces);
  if (!places) throw SqlError(1002, "Line 1: Specified scale " + literal->text + " is invalid.", 15);
  return *places;
}

/// DATEFROMPARTS and its like; no SQL for others.
Typed FromParts(const Call& call) {
  struct Maker {
    std::string_view name;
    std::string_view type;
    /// A letter an argument: those of kParts.
    std::string_view arguments;
  };
  constexpr std::array kMakers = {Maker{"datefromparts", "date", "ymd"},
                                  Maker{"datetimefromparts", "datetime", "ymdhisf"},
                                  Maker{"smalldatetimefromparts", "smalldatetime", "ymdhi"},
                                  Maker{"datetime2fromparts", "datetime2", "ymdhisfp"},
                                  Maker{"timefromparts", "time", "hisfp"},
                                  Maker{"datetimeoffsetfromparts", "datetimeoffset", "ymdhisfHMp"}};
  const auto* const maker =
      std::find_if(kMakers.begin(), kMakers.end(), [&](const Maker& entry) { return entry.name == call.name(); });
  if (maker == kMakers.end()) return {};
  call.Require(maker->arguments.size());
  TypeName name{std::string(maker->type)};
  int places = kPlacesOfMilliseconds;
  if (maker->arguments.back() == 'p') name.length = places = PlacesArgument(call, maker->type);
  const SqlType type = ResolveType(name, false);
  // As ts_fromparts takes them: from the year to the second, the fraction and its places, the offset.
  constexpr std::string_view kParts = "ymdhisfpHM";
  std::string sql = "ts_fromparts(" + Packed(type);
  for (const char part : kParts) {
    const std::size_t at = maker->arguments.find(part);
    const char* const otherwise = part == 'y' ? "1900" : part == 'm' || part == 'd' ? "1" : "0";
    sql += ", " + (part == 'p' ? std::to_string(places) : at == std::string_view::npos ? otherwise : call.Int(at));
  }
  return {sql + ")", type, true, -1};
}

/// The functions that tell the time; no SQL for others.
Typed Now(const Call& call) {
  const std::string& name = call.name();
  Parameters& parameters = call.parameters();
  if (name == "sysdatetimeoffset") return parameters.System(name, DateTimeOffsetType(7));
  if (name == "getdate" || name == "current_timestamp") return parameters.System("getdate", DateTimeType());
  if (name == "sysdatetime") return parameters.System("getdate", DateTime2Type(7));
  if (name == "getutcdate") return parameters.System(name, DateTimeType());
  if (name == "sysutcdatetime") return parameters.System("getutcdate", DateTime2Type(7));
  return {};
}

}  // namespace

Typed DateCall(const Call& call) {
  const std::string& name = call.name();
  if (name == "dateadd") return DateAdd(call);
  if (name == "datediff" || name == "datediff_big") return DateDiff(call);
  if (name == "datepart" || name == "datename") return DatePartOf(call);
  if (name == "year" || name == "month" || name == "day") return NamedPart(call);
  if (name == "switchoffset" || name == "todatetimeoffset") return WithOffset(call);
  if (name == "eomonth") return EndOfMonth(call);
  if (name == "datetrunc") return Truncated(call);
  if (name == "at time zone") return AtTimeZone(call);
  Typed made = FromParts(call);
  return made.sql.empty() ? Now(call) : made;
}

}  // namespace tessarlorn::tsql
