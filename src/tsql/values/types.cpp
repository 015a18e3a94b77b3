#include "tsql/values/types.h"

#include <algorithm>
#include <array>

#include "platform/text/text.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

struct NamedType {
  std::string_view name;
  FieldType kind;
};

constexpr std::string_view kSmallMoney = "smallmoney";
constexpr std::string_view kSmallDateTime = "smalldatetime";
constexpr std::string_view kDateTime2 = "datetime2";

constexpr std::array kTypeNames = {
    NamedType{"bit", FieldType::kBit},
    NamedType{"tinyint", FieldType::kTinyInt},
    NamedType{"smallint", FieldType::kSmallInt},
    NamedType{"int", FieldType::kInt},
    NamedType{"bigint", FieldType::kBigInt},
    NamedType{"real", FieldType::kReal},
    NamedType{"float", FieldType::kFloat},
    NamedType{"decimal", FieldType::kDecimal},
    NamedType{"money", FieldType::kMoney},
    NamedType{"date", FieldType::kDate},
    NamedType{"time", FieldType::kTime},
    NamedType{"datetime", FieldType::kDateTime},
    NamedType{"datetimeoffset", FieldType::kDateTimeOffset},
    NamedType{"char", FieldType::kChar},
    NamedType{"varchar", FieldType::kVarChar},
    NamedType{"nchar", FieldType::kNChar},
    NamedType{"nvarchar", FieldType::kNVarChar},
    NamedType{"binary", FieldType::kBinary},
    NamedType{"varbinary", FieldType::kVarBinary},
    NamedType{"uniqueidentifier", FieldType::kGuid},
    // Other names of the same; TypeNameText gives the first.
    NamedType{"integer", FieldType::kInt},
    NamedType{"numeric", FieldType::kDecimal},
    NamedType{"dec", FieldType::kDecimal},
    NamedType{kSmallMoney, FieldType::kMoney},
    NamedType{kSmallDateTime, FieldType::kDateTime},
    NamedType{kDateTime2, FieldType::kDateTime},
    NamedType{"character", FieldType::kChar},
    NamedType{"sysname", FieldType::kNVarChar},
    NamedType{"text", FieldType::kVarChar},
    NamedType{"ntext", FieldType::kNVarChar},
    NamedType{"image", FieldType::kVarBinary},
};

constexpr int kMaxExact = Decimal::kMaxDigits;

int IntegerDigits(FieldType kind) {
  switch (kind) {
    case FieldType::kBit:
      return 1;
    case FieldType::kTinyInt:
      return 3;
    case FieldType::kSmallInt:
      return 5;
    case FieldType::kBigInt:
      return 19;
    default:
      return 10;
  }
}

/// Which type wins when two meet; the higher one.
int Precedence(const SqlType& type) {
  switch (type.kind) {
    case FieldType::kDateTimeOffset:
      return 95;
    case FieldType::kDateTime:
      return type.form() == DateForm::kDateTime2 ? 92 : type.form() == DateForm::kDateTime ? 90 : 88;
    case FieldType::kDate:
      return 85;
    case FieldType::kTime:
      return 84;
    case FieldType::kFloat:
      return 80;
    case FieldType::kReal:
      return 79;
    case FieldType::kDecimal:
      return 70;
    case FieldType::kMoney:
      return type.is_small_money() ? 68 : 69;
    case FieldType::kBigInt:
      return 60;
    case FieldType::kInt:
      return 59;
    case FieldType::kSmallInt:
      return 58;
    case FieldType::kTinyInt:
      return 57;
    case FieldType::kBit:
      return 56;
    case FieldType::kGuid:
      return 50;
    case FieldType::kNVarChar:
      return 40;
    case FieldType::kNChar:
      return 39;
    case FieldType::kVarChar:
      return 38;
    case FieldType::kChar:
      return 37;
    case FieldType::kVarBinary:
      return 20;
    case FieldType::kBinary:
      return 19;
  }
  return 0;
}

SqlType MakeDecimal(int precision, int scale) { return {FieldType::kDecimal, 0, precision, scale, false}; }

