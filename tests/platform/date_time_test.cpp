#include "tessarlorn/date_time.h"

#include <gtest/gtest.h>

namespace tessarlorn {
namespace {

TEST(DateTimeTest, ReadsWhatTheDatabaseReads) {
  const std::pair<const char*, const char*> cases[] = {
      {"2024-02-29", "2024-02-29 00:00:00.000"},
      {"20240229 7:05", "2024-02-29 07:05:00.000"},
      {"2024/1/2 03:04:05", "2024-01-02 03:04:05.000"},
      {"2024.12.31T23:59:59.997", "2024-12-31 23:59:59.997"},
      {"12/31/2024 12:00 AM", "2024-12-31 00:00:00.000"},
      {"1-2-2024 12:30:00PM", "2024-01-02 12:30:00.000"},
      {"2024-01-02 03:04:05.1234567", "2024-01-02 03:04:05.123"},
      {"08:15", "1900-01-01 08:15:00.000"},
      {"", "1900-01-01 00:00:00.000"},
      {"0001-01-01", "0001-01-01 00:00:00.000"},
      {"9999-12-31", "9999-12-31 00:00:00.000"},
      {"2023-02-29", "none"},
      {"2024-13-01", "none"},
      {"2024-01-01 24:00", "none"},
      {"2024-01-01 13:00 PM", "none"},
      {"2024-01/02", "none"},
      {"2024-01-01x", "none"},
      {"202401", "none"},
      {"31", "none"},
      {"tomorrow", "none"},
  };
  for (const auto& [text, expected] : cases) {
    const std::optional<DateTime> value = DateTime::Parse(text);
    EXPECT_EQ(value ? value->ToString(true) : "none", expected) << text;
  }
}

TEST(DateTimeTest, CountsDaysAsAutomationDoes) {
  const std::pair<double, const char*> cases[] = {
      {0, "1899-12-30 00:00:00"},         {2, "1900-01-01 00:00:00"},        {-1.25, "1899-12-29 06:00:00"},
      {0.5, "1899-12-30 12:00:00"},       {45351.75, "2024-02-29 18:00:00"}, {2958465, "9999-12-31 00:00:00"},
      {-657434.5, "0100-01-01 12:00:00"},
  };
  for (const auto& [days, expected] : cases) {
    const std::optional<DateTime> value = DateTime::FromAutomation(days);
    ASSERT_TRUE(value) << days;
    EXPECT_EQ(value->ToString(), expected);
    EXPECT_EQ(value->ToAutomation(), days);
  }
  EXPECT_FALSE(DateTime::FromAutomation(2958466));
  EXPECT_FALSE(DateTime::FromAutomation(-657435));
}

TEST(DateTimeTest, BreaksEveryDayDownToItsDate) {
  CivilTime expected{1, 1, 1};
  for (std::int64_t day = DaysFromCivil(1, 1, 1); day <= DaysFromCivil(2401, 1, 1); ++day) {
    const CivilTime civil = DateTime(day * 86'400'000).ToCivil();
    ASSERT_EQ(std::tie(civil.year, civil.month, civil.day), std::tie(expected.year, expected.month, expected.day));
    if (++expected.day > DaysInMonth(expected.year, expected.month)) {
      expected.day = 1;
      if (++expected.month > 12) {
        expected.month = 1;
        ++expected.year;
      }
    }
  }
}

}  // namespace
}  // namespace tessarlorn
