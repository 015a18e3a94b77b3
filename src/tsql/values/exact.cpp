// Exact numbers: decimals in each of the ways in which they are kept, and arithmetic on them.
#include <algorithm>
#include <optional>

#include "tsql/values/datum.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {

Decimal ToDecimal(const Datum& value, const SqlType& type) {
  if (type.storage() == Storage::kBigDecimal) return DecodeBigDecimal(std::get<Blob>(value).bytes, type.scale);
  return Decimal::FromScaled(std::get<std::int64_t>(value), type.is_integer() ? 0 : type.scale);
}

Datum FromDecimal(const Decimal& value, const SqlType& type) {
  const std::optional<Decimal> rounded = value.Rescale(type.scale);
  if (!rounded || (type.kind == FieldType::kDecimal && rounded->precision() > std::max(type.precision, type.scale))) {
    RaiseArithmeticOverflow(type);
  }
  if (type.storage() == Storage::kBigDecimal) return Blob{EncodeBigDecimal(*rounded)};
  const std::optional<std::int64_t> scaled = rounded->ToScaled(type.scale);
  if (!scaled || (type.is_small_money() && *scaled != static_cast<std::int32_t>(*scaled)))
    RaiseArithmeticOverflow(type);
  return *scaled;
}

std::string EncodeBigDecimal(const Decimal& value) {
  Decimal::Limbs limbs = value.limbs();
  if (value.negative()) {
    std::uint64_t carry = 1;
    for (std::uint32_t& limb : limbs) {
      carry += static_cast<std::uint32_t>(~limb);
      limb = static_cast<std::uint32_t>(carry);
      carry >>= 32;
    }
  }
  limbs[3] ^= 0x80000000U;
  std::string bytes(16, '\0');
  for (std::size_t i = 0; i < 16; ++i) bytes[i] = static_cast<char>(limbs[3 - i / 4] >> (24 - 8 * (i % 4)));
  return bytes;
}

Decimal DecodeBigDecimal(std::string_view bytes, int scale) {
  Decimal::Limbs limbs{};
  for (std::size_t i = 0; i < 16 && i < bytes.size(); ++i) {
    limbs[3 - i / 4] |= static_cast<std::uint32_t>(static_cast<std::uint8_t>(bytes[i])) << (24 - 8 * (i % 4));
  }
  limbs[3] ^= 0x80000000U;
  const bool negative = (limbs[3] & 0x80000000U) != 0;
  if (negative) {
    std::uint64_t carry = 1;
    for (std::uint32_t& limb : limbs) {
      carry += static_cast<std::uint32_t>(~limb);
      limb = static_cast<std::uint32_t>(carry);
      carry >>= 32;
    }
  }
  return Decimal::FromLimbs(limbs, scale, negative).value_or(Decimal());
}

Datum ExactArithmetic(BinaryOp op, const Datum& a, const SqlType& a_type, const Datum& b, const SqlType& b_type,
                      const SqlType& result) {
  if (std::holds_alternative<std::monostate>(a) || std::holds_alternative<std::monostate>(b)) return {};
  const Decimal x = ToDecimal(a, a_type);
  const Decimal y = ToDecimal(b, b_type);
  if ((op == BinaryOp::kDivide || op == BinaryOp::kModulo) && y.is_zero()) {
    throw SqlError(8134, "Divide by zero error encountered.");
  }
  std::optional<Decimal> answer;
  switch (op) {
    case BinaryOp::kAdd:
      answer = Decimal::Add(x, y);
      break;
    case BinaryOp::kSubtract:
      answer = Decimal::Subtract(x, y);
      break;
    case BinaryOp::kMultiply:
      answer = Decimal::Multiply(x, y, result.scale);
      break;
    case BinaryOp::kDivide:
      answer = Decimal::Divide(x, y, result.scale);
      break;
    default:
      answer = Decimal::Remainder(x, y);
      break;
  }
  if (!answer) RaiseArithmeticOverflow(result);
  return FromDecimal(*answer, result);
}

}  // namespace tessarlorn::tsql
