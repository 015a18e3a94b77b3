#include "tessarlorn/decimal.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>

namespace tessarlorn {
namespace {

/// Room for every intermediate result: 38 digits × 10^76 and a carry.
constexpr std::size_t kWideLimbs = 13;
using Wide = std::array<std::uint32_t, kWideLimbs>;

constexpr std::uint32_t kBillion = 1'000'000'000;
constexpr std::array<std::uint32_t, 10> kSmallPowers = {1,       10,        100,        1'000,       10'000,
                                                        100'000, 1'000'000, 10'000'000, 100'000'000, kBillion};

Wide Widen(const Decimal::Limbs& limbs) {
  Wide wide{};
  std::copy(limbs.begin(), limbs.end(), wide.begin());
  return wide;
}

bool IsZero(const Wide& wide) { return wide == Wide{}; }

std::size_t UsedLimbs(const Wide& wide) {
  std::size_t used = kWideLimbs;
  while (used > 0 && wide[used - 1] == 0) --used;
  return used;
}

/// value × factor + addend; the limb that overflows is answered.
std::uint32_t MultiplyAdd(Wide& value, std::uint32_t factor, std::uint32_t addend) {
  std::uint64_t carry = addend;
  for (std::uint32_t& limb : value) {
    carry += std::uint64_t{limb} * factor;
    limb = static_cast<std::uint32_t>(carry);
    carry >>= 32;
  }
  return static_cast<std::uint32_t>(carry);
}

std::uint32_t DivideSmall(Wide& value, std::uint32_t divisor) {
  std::uint64_t remainder = 0;
  for (std::size_t i = UsedLimbs(value); i-- > 0;) {
    remainder = (remainder << 32) | value[i];
    value[i] = static_cast<std::uint32_t>(remainder / divisor);
    remainder %= divisor;
  }
  return static_cast<std::uint32_t>(remainder);
}

void MultiplyPower(Wide& value, int power) {
  for (; power > 9; power -= 9) MultiplyAdd(value, kBillion, 0);
  MultiplyAdd(value, kSmallPowers[static_cast<std::size_t>(power)], 0);
}

void CutPower(Wide& value, int power) {
  for (; power > 9 && !IsZero(value); power -= 9) DivideSmall(value, kBillion);
  if (power > 9) return;
  DivideSmall(value, kSmallPowers[static_cast<std::size_t>(power)]);
}

/// Divides by 10^power, half away from zero.
void RoundPower(Wide& value, int power) {
  if (power == 0) return;
  CutPower(value, power - 1);
  if (DivideSmall(value, 10) >= 5) MultiplyAdd(value, 1, 1);
}

std::strong_ordering Compare(const Wide& a, const Wide& b) {
  return std::lexicographical_compare_three_way(a.rbegin(), a.rend(), b.rbegin(), b.rend());
}

Wide Plus(const Wide& a, const Wide& b) {
  Wide sum{};
  std::uint64_t carry = 0;
  for (std::size_t i = 0; i < kWideLimbs; ++i) {
    carry += std::uint64_t{a[i]} + b[i];
    sum[i] = static_cast<std::uint32_t>(carry);
    carry >>= 32;
  }
  return sum;
}

/// @pre a >= b
Wide Minus(const Wide& a, const Wide& b) {
  Wide difference{};
  std::uint64_t borrow = 0;
  for (std::size_t i = 0; i < kWideLimbs; ++i) {
    const std::uint64_t step = std::uint64_t{a[i]} - b[i] - borrow;
    difference[i] = static_cast<std::uint32_t>(step);
    borrow = (step >> 32) & 1;
  }
  return difference;
}

Wide Product(const Decimal::Limbs& a, const Decimal::Limbs& b) {
  Wide product{};
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::uint64_t carry = 0;
    for (std::size_t j = 0; j < b.size(); ++j) {
      carry += std::uint64_t{a[i]} * b[j] + product[i + j];
      product[i + j] = static_cast<std::uint32_t>(carry);
      carry >>= 32;
    }
    product[i + b.size()] = static_cast<std::uint32_t>(carry);
  }
  return product;
}

struct Quotient {
  Wide quotient{};
  Wide remainder{};
};

/// Schoolbook division with normalised divisor. @pre divisor is not zero
Quotient DivideWide(const Wide& dividend, const Wide& divisor) {
  Quotient result;
  const std::size_t n = UsedLimbs(divisor);
  const std::size_t m = UsedLimbs(dividend);
  if (n == 1) {
    result.quotient = dividend;
    result.remainder[0] = DivideSmall(result.quotient, divisor[0]);
    return result;
  }
  if (m < n) {
    result.remainder = dividend;
    return result;
  }
  const int shift = std::countl_zero(divisor[n - 1]);
  const auto shifted = [shift](std::uint32_t high, std::uint32_t low) {
    return static_cast<std::uint32_t>((((std::uint64_t{high} << 32) | low) << shift) >> 32);
  };
  std::array<std::uint32_t, kWideLimbs + 1> u{};
  Wide v{};
  for (std::size_t i = n; i-- > 0;) v[i] = shifted(divisor[i], i > 0 ? divisor[i - 1] : 0);
  u[m] = shifted(0, dividend[m - 1]);
  for (std::size_t i = m; i-- > 0;) u[i] = shifted(dividend[i], i > 0 ? dividend[i - 1] : 0);

  for (std::size_t j = m - n + 1; j-- > 0;) {
    const std::uint64_t top = (std::uint64_t{u[j + n]} << 32) | u[j + n - 1];
    std::uint64_t digit = top / v[n - 1];
    std::uint64_t rest = top % v[n - 1];
    while (digit >> 32 != 0 || digit * v[n - 2] > ((rest << 32) | u[j + n - 2])) {
      --digit;
      rest += v[n - 1];
      if (rest >> 32 != 0) break;
    }
    std::uint64_t carry = 0;
    std::uint64_t borrow = 0;
    for (std::size_t i = 0; i < n; ++i) {
      carry += digit * v[i];
      const std::uint64_t step = std::uint64_t{u[i + j]} - static_cast<std::uint32_t>(carry) - borrow;
      u[i + j] = static_cast<std::uint32_t>(step);
      borrow = (step >> 32) & 1;
      carry >>= 32;
    }
    const std::uint64_t step = std::uint64_t{u[j + n]} - carry - borrow;
    u[j + n] = static_cast<std::uint32_t>(step);
    if ((step >> 32) != 0) {
      --digit;
      std::uint64_t sum = 0;
      for (std::size_t i = 0; i < n; ++i) {
        sum += std::uint64_t{u[i + j]} + v[i];
        u[i + j] = static_cast<std::uint32_t>(sum);
        sum >>= 32;
      }
      u[j + n] += static_cast<std::uint32_t>(sum);
    }
    result.quotient[j] = static_cast<std::uint32_t>(digit);
  }
  for (std::size_t i = 0; i < n; ++i) {
    result.remainder[i] = static_cast<std::uint32_t>(((std::uint64_t{u[i + 1]} << 32) | u[i]) >> shift);
  }
  return result;
}

constexpr Wide PowerOf38() {
  Wide power{1};
  for (int step = 0; step < Decimal::kMaxDigits; ++step) {
    std::uint64_t carry = 0;
    for (std::uint32_t& limb : power) {
      carry += std::uint64_t{limb} * 10;
      limb = static_cast<std::uint32_t>(carry);
      carry >>= 32;
    }
  }
  return power;
}
constexpr Wide kLimit = PowerOf38();

std::optional<Decimal> Narrow(const Wide& wide, int scale, bool negative) {
  if (UsedLimbs(wide) > std::tuple_size_v<Decimal::Limbs>) return std::nullopt;
  Decimal::Limbs limbs{};
  std::copy_n(wide.begin(), limbs.size(), limbs.begin());
  return Decimal::FromLimbs(limbs, scale, negative);
}

bool FitsIn64(const Decimal::Limbs& limbs) { return limbs[2] == 0 && limbs[3] == 0; }
std::uint64_t Low64(const Decimal::Limbs& limbs) { return (std::uint64_t{limbs[1]} << 32) | limbs[0]; }

/// The digits of a number text; a scale of its own range, before it is brought into that of Decimal.
struct NumberText {
  Wide magnitude{};
  int scale = 0;
  bool negative = false;
};

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

std::optional<NumberText> ReadNumber(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  NumberText number;
  std::size_t i = 0;
  if (i < text.size() && (text[i] == '-' || text[i] == '+')) number.negative = text[i++] == '-';
  bool any_digit = false;
  bool in_fraction = false;
  for (; i < text.size(); ++i) {
    if (text[i] == '.' && !in_fraction) {
      in_fraction = true;
      continue;
    }
    if (!IsDigit(text[i])) break;
    any_digit = true;
    if (number.magnitude[kWideLimbs - 1] != 0) return std::nullopt;
    MultiplyAdd(number.magnitude, 10, static_cast<std::uint32_t>(text[i] - '0'));
    if (in_fraction) ++number.scale;
  }
  if (!any_digit) return std::nullopt;
  if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
    ++i;
    if (i + 1 < text.size() && text[i] == '+' && IsDigit(text[i + 1])) ++i;
    int exponent = 0;
    const auto [end, fault] = std::from_chars(text.data() + i, text.data() + text.size(), exponent);
    if (fault != std::errc{} || std::abs(exponent) > 10'000) return std::nullopt;
    i = static_cast<std::size_t>(end - text.data());
    number.scale -= exponent;
  }
  if (i != text.size()) return std::nullopt;
  return number;
}

std::optional<Decimal> FromNumber(NumberText number, bool round_excess) {
  if (IsZero(number.magnitude)) return Decimal::FromScaled(0, std::clamp(number.scale, 0, Decimal::kMaxDigits));
  if (number.scale < 0) {
    if (number.scale < -Decimal::kMaxDigits || UsedLimbs(number.magnitude) > 4) return std::nullopt;
    MultiplyPower(number.magnitude, -number.scale);
    number.scale = 0;
  }
  while (number.scale > Decimal::kMaxDigits) {
    const int excess = number.scale - Decimal::kMaxDigits;
    if (round_excess) {
      RoundPower(number.magnitude, excess);
      number.scale = Decimal::kMaxDigits;
    } else {
      if (DivideSmall(number.magnitude, 10) != 0) return std::nullopt;
      --number.scale;
    }
  }
  return Narrow(number.magnitude, number.scale, number.negative);
}

}  // namespace

Decimal Decimal::FromScaled(std::int64_t coefficient, int scale) {
  Decimal result;
  const auto magnitude = coefficient < 0 ? std::uint64_t{0} - static_cast<std::uint64_t>(coefficient)
                                         : static_cast<std::uint64_t>(coefficient);
  result.magnitude_[0] = static_cast<std::uint32_t>(magnitude);
  result.magnitude_[1] = static_cast<std::uint32_t>(magnitude >> 32);
  result.scale_ = static_cast<std::uint8_t>(scale);
  result.negative_ = coefficient < 0;
  return result;
}

std::optional<Decimal> Decimal::FromLimbs(const Limbs& magnitude, int scale, bool negative) {
  if (magnitude[3] != 0 && Compare(Widen(magnitude), kLimit) >= 0) return std::nullopt;
  Decimal result;
  result.magnitude_ = magnitude;
  result.scale_ = static_cast<std::uint8_t>(scale);
  result.negative_ = negative && !result.is_zero();
  return result;
}

std::optional<Decimal> Decimal::Parse(std::string_view text) {
  const std::optional<NumberText> number = ReadNumber(text);
  return number ? FromNumber(*number, false) : std::nullopt;
}

std::optional<Decimal> Decimal::FromDouble(double value) {
  if (!std::isfinite(value)) return std::nullopt;
  std::array<char, 32> buffer;
  const auto end =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::scientific).ptr;
  const std::optional<NumberText> number =
      ReadNumber(std::string_view(buffer.data(), static_cast<std::size_t>(end - buffer.data())));
  return number ? FromNumber(*number, true) : std::nullopt;
}

