#include "hosts/tds/messages/parameter.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <iconv.h>
#include <memory>

#include "hosts/tds/messages/refusal.h"
#include "hosts/tds/messages/type_codes.h"
#include "platform/text/guid_text.h"
#include "platform/text/text.h"
#include "tessarlorn/date_time.h"
#include "tessarlorn/decimal.h"
#include "tessarlorn/error.h"

namespace tessarlorn::tds {
namespace {

constexpr std::size_t kCollationSize = 5;

[[noreturn]] void RefuseType(const char* name) {
  RaiseNotSupported(std::string("Parameters of the type ") + name + " are not supported.");
}

/// The bytes of a value have the right length, and mean nothing.
struct NoValueOfItsType {};

bool IsUtf16(TypeCode code) {
  return code == TypeCode::kNVarChar || code == TypeCode::kNChar || code == TypeCode::kNText;
}
bool IsText(TypeCode code) {
  return IsUtf16(code) || code == TypeCode::kBigVarChar || code == TypeCode::kBigChar || code == TypeCode::kText;
}
bool IsInteger(TypeCode code) {
  return code == TypeCode::kInt1 || code == TypeCode::kInt2 || code == TypeCode::kInt4 || code == TypeCode::kInt8 ||
         code == TypeCode::kIntN;
}
bool IsBinary(TypeCode code) {
  return code == TypeCode::kBigVarBinary || code == TypeCode::kBigBinary || code == TypeCode::kImage;
}

/// A value in parts, put together; nothing for null. A part is in the message before memory is taken for it.
std::optional<std::string> ReadParts(TdsReader& reader) {
  if (reader.U64() == kNullParts) return std::nullopt;
  std::string value;
  for (std::size_t size = reader.U32(); size > 0; size = reader.U32()) value += reader.Bytes(size);
  return value;
}

/// The bytes of a value, nothing for null.
std::optional<std::string> ReadValue(TdsReader& reader, const WireType& type) {
  switch (type.code) {
    case TypeCode::kNull:
      return std::nullopt;
    case TypeCode::kInt1:
    case TypeCode::kBit:
    case TypeCode::kInt2:
    case TypeCode::kInt4:
    case TypeCode::kFloat4:
    case TypeCode::kDateTime4:
    case TypeCode::kMoney4:
    case TypeCode::kInt8:
    case TypeCode::kFloat8:
    case TypeCode::kMoney:
    case TypeCode::kDateTime:
      return std::string(reader.Bytes(type.size));
    case TypeCode::kText:
    case TypeCode::kNText:
    case TypeCode::kImage: {
      const std::uint32_t size = reader.U32();
      if (size == 0xFFFFFFFF) return std::nullopt;
      return std::string(reader.Bytes(size));
    }
    case TypeCode::kBigVarBinary:
    case TypeCode::kBigBinary:
    case TypeCode::kBigVarChar:
    case TypeCode::kBigChar:
    case TypeCode::kNVarChar:
    case TypeCode::kNChar: {
      if (type.size == kUnlimited) return ReadParts(reader);
      const std::uint16_t size = reader.U16();
      if (size == kNullLength) return std::nullopt;
      return std::string(reader.Bytes(size));
    }
    default: {
      const std::uint8_t size = reader.U8();
      if (size == 0) return std::nullopt;
      return std::string(reader.Bytes(size));
    }
  }
}

/// Text of a code page as UTF-8.
std::string FromCodePage(const std::string& bytes, const char* page) {
  struct Close {
    void operator()(void* converter) const { iconv_close(converter); }
  };
  const std::unique_ptr<void, Close> converter(iconv_open("UTF-8", page));
  std::string text(bytes.size() * 3, '\0');
  std::string in = bytes;
  char* from = in.data();
  std::size_t left = in.size();
  char* to = text.data();
  std::size_t room = text.size();
  while (left > 0) {
    if (iconv(converter.get(), &from, &left, &to, &room) != static_cast<std::size_t>(-1)) break;
    if (left == 0 || room == 0) break;
    *to++ = '?';
    --room;
    ++from;
    --left;
  }
  text.resize(text.size() - room);
  return text;
}

std::string NarrowText(const std::string& bytes, std::string_view collation) {
  constexpr std::uint32_t kUtf8 = 0x04000000;
  constexpr std::uint32_t kLanguages = 0xFFFF;
  constexpr std::uint32_t kSimplifiedChinese = 0x0804;
  const auto bits = static_cast<std::uint32_t>(TdsReader(collation).Number(4));
  if ((bits & kUtf8) == 0) {
    return FromCodePage(bytes, (bits & kLanguages) == kSimplifiedChinese ? "GB18030" : "CP1252");
  }
  std::string text;
  for (std::size_t i = 0; i < bytes.size();) AppendCharacter(text, NextCharacter(bytes, i));
  return text;
}

std::uint64_t NumberOf(const std::string& bytes) {
  if (bytes.size() > 8) throw ProtocolError("a number has more than 8 bytes");
  return TdsReader(bytes).Number(bytes.size());
}

void RequireSize(const std::string& bytes, std::initializer_list<std::size_t> sizes) {
  for (const std::size_t size : sizes) {
    if (bytes.size() == size) return;
  }
  throw ProtocolError("a value of " + std::to_string(bytes.size()) + " bytes does not fit its type");
}

std::int64_t IntegerOf(const std::string& bytes) {
  RequireSize(bytes, {1, 2, 4, 8});
  const std::uint64_t bits = NumberOf(bytes);
  switch (bytes.size()) {
    case 1:
      return static_cast<std::int64_t>(bits);
    case 2:
      return static_cast<std::int16_t>(bits);
    case 4:
      return static_cast<std::int32_t>(bits);
    default:
      return static_cast<std::int64_t>(bits);
  }
}

double FloatOf(const std::string& bytes) {
  RequireSize(bytes, {4, 8});
  const auto bits = NumberOf(bytes);
  const double value =
      bytes.size() == 4 ? double{std::bit_cast<float>(static_cast<std::uint32_t>(bits))} : std::bit_cast<double>(bits);
  if (!std::isfinite(value)) throw NoValueOfItsType();
  return value;
}

Decimal DecimalOf(const std::string& bytes, int scale) {
  // Some clients send no more bytes than the precision needs.
  Decimal::Limbs limbs{};
  TdsReader reader(bytes);
  const bool negative = reader.U8() == 0;
  if (reader.left() > limbs.size() * 4) throw ProtocolError("a decimal has more than 17 bytes");
  for (std::uint32_t& limb : limbs)
    limb = static_cast<std::uint32_t>(reader.Number(std::min<std::size_t>(reader.left(), 4)));
  const std::optional<Decimal> value = Decimal::FromLimbs(limbs, scale, negative);
  if (!value) throw NoValueOfItsType();
  return *value;
}

Decimal MoneyOf(const std::string& bytes) {
  RequireSize(bytes, {4, 8});
  constexpr int kMoneyScale = 4;
  TdsReader reader(bytes);
  std::int64_t units = 0;
  if (bytes.size() == 4) {
    units = static_cast<std::int32_t>(reader.U32());
  } else {
    const std::uint64_t high = reader.U32();
    units = static_cast<std::int64_t>((high << 32) | reader.U32());
  }
  return Decimal::FromScaled(units, kMoneyScale);
}

DateTime DateTimeOf(std::int64_t days_since_1900, std::int64_t milliseconds) {
  const DateTime value(days_since_1900 * kMillisecondsOfDay + milliseconds);
  const CivilTime civil = value.ToCivil();
  if (civil.year < 1 || civil.year > 9999) throw NoValueOfItsType();
  return value;
}

/// Units of 10^-scale of a second in milliseconds, rounded.
std::int64_t TimeOf(const std::string& bytes, std::size_t size, int scale) {
  if (bytes.size() < size) throw ProtocolError("a time is too short");
  auto units = static_cast<std::int64_t>(TdsReader(bytes).Number(size));
  for (; scale < 3; ++scale) units *= 10;
  std::int64_t divisor = 1;
  for (; scale > 3; --scale) divisor *= 10;
  units = (units + divisor / 2) / divisor;
  if (units < 0 || units > kMillisecondsOfDay) throw NoValueOfItsType();
  return std::min(units, kMillisecondsOfDay - 1);
}

Variant DateOf(const std::string& bytes, const WireType& type) {
  const auto days_of = [](std::string_view three) {
    return static_cast<std::int64_t>(TdsReader(three).Number(3)) - kDaysBefore1900;
  };
  switch (type.code) {
    case TypeCode::kDateN:
      RequireSize(bytes, {3});
      return DateTimeOf(days_of(bytes), 0);
    case TypeCode::kTimeN:
      RequireSize(bytes, {3, 4, 5});
      return DateTimeOf(0, TimeOf(bytes, bytes.size(), type.scale));
    case TypeCode::kDateTime2N: {
      RequireSize(bytes, {6, 7, 8});
      const std::size_t size = bytes.size() - 3;
      return DateTimeOf(days_of(std::string_view(bytes).substr(size)), TimeOf(bytes, size, type.scale));
    }
    case TypeCode::kDateTimeOffsetN: {
      // The moment stands in UTC, and is written as its own clock shows it.
      RequireSize(bytes, {8, 9, 10});
      const std::size_t size = bytes.size() - 5;
      const std::string_view rest = std::string_view(bytes).substr(size);
      const auto offset = static_cast<std::int16_t>(TdsReader(rest.substr(3)).U16());
      constexpr int kMostMinutes = 14 * 60;
      if (std::abs(offset) > kMostMinutes) throw NoValueOfItsType();
      const std::int64_t local = TimeOf(bytes, size, type.scale) + std::int64_t{offset} * 60'000;
      std::array<char, 16> zone{};
      std::snprintf(zone.data(), zone.size(), " %c%02d:%02d", offset < 0 ? '-' : '+', std::abs(offset) / 60,
                    std::abs(offset) % 60);
      return DateTimeOf(days_of(rest.substr(0, 3)), local).ToString(true) + zone.data();
    }
    default:
      break;
  }
  RequireSize(bytes, {4, 8});
  TdsReader reader(bytes);
  if (bytes.size() == 4) {
    const std::int64_t day = reader.U16();
    const std::int64_t minute = reader.U16();
    if (minute >= 1440) throw NoValueOfItsType();
    return DateTimeOf(day, minute * 60'000);
  }
  const auto day = static_cast<std::int32_t>(reader.U32());
  const std::int64_t ticks = reader.U32();
  if (ticks >= kMillisecondsOfDay * 3 / 10) throw NoValueOfItsType();
  return DateTimeOf(day, (ticks * 10 + 1) / 3);
}

/// The first three groups stand with their lowest byte first.
std::string ReadGuid(std::string bytes) {
  RequireSize(bytes, {16});
  std::swap(bytes[0], bytes[3]);
  std::swap(bytes[1], bytes[2]);
  std::swap(bytes[4], bytes[5]);
  std::swap(bytes[6], bytes[7]);
  return GuidText(bytes);
}

/// "(40)", "(max)": of at least one character.
std::string SizeText(const WireType& type, std::size_t unit, std::size_t most) {
  const std::size_t size = type.size / unit;
  if (type.size >= kUnlimited || size > most) return "(max)";
  return "(" + std::to_string(size == 0 ? 1 : size) + ")";
}

/// Of what is neither text nor binary.
Variant ValueOf(const WireType& type, const std::string& value) {
  switch (type.code) {
    case TypeCode::kBit:
    case TypeCode::kBitN:
      return IntegerOf(value) != 0;
    case TypeCode::kFloat4:
    case TypeCode::kFloat8:
    case TypeCode::kFloatN:
      return FloatOf(value);
    case TypeCode::kDecimalN:
    case TypeCode::kNumericN:
      return DecimalOf(value, type.scale);
    case TypeCode::kMoney:
    case TypeCode::kMoney4:
    case TypeCode::kMoneyN:
      return MoneyOf(value);
    case TypeCode::kGuid:
      return ReadGuid(value);
    default:
      return IsInteger(type.code) ? Variant(IntegerOf(value)) : DateOf(value, type);
  }
}

}  // namespace

std::string DeclarationOf(const WireType& type) {
  constexpr std::size_t kMostBytes = 8000;
  switch (type.code) {
    case TypeCode::kBit:
    case TypeCode::kBitN:
      return "bit";
    case TypeCode::kInt1:
    case TypeCode::kInt2:
    case TypeCode::kInt4:
    case TypeCode::kInt8:
    case TypeCode::kIntN:
      return type.size == 1 ? "tinyint" : type.size == 2 ? "smallint" : type.size == 4 ? "int" : "bigint";
    case TypeCode::kFloat4:
    case TypeCode::kFloat8:
    case TypeCode::kFloatN:
      return type.size == 4 ? "real" : "float";
    case TypeCode::kMoney:
    case TypeCode::kMoney4:
    case TypeCode::kMoneyN:
      return "money";
    case TypeCode::kDecimalN:
    case TypeCode::kNumericN:
      return "decimal(" + std::to_string(type.precision) + "," + std::to_string(type.scale) + ")";
    case TypeCode::kDateN:
      return "date";
    case TypeCode::kTimeN:
      return "time";
    case TypeCode::kDateTime:
    case TypeCode::kDateTime4:
    case TypeCode::kDateTimeN:
      return "datetime";
    case TypeCode::kDateTime2N:
      return "datetime2";
    case TypeCode::kDateTimeOffsetN:
      return "datetimeoffset";
    case TypeCode::kGuid:
      return "uniqueidentifier";
    case TypeCode::kBigVarBinary:
    case TypeCode::kBigBinary:
    case TypeCode::kImage:
      return "varbinary" + SizeText(type, 1, kMostBytes);
    case TypeCode::kBigVarChar:
    case TypeCode::kBigChar:
    case TypeCode::kText:
      return "varchar" + SizeText(type, 1, kMostBytes);
    default:
      return "nvarchar" + SizeText(type, 2, kMostBytes / 2);
  }
}

bool WireType::is_old_long() const noexcept {
  return code == TypeCode::kText || code == TypeCode::kNText || code == TypeCode::kImage;
}

WireType ReadWireType(TdsReader& reader) {
  WireType type;
  type.code = static_cast<TypeCode>(reader.U8());
  switch (type.code) {
    case TypeCode::kNull:
      return type;
    case TypeCode::kInt1:
    case TypeCode::kBit:
      type.size = 1;
      return type;
    case TypeCode::kInt2:
      type.size = 2;
      return type;
    case TypeCode::kInt4:
    case TypeCode::kFloat4:
    case TypeCode::kDateTime4:
    case TypeCode::kMoney4:
      type.size = 4;
      return type;
    case TypeCode::kInt8:
    case TypeCode::kFloat8:
    case TypeCode::kMoney:
    case TypeCode::kDateTime:
      type.size = 8;
      return type;
    case TypeCode::kDateN:
      type.size = 3;
      return type;
    case TypeCode::kTimeN:
    case TypeCode::kDateTime2N:
    case TypeCode::kDateTimeOffsetN:
      type.scale = reader.U8();
      if (type.scale > 7) throw ProtocolError("a time has more than 7 places");
      return type;
    case TypeCode::kGuid:
    case TypeCode::kIntN:
    case TypeCode::kBitN:
    case TypeCode::kFloatN:
    case TypeCode::kMoneyN:
    case TypeCode::kDateTimeN:
      type.size = reader.U8();
      return type;
    case TypeCode::kDecimalN:
    case TypeCode::kNumericN:
      type.size = reader.U8();
      type.precision = reader.U8();
      type.scale = reader.U8();
      if (type.precision < 1 || type.precision > Decimal::kMaxDigits || type.scale > type.precision) {
        throw ProtocolError("a decimal's precision or scale is out of range");
      }
      return type;
    case TypeCode::kBigVarBinary:
    case TypeCode::kBigBinary:
      type.size = reader.U16();
      return type;
    case TypeCode::kBigVarChar:
    case TypeCode::kBigChar:
    case TypeCode::kNVarChar:
    case TypeCode::kNChar:
      type.size = reader.U16();
      type.collation = reader.Bytes(kCollationSize);
      return type;
    case TypeCode::kText:
    case TypeCode::kNText:
      type.size = reader.U32();
      type.collation = reader.Bytes(kCollationSize);
      return type;
    case TypeCode::kImage:
      type.size = reader.U32();
      return type;
    default:
      break;
  }
  switch (static_cast<std::uint8_t>(type.code)) {
    case 0x62:
      RefuseType("sql_variant");
    case 0xF0:
      RefuseType("of a user's own");
    case 0xF1:
      RefuseType("xml");
    case 0xF3:
      RefuseType("table");
    default:
      throw ProtocolError("a parameter has an unknown type");
  }
}

Variant ReadVariant(TdsReader& reader, const WireType& type, const std::string& name) {
  const std::optional<std::string> value = ReadValue(reader, type);
  if (!value) return Null{};
  if (IsText(type.code)) return IsUtf16(type.code) ? TextOfUtf16Bytes(*value) : NarrowText(*value, type.collation);
  if (IsBinary(type.code)) return Bytes(value->begin(), value->end());
  try {
    return ValueOf(type, *value);
  } catch (const NoValueOfItsType&) {
    throw Error(error_number::kDataOverflow, kServerName,
                "Parameter (\"" + name + "\"): The supplied value is not a valid instance of data type " +
                    DeclarationOf(type) + ". Check the source data for invalid values.",
                {8023, "42000"});
  }
}

SqlParameter ReadParameter(TdsReader& reader) {
  constexpr std::uint8_t kByReference = 0x01;
  constexpr std::uint8_t kDefault = 0x02;
  SqlParameter parameter;
  parameter.name = reader.ShortText();
  const std::uint8_t flags = reader.U8();
  parameter.is_output = (flags & kByReference) != 0;
  parameter.is_default = (flags & kDefault) != 0;
  const WireType type = ReadWireType(reader);
  parameter.type = DeclarationOf(type);
  parameter.value = ReadVariant(reader, type, parameter.name);
  return parameter;
}

}  // namespace tessarlorn::tds
