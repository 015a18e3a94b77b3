#include "drivers/odbc/bound_parameters.h"

#include <algorithm>
#include <cstring>

#include "drivers/odbc/odbc_error.h"
#include "platform/unicode/utf16.h"
#include "tessarlorn/error.h"

namespace tessarlorn::odbc {
namespace {

/// An output without a declared limit may have so many bytes.
constexpr std::size_t kLongestOutput = std::size_t{1} << 20;
/// Digits, sign and point of any decimal, and more.
constexpr std::size_t kDecimalText = 48;
constexpr int kMillisecond = 1'000'000;

SQLSMALLINT IntegerType(FieldType type) {
  switch (type) {
    case FieldType::kBit:
      return SQL_BIT;
    case FieldType::kTinyInt:
      return SQL_TINYINT;
    case FieldType::kSmallInt:
      return SQL_SMALLINT;
    case FieldType::kInt:
      return SQL_INTEGER;
    default:
      return SQL_BIGINT;
  }
}

template <typename T>
std::vector<char> BytesOf(const T& value) {
  std::vector<char> bytes(sizeof value);
  std::memcpy(bytes.data(), &value, sizeof value);
  return bytes;
}

template <typename T>
T ValueOf(const std::vector<char>& bytes) {
  T value{};
  std::memcpy(&value, bytes.data(), sizeof value);
  return value;
}

SQL_TIMESTAMP_STRUCT TimestampOf(const Variant& value) {
  const CivilTime civil = value.ToDateTime().ToCivil();
  SQL_TIMESTAMP_STRUCT stamp{};
  stamp.year = static_cast<SQLSMALLINT>(civil.year);
  stamp.month = static_cast<SQLUSMALLINT>(civil.month);
  stamp.day = static_cast<SQLUSMALLINT>(civil.day);
  stamp.hour = static_cast<SQLUSMALLINT>(civil.hour);
  stamp.minute = static_cast<SQLUSMALLINT>(civil.minute);
  stamp.second = static_cast<SQLUSMALLINT>(civil.second);
  stamp.fraction = static_cast<SQLUINTEGER>(civil.millisecond * kMillisecond);
  return stamp;
}

DateTime DateTimeOf(const SQL_TIMESTAMP_STRUCT& stamp) {
  const CivilTime civil{stamp.year,
                        stamp.month,
                        stamp.day,
                        stamp.hour,
                        stamp.minute,
                        stamp.second,
                        std::min(static_cast<int>(stamp.fraction / kMillisecond), 999)};
  return DateTime::FromCivil(civil).value_or(DateTime());
}

std::vector<char> Encode(const Variant& value, SQLSMALLINT c_type) {
  switch (c_type) {
    case SQL_C_SBIGINT:
      return BytesOf(value.holds<bool>() ? std::int64_t{value.ToBool()} : value.ToDecimal().ToScaled(0).value_or(0));
    case SQL_C_DOUBLE:
      return BytesOf(value.ToDouble());
    case SQL_C_CHAR: {
      const std::string digits = value.ToText();
      return {digits.begin(), digits.end()};
    }
    case SQL_C_TYPE_TIMESTAMP:
      return BytesOf(TimestampOf(value));
    case SQL_C_BINARY: {
      const Bytes& bytes = *value.get_if<Bytes>();
      return {bytes.begin(), bytes.end()};
    }
    default: {
      const std::u16string units = ToUtf16(value.ToText());
      const char* start = reinterpret_cast<const char*>(units.data());
      return {start, start + units.size() * sizeof(char16_t)};
    }
  }
}

Variant Decode(const std::vector<char>& buffer, std::size_t length, SQLSMALLINT c_type) {
  switch (c_type) {
    case SQL_C_SBIGINT:
      return ValueOf<std::int64_t>(buffer);
    case SQL_C_DOUBLE:
      return ValueOf<double>(buffer);
    case SQL_C_CHAR:
      return std::string(buffer.data(), length);
    case SQL_C_TYPE_TIMESTAMP:
      return DateTimeOf(ValueOf<SQL_TIMESTAMP_STRUCT>(buffer));
    case SQL_C_BINARY:
      return Bytes(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(length));
    default:
      return FromUtf16({reinterpret_cast<const char16_t*>(buffer.data()), length / sizeof(char16_t)});
  }
}

}  // namespace

BoundParameters::BoundParameters(SQLHSTMT statement, SqlCommand& command) : statement_(statement) {
  if (!command.is_procedure && command.parameters.empty()) {
    text_ = command.text;
    return;
  }
  call_.emplace(command);
  for (SqlArgument& argument : call_->arguments()) Add(argument);
  text_ = "{call sp_executesql(?";
  for (std::size_t i = 1; i < slots_.size(); ++i) text_ += ",?";
  text_ += ")}";
  SQLSetStmtAttr(statement_, SQL_ATTR_NOSCAN, AsPointer(SQL_NOSCAN_OFF), 0);
  SQLUSMALLINT number = 0;
  for (Slot& slot : slots_) {
    SQLBindParameter(statement_, ++number, slot.argument->is_output ? SQL_PARAM_INPUT_OUTPUT : SQL_PARAM_INPUT,
                     slot.c_type, slot.sql_type, slot.size, slot.places, slot.buffer.data(),
                     static_cast<SQLLEN>(slot.buffer.size()), &slot.length);
  }
}

BoundParameters::~BoundParameters() {
  if (slots_.empty()) return;
  SQLFreeStmt(statement_, SQL_RESET_PARAMS);
  LeaveTextsAlone(statement_);
}

void BoundParameters::LeaveTextsAlone(SQLHSTMT statement) noexcept {
  SQLSetStmtAttr(statement, SQL_ATTR_NOSCAN, AsPointer(SQL_NOSCAN_ON), 0);
}

void BoundParameters::ChooseTypes(Slot& slot) {
  const auto set = [&](SQLSMALLINT c_type, SQLSMALLINT sql_type, std::size_t width) {
    slot.c_type = c_type;
    slot.sql_type = sql_type;
    slot.buffer.resize(width);
  };
  const Field& field = slot.argument->field;
  const FieldType type = field.type;
  switch (type) {
    case FieldType::kBit:
    case FieldType::kTinyInt:
    case FieldType::kSmallInt:
    case FieldType::kInt:
    case FieldType::kBigInt:
      set(SQL_C_SBIGINT, IntegerType(type), sizeof(std::int64_t));
      break;
    case FieldType::kReal:
    case FieldType::kFloat:
      set(SQL_C_DOUBLE, type == FieldType::kReal ? SQL_REAL : SQL_DOUBLE, sizeof(double));
      break;
    case FieldType::kDecimal:
    case FieldType::kMoney:
      set(SQL_C_CHAR, SQL_DECIMAL, kDecimalText);
      slot.size = static_cast<SQLULEN>(field.precision);
      slot.places = static_cast<SQLSMALLINT>(field.scale);
      break;
    case FieldType::kDateTime:
      set(SQL_C_TYPE_TIMESTAMP, SQL_TYPE_TIMESTAMP, sizeof(SQL_TIMESTAMP_STRUCT));
      slot.size = 23;
      slot.places = 3;
      break;
    default: {
      const bool binary = type == FieldType::kBinary || type == FieldType::kVarBinary;
      const int size = field.size;
      const std::size_t unit = binary ? 1 : sizeof(char16_t);
      set(binary ? SQL_C_BINARY : SQL_C_WCHAR,
          binary ? (size == 0 ? SQL_LONGVARBINARY : SQL_VARBINARY) : (size == 0 ? SQL_WLONGVARCHAR : SQL_WVARCHAR),
          size == 0 ? kLongestOutput : (static_cast<std::size_t>(size) + 1) * unit);
      slot.size = static_cast<SQLULEN>(size);
    }
  }
}

void BoundParameters::Add(SqlArgument& argument) {
  Slot& slot = slots_.emplace_back();
  slot.argument = &argument;
  ChooseTypes(slot);
  if (!argument.is_output) slot.buffer.clear();
  if (argument.value.is_null()) return;
  const std::vector<char> value = Encode(argument.value, slot.c_type);
  slot.length = static_cast<SQLLEN>(value.size());
  if (slot.buffer.size() < value.size()) slot.buffer.resize(value.size());
  std::copy(value.begin(), value.end(), slot.buffer.begin());
  // One without a limit is as long as its value.
  if (slot.size == 0 && !argument.is_output) slot.size = std::max<SQLULEN>(value.size(), 1);
}

void BoundParameters::TakeOutputs() {
  if (!call_) return;
  for (const Slot& slot : slots_) {
    if (!slot.argument->is_output) continue;
    if (slot.length == SQL_NULL_DATA) {
      slot.argument->value = Null{};
      continue;
    }
    const auto length = static_cast<std::size_t>(slot.length);
    if (slot.length < 0 || length > slot.buffer.size()) {
      throw Error(error_number::kDataOverflow, kSource,
                  "The value that comes back in " + slot.argument->field.name + " is too long for its type.");
    }
    slot.argument->value = Decode(slot.buffer, length, slot.c_type);
  }
  call_->GiveBack();
}

}  // namespace tessarlorn::odbc
