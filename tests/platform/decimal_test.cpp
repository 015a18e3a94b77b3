#include "tessarlorn/decimal.h"

#include <gtest/gtest.h>
#include <limits>

namespace tessarlorn {
namespace {

Decimal D(std::string_view text) { return Decimal::Parse(text).value(); }

std::string Show(const std::optional<Decimal>& value) { return value ? value->ToString() : "none"; }

const char* const kLargest = "99999999999999999999999999999999999999";

TEST(DecimalTest, ReadsAndWrites) {
  const std::pair<const char*, const char*> cases[] = {
      {"0", "0"},
      {"-0", "0"},
      {"1.50", "1.50"},
      {" +007.10 ", "7.10"},
      {".5", "0.5"},
      {"5.", "5"},
      {"-1.5e3", "-1500"},
      {"1.5E-3", "0.0015"},
      {kLargest, kLargest},
      {"-0.00000000000000000000000000000000000001", "-0.00000000000000000000000000000000000001"},
      {"12345678901234567890.123456789", "12345678901234567890.123456789"},
      {"1000000000000000000000000000", "1000000000000000000000000000"},
      {"100000000000000000000000000000000000000", "none"},
      {"0.000000000000000000000000000000000000001", "none"},
      {"1e38", "none"},
      {"1e99999", "none"},
      {"", "none"},
      {".", "none"},
      {"1-", "none"},
      {"1e", "none"},
      {"1e+-3", "none"},
      {"1,5", "none"},
      {"0x10", "none"},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(Show(Decimal::Parse(text)), expected) << text;
}

TEST(DecimalTest, KnowsItsDigits) {
  EXPECT_EQ(D("0").precision(), 1);
  EXPECT_EQ(D("0.005").precision(), 3);
  EXPECT_EQ(D("120.50").precision(), 5);
  EXPECT_EQ(D(kLargest).precision(), 38);
}

TEST(DecimalTest, Calculates) {
  using Operation = std::optional<Decimal> (*)(const Decimal&, const Decimal&);
  const Operation add = Decimal::Add;
  const Operation subtract = Decimal::Subtract;
  const Operation remainder = Decimal::Remainder;
  const Operation multiply4 = [](const Decimal& a, const Decimal& b) { return Decimal::Multiply(a, b, 4); };
  const Operation divide6 = [](const Decimal& a, const Decimal& b) { return Decimal::Divide(a, b, 6); };
  const Operation divide37 = [](const Decimal& a, const Decimal& b) { return Decimal::Divide(a, b, 37); };
  const std::tuple<Operation, const char*, const char*, const char*> cases[] = {
      {add, "0.1", "0.20", "0.30"},
      {add, "-5", "5.0", "0.0"},
      {add, "18446744073709551615", "1", "18446744073709551616"},
      {add, kLargest, "1", "none"},
      {subtract, "1", "0.000001", "0.999999"},
      {subtract, "18446744073709551616", "18446744073709551617", "-1"},
      {multiply4, "1.11115", "1", "1.1112"},
      {multiply4, "-1.11115", "1", "-1.1112"},
      {multiply4, "3", "2.5", "7.5000"},
      {multiply4, "9999999999999999999", "9999999999999.99999", "99999999999999999890000000000000.0000"},
      {multiply4, kLargest, "1.0", "none"},
      {divide6, "1", "3", "0.333333"},
      {divide6, "-2", "3", "-0.666666"},
      {divide6, kLargest, kLargest, "1.000000"},
      {divide6, "0.00001", "100", "0.000000"},
      {divide6, "100000000000000000000000", "18446744073709551617", "5421.010862"},
      {divide37, "1", "7", "0.1428571428571428571428571428571428571"},
      {remainder, "7.5", "2", "1.5"},
      {remainder, "-7", "3", "-1"},
      {remainder, "100000000000000000000000000000", "18446744073709551616", "7886392056514347008"},
  };
  for (const auto& [operation, a, b, expected] : cases)
    EXPECT_EQ(Show(operation(D(a), D(b))), expected) << a << " and " << b;
}

TEST(DecimalTest, DividesExactlyWhereTrialDigitsAreOff) {
  // Divisors whose second limb is zero make the estimate of a quotient digit too large.
  const Decimal divisor = Decimal::FromLimbs({0xFFFFFFFF, 0, 0x80000000, 0}, 0, false).value();
  const Decimal dividend = Decimal::FromLimbs({0, 0xFFFFFFFE, 0, 0x40000000}, 0, false).value();
  const Decimal quotient = Decimal::Divide(dividend, divisor, 0).value();
  const Decimal rest = Decimal::Remainder(dividend, divisor).value();
  EXPECT_LT(rest, divisor);
  EXPECT_EQ(Decimal::Add(Decimal::Multiply(quotient, divisor, 0).value(), rest).value(), dividend);
}

TEST(DecimalTest, RoundsHalfAwayFromZeroAndCuts) {
  EXPECT_EQ(Show(D("2.345").Rescale(2)), "2.35");
  EXPECT_EQ(Show(D("-2.345").Rescale(2)), "-2.35");
  EXPECT_EQ(Show(D("2.3449999").Rescale(2)), "2.34");
  EXPECT_EQ(Show(D("99999999999999999999999999999999999999").Rescale(1)), "none");
  EXPECT_EQ(Show(D("0.5").Rescale(0)), "1");
  EXPECT_EQ(D("-2.999").Truncate(1).ToString(), "-2.9");
  EXPECT_EQ(D("120.500").Trimmed().ToString(), "120.5");
  EXPECT_EQ(D("100.000").Trimmed().ToString(), "100");
}

TEST(DecimalTest, ComparesByValue) {
  EXPECT_EQ(D("1.5"), D("1.50"));
  EXPECT_EQ(D("-0.0"), D("0"));
  EXPECT_LT(D("-3"), D("-2.99"));
  EXPECT_LT(D("9999999999"), D(kLargest));
  EXPECT_GT(D("0.00000000000000000000000000000000000001"), D("-1"));
}

TEST(DecimalTest, MeetsDoubleAndInteger) {
  EXPECT_EQ(Show(Decimal::FromDouble(0.1)), "0.1");
  EXPECT_EQ(Show(Decimal::FromDouble(-1234.5)), "-1234.5");
  EXPECT_EQ(Show(Decimal::FromDouble(1e22)), "10000000000000000000000");
  EXPECT_EQ(Show(Decimal::FromDouble(1e300)), "none");
  EXPECT_EQ(D("0.3").ToDouble(), 0.3);
  EXPECT_EQ(D("12345678901234567890123456789.125").ToDouble(), 12345678901234567890123456789.125);
  EXPECT_EQ(D("-9223372036854775808").ToScaled(0), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(D("9223372036854775808").ToScaled(0), std::nullopt);
  EXPECT_EQ(D("1.255").ToScaled(2), 126);
  EXPECT_EQ(Decimal(std::numeric_limits<std::int64_t>::min()).ToString(), "-9223372036854775808");
}

}  // namespace
}  // namespace tessarlorn
