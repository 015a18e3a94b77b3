#include "tessarlorn/date_time.h"

#include <array>
#include <cmath>
#include <cstdio>

#include "platform/clock.h"
#include "platform/text/date_scanner.h"
#include "platform/text/text.h"

namespace tessarlorn {
namespace {

constexpr std::int64_t kMillisecondsPerDay = 86'400'000;
/// Days from 1899-12-30, automation's day zero, to 1900-01-01.
constexpr double kAutomationOffset = 2;
/// Automation's first date is 100-01-01.
constexpr std::int64_t kFirst = -657'436 * kMillisecondsPerDay;
constexpr std::int64_t kBehindLast = 2'958'464 * kMillisecondsPerDay;

bool IsAtTime(const DateScanner& scan) {
  const std::size_t digits = scan.Digits();
  return digits >= 1 && digits <= 2 && scan.Behind(digits).peek() == ':';
}

bool ReadDate(DateScanner& scan, CivilTime& civil) {
  const std::size_t digits = scan.Digits();
  if (digits == 8) {
    civil.year = scan.Number(4);
    civil.month = scan.Number(2);
    civil.day = scan.Number(2);
    return true;
  }
  const bool year_first = digits == 4;
  if (!year_first && (digits == 0 || digits > 2)) return false;
  const int first = scan.Number(digits);
  const char separator = scan.peek();
  if (separator != '-' && separator != '/' && !(separator == '.' && year_first)) return false;
  int second = 0;
  if (!scan.Take(separator) || !scan.TakeNumber(second, 2) || !scan.Take(separator)) return false;
  int third = 0;
  if (!year_first && scan.Digits() != 4) return false;
  if (!scan.TakeNumber(third, year_first ? 2 : 4)) return false;
  civil.year = year_first ? first : third;
  civil.month = year_first ? second : first;
  civil.day = year_first ? third : second;
  return true;
}

bool ReadFraction(DateScanner& scan, CivilTime& civil) {
  constexpr std::size_t kMostDigits = 9;
  const std::size_t digits = scan.Digits();
  if (digits == 0 || digits > kMostDigits) return false;
  const std::size_t kept = std::min<std::size_t>(digits, 3);
  civil.millisecond = scan.Number(kept);
  for (std::size_t i = kept; i < 3; ++i) civil.millisecond *= 10;
  scan = scan.Behind(digits - kept);
  return true;
}

bool ReadTime(DateScanner& scan, CivilTime& civil) {
  if (!scan.TakeNumber(civil.hour, 2) || !scan.Take(':') || !scan.TakeNumber(civil.minute, 2)) return false;
  if (scan.Take(':')) {
    if (!scan.TakeNumber(civil.second, 2)) return false;
    if (scan.Take('.') && !ReadFraction(scan, civil)) return false;
  }
  scan.SkipBlanks();
  if (scan.done()) return true;
  const std::string_view half = scan.Word();
  const bool morning = EqualsIgnoreCase(half, "AM");
  if (!morning && !EqualsIgnoreCase(half, "PM")) return false;
  if (civil.hour < 1 || civil.hour > 12) return false;
  civil.hour = civil.hour % 12 + (morning ? 0 : 12);
  return true;
}

}  // namespace

std::int64_t DaysFromCivil(int year, int month, int day) {
  // Years counted from March, in eras of 400.
  const int shifted_year = month <= 2 ? year - 1 : year;
  const int era = (shifted_year >= 0 ? shifted_year : shifted_year - 399) / 400;
  const int year_of_era = shifted_year - era * 400;
  const int day_of_year = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
  const int day_of_era = year_of_era * 365 + year_of_era / 4 - year_of_era / 100 + day_of_year;
  constexpr std::int64_t kMarch0000 = 693'901;
  return std::int64_t{era} * 146'097 + day_of_era - kMarch0000;
}

int DaysInMonth(int year, int month) {
  constexpr std::array<int, 12> kDays = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool leap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
  return month == 2 && leap ? 29 : kDays[static_cast<std::size_t>(month - 1)];
}

std::optional<DateTime> DateTime::FromCivil(const CivilTime& civil) {
  if (civil.year < 1 || civil.year > 9999 || civil.month < 1 || civil.month > 12 || civil.day < 1 ||
      civil.day > DaysInMonth(civil.year, civil.month) || civil.hour < 0 || civil.hour > 23 || civil.minute < 0 ||
      civil.minute > 59 || civil.second < 0 || civil.second > 59 || civil.millisecond < 0 || civil.millisecond > 999) {
    return std::nullopt;
  }
  const std::int64_t seconds = (civil.hour * 60 + civil.minute) * 60 + civil.second;
  return DateTime(DaysFromCivil(civil.year, civil.month, civil.day) * kMillisecondsPerDay + seconds * 1000 +
                  civil.millisecond);
}

std::optional<DateTime> DateTime::FromAutomation(double days) {
  if (!(std::abs(days) < 3e6)) return std::nullopt;
  // Before day zero the whole part counts backwards, the time of day still forwards.
  const double whole = std::trunc(days);
  const double time = std::abs(days - whole);
  const auto milliseconds = static_cast<std::int64_t>(std::llround(time * static_cast<double>(kMillisecondsPerDay)));
  const std::int64_t value = static_cast<std::int64_t>(whole - kAutomationOffset) * kMillisecondsPerDay + milliseconds;
  if (value < kFirst || value >= kBehindLast) return std::nullopt;
  DateTime date(value);
  date.rest_ = days - date.ToAutomation();
  return date;
}

std::optional<DateTime> DateTime::Parse(std::string_view text) {
  DateScanner scan(Trim(text));
  CivilTime civil;
  if (scan.done()) return DateTime();
  bool time = IsAtTime(scan);
  if (!time) {
    if (!ReadDate(scan, civil)) return std::nullopt;
    const bool separated = scan.Take('T') || scan.peek() == ' ';
    scan.SkipBlanks();
    time = !scan.done();
    if (time && !separated) return std::nullopt;
  }
  if (time && !ReadTime(scan, civil)) return std::nullopt;
  if (!scan.done()) return std::nullopt;
  return FromCivil(civil);
}

DateTime DateTime::Now() {
  const std::int64_t now = UtcMilliseconds();
  const std::tm local = ToLocalTime(now);
  const CivilTime civil{
      local.tm_year + 1900,        local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec % 60,
      static_cast<int>(now % 1000)};
  return FromCivil(civil).value_or(DateTime());
}

CivilTime DateTime::ToCivil() const {
  std::int64_t days = milliseconds_ / kMillisecondsPerDay;
  std::int64_t rest = milliseconds_ % kMillisecondsPerDay;
  if (rest < 0) {
    rest += kMillisecondsPerDay;
    --days;
  }
  const std::int64_t shifted = days + 693'901;
  const std::int64_t era = (shifted >= 0 ? shifted : shifted - 146'096) / 146'097;
  const auto day_of_era = static_cast<int>(shifted - era * 146'097);
  const int year_of_era = (day_of_era - day_of_era / 1460 + day_of_era / 36'524 - day_of_era / 146'096) / 365;
  const int day_of_year = day_of_era - (365 * year_of_era + year_of_era / 4 - year_of_era / 100);
  const int shifted_month = (5 * day_of_year + 2) / 153;
  CivilTime civil;
  civil.month = shifted_month < 10 ? shifted_month + 3 : shifted_month - 9;
  civil.year = static_cast<int>(era * 400) + year_of_era + (civil.month <= 2 ? 1 : 0);
  civil.day = day_of_year - (153 * shifted_month + 2) / 5 + 1;
  civil.millisecond = static_cast<int>(rest % 1000);
  civil.second = static_cast<int>(rest / 1000 % 60);
  civil.minute = static_cast<int>(rest / 60'000 % 60);
  civil.hour = static_cast<int>(rest / 3'600'000);
  return civil;
}

double DateTime::ToAutomation() const {
  std::int64_t days = milliseconds_ / kMillisecondsPerDay;
  std::int64_t rest = milliseconds_ % kMillisecondsPerDay;
  if (rest < 0) {
    rest += kMillisecondsPerDay;
    --days;
  }
  const double whole = static_cast<double>(days) + kAutomationOffset;
  const double time = static_cast<double>(rest) / static_cast<double>(kMillisecondsPerDay);
  return (whole < 0 ? whole - time : whole + time) + rest_;
}

std::string DateTime::ToString(bool with_milliseconds) const {
  const CivilTime civil = ToCivil();
  std::array<char, 96> buffer;
  int length = std::snprintf(buffer.data(), buffer.size(), "%04d-%02d-%02d %02d:%02d:%02d", civil.year, civil.month,
                             civil.day, civil.hour, civil.minute, civil.second);
  std::string text(buffer.data(), static_cast<std::size_t>(length));
  if (with_milliseconds) {
    length = std::snprintf(buffer.data(), buffer.size(), ".%03d", civil.millisecond);
    text.append(buffer.data(), static_cast<std::size_t>(length));
  }
  return text;
}

}  // namespace tessarlorn