/// Brings a computed precision and scale into 38 digits: places give way to digits before the point, but at least six
/// places stay.
SqlType Fit(int precision, int scale) {
  if (precision > kMaxExact) {
    const int whole = precision - scale;
    scale = std::max(kMaxExact - whole, std::min(scale, 6));
    precision = kMaxExact;
  }
  return MakeDecimal(precision, scale);
}

int LargerSize(int a, int b) { return a == 0 || b == 0 ? 0 : std::max(a, b); }

}  // namespace

Storage SqlType::storage() const noexcept {
  switch (kind) {
    case FieldType::kReal:
    case FieldType::kFloat:
      return Storage::kReal;
    case FieldType::kDecimal:
      return precision <= 18 ? Storage::kScaled : Storage::kBigDecimal;
    case FieldType::kMoney:
      return Storage::kScaled;
    case FieldType::kChar:
    case FieldType::kVarChar:
    case FieldType::kNChar:
    case FieldType::kNVarChar:
    case FieldType::kGuid:
    case FieldType::kDateTimeOffset:
      return Storage::kText;
    case FieldType::kBinary:
    case FieldType::kVarBinary:
      return Storage::kBlob;
    default:
      return Storage::kInteger;
  }
}

bool SqlType::is_text() const noexcept {
  return kind == FieldType::kChar || kind == FieldType::kVarChar || kind == FieldType::kNChar ||
         kind == FieldType::kNVarChar;
}

bool SqlType::is_integer() const noexcept {
  return kind == FieldType::kBit || kind == FieldType::kTinyInt || kind == FieldType::kSmallInt ||
         kind == FieldType::kInt || kind == FieldType::kBigInt;
}

bool SqlType::is_date() const noexcept {
  return kind == FieldType::kDateTime || kind == FieldType::kDate || kind == FieldType::kTime;
}

SqlType IntType() { return {FieldType::kInt, 0, 0, 0, false}; }
SqlType BigIntType() { return {FieldType::kBigInt, 0, 0, 0, false}; }
SqlType MoneyType() { return ResolveType({"money", -2, -2}, false); }

SqlType FloatType() { return {FieldType::kFloat, 0, 0, 0, false}; }
SqlType DateTimeType() { return {FieldType::kDateTime, 0, 0, 0, false}; }
SqlType DateTime2Type(int scale) {
  return {FieldType::kDateTime, 0, static_cast<int>(DateForm::kDateTime2), scale, false};
}
SqlType DateTimeOffsetType(int scale) {
  return {FieldType::kDateTimeOffset, 0, static_cast<int>(DateForm::kDateTime2), scale, false};
}
SqlType BitType() { return {FieldType::kBit, 0, 0, 0, false}; }
SqlType NullType() { return {FieldType::kInt, 0, 0, 0, true}; }
SqlType DecimalType(int precision, int scale) { return MakeDecimal(precision, scale); }
SqlType VarCharType(int size) { return {FieldType::kVarChar, size, 0, 0, false}; }
SqlType NVarCharType(int size) { return {FieldType::kNVarChar, size, 0, 0, false}; }