int Decimal::precision() const noexcept {
  int digits = 0;
  if (FitsIn64(magnitude_)) {
    for (std::uint64_t rest = Low64(magnitude_); rest != 0; rest /= 10) ++digits;
  } else {
    Wide rest = Widen(magnitude_);
    for (; !IsZero(rest); ++digits) DivideSmall(rest, 10);
  }
  return std::max({digits, int{scale_}, 1});
}

std::string Decimal::ToString() const {
  std::array<char, kMaxDigits + 10> digits;
  const auto end_of_digits = digits.data() + digits.size();
  char* begin = end_of_digits;
  const auto put = [&begin](std::uint64_t value, int at_least) {
    for (; value != 0 || at_least > 0; value /= 10, --at_least) *--begin = static_cast<char>('0' + value % 10);
  };
  if (FitsIn64(magnitude_)) {
    put(Low64(magnitude_), 0);
  } else {
    Wide rest = Widen(magnitude_);
    while (!IsZero(rest)) {
      const std::uint32_t part = DivideSmall(rest, kBillion);
      put(part, IsZero(rest) ? 0 : 9);
    }
  }
  while (end_of_digits - begin < scale_ + 1) *--begin = '0';
  std::string text;
  text.reserve(static_cast<std::size_t>(end_of_digits - begin) + 2);
  if (negative_) text += '-';
  text.append(begin, end_of_digits - scale_);
  if (scale_ > 0) {
    text += '.';
    text.append(end_of_digits - scale_, end_of_digits);
  }
  return text;
}

