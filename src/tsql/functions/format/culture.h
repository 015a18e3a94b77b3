// How languages and countries write numbers and dates, as FORMAT knows them.
#pragma once

#include <array>
#include <string_view>

namespace tessarlorn::tsql {

/// What the months and days are called.
struct CalendarNames {
  std::array<std::string_view, 12> months;
  std::array<std::string_view, 12> short_months;
  std::array<std::string_view, 7> days;  // from Sunday on
  std::array<std::string_view, 7> short_days;
  std::string_view morning;  // AM
  std::string_view afternoon;
};

struct Culture {
  std::string_view name;  // "en-US"
  std::string_view decimal_point;
  std::string_view group_separator;
  std::string_view currency;
  /// 'n' stands for the number and '$' for the sign of the currency.
  std::string_view positive_currency;
  std::string_view negative_currency;
  /// 'n' stands for the number.
  std::string_view percent;
  std::string_view date_separator;
  // Masks of dates and times.
  std::string_view short_date;
  std::string_view long_date;
  std::string_view short_time;
  std::string_view long_time;
  std::string_view month_day;
  std::string_view year_month;
  const CalendarNames* names;
};

/// The one that FORMAT takes when none is named: that of us_english.
const Culture& DefaultCulture();
/// "zh-CN" in any case, or "zh" for the first that begins so. nullptr for an unknown one.
const Culture* FindCulture(std::string_view name);

}  // namespace tessarlorn::tsql
