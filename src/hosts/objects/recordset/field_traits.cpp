#include "hosts/objects/recordset/field_traits.h"

#include <utility>

#include "platform/single.h"

namespace tessarlorn {
namespace {

/// Of a text or binary; `limited` and `unlimited` are the numbers of the types with and without a largest size.
FieldTraits SizedTraits(const Field& field, std::int32_t limited, std::int32_t unlimited, std::int32_t largest,
                        std::string_view xml_type, std::string_view xml_database_type) {
  FieldTraits traits;
  traits.unlimited = field.size == 0;
  traits.fixed_length = limited == unlimited;
  traits.type = traits.unlimited ? unlimited : limited;
  traits.size = traits.unlimited ? largest : field.size;
  traits.xml_type = xml_type;
  traits.xml_database_type = xml_database_type;
  return traits;
}

FieldTraits FixedTraits(std::int32_t type, std::int32_t size, std::int32_t precision, std::int32_t scale,
                        std::string_view xml_type, std::string_view xml_database_type = "") {
  return {.type = type,
          .size = size,
          .precision = precision,
          .scale = scale,
          .xml_type = xml_type,
          .xml_database_type = xml_database_type,
          .fixed_length = true};
}

}  // namespace

FieldTraits TraitsOf(const Field& field) {
  constexpr std::int32_t kNone = FieldTraits::kNone;
  constexpr std::int32_t kMostBytes = 2147483647;
  constexpr std::int32_t kMostCharacters = kMostBytes / 2;
  switch (field.type) {
    case FieldType::kBit:
      return FixedTraits(11, 2, kNone, kNone, "boolean");
    case FieldType::kTinyInt:
      return FixedTraits(17, 1, 3, kNone, "ui1");
    case FieldType::kSmallInt:
      return FixedTraits(2, 2, 5, kNone, "i2");
    case FieldType::kInt:
      return FixedTraits(3, 4, 10, kNone, "int");
    case FieldType::kBigInt:
      return FixedTraits(20, 8, 19, kNone, "i8");
    case FieldType::kReal:
      return FixedTraits(4, 4, 7, kNone, "r4");
    case FieldType::kFloat:
      return FixedTraits(5, 8, 15, kNone, "float");
    case FieldType::kDecimal:
      return FixedTraits(131, 19, field.precision, field.scale, "number", "numeric");
    case FieldType::kMoney:
      return FixedTraits(6, 8, 19, kNone, "number", "currency");
    case FieldType::kDate:
      return FixedTraits(133, 6, kNone, kNone, "date");
    case FieldType::kTime:
      return FixedTraits(134, 6, kNone, kNone, "time");
    case FieldType::kDateTime:
      return FixedTraits(135, 16, 23, 3, "dateTime", "timestamp");
    case FieldType::kGuid:
      return FixedTraits(72, 16, kNone, kNone, "uuid");
    case FieldType::kChar:
      return SizedTraits(field, 129, 129, kMostBytes, "string", "str");
    case FieldType::kVarChar:
      return SizedTraits(field, 200, 201, kMostBytes, "string", "str");
    case FieldType::kNChar:
      return SizedTraits(field, 130, 130, kMostCharacters, "string", "");
    case FieldType::kBinary:
      return SizedTraits(field, 128, 128, kMostBytes, "bin.hex", "");
    case FieldType::kVarBinary:
      return SizedTraits(field, 204, 205, kMostBytes, "bin.hex", "");
    case FieldType::kDateTimeOffset:  // clients have it as text
    case FieldType::kNVarChar:
      break;
  }
  return SizedTraits(field, 202, 203, kMostCharacters, "string", "");
}

void ToClientValue(const Field& field, Variant& value) {
  if (value.is_null()) return;
  switch (field.type) {
    case FieldType::kTinyInt:
      value = std::move(value).WithClientType(ClientType::kByte);
      break;
    case FieldType::kReal:
      value = Variant(Widened(static_cast<float>(value.ToDouble()))).WithClientType(ClientType::kSingle);
      break;
    case FieldType::kMoney:
      value = std::move(value).WithClientType(ClientType::kCurrency);
      break;
    case FieldType::kTime: {
      // Two days before the one from which the component counts.
      constexpr std::int64_t kTwoDays = std::int64_t{2} * 24 * 60 * 60 * 1000;
      value = DateTime(value.ToDateTime().milliseconds() - kTwoDays);
      break;
    }
    case FieldType::kGuid:
      value = "{" + value.ToText() + "}";
      break;
    default:
      break;
  }
}

void HandOver(const Recordset& rows, std::size_t field, ValueTaker& taker) {
  const Field& traits = rows.fields()[field];
  if (const auto text = KeepsText(traits) ? rows.FindText(field) : std::nullopt) return taker.TakeText(*text);
  Variant value = rows.Get(field);
  ToClientValue(traits, value);
  taker.Take(value);
}

}  // namespace tessarlorn