double Decimal::ToDouble() const {
  constexpr std::array<double, 23> kPowers = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                              1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
  if (FitsIn64(magnitude_) && Low64(magnitude_) <= (std::uint64_t{1} << 53) && scale_ < kPowers.size()) {
    const double value = static_cast<double>(Low64(magnitude_)) / kPowers[scale_];
    return negative_ ? -value : value;
  }
  const std::string text = ToString();
  double value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

std::optional<Decimal> Decimal::Rescale(int scale) const {
  if (scale == scale_) return *this;
  Wide wide = Widen(magnitude_);
  if (scale > scale_) {
    MultiplyPower(wide, scale - scale_);
  } else {
    RoundPower(wide, scale_ - scale);
  }
  return Narrow(wide, scale, negative_);
}

Decimal Decimal::Truncate(int scale) const {
  if (scale >= scale_) return Rescale(scale).value_or(*this);
  Wide wide = Widen(magnitude_);
  CutPower(wide, scale_ - scale);
  return *Narrow(wide, scale, negative_);
}

Decimal Decimal::Trimmed() const {
  Decimal result = *this;
  while (result.scale_ > 0) {
    Wide shorter = Widen(result.magnitude_);
    if (DivideSmall(shorter, 10) != 0) break;
    result = *Narrow(shorter, result.scale_ - 1, negative_);
  }
  return result;
}

std::optional<std::int64_t> Decimal::ToScaled(int scale) const {
  const std::optional<Decimal> scaled = Rescale(scale);
  if (!scaled || !FitsIn64(scaled->magnitude_)) return std::nullopt;
  const std::uint64_t magnitude = Low64(scaled->magnitude_);
  constexpr std::uint64_t kLargest = std::numeric_limits<std::int64_t>::max();
  if (magnitude > kLargest + (negative_ ? 1 : 0)) return std::nullopt;
  return static_cast<std::int64_t>(negative_ ? std::uint64_t{0} - magnitude : magnitude);
}

Decimal Decimal::operator-() const {
  Decimal result = *this;
  result.negative_ = !negative_ && !is_zero();
  return result;
}

std::optional<Decimal> Decimal::Add(const Decimal& a, const Decimal& b) {
  const int scale = std::max(a.scale_, b.scale_);
  Wide left = Widen(a.magnitude_);
  Wide right = Widen(b.magnitude_);
  MultiplyPower(left, scale - a.scale_);
  MultiplyPower(right, scale - b.scale_);
  if (a.negative_ == b.negative_) return Narrow(Plus(left, right), scale, a.negative_);
  if (Compare(left, right) >= 0) return Narrow(Minus(left, right), scale, a.negative_);
  return Narrow(Minus(right, left), scale, b.negative_);
}

std::optional<Decimal> Decimal::Subtract(const Decimal& a, const Decimal& b) { return Add(a, -b); }

std::optional<Decimal> Decimal::Multiply(const Decimal& a, const Decimal& b, int scale) {
  Wide product = Product(a.magnitude_, b.magnitude_);
  const int exact = a.scale_ + b.scale_;
  if (scale < exact) {
    RoundPower(product, exact - scale);
  } else {
    MultiplyPower(product, scale - exact);
  }
  return Narrow(product, scale, a.negative_ != b.negative_);
}

std::optional<Decimal> Decimal::Divide(const Decimal& a, const Decimal& b, int scale) {
  Wide dividend = Widen(a.magnitude_);
  Wide divisor = Widen(b.magnitude_);
  const int power = scale + b.scale_ - a.scale_;
  MultiplyPower(power > 0 ? dividend : divisor, std::abs(power));
  return Narrow(DivideWide(dividend, divisor).quotient, scale, a.negative_ != b.negative_);
}

std::optional<Decimal> Decimal::Remainder(const Decimal& a, const Decimal& b) {
  const int scale = std::max(a.scale_, b.scale_);
  Wide dividend = Widen(a.magnitude_);
  Wide divisor = Widen(b.magnitude_);
  MultiplyPower(dividend, scale - a.scale_);
  MultiplyPower(divisor, scale - b.scale_);
  return Narrow(DivideWide(dividend, divisor).remainder, scale, a.negative_);
}

std::strong_ordering operator<=>(const Decimal& a, const Decimal& b) {
  if (a.negative_ != b.negative_) return a.negative_ ? std::strong_ordering::less : std::strong_ordering::greater;
  std::strong_ordering order = std::strong_ordering::equal;
  if (a.scale_ == b.scale_ && FitsIn64(a.magnitude_) && FitsIn64(b.magnitude_)) {
    order = Low64(a.magnitude_) <=> Low64(b.magnitude_);
  } else {
    const int scale = std::max(a.scale_, b.scale_);
    Wide left = Widen(a.magnitude_);
    Wide right = Widen(b.magnitude_);
    MultiplyPower(left, scale - a.scale_);
    MultiplyPower(right, scale - b.scale_);
    order = Compare(left, right);
  }
  return a.negative_ ? 0 <=> order : order;
}

}  // namespace tessarlorn
