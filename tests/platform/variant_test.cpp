#include "tessarlorn/variant.h"

#include <gtest/gtest.h>

#include "tessarlorn/collections.h"
#include "tessarlorn/error.h"

namespace tessarlorn {
namespace {

/// The outcome of a conversion as text: the value, or "error n".
template <typename Convert>
std::string Outcome(Convert convert) {
  try {
    return Variant(convert()).ToText();
  } catch (const Error& error) {
    return "error " + std::to_string(error.number());
  }
}

TEST(VariantTest, ConvertsAsAutomationDoes) {
  const Decimal unique_code = Decimal::Parse("1234567890123456789012345678").value();
  const struct {
    const char* name;
    Variant value;
    const char* text;
    const char* int16;
    const char* int32;
    const char* number;
    const char* boolean;
  } cases[] = {
      {"empty", {}, "", "0", "0", "0", "False"},
      {"null", Null{}, "", "error 94", "error 94", "error 94", "error 94"},
      {"true", true, "True", "-1", "-1", "-1", "True"},
      {"half to even down", 2.5, "2.5", "2", "2", "2.5", "True"},
      {"half to even up", 3.5, "3.5", "4", "4", "3.5", "True"},
      {"exact half", Decimal::FromScaled(-25, 1), "-2.5", "-2", "-2", "-2.5", "True"},
      {"just above half", Decimal::Parse("2.500000000000000000000000001").value(), "2.500000000000000000000000001", "3",
       "3", "2.5", "True"},
      {"too large for 16", std::int32_t{32768}, "32768", "error 6", "32768", "32768", "True"},
      {"too large for 32", 2147483648.0, "2147483648", "error 6", "error 6", "2147483648", "True"},
      {"unique code", unique_code, "1234567890123456789012345678", "error 6", "error 6", "1234567890123460000000000000",
       "True"},
      {"sum of tenths", 0.1 + 0.2, "0.3", "0", "0", "0.3", "True"},
      {"small", 1.5e-7, "0.00000015", "0", "0", "0.00000015", "True"},
      {"number text", " -1,234.50 ", " -1,234.50 ", "-1234", "-1234", "-1234.5", "True"},
      {"exponent text", "12e2", "12e2", "1200", "1200", "1200", "True"},
      {"zero text", "0", "0", "0", "0", "0", "False"},
      {"empty text", "", "", "error 13", "error 13", "error 13", "error 13"},
      {"word", "abc", "abc", "error 13", "error 13", "error 13", "error 13"},
      {"half a number", "12abc", "12abc", "error 13", "error 13", "error 13", "error 13"},
      {"true text", "true", "true", "error 13", "error 13", "error 13", "True"},
      {"date", DateTime::Parse("1900-01-01 12:00").value(), "1900-01-01 12:00:00", "2", "2", "2.5", "True"},
      {"dictionary", Dictionary(), "error 13", "error 13", "error 13", "error 13", "error 13"},
      {"bytes", Bytes{1}, "error 13", "error 13", "error 13", "error 13", "error 13"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Outcome([&] { return c.value.ToText(); }), c.text) << c.name;
    EXPECT_EQ(Outcome([&] { return c.value.ToInt16(); }), c.int16) << c.name;
    EXPECT_EQ(Outcome([&] { return c.value.ToInt32(); }), c.int32) << c.name;
    EXPECT_EQ(Outcome([&] { return c.value.ToDouble(); }), c.number) << c.name;
    EXPECT_EQ(Outcome([&] { return c.value.ToBool(); }), c.boolean) << c.name;
  }
  EXPECT_EQ(Variant("1,234567890123456789012345.678").ToDecimal().ToString(), "1234567890123456789012345.678");
  EXPECT_EQ(Outcome([] { return Variant("2024-05-06 7:08").ToDateTime(); }), "2024-05-06 07:08:00");
  EXPECT_EQ(Outcome([] { return Variant("45351.75").ToDateTime(); }), "2024-02-29 18:00:00");
  EXPECT_EQ(Outcome([] { return Variant("").ToDateTime(); }), "error 13");
  EXPECT_EQ(Outcome([] { return Variant(1e9).ToDateTime(); }), "error 6");
}

TEST(VariantTest, ComparesAsAutomationDoes) {
  const auto compared = [](const Variant& a, const Variant& b) { return Outcome([&] { return a.Equals(b); }); };
  const std::tuple<Variant, Variant, const char*> cases[] = {
      {std::int32_t{1}, 1.0, "True"},
      {Decimal::FromScaled(150, 2), "1.5", "True"},
      {true, std::int16_t{-1}, "True"},
      {true, "True", "True"},
      {"1", "1.0", "False"},
      {"a", "A", "False"},
      {Variant(), "", "True"},
      {Variant(), std::int32_t{0}, "True"},
      {Null{}, Null{}, "False"},
      {"abc", std::int32_t{1}, "error 13"},
      {Dictionary(), std::int32_t{1}, "error 13"},
  };
  for (const auto& [a, b, expected] : cases) {
    EXPECT_EQ(compared(a, b), expected) << a.type_name() << " and " << b.type_name();
    EXPECT_EQ(compared(b, a), expected) << b.type_name() << " and " << a.type_name();
  }
}

TEST(VariantTest, TellsNumbers) {
  for (const char* text : {"1", " -1.5 ", "1e5", "+2", "1,000", ".5"}) EXPECT_TRUE(IsNumeric(text)) << text;
  for (const char* text : {"", " ", "-", "1e", "1 2", "1;2", "abc", "1.2.3", ",5"})
    EXPECT_FALSE(IsNumeric(text)) << text;
  EXPECT_TRUE(IsNumeric(true));
  EXPECT_FALSE(IsNumeric(Null{}));
  EXPECT_FALSE(IsNumeric(DateTime()));
}

}  // namespace
}  // namespace tessarlorn
