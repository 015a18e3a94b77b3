#include "frame/formats.h"

#include <gtest/gtest.h>

#include "frame/text_builder.h"
#include "frame/text_width.h"
#include "support/recording_driver.h"

namespace tessarlorn {
namespace {

TEST(FormatsTest, Amounts) {
  const std::pair<Variant, const char*> cases[] = {
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
  for (const auto& [value, expected] : cases) EXPECT_EQ(FormatAmount(value), expected);
  EXPECT_EQ(Raised([] { FormatAmount({}); }).substr(0, 3), "13 ");
  EXPECT_EQ(Raised([] { FormatAmount("12 EUR"); }).substr(0, 3), "13 ");
  EXPECT_EQ(Raised([] { FormatAmount(Null{}); }).substr(0, 3), "94 ");
}

TEST(FormatsTest, Dates) {
  const std::pair<Variant, const char*> cases[] = {
      {DateTime::Parse("2024-05-06 07:08:09.123").value(), "2024-05-06 07:08:09"},
      {"2024/5/6", "2024-05-06 00:00:00"},
      {"05/06/2024 1:02 PM", "2024-05-06 13:02:00"},
      {"yesterday", "yesterday"},
      {"", ""},
      {45000, "45000"},
      {Null{}, ""},
  };
  for (const auto& [value, expected] : cases) EXPECT_EQ(FormatDateTime(value), expected);
}

TEST(FormatsTest, LeadingNumbers) {
  const std::pair<const char*, const char*> cases[] = {
      {"1.50", "1.5"}, {" 12kg", "12"}, {"-.5x", "-0.5"}, {"1e2x", "100"}, {"1ex", "1"},          {"1.2.3", "1.2"},
      {"abc", "0"},    {"", "0"},       {"-", "0"},       {".", "0"},      {"0;drop table", "0"}, {"+7.", "7"},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(LeadingNumber(text), expected) << text;
}

TEST(TextWidthTest, FitsTexts) {
  const std::tuple<const char*, std::size_t, std::size_t, PadSide, const char*> cases[] = {
      {"订单号", 5, 0, PadSide::kRight, "订单.."}, {"订单号", 4, 0, PadSide::kRight, "订.."},
      {"订单号", 6, 6, PadSide::kRight, "订单号"}, {"abcd", 3, 0, PadSide::kRight, "ab.."},
      {"单1", 9, 5, PadSide::kRight, "单1  "},     {"单1", 9, 5, PadSide::kLeft, "  单1"},
      {"ab", 0, 0, PadSide::kLeft, ".."},
  };
  for (const auto& [text, maximum, minimum, pad, expected] : cases)
    EXPECT_EQ(FitText(text, maximum, minimum, pad), expected) << text;
  EXPECT_EQ(TextWidth("a订é"), 5U);
}

TEST(TextBuilderTest, EndsLinesWithCrLf) {
  TextBuilder text;
  text.Append(R"(
Set FIsRowClose = 1 --行
  Where FID IN ({FID}) and {n} <> {FID}
)"_sql,
              {{"FID", "{n},2"}, {"n", -2147483647 - 1}});
  text.Line("a", std::string("b"), std::string_view("c"));
  text.Append(R"(x)"_sql);
  EXPECT_EQ(text.GetText(), "Set FIsRowClose = 1 --行\r\n  Where FID IN ({n},2) and -2147483648 <> {n},2\r\nabc\r\nx");
}

TEST(TextBuilderTest, RefusesAPlaceWithoutAValue) {
  TextBuilder text;
  EXPECT_THROW(text.Append("{a}{b}", {{"a", "1"}}), Error);
}

}  // namespace
}  // namespace tessarlorn