SqlType ResolveType(const TypeName& name, bool in_cast) {
  const auto* found = std::find_if(kTypeNames.begin(), kTypeNames.end(),
                                   [&](const NamedType& type) { return EqualsIgnoreCase(type.name, name.name); });
  if (found == kTypeNames.end()) {
    if (EqualsIgnoreCase(name.name, "xml") || EqualsIgnoreCase(name.name, "sql_variant") ||
        EqualsIgnoreCase(name.name, "timestamp") || EqualsIgnoreCase(name.name, "rowversion") ||
        EqualsIgnoreCase(name.name, "table") || EqualsIgnoreCase(name.name, "cursor")) {
      RaiseUnsupported("The data type " + name.name);
    }
    throw SqlError(2715, "Column, parameter, or variable: Cannot find data type " + name.name + ".");
  }
  SqlType type;
  type.kind = found->kind;
  const bool unlimited = name.name == "text" || name.name == "ntext" || name.name == "image";
  if (type.is_text() || type.is_binary()) {
    const int most = type.is_national() ? 4000 : 8000;
    if (unlimited || name.length == -1) {
      type.size = 0;
    } else if (name.name == "sysname") {
      type.size = 128;
    } else if (name.length == -2) {
      type.size = in_cast ? 30 : 1;
    } else if (name.length < 1 || name.length > most) {
      throw SqlError(131,
                     "The size (" + std::to_string(name.length) + ") given to the type '" + name.name +
                         "' exceeds the maximum allowed for any data type (" + std::to_string(most) + ").",
                     15);
    } else {
      type.size = name.length;
    }
  } else if (type.kind == FieldType::kDecimal) {
    type.precision = name.length == -2 ? 18 : name.length;
    type.scale = name.scale == -2 ? 0 : name.scale;
    if (type.precision < 1 || type.precision > kMaxExact) {
      throw SqlError(2750, "Column or parameter: Specified column precision " + std::to_string(type.precision) +
                               " is greater than the maximum precision of 38.");
    }
    if (type.scale < 0 || type.scale > type.precision) {
      throw SqlError(192, "The scale must be less than or equal to the precision.", 15);
    }
  } else if (type.kind == FieldType::kMoney) {
    type.precision = EqualsIgnoreCase(name.name, kSmallMoney) ? 10 : 19;
    type.scale = 4;
  } else if (EqualsIgnoreCase(name.name, kSmallDateTime)) {
    type.precision = static_cast<int>(DateForm::kSmallDateTime);
  } else if (EqualsIgnoreCase(name.name, kDateTime2) || type.kind == FieldType::kTime || type.has_offset()) {
    if (type.kind != FieldType::kTime) type.precision = static_cast<int>(DateForm::kDateTime2);
    type.scale = name.length == -2 ? 7 : name.length;
    if (type.scale < 0 || type.scale > 7) {
      throw SqlError(1002, "Line 1: Specified scale " + std::to_string(type.scale) + " is invalid.", 15);
    }
  }
  return type;
}

std::string_view TypeNameText(const SqlType& type) {
  if (type.is_small_money()) return kSmallMoney;
  if (type.kind == FieldType::kDateTime && type.form() != DateForm::kDateTime) {
    return type.form() == DateForm::kDateTime2 ? kDateTime2 : kSmallDateTime;
  }
  const auto* found = std::find_if(kTypeNames.begin(), kTypeNames.end(),
                                   [&](const NamedType& named) { return named.kind == type.kind; });
  return found == kTypeNames.end() ? std::string_view{} : found->name;
}

std::string TypeText(const SqlType& type) {
  std::string text(TypeNameText(type));
  if (type.is_text() || type.is_binary()) {
    text += type.size == 0 ? "(max)" : "(" + std::to_string(type.size) + ")";
  } else if (type.kind == FieldType::kDecimal) {
    text += "(" + std::to_string(type.precision) + ", " + std::to_string(type.scale) + ")";
  } else if (type.kind == FieldType::kTime || type.has_offset() ||
             (type.kind == FieldType::kDateTime && !type.is_old_date())) {
    text += "(" + std::to_string(type.scale) + ")";
  }
  return text;
}

SqlType ParseTypeText(std::string_view text) {
  TypeName name;
  const std::size_t open = text.find('(');
  name.name = std::string(text.substr(0, open));
  if (open != std::string_view::npos) {
    const std::string_view arguments = text.substr(open + 1, text.size() - open - 2);
    const std::size_t comma = arguments.find(',');
    const auto number = [](std::string_view digits) {
      digits = Trim(digits);
      if (digits == "max") return -1;
      return WholeNumber<int>(digits).value_or(0);
    };
    name.length = number(arguments.substr(0, comma));
    if (comma != std::string_view::npos) name.scale = number(arguments.substr(comma + 1));
  }
  return ResolveType(name, false);
}

std::string_view SqliteColumnType(const SqlType& type) {
  switch (type.storage()) {
    case Storage::kReal:
      return "REAL";
    case Storage::kText:
      return type.has_offset() ? "TEXT COLLATE MOMENT" : "TEXT COLLATE TSQL";
    case Storage::kBlob:
    case Storage::kBigDecimal:
      return "BLOB";
    default:
      return "INTEGER";
  }
}

std::string CollationOf(const SqlType& type) {
  if (!type.is_text()) return type.has_offset() ? " COLLATE MOMENT" : "";
  if (type.order == TextOrder::kCodePoints) return " COLLATE TSQL";
  return " COLLATE \"" + std::string(TextOrderName(type.order)) + "\"";
}

