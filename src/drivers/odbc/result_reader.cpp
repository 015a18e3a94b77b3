#include "drivers/odbc/result_reader.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "drivers/odbc/odbc_error.h"
#include "platform/recordset_builder.h"
#include "platform/unicode/utf16.h"
#include "tessarlorn/date_time.h"
#include "tessarlorn/decimal.h"

namespace tessarlorn::odbc {
namespace {

/// Most of a block is room that the widest values would take and that is never touched.
constexpr std::size_t kBlockBytes = std::size_t{4} << 20;
constexpr std::size_t kMostRows = 256;
/// Characters or bytes up to which a column has a declared size; what is longer has no limit and is not bound.
constexpr SQLULEN kWidestBound = 8000;
/// Bytes of a long value that one call reads.
constexpr std::size_t kLongPart = 16384;

// Types of SQL Server that ODBC's own headers do not know.
constexpr SQLSMALLINT kSqlTime2 = -154;
constexpr SQLSMALLINT kSqlUdt = -151;
constexpr SQLSMALLINT kSqlXml = -152;
constexpr SQLSMALLINT kSqlTimestampOffset = -155;

constexpr std::int64_t kMillisecondsPerDay = 86'400'000;

FieldType TypeOf(SQLSMALLINT type) {
  switch (type) {
    case SQL_BIT:
      return FieldType::kBit;
    case SQL_TINYINT:
      return FieldType::kTinyInt;
    case SQL_SMALLINT:
      return FieldType::kSmallInt;
    case SQL_INTEGER:
      return FieldType::kInt;
    case SQL_BIGINT:
      return FieldType::kBigInt;
    case SQL_REAL:
      return FieldType::kReal;
    case SQL_FLOAT:
    case SQL_DOUBLE:
      return FieldType::kFloat;
    case SQL_DECIMAL:
    case SQL_NUMERIC:
      return FieldType::kDecimal;
    case SQL_TYPE_DATE:
      return FieldType::kDate;
    case SQL_TYPE_TIME:
    case kSqlTime2:
      return FieldType::kTime;
    case SQL_TYPE_TIMESTAMP:
      return FieldType::kDateTime;
    case SQL_CHAR:
      return FieldType::kChar;
    case SQL_VARCHAR:
    case SQL_LONGVARCHAR:
      return FieldType::kVarChar;
    case SQL_WCHAR:
      return FieldType::kNChar;
    case SQL_BINARY:
      return FieldType::kBinary;
    case SQL_VARBINARY:
    case SQL_LONGVARBINARY:
    case kSqlUdt:
      return FieldType::kVarBinary;
    case kSqlTimestampOffset:
      return FieldType::kDateTimeOffset;
    case SQL_GUID:
      return FieldType::kGuid;
    default:
      return FieldType::kNVarChar;
  }
}

bool IsLongType(SQLSMALLINT type) {
  return type == SQL_LONGVARCHAR || type == SQL_WLONGVARCHAR || type == SQL_LONGVARBINARY || type == kSqlUdt ||
         type == kSqlXml;
}

std::size_t RoundUp(std::size_t size) { return (size + 7) / 8 * 8; }

/// Rounded to the millisecond, as a datetime's thirds of a hundredth come in nanoseconds, but never into the next
/// second: the last instant of a day, as of 9999-12-31, stays in its day.
DateTime DateTimeOf(const SQL_TIMESTAMP_STRUCT& value, FieldType type) {
  const std::int64_t days = type == FieldType::kTime ? 0 : DaysFromCivil(value.year, value.month, value.day);
  const std::int64_t seconds = (value.hour * 60 + value.minute) * 60 + value.second;
  const std::int64_t milliseconds = std::min<std::int64_t>((std::int64_t{value.fraction} + 500'000) / 1'000'000, 999);
  return DateTime(days * kMillisecondsPerDay + seconds * 1000 + milliseconds);
}

/// Hands over what there is when it is enough for a part, before more rows are added.
void HandOverPart(RecordsetBuilder& rows, BatchSink& sink) {
  if (rows.bytes() < BatchSink::kPartSize || !sink.takes_parts()) return;
  sink.PartOfRows(rows.rows());
  rows.Clear();
}

}  // namespace

bool ResultReader::IsMoney(SQLUSMALLINT number) {
  std::array<SQLWCHAR, 32> name{};
  SQLSMALLINT bytes = 0;
  check_(SQLColAttributeW(statement_, number, SQL_DESC_TYPE_NAME, name.data(),
                          static_cast<SQLSMALLINT>(name.size() * sizeof(SQLWCHAR)), &bytes, nullptr));
  constexpr std::string_view kMoney = "money";
  const auto end = std::find(name.begin(), name.end(), SQLWCHAR{0});
  return std::search(name.begin(), end, kMoney.begin(), kMoney.end(),
                     [](SQLWCHAR unit, char c) { return unit == static_cast<SQLWCHAR>(c); }) != end;
}

ResultReader::Column ResultReader::Describe(SQLUSMALLINT number) {
  std::u16string name(256, u'\0');
  SQLSMALLINT name_length = 0;
  SQLSMALLINT type = 0;
  SQLULEN size = 0;
  SQLSMALLINT digits = 0;
  SQLSMALLINT nullable = SQL_NULLABLE;
  check_(SQLDescribeColW(statement_, number, Units(name), static_cast<SQLSMALLINT>(name.size()), &name_length, &type,
                         &size, &digits, &nullable));
  Column column;
  Field& field = column.field;
  field.name = FromUtf16(std::u16string_view(name).substr(0, static_cast<std::size_t>(name_length)));
  field.type = TypeOf(type);
  field.nullable = nullable != SQL_NO_NULLS;
  const auto set = [&column](Transfer transfer, SQLSMALLINT c_type, std::size_t width) {
    column.transfer = transfer;
    column.c_type = c_type;
    column.width = width;
  };
  switch (field.type) {
    case FieldType::kBit:
    case FieldType::kTinyInt:
    case FieldType::kSmallInt:
    case FieldType::kInt:
      set(Transfer::kInteger, SQL_C_LONG, sizeof(SQLINTEGER));
      return column;
    case FieldType::kBigInt:
      set(Transfer::kBigInteger, SQL_C_SBIGINT, sizeof(SQLBIGINT));
      return column;
    case FieldType::kReal:
    case FieldType::kFloat:
      set(Transfer::kDouble, SQL_C_DOUBLE, sizeof(SQLDOUBLE));
      return column;
    case FieldType::kDecimal:
      field.precision = static_cast<int>(size);
      field.scale = digits;
      if (IsMoney(number)) field.type = FieldType::kMoney;
      // 38 digits, sign, point, a zero before it and the end mark.
      set(Transfer::kDecimal, SQL_C_CHAR, 48);
      return column;
    case FieldType::kDate:
    case FieldType::kTime:
    case FieldType::kDateTime:
      set(Transfer::kTimestamp, SQL_C_TYPE_TIMESTAMP, sizeof(SQL_TIMESTAMP_STRUCT));
      return column;
    case FieldType::kGuid:
      set(Transfer::kPlainText, SQL_C_CHAR, 40);
      return column;
    default:
      break;
  }
  const bool binary = field.type == FieldType::kBinary || field.type == FieldType::kVarBinary;
  // The drivers say 0 or a number beyond every declared size for what has no limit.
  const bool endless = IsLongType(type) || size == 0 || size > kWidestBound;
  if (type == kSqlTimestampOffset) size = 34;
  field.size = endless ? 0 : static_cast<int>(size);
  column.is_long = endless;
  if (binary) {
    set(Transfer::kBinary, SQL_C_BINARY, size);
  } else {
    set(Transfer::kText, SQL_C_WCHAR, (size + 1) * sizeof(SQLWCHAR));
  }
  return column;
}

void ResultReader::Read(SQLSMALLINT columns, bool one_by_one, BatchSink& sink, RecordsetPtr& rows) {
  columns_.clear();
  std::vector<Field> fields;
  for (SQLSMALLINT number = 1; number <= columns; ++number) {
    columns_.push_back(Describe(static_cast<SQLUSMALLINT>(number)));
    fields.push_back(columns_.back().field);
  }
  // SQLGetData may only be asked for columns behind the bound ones, in their order.
  const auto first_long =
      std::find_if(columns_.begin(), columns_.end(), [](const Column& column) { return column.is_long; });
  const auto bound = static_cast<std::size_t>(first_long - columns_.begin());
  Bind(bound, one_by_one);
  RecordsetBuilder builder(std::move(fields));
  try {
    if (bound == columns_.size()) {
      ReadBlocks(builder, sink);
    } else {
      ReadRowByRow(builder, bound, sink);
    }
    rows = builder.Finish();
  } catch (const Error&) {
    if (!std::exchange(in_row_, false)) rows = builder.Finish();
    throw;
  }
  SQLFreeStmt(statement_, SQL_UNBIND);
  // The next result need not pay for this one's longest value.
  if (long_value_.size() > kBlockBytes) long_value_ = {};
}

/// Binds the first `bound` columns to rows that lie one behind the other.
void ResultReader::Bind(std::size_t bound, bool one_by_one) {
  row_size_ = 8;
  for (std::size_t i = 0; i < bound; ++i) {
    columns_[i].offset = row_size_;
    row_size_ += sizeof(SQLLEN) + RoundUp(columns_[i].width);
  }
  one_by_one = one_by_one || bound < columns_.size();
  const std::size_t rows = one_by_one ? 1 : std::clamp(kBlockBytes / row_size_, std::size_t{1}, kMostRows);
  row_states_.resize(rows);
  if (const std::size_t words = rows * row_size_ / sizeof(std::uint64_t); buffer_words_ < words) {
    buffer_ = std::make_unique_for_overwrite<std::uint64_t[]>(words);
    buffer_words_ = words;
  }
  check_(SQLSetStmtAttr(statement_, SQL_ATTR_ROW_BIND_TYPE, AsPointer(row_size_), 0));
  check_(SQLSetStmtAttr(statement_, SQL_ATTR_ROW_ARRAY_SIZE, AsPointer(rows), 0));
  check_(SQLSetStmtAttr(statement_, SQL_ATTR_ROWS_FETCHED_PTR, &fetched_, 0));
  check_(SQLSetStmtAttr(statement_, SQL_ATTR_ROW_STATUS_PTR, row_states_.data(), 0));
  auto* const row = reinterpret_cast<std::uint8_t*>(buffer_.get());
  for (std::size_t i = 0; i < bound; ++i) {
    std::uint8_t* const cell = row + columns_[i].offset;
    check_(SQLBindCol(statement_, static_cast<SQLUSMALLINT>(i + 1), columns_[i].c_type, cell + sizeof(SQLLEN),
                      static_cast<SQLLEN>(columns_[i].width), reinterpret_cast<SQLLEN*>(cell)));
  }
}

void ResultReader::ReadBlocks(RecordsetBuilder& rows, BatchSink& sink) {
  for (;;) {
    HandOverPart(rows, sink);
    std::fill(row_states_.begin(), row_states_.end(), SQLUSMALLINT{SQL_ROW_NOROW});
    const SQLRETURN result = SQLFetch(statement_);
    if (result == SQL_ERROR) {
      const auto missing = std::find_if(row_states_.begin(), row_states_.end(), [](SQLUSMALLINT state) {
        return state != SQL_ROW_SUCCESS && state != SQL_ROW_SUCCESS_WITH_INFO;
      });
      AppendBlock(rows, static_cast<std::size_t>(missing - row_states_.begin()));
    }
    if (check_(result) == SQL_NO_DATA) return;
    AppendBlock(rows, fetched_);
  }
}

void ResultReader::AppendBlock(RecordsetBuilder& rows, std::size_t count) {
  const auto* row = reinterpret_cast<const std::uint8_t*>(buffer_.get());
  for (std::size_t i = 0; i < count; ++i, row += row_size_) {
    in_row_ = true;
    rows.BeginRow();
    for (const Column& column : columns_) AppendBound(rows, column, row + column.offset);
    in_row_ = false;
  }
}

void ResultReader::ReadRowByRow(RecordsetBuilder& rows, std::size_t bound, BatchSink& sink) {
  const auto* const row = reinterpret_cast<const std::uint8_t*>(buffer_.get());
  while (check_(SQLFetch(statement_)) != SQL_NO_DATA) {
    HandOverPart(rows, sink);
    in_row_ = true;
    rows.BeginRow();
    for (std::size_t i = 0; i < bound; ++i) AppendBound(rows, columns_[i], row + columns_[i].offset);
    for (std::size_t i = bound; i < columns_.size(); ++i) AppendLong(rows, static_cast<SQLUSMALLINT>(i + 1));
    in_row_ = false;
  }
}

void ResultReader::AppendBound(RecordsetBuilder& rows, const Column& column, const std::uint8_t* cell) {
  SQLLEN length = 0;
  std::memcpy(&length, cell, sizeof length);
  if (length == SQL_NULL_DATA) {
    rows.AppendNull();
    return;
  }
  const std::size_t mark = column.transfer == Transfer::kText ? sizeof(SQLWCHAR) : 0;
  if (length < 0 || static_cast<std::size_t>(length) + mark > column.width) {
    throw ToError({"22001", 0, "A value of the column " + column.field.name + " is longer than the column says"});
  }
  Append(rows, column, cell + sizeof length, static_cast<std::size_t>(length));
}

/// Reads a value of any length part by part.
void ResultReader::AppendLong(RecordsetBuilder& rows, SQLUSMALLINT number) {
  const Column& column = columns_[number - 1U];
  const std::size_t mark = column.transfer == Transfer::kText ? sizeof(SQLWCHAR) : 0;
  std::size_t size = 0;
  for (;;) {
    if (long_value_.size() < size + kLongPart) long_value_.resize(std::max(2 * long_value_.size(), size + kLongPart));
    const std::size_t room = long_value_.size() - size;
    SQLLEN length = 0;
    const SQLRETURN result = check_(
        SQLGetData(statement_, number, column.c_type, long_value_.data() + size, static_cast<SQLLEN>(room), &length));
    if (result == SQL_NO_DATA) break;
    if (length == SQL_NULL_DATA) {
      rows.AppendNull();
      return;
    }
    if (length != SQL_NO_TOTAL && static_cast<std::size_t>(length) + mark <= room) {
      size += static_cast<std::size_t>(length);
      break;
    }
    size += (room - mark) / 2 * 2;
  }
  Append(rows, column, long_value_.data(), size);
}

void ResultReader::Append(RecordsetBuilder& rows, const Column& column, const std::uint8_t* value, std::size_t size) {
  const auto copy = [value](auto number) {
    std::memcpy(&number, value, sizeof number);
    return number;
  };
  switch (column.transfer) {
    case Transfer::kInteger:
      rows.AppendInteger(copy(SQLINTEGER{}));
      break;
    case Transfer::kBigInteger:
      rows.AppendInteger(copy(SQLBIGINT{}));
      break;
    case Transfer::kDouble:
      rows.AppendDouble(copy(SQLDOUBLE{}));
      break;
    case Transfer::kDecimal:
      AppendNumber(rows, column, {reinterpret_cast<const char*>(value), size});
      break;
    case Transfer::kTimestamp:
      rows.AppendDateTime(DateTimeOf(copy(SQL_TIMESTAMP_STRUCT{}), column.field.type));
      break;
    case Transfer::kText:
      text_.clear();
      AppendUtf16(text_, {reinterpret_cast<const char16_t*>(value), size / sizeof(char16_t)});
      rows.AppendText(text_);
      break;
    case Transfer::kPlainText:
      rows.AppendText({reinterpret_cast<const char*>(value), size});
      break;
    case Transfer::kBinary:
      rows.AppendBytes(value, size);
      break;
  }
}

/// Digits with an optional sign and point; a driver may leave out the zero before the point.
void ResultReader::AppendNumber(RecordsetBuilder& rows, const Column& column, std::string_view digits) {
  constexpr int kMostDigits = 18;
  std::int64_t coefficient = 0;
  int count = 0;
  int places = -1;
  const bool negative = digits.starts_with('-');
  for (const char c : digits.substr(negative ? 1 : 0)) {
    if (c == '.') {
      places = 0;
    } else if (c >= '0' && c <= '9' && count < kMostDigits) {
      coefficient = coefficient * 10 + (c - '0');
      if (coefficient != 0) ++count;
      if (places >= 0) ++places;
    } else {
      count = kMostDigits + 1;
      break;
    }
  }
  const int missing = column.field.scale - std::max(places, 0);
  if (missing >= 0 && count + missing <= kMostDigits) {
    for (int i = 0; i < missing; ++i) coefficient *= 10;
    rows.AppendScaled(negative ? -coefficient : coefficient);
    return;
  }
  auto value = Decimal::Parse(digits.starts_with('.')    ? "0" + std::string(digits)
                              : digits.starts_with("-.") ? "-0" + std::string(digits.substr(1))
                                                         : std::string(digits));
  if (value) value = value->Rescale(column.field.scale);
  if (!value) throw ToError({"22003", 0, "A value of the column " + column.field.name + " is no number of 38 digits"});
  rows.AppendDecimal(*value);
}

}  // namespace tessarlorn::odbc
