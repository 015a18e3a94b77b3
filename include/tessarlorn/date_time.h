// Date and time without a time zone, to the millisecond, as the database and automation keep it.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tessarlorn {

/// Broken-down parts of a DateTime. month and day count from 1.
struct CivilTime {
  int year = 1900;
  int month = 1;
  int day = 1;
  int hour = 0;
  int minute = 0;
  int second = 0;
  int millisecond = 0;
};

/// Milliseconds since 1900-01-01 00:00:00. Years 1 to 9999.
class DateTime {
 public:
  constexpr DateTime() = default;
  constexpr explicit DateTime(std::int64_t milliseconds) : milliseconds_(milliseconds) {}

  /// Nothing when a part is out of its range (29 February of a common year included).
  static std::optional<DateTime> FromCivil(const CivilTime& civil);
  /// Days since 1899-12-30 with the time as fraction, automation's date; nothing outside of its years 100 to 9999.
  /// Rounded to the millisecond; ToAutomation() gives the number as it was.
  static std::optional<DateTime> FromAutomation(double days);
  /// Reads the forms that SQL Server reads whatever its language: `YYYY-MM-DD`, `YYYYMMDD`, `YYYY/MM/DD`,
  /// `YYYY.MM.DD`, `MM/DD/YYYY`, `MM-DD-YYYY`, each with an optional time `[T ]HH:MM[:SS[.fff]][ AM|PM]`, a time alone
  /// (of 1900-01-01), and the empty text (1900-01-01).
  static std::optional<DateTime> Parse(std::string_view text);
  /// The host's local time.
  static DateTime Now();

  [[nodiscard]] constexpr std::int64_t milliseconds() const noexcept { return milliseconds_; }
  [[nodiscard]] CivilTime ToCivil() const;
  [[nodiscard]] double ToAutomation() const;
  /// `YYYY-MM-DD HH:MM:SS`, 24 hours; `.mmm` behind it on request.
  [[nodiscard]] std::string ToString(bool with_milliseconds = false) const;

  friend constexpr std::strong_ordering operator<=>(const DateTime& a, const DateTime& b) {
    return a.milliseconds_ <=> b.milliseconds_;
  }
  friend constexpr bool operator==(const DateTime& a, const DateTime& b) { return a.milliseconds_ == b.milliseconds_; }

 private:
  std::int64_t milliseconds_ = 0;
  /// How far automation's date lay from that of the milliseconds, in days. The difference is exact.
  double rest_ = 0;
};

/// Days since 1900-01-01 of a date of the proleptic Gregorian calendar.
std::int64_t DaysFromCivil(int year, int month, int day);
int DaysInMonth(int year, int month);

}  // namespace tessarlorn
