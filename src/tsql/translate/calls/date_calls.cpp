// Functions on dates and times.
#include <optional>

#include "platform/text/text.h"
#include "tsql/functions/date_part.h"
#include "tsql/translate/calls/call_topics.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

constexpr SqlType kDateType{FieldType::kDate, 0, 0, 0, false};

/// The date part as the row functions know it. Raises 155 for an unknown one.
std::string PartOf(const Call& call) {
  const std::optional<DatePart> found = FindDatePart(call.date_part());
  if (!found) throw SqlError(155, "'" + call.date_part() + "' is not a recognized " + call.name() + " option.", 15);
  return std::to_string(static_cast<int>(*found));
}

Typed DateAdd(const Call& call) {
  call.Require(2);
  const Typed date = call.Value(1);
  const SqlType type = date.type.is_date() || date.type.has_offset() ? date.type : DateTimeType();
  const std::optional<DatePart> found = FindDatePart(call.date_part());
  const bool of_time = found && *found >= DatePart::kHour;
  if (found && ((type.kind == FieldType::kDate && of_time) || (type.kind == FieldType::kTime && !of_time))) {
    throw SqlError(9810, "The datepart " + LowerCase(call.date_part()) +
                             " is not supported by date function dateadd for data type " +
                             std::string(TypeNameText(type)) + ".");
  }
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
  const std::string from = side(0);
  const std::string difference = "ts_datediff(" + PartOf(call) + ", " + from + ", " + side(1) + ")";
  if (call.name() == "datediff_big") return {difference, BigIntType(), true, -1};
  return {"ts_datediff_int(" + difference + ")", IntType(), true, -1};
}

Typed DatePartOf(const Call& call) {
  call.Require(1);
  const std::string part = PartOf(call);
  return {"ts_" + call.name() + "(" + part + ", " + call.Date(0) + ")",
          call.name() == "datepart" ? IntType() : NVarCharType(30), true, -1};
}

/// YEAR, MONTH and DAY.
Typed NamedPart(const Call& call) {
  call.Require(1);
  const int part = static_cast<int>(*FindDatePart(call.name()));
  return {"ts_datepart(" + std::to_string(part) + ", " + call.Date(0) + ")", IntType(), true, -1};
}

/// SWITCHOFFSET and TODATETIMEOFFSET.
Typed WithOffset(const Call& call) {
  call.Require(2);
  const Typed value = call.Value(0);
  const Typed zone = call.Value(1);
  constexpr int kPlacesOfDateTime = 3;
  const SqlType type = DateTimeOffsetType(value.type.is_old_date()                          ? kPlacesOfDateTime
                                          : value.type.is_date() || value.type.has_offset() ? value.type.scale
                                                                                            : 7);
  const std::string moment = call.Coerced(value, call.name() == "switchoffset" ? type : DateTime2Type(type.scale));
  const std::string offset = zone.type.is_text() ? zone.sql : call.Coerced(zone, BigIntType());
  return {"ts_" + call.name() + "(" + moment + ", " + offset + ", " + Packed(type) + ")", type, true, -1};
}

Typed EndOfMonth(const Call& call) {
  call.Require(1, 2);
  const std::string date = call.Date(0);
  return {"ts_eomonth(" + date + ", " + call.Int(1, "0") + ")", kDateType, true, -1};
}

Typed DateFromParts(const Call& call) {
  call.Require(3);
  std::string sql = "ts_datefromparts(" + call.Int(0);
  sql += ", " + call.Int(1);
  sql += ", " + call.Int(2);
  return {sql + ")", kDateType, true, -1};
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
  if (name == "datefromparts") return DateFromParts(call);
  return Now(call);
}

}  // namespace tessarlorn::tsql