std::int64_t PackType(const SqlType& type) {
  return static_cast<std::int64_t>(type.kind) | (static_cast<std::int64_t>(type.precision) << 8) |
         (static_cast<std::int64_t>(type.scale) << 16) | (static_cast<std::int64_t>(type.size) << 24);
}

SqlType UnpackType(std::int64_t packed) {
  SqlType type;
  type.kind = static_cast<FieldType>(packed & 0xff);
  type.precision = static_cast<int>((packed >> 8) & 0xff);
  type.scale = static_cast<int>((packed >> 16) & 0xff);
  type.size = static_cast<int>(packed >> 24);
  return type;
}

SqlType AsDecimal(const SqlType& type) {
  if (type.kind == FieldType::kDecimal) return type;
  if (type.kind == FieldType::kMoney) return MakeDecimal(19, 4);
  if (type.is_integer()) return MakeDecimal(type.precision > 0 ? type.precision : IntegerDigits(type.kind), 0);
  return MakeDecimal(kMaxExact, 8);
}

SqlType CommonType(const SqlType& a, const SqlType& b) {
  if (a.untyped_null) return b;
  if (b.untyped_null) return a;
  SqlType high = Precedence(a) >= Precedence(b) ? a : b;
  const SqlType& low = Precedence(a) >= Precedence(b) ? b : a;
  if (high.is_text() && low.is_text()) {
    if (high.order == TextOrder::kCodePoints) high.order = low.order;
    constexpr int kMostNational = 4000;
    high.size = LargerSize(a.size, b.size);
    if (high.is_national()) high.size = std::min(high.size, kMostNational);
    if (high.kind == FieldType::kChar && a.size != b.size) high.kind = FieldType::kVarChar;
    return high;
  }
  if (high.is_binary()) {
    high.size = LargerSize(a.size, b.size);
    return high;
  }
  if (high.kind == FieldType::kDecimal && (low.is_exact() || low.is_integer())) {
    const SqlType x = AsDecimal(a);
    const SqlType y = AsDecimal(b);
    const int scale = std::max(x.scale, y.scale);
    return Fit(std::max(x.precision - x.scale, y.precision - y.scale) + scale, scale);
  }
  const bool of_places = high.has_offset() || (high.kind == FieldType::kDateTime && !high.is_old_date());
  if (of_places && (low.is_date() || low.has_offset())) {
    constexpr int kPlacesOfDateTime = 3;
    high.scale = std::max(high.scale, low.is_old_date() ? kPlacesOfDateTime : low.scale);
  }
  if (high.is_integer()) high.precision = 0;
  return high;
}

SqlType ArithmeticType(BinaryOp op, const SqlType& a, const SqlType& b) {
  if (a.is_float() || b.is_float()) return FloatType();
  if (a.is_integer() && b.is_integer()) {
    const SqlType type = CommonType(a, b);
    return type.kind == FieldType::kBit ? IntType() : type;
  }
  const SqlType x = AsDecimal(a);
  const SqlType y = AsDecimal(b);
  switch (op) {
    case BinaryOp::kMultiply:
      return Fit(x.precision + y.precision + 1, x.scale + y.scale);
    case BinaryOp::kDivide: {
      const int scale = std::max(6, x.scale + y.precision + 1);
      return Fit(x.precision - x.scale + y.scale + scale, scale);
    }
    case BinaryOp::kModulo: {
      const int scale = std::max(x.scale, y.scale);
      return Fit(std::min(x.precision - x.scale, y.precision - y.scale) + scale, scale);
    }
    default: {
      const int scale = std::max(x.scale, y.scale);
      return Fit(std::max(x.precision - x.scale, y.precision - y.scale) + scale + 1, scale);
    }
  }
}

Field ToField(const std::string& name, const SqlType& type, bool nullable) {
  Field field;
  field.name = name;
  field.type = type.kind;
  field.size = type.size;
  if (type.is_exact()) {
    field.precision = type.precision;
    field.scale = type.scale;
  }
  constexpr int kLongestMoment = 34;
  if (type.has_offset()) field.size = kLongestMoment;
  field.nullable = nullable;
  return field;
}

}  // namespace tessarlorn::tsql
