// The numbers by which TDS knows types.
#pragma once

#include <cstdint>

namespace tessarlorn::tds {

enum class TypeCode : std::uint8_t {
  kNull = 0x1F,
  kInt1 = 0x30,
  kBit = 0x32,
  kInt2 = 0x34,
  kInt4 = 0x38,
  kDateTime4 = 0x3A,
  kFloat4 = 0x3B,
  kMoney = 0x3C,
  kDateTime = 0x3D,
  kFloat8 = 0x3E,
  kMoney4 = 0x7A,
  kInt8 = 0x7F,
  kGuid = 0x24,
  kIntN = 0x26,
  kDateN = 0x28,
  kTimeN = 0x29,
  kDateTime2N = 0x2A,
  kDateTimeOffsetN = 0x2B,
  kBitN = 0x68,
  kDecimalN = 0x6A,
  kNumericN = 0x6C,
  kFloatN = 0x6D,
  kMoneyN = 0x6E,
  kDateTimeN = 0x6F,
  kImage = 0x22,
  kText = 0x23,
  kNText = 0x63,
  kBigVarBinary = 0xA5,
  kBigVarChar = 0xA7,
  kBigBinary = 0xAD,
  kBigChar = 0xAF,
  kNVarChar = 0xE7,
  kNChar = 0xEF,
};

/// The length of a type that stands for (max): values come in parts.
inline constexpr std::uint16_t kUnlimited = 0xFFFF;
inline constexpr std::uint16_t kNullLength = 0xFFFF;
inline constexpr std::uint64_t kNullParts = 0xFFFFFFFFFFFFFFFF;
inline constexpr std::uint64_t kUnknownParts = 0xFFFFFFFFFFFFFFFE;

/// Days from 0001-01-01 to 1900-01-01.
inline constexpr std::int64_t kDaysBefore1900 = 693595;
inline constexpr std::int64_t kMillisecondsOfDay = 86'400'000;

}  // namespace tessarlorn::tds
