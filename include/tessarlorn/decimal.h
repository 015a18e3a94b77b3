// Exact decimal numbers of up to 38 digits: money, quantities and unique codes never pass through a double.
#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tessarlorn {

/// sign × magnitude × 10^-scale, at most 38 digits, 0 <= scale <= 38. The scale is kept: 1.50 stays "1.50".
/// Operations whose result needs more than 38 digits answer nothing; the caller decides which error that is.
class Decimal {
 public:
  static constexpr int kMaxDigits = 38;
  /// The magnitude in base 2^32, least significant limb first.
  using Limbs = std::array<std::uint32_t, 4>;

  Decimal() = default;
  explicit Decimal(std::int64_t value) : Decimal(FromScaled(value, 0)) {}
  /// coefficient × 10^-scale.
  static Decimal FromScaled(std::int64_t coefficient, int scale);
  /// From its parts; nothing when the magnitude has more than 38 digits.
  static std::optional<Decimal> FromLimbs(const Limbs& magnitude, int scale, bool negative);
  /// Reads [blanks][sign]digits[.digits][e[sign]digits][blanks]; nothing for any other text or more than 38 digits.
  static std::optional<Decimal> Parse(std::string_view text);
  /// The shortest decimal that reads back as `value` (at most 17 significant digits); nothing beyond 38 digits.
  static std::optional<Decimal> FromDouble(double value);

  [[nodiscard]] int scale() const noexcept { return scale_; }
  /// Number of significant digits, at least 1, and never fewer than `scale()`.
  [[nodiscard]] int precision() const noexcept;
  [[nodiscard]] bool negative() const noexcept { return negative_; }
  [[nodiscard]] bool is_zero() const noexcept { return magnitude_ == Limbs{}; }
  [[nodiscard]] const Limbs& limbs() const noexcept { return magnitude_; }

  /// Plain digits, the point only when scale() > 0, never an exponent.
  [[nodiscard]] std::string ToString() const;
  [[nodiscard]] double ToDouble() const;
  /// Rounded to `scale` places, half away from zero.
  [[nodiscard]] std::optional<Decimal> Rescale(int scale) const;
  /// Cut to `scale` places, towards zero.
  [[nodiscard]] Decimal Truncate(int scale) const;
  /// Without trailing zeros behind the point.
  [[nodiscard]] Decimal Trimmed() const;
  /// value × 10^scale, rounded half away from zero; nothing when it does not fit in 64 bits.
  [[nodiscard]] std::optional<std::int64_t> ToScaled(int scale) const;

  [[nodiscard]] Decimal operator-() const;
  [[nodiscard]] static std::optional<Decimal> Add(const Decimal& a, const Decimal& b);
  [[nodiscard]] static std::optional<Decimal> Subtract(const Decimal& a, const Decimal& b);
  /// Exact product, rounded to `scale` places.
  [[nodiscard]] static std::optional<Decimal> Multiply(const Decimal& a, const Decimal& b, int scale);
  /// Quotient cut to `scale` places as SQL Server cuts it. @pre b is not zero.
  [[nodiscard]] static std::optional<Decimal> Divide(const Decimal& a, const Decimal& b, int scale);
  /// Remainder with the sign of `a`. @pre b is not zero.
  [[nodiscard]] static std::optional<Decimal> Remainder(const Decimal& a, const Decimal& b);

  /// By value: 1.5 equals 1.50.
  friend std::strong_ordering operator<=>(const Decimal& a, const Decimal& b);
  friend bool operator==(const Decimal& a, const Decimal& b) { return (a <=> b) == 0; }

 private:
  Limbs magnitude_{};
  std::uint8_t scale_ = 0;
  bool negative_ = false;
};

}  // namespace tessarlorn
