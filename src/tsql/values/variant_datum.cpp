#include "tsql/values/variant_datum.h"

#include <type_traits>

#include "tsql/values/moment.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

/// A value in the narrowest type that holds it.
struct TypedDatum {
  Datum value;
  SqlType type;
};

TypedDatum Natural(const Variant& variant, const SqlType& wanted) {
  return std::visit(
      [&](const auto& value) -> TypedDatum {
        using T = std::decay_t<decltype(value)>;
        if constexpr (std::is_same_v<T, std::monostate> || std::is_same_v<T, Null>) {
          return {{}, NullType()};
        } else if constexpr (std::is_same_v<T, bool>) {
          return {std::int64_t{value}, BitType()};
        } else if constexpr (std::is_integral_v<T>) {
          return {std::int64_t{value}, IntType()};
        } else if constexpr (std::is_same_v<T, double>) {
          return {value, FloatType()};
        } else if constexpr (std::is_same_v<T, Decimal>) {
          const SqlType type = DecimalType(std::max(1, value.precision()), value.scale());
          return {FromDecimal(value, type), type};
        } else if constexpr (std::is_same_v<T, DateTime>) {
          constexpr int kPlaces = 3;
          return {value.milliseconds(), DateTime2Type(kPlaces)};
        } else if constexpr (std::is_same_v<T, std::string>) {
          return {value, NVarCharType(0)};
        } else if constexpr (std::is_same_v<T, Bytes>) {
          SqlType binary;
          binary.kind = FieldType::kVarBinary;
          return {Blob{std::string(value.begin(), value.end())}, binary};
        } else {
          throw SqlError(206, "Operand type clash: " + std::string(variant.type_name()) + " is incompatible with " +
                                  std::string(TypeNameText(wanted)));
        }
      },
      variant.value());
}

}  // namespace

Datum DatumOf(const Variant& value, const SqlType& type, DateOrder order) {
  const TypedDatum natural = Natural(value, type);
  return Convert(natural.value, natural.type, type, StyleFor(type, 0, order));
}

Variant VariantOf(const Datum& value, const SqlType& type) {
  if (const auto* whole = std::get_if<std::int64_t>(&value)) {
    if (type.is_date()) return DateTime(*whole);
    if (type.kind == FieldType::kBit) return *whole != 0;
    if (type.is_exact()) return Decimal::FromScaled(*whole, type.scale);
    return *whole;
  }
  if (const auto* real = std::get_if<double>(&value)) return *real;
  if (const auto* text = std::get_if<std::string>(&value)) {
    return type.has_offset() ? FormatMoment(ReadStoredMoment(*text), type, 0) : *text;
  }
  if (const auto* blob = std::get_if<Blob>(&value)) {
    if (type.is_exact()) return DecodeBigDecimal(blob->bytes, type.scale);
    return Bytes(blob->bytes.begin(), blob->bytes.end());
  }
  return Null{};
}

}  // namespace tessarlorn::tsql
