#include "frame/formats.h"

#include <gtest/gtest.h>

#include "frame/text_width.h"
#include "support/recording_driver.h"

namespace tessarlorn {
namespace {

TEST(FormatsTest, Amounts) {
  const struct {
    Variant value;
    const char* expected;
  } cases[] = {
      {12, "12"},
      {12.5, "12.5"},
      {"1,234.567", "1234.57"},
      {1.005, "1.01"},
      {-1.005, "-1.01"},
      {0.004, "0"},
      {".5", "0.5"},
      {true, "-1"},
      {"1e3", "1000"},
      {Decimal::Parse("12345678901234567890.125").value(), "12345678901234567890.13"},
  };
  for (const auto& c : cases) EXPECT_EQ(FormatAmount(c.value), c.expected);
  EXPECT_EQ(Raised([] { FormatAmount({}); }).substr(0, 3), "13 ");
  EXPECT_EQ(Raised([] { FormatAmount("12 EUR"); }).substr(0, 3), "13 ");
  EXPECT_EQ(Raised([] { FormatAmount(Null{}); }).substr(0, 3), "94 ");
}

TEST(FormatsTest, Dates) {
  const struct {
    Variant value;
    const char* expected;
  } cases[] = {
      {DateTime::Parse("2024-05-06 07:08:09.123").value(), "2024-05-06 07:08:09"},
      {"2024/5/6", "2024-05-06 00:00:00"},
      {"05/06/2024 1:02 PM", "2024-05-06 13:02:00"},
      {"yesterday", "yesterday"},
      {"", ""},
      {45000, "45000"},
      {Null{}, ""},
  };
  for (const auto& c : cases) EXPECT_EQ(FormatDateTime(c.value), c.expected);
}

TEST(FormatsTest, LeadingNumbers) {
  const struct {
    const char* text;
    const char* expected;
  } cases[] = {
      {"1.50", "1.5"}, {" 12kg", "12"}, {"-.5x", "-0.5"}, {"1e2x", "100"}, {"1ex", "1"},          {"1.2.3", "1.2"},
      {"abc", "0"},    {"", "0"},       {"-", "0"},       {".", "0"},      {"0;drop table", "0"}, {"+7.", "7"},
  };
  for (const auto& c : cases) EXPECT_EQ(LeadingNumber(c.text), c.expected) << c.text;
}

TEST(TextWidthTest, FitsTexts) {
  const struct {
    const char* text;
    std::size_t maximum;
    std::size_t minimum;
    PadSide pad;
    const char* expected;
  } cases[] = {
      {"订单号", 5, 0, PadSide::kRight, "订单.."}, {"订单号", 4, 0, PadSide::kRight, "订.."},
      {"订单号", 6, 6, PadSide::kRight, "订单号"}, {"abcd", 3, 0, PadSide::kRight, "ab.."},
      {"单1", 9, 5, PadSide::kRight, "单1  "},     {"单1", 9, 5, PadSide::kLeft, "  单1"},
      {"ab", 0, 0, PadSide::kLeft, ".."},
  };
  for (const auto& c : cases) EXPECT_EQ(FitText(c.text, c.maximum, c.minimum, c.pad), c.expected) << c.text;
  EXPECT_EQ(TextWidth("a订é"), 5U);
}

}  // namespace
}  // namespace tessarlorn
