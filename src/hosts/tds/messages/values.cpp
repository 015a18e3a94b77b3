#include "hosts/tds/messages/values.h"

#include <algorithm>
#include <bit>

#include "hosts/tds/messages/login.h"
#include "hosts/tds/messages/type_codes.h"
#include "platform/text/guid_text.h"
#include "platform/text/text.h"
#include "tessarlorn/error.h"

namespace tessarlorn::tds {
namespace {

constexpr std::size_t kLongestBytes = 8000;
constexpr int kTimeScale = 3;
constexpr std::uint8_t kMoneySize = 8;
// As texts: 2026-11-03, 09:08:07.123.
constexpr int kDateLength = 10;
constexpr int kTimeLength = 12;

void PutType(TdsWriter& writer, TypeCode code) { writer.U8(static_cast<std::uint8_t>(code)); }

void PutSizedType(TdsWriter& writer, TypeCode code, std::uint8_t size) {
  PutType(writer, code);
  writer.U8(size);
}

/// Text and binary types. A fixed type without a length does not exist: it is varying then. Before 7.2 what has no
/// length is ntext or image, with the name of a table.
void PutLongType(TdsWriter& writer, TypeCode fixed, TypeCode varying, bool is_fixed, std::size_t size, bool text) {
  const bool unlimited = size == 0 || size > kLongestBytes;
  if (unlimited && !writer.version().is_72()) {
    constexpr std::uint32_t kLongest = 0x7FFFFFFF;
    PutType(writer, text ? TypeCode::kNText : TypeCode::kImage);
    writer.U32(kLongest);
    if (text) writer.Bytes(CollationFor(writer.version()));
    return writer.U16(0);
  }
  PutType(writer, is_fixed && !unlimited ? fixed : varying);
  writer.U16(unlimited ? kUnlimited : static_cast<std::uint16_t>(size));
  if (text) writer.Bytes(CollationFor(writer.version()));
}

std::uint8_t DecimalSize(int precision) { return precision <= 9 ? 5 : precision <= 19 ? 9 : precision <= 28 ? 13 : 17; }

void PutFieldType(TdsWriter& writer, const Field& field) {
  const auto size = static_cast<std::size_t>(std::max(field.size, 0));
  switch (field.type) {
    case FieldType::kBit:
      return PutSizedType(writer, TypeCode::kBitN, 1);
    case FieldType::kTinyInt:
      return PutSizedType(writer, TypeCode::kIntN, 1);
    case FieldType::kSmallInt:
      return PutSizedType(writer, TypeCode::kIntN, 2);
    case FieldType::kInt:
      return PutSizedType(writer, TypeCode::kIntN, 4);
    case FieldType::kBigInt:
      return PutSizedType(writer, TypeCode::kIntN, 8);
    case FieldType::kReal:
      return PutSizedType(writer, TypeCode::kFloatN, 4);
    case FieldType::kFloat:
      return PutSizedType(writer, TypeCode::kFloatN, 8);
    case FieldType::kDecimal:
      PutSizedType(writer, TypeCode::kDecimalN, DecimalSize(field.precision));
      writer.U8(static_cast<std::uint8_t>(field.precision));
      return writer.U8(static_cast<std::uint8_t>(field.scale));
    case FieldType::kMoney:
      return PutSizedType(writer, TypeCode::kMoneyN, kMoneySize);
    case FieldType::kDate:
      return PutType(writer, TypeCode::kDateN);
    case FieldType::kTime:
      return PutSizedType(writer, TypeCode::kTimeN, kTimeScale);
    case FieldType::kDateTime:
      if (!writer.version().is_73()) return PutSizedType(writer, TypeCode::kDateTimeN, 8);
      return PutSizedType(writer, TypeCode::kDateTime2N, kTimeScale);
    case FieldType::kDateTimeOffset:
      return PutSizedType(writer, TypeCode::kDateTimeOffsetN, kTimeScale);
    case FieldType::kGuid:
      return PutSizedType(writer, TypeCode::kGuid, 16);
    case FieldType::kChar:
    case FieldType::kVarChar:
      return PutLongType(writer, TypeCode::kBigChar, TypeCode::kBigVarChar, field.type == FieldType::kChar, size, true);
    case FieldType::kNChar:
    case FieldType::kNVarChar:
      return PutLongType(writer, TypeCode::kNChar, TypeCode::kNVarChar, field.type == FieldType::kNChar, size * 2,
                         true);
    case FieldType::kBinary:
    case FieldType::kVarBinary:
      return PutLongType(writer, TypeCode::kBigBinary, TypeCode::kBigVarBinary, field.type == FieldType::kBinary, size,
                         false);
  }
}

bool IsWide(const Field& field) { return field.type == FieldType::kNChar || field.type == FieldType::kNVarChar; }

bool IsNarrowText(const Field& field) { return field.type == FieldType::kChar || field.type == FieldType::kVarChar; }

bool IsLong(const Field& field) {
  return IsWide(field) || IsNarrowText(field) || field.type == FieldType::kBinary ||
         field.type == FieldType::kVarBinary;
}

/// Whether values of the column have no limit: they come in parts, with a length of 8 bytes before them.
bool InParts(const Field& field) {
  const auto size = static_cast<std::size_t>(std::max(field.size, 0));
  return IsLong(field) && (size == 0 || size * (IsWide(field) ? 2 : 1) > kLongestBytes);
}

/// A text or binary value: `put` writes its bytes and answers how many.
template <typename Put>
void PutLongValue(TdsWriter& writer, const Field& field, std::size_t bytes, Put put) {
  if (InParts(field) && !writer.version().is_72()) {
    // A pointer and a time stamp stand before the value, which mean nothing here.
    constexpr std::uint8_t kPointerSize = 16;
    writer.U8(kPointerSize);
    writer.Bytes(std::string(kPointerSize + 8, '\0'));
    const std::size_t start = writer.size();
    writer.U32(0);
    return writer.SetU32(start, static_cast<std::uint32_t>(put()));
  }
  if (InParts(field)) {
    writer.U64(kUnknownParts);
    if (bytes > 0) {
      const std::size_t start = writer.size();
      writer.U32(0);
      writer.SetU32(start, static_cast<std::uint32_t>(put()));
    }
    return writer.U32(0);
  }
  const std::size_t start = writer.size();
  writer.U16(0);
  const std::size_t size = put();
  if (size > kLongestBytes) {
    throw Error(error_number::kDataOverflow, kServerName,
                "A value of the column " + field.name + " is longer than its type says.", {8152, "22001"});
  }
  writer.SetU16(start, static_cast<std::uint16_t>(size));
}

void PutNull(TdsWriter& writer, const Field& field) {
  switch (field.type) {
    case FieldType::kChar:
    case FieldType::kVarChar:
    case FieldType::kNChar:
    case FieldType::kNVarChar:
    case FieldType::kBinary:
    case FieldType::kVarBinary:
      if (InParts(field) && !writer.version().is_72()) return writer.U8(0);
      return InParts(field) ? writer.U64(kNullParts) : writer.U16(kNullLength);
    default:
      return writer.U8(0);
  }
}

void PutInteger(TdsWriter& writer, const Variant& value, std::size_t size) {
  writer.U8(static_cast<std::uint8_t>(size));
  const auto* small = value.get_if<std::int32_t>();
  const auto* boolean = value.get_if<bool>();
  std::int64_t number = 0;
  if (boolean != nullptr) {
    number = *boolean ? 1 : 0;
  } else {
    number = small != nullptr ? *small : value.ToDecimal().ToScaled(0).value_or(0);
  }
  writer.Number(static_cast<std::uint64_t>(number), size);
}

void PutDecimal(TdsWriter& writer, const Decimal& value, const Field& field) {
  const Decimal scaled = value.scale() == field.scale ? value : value.Rescale(field.scale).value_or(value);
  const std::uint8_t size = DecimalSize(field.precision);
  writer.U8(size);
  writer.U8(scaled.negative() ? 0 : 1);
  for (std::size_t limb = 0; limb < static_cast<std::size_t>(size / 4); ++limb) writer.U32(scaled.limbs()[limb]);
}

void PutMoney(TdsWriter& writer, const Decimal& value) {
  constexpr int kMoneyScale = 4;
  const auto units = static_cast<std::uint64_t>(value.ToScaled(kMoneyScale).value_or(0));
  writer.U8(kMoneySize);
  writer.U32(static_cast<std::uint32_t>(units >> 32));
  writer.U32(static_cast<std::uint32_t>(units & 0xffffffff));
}

struct DayAndTime {
  std::int64_t day = 0;  // since 1900-01-01
  std::int64_t milliseconds = 0;
};

DayAndTime SplitDay(DateTime value) {
  std::int64_t day = value.milliseconds() / kMillisecondsOfDay;
  std::int64_t rest = value.milliseconds() % kMillisecondsOfDay;
  if (rest < 0) {
    rest += kMillisecondsOfDay;
    --day;
  }
  return {day, rest};
}

/// As datetime2: its milliseconds are exact, and it has every day. Before 7.3 as datetime, in ticks of 1/300 second.
void PutDateTime(TdsWriter& writer, DateTime value) {
  const auto [day, milliseconds] = SplitDay(value);
  if (!writer.version().is_73()) {
    constexpr std::int64_t kLastTick = kMillisecondsOfDay * 3 / 10 - 1;
    writer.U8(8);
    writer.U32(static_cast<std::uint32_t>(day));
    return writer.U32(static_cast<std::uint32_t>(std::min((milliseconds * 3 + 5) / 10, kLastTick)));
  }
  writer.U8(7);
  writer.U32(static_cast<std::uint32_t>(milliseconds));
  writer.Number(static_cast<std::uint64_t>(day + kDaysBefore1900), 3);
}

/// `text` as FieldType::kDateTimeOffset has it. On the wire it is UTC, and the offset in minutes.
void PutDateTimeOffset(TdsWriter& writer, std::string_view text) {
  constexpr std::size_t kZoneLength = 6;  // +08:00
  const std::string_view zone = text.substr(text.size() - std::min(text.size(), kZoneLength));
  const std::optional<DateTime> clock = DateTime::Parse(text.substr(0, text.size() - zone.size()));
  if (!clock || zone.size() < kZoneLength) RaiseTypeMismatch();
  const auto hours = WholeNumber<int>(zone.substr(1, 2));
  const auto minutes = WholeNumber<int>(zone.substr(4));
  if (!hours || !minutes) RaiseTypeMismatch();
  const int offset = (*hours * 60 + *minutes) * (zone.front() == '-' ? -1 : 1);
  const auto [day, milliseconds] = SplitDay(DateTime(clock->milliseconds() - std::int64_t{offset} * 60'000));
  writer.U8(9);
  writer.U32(static_cast<std::uint32_t>(milliseconds));
  writer.Number(static_cast<std::uint64_t>(day + kDaysBefore1900), 3);
  writer.U16(static_cast<std::uint16_t>(offset));
}

/// The first three groups of a GUID stand with their lowest byte first.
void PutGuid(TdsWriter& writer, std::string_view text) {
  std::string bytes = BytesOfGuid(text).value_or("");
  bytes.resize(16);
  std::reverse(bytes.begin(), bytes.begin() + 4);
  std::reverse(bytes.begin() + 4, bytes.begin() + 6);
  std::reverse(bytes.begin() + 6, bytes.begin() + 8);
  writer.U8(16);
  writer.Bytes(bytes);
}

void PutValue(TdsWriter& writer, const Field& field, const Recordset& rows, std::size_t column) {
  switch (field.type) {
    case FieldType::kBit:
    case FieldType::kTinyInt:
      return PutInteger(writer, rows.Get(column), 1);
    case FieldType::kSmallInt:
      return PutInteger(writer, rows.Get(column), 2);
    case FieldType::kInt:
      return PutInteger(writer, rows.Get(column), 4);
    case FieldType::kBigInt:
      return PutInteger(writer, rows.Get(column), 8);
    case FieldType::kReal:
      writer.U8(4);
      return writer.U32(std::bit_cast<std::uint32_t>(static_cast<float>(rows.Get(column).ToDouble())));
    case FieldType::kFloat:
      writer.U8(8);
      return writer.U64(std::bit_cast<std::uint64_t>(rows.Get(column).ToDouble()));
    case FieldType::kDecimal:
      return PutDecimal(writer, rows.Get(column).ToDecimal(), field);
    case FieldType::kMoney:
      return PutMoney(writer, rows.Get(column).ToDecimal());
    case FieldType::kDate:
      writer.U8(3);
      return writer.Number(static_cast<std::uint64_t>(SplitDay(rows.Get(column).ToDateTime()).day + kDaysBefore1900),
                           3);
    case FieldType::kTime:
      writer.U8(4);
      return writer.U32(static_cast<std::uint32_t>(SplitDay(rows.Get(column).ToDateTime()).milliseconds));
    case FieldType::kDateTime:
      return PutDateTime(writer, rows.Get(column).ToDateTime());
    case FieldType::kDateTimeOffset:
      return PutDateTimeOffset(writer, rows.GetText(column));
    case FieldType::kGuid:
      return PutGuid(writer, rows.GetText(column));
    case FieldType::kChar:
    case FieldType::kVarChar: {
      const std::string_view text = rows.GetText(column);
      return PutLongValue(writer, field, text.size(), [&] {
        writer.Bytes(text);
        return text.size();
      });
    }
    case FieldType::kNChar:
    case FieldType::kNVarChar: {
      std::string moment;
      if (const FieldType own = rows.fields()[column].type; own == FieldType::kDate || own == FieldType::kTime) {
        moment = rows.Get(column).ToDateTime().ToString(true);
        moment = own == FieldType::kDate ? moment.substr(0, kDateLength) : moment.substr(kDateLength + 1);
      }
      const std::string_view text = moment.empty() ? rows.GetText(column) : moment;
      return PutLongValue(writer, field, text.size(), [&] { return writer.Text(text); });
    }
    case FieldType::kBinary:
    case FieldType::kVarBinary: {
      const Variant value = rows.Get(column);
      const auto* bytes = value.get_if<Bytes>();
      const std::string text = bytes == nullptr ? std::string() : std::string(bytes->begin(), bytes->end());
      return PutLongValue(writer, field, text.size(), [&] {
        writer.Bytes(text);
        return text.size();
      });
    }
  }
}

/// The fields as they are declared to the client, where the values of a column are longer than the column says;
/// otherwise none.
std::vector<Field> WidenedFields(Recordset& rows) {
  std::vector<Field> widened;
  for (std::size_t i = 0; i < rows.fields().size(); ++i) {
    const Field& field = rows.fields()[i];
    if (!IsNarrowText(field) || field.size <= 0) continue;
    std::size_t longest = 0;
    for (rows.MoveFirst(); !rows.eof(); rows.MoveNext()) longest = std::max(longest, rows.GetText(i).size());
    if (longest <= static_cast<std::size_t>(field.size)) continue;
    if (widened.empty()) widened = rows.fields();
    widened[i].size = longest > kLongestBytes ? 0 : static_cast<int>(longest);
  }
  rows.MoveFirst();
  return widened;
}

/// The fields with room for whatever the columns may hold: they count two bytes for a character beyond ASCII, which
/// takes up to four bytes of UTF-8.
std::vector<Field> WidestFields(const Recordset& rows) {
  std::vector<Field> fields = rows.fields();
  for (Field& field : fields) {
    if (!IsNarrowText(field) || field.size <= 0) continue;
    const int widest = field.size * 2;
    field.size = static_cast<std::size_t>(widest) > kLongestBytes ? 0 : widest;
  }
  return fields;
}

/// The fields as older clients know them: texts in UTF-16 before 7.4, dates and times as texts before 7.3.
std::vector<Field> OlderFields(const Recordset& rows, TdsVersion version) {
  std::vector<Field> fields = rows.fields();
  for (Field& field : fields) {
    if (IsNarrowText(field)) {
      field.type = field.type == FieldType::kChar ? FieldType::kNChar : FieldType::kNVarChar;
    } else if (version.is_73()) {
      continue;
    } else if (field.type == FieldType::kDate || field.type == FieldType::kTime) {
      field.size = field.type == FieldType::kDate ? kDateLength : kTimeLength;
      field.type = FieldType::kNVarChar;
    } else if (field.type == FieldType::kDateTimeOffset) {
      field.type = FieldType::kNVarChar;
    }
  }
  return fields;
}

}  // namespace

RowWriter::RowWriter(Recordset& rows, bool more_follow, TdsVersion version)
    : own_fields_(!version.is_74() ? OlderFields(rows, version)
                  : more_follow    ? WidestFields(rows)
                                   : WidenedFields(rows)),
      fields_(own_fields_.empty() ? rows.fields() : own_fields_) {}

void RowWriter::WriteColumns(TdsWriter& writer) const {
  constexpr std::uint16_t kNullable = 0x01;
  constexpr std::uint16_t kUpdateUnknown = 0x08;
  constexpr std::uint16_t kIdentity = 0x10;
  writer.Put(Token::kColumnMetadata);
  writer.U16(static_cast<std::uint16_t>(fields_.size()));
  for (const Field& field : fields_) {
    writer.Number(0, writer.version().is_72() ? 4 : 2);  // no user's type
    writer.U16(static_cast<std::uint16_t>(kUpdateUnknown | (field.nullable ? kNullable : 0) |
                                          (field.identity ? kIdentity : 0)));
    PutFieldType(writer, field);
    writer.ShortText(field.name);
  }
}

void RowWriter::WriteRow(TdsWriter& writer, const Recordset& rows) const {
  const bool null_maps = writer.version().has_null_maps();
  const std::size_t start = writer.size();
  bool mapped = false;
  for (std::size_t i = 0; null_maps && !mapped && i < fields_.size(); ++i) mapped = rows.IsNull(i);
  writer.Put(mapped ? Token::kRowWithNulls : Token::kRow);
  for (std::size_t first = 0; mapped && first < fields_.size(); first += 8) {
    unsigned map = 0;
    for (std::size_t i = first; i < std::min(first + 8, fields_.size()); ++i) {
      if (rows.IsNull(i)) map |= 1U << (i - first);
    }
    writer.U8(static_cast<std::uint8_t>(map));
  }
  try {
    for (std::size_t i = 0; i < fields_.size(); ++i) {
      if (!rows.IsNull(i)) {
        PutValue(writer, fields_[i], rows, i);
      } else if (!mapped) {
        PutNull(writer, fields_[i]);
      }
    }
  } catch (const std::exception&) {
    // An error's token may follow a whole row only.
    writer.CutTo(start);
    throw;
  }
}

void RowWriter::WriteTypeAndValue(TdsWriter& writer, const Recordset& rows, std::size_t column) const {
  Field field = fields_[column];
  // An output value cannot be ntext or image.
  if (InParts(field) && !writer.version().is_72())
    field.size = static_cast<int>(kLongestBytes) / (IsWide(field) ? 2 : 1);
  PutFieldType(writer, field);
  if (rows.IsNull(column)) {
    PutNull(writer, field);
  } else {
    PutValue(writer, field, rows, column);
  }
}

void WriteTypeAndInteger(TdsWriter& writer, std::int32_t value) {
  PutSizedType(writer, TypeCode::kIntN, 4);
  writer.U8(4);
  writer.U32(static_cast<std::uint32_t>(value));
}

}  // namespace tessarlorn::tds
