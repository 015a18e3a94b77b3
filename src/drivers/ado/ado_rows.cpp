#include "drivers/ado/ado_rows.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>
#include <utility>

#include "com_base/plain_values.h"
#include "drivers/ado/ado_error.h"
#include "platform/text/guid_text.h"

namespace tessarlorn::ado {
namespace {

/// Rows that are taken from ADO at once.
constexpr LONG kBlockRows = 1000;
/// What ADO gives as the size of a text or binary without limit, and more: half of it in characters.
constexpr LONG_PTR kUnlimited = 1073741823;
constexpr int kMoneyPrecision = 19;
constexpr int kMoneyScale = 4;
constexpr std::int64_t kMillisecondsPerDay = 86'400'000;

void CheckRows(HRESULT status, std::string_view what) { Check(status, nullptr, what); }

// Small numbers that the database does not have come in the next larger type; what stands nowhere, as text.
constexpr std::pair<DataType, FieldType> kTypes[] = {
    {DataType::kBoolean, FieldType::kBit},
    {DataType::kUnsignedTinyInt, FieldType::kTinyInt},
    {DataType::kTinyInt, FieldType::kSmallInt},
    {DataType::kSmallInt, FieldType::kSmallInt},
    {DataType::kUnsignedSmallInt, FieldType::kInt},
    {DataType::kInteger, FieldType::kInt},
    {DataType::kUnsignedInt, FieldType::kBigInt},
    {DataType::kBigInt, FieldType::kBigInt},
    {DataType::kUnsignedBigInt, FieldType::kDecimal},
    {DataType::kSingle, FieldType::kReal},
    {DataType::kDouble, FieldType::kFloat},
    {DataType::kCurrency, FieldType::kMoney},
    {DataType::kDecimal, FieldType::kDecimal},
    {DataType::kNumeric, FieldType::kDecimal},
    {DataType::kVarNumeric, FieldType::kDecimal},
    {DataType::kDBDate, FieldType::kDate},
    {DataType::kDBTime, FieldType::kTime},
    {DataType::kDate, FieldType::kDateTime},
    {DataType::kDBTimeStamp, FieldType::kDateTime},
    {DataType::kGuid, FieldType::kGuid},
    {DataType::kChar, FieldType::kChar},
    {DataType::kVarChar, FieldType::kVarChar},
    {DataType::kLongVarChar, FieldType::kVarChar},
    {DataType::kWChar, FieldType::kNChar},
    {DataType::kVarWChar, FieldType::kNVarChar},
    {DataType::kLongVarWChar, FieldType::kNVarChar},
    {DataType::kBinary, FieldType::kBinary},
    {DataType::kVarBinary, FieldType::kVarBinary},
    {DataType::kLongVarBinary, FieldType::kVarBinary},
};

/// @param size in characters or bytes, as ADO has it
Field Describe(DataType type, LONG_PTR size, BYTE precision, BYTE scale) {
  Field field;
  const auto* const known =
      std::find_if(std::begin(kTypes), std::end(kTypes), [type](const auto& pair) { return pair.first == type; });
  if (known == std::end(kTypes)) return field;
  field.type = known->second;
  switch (field.type) {
    case FieldType::kDecimal:
      field.precision = precision;
      field.scale = scale;
      break;
    case FieldType::kMoney:
      field.precision = kMoneyPrecision;
      field.scale = kMoneyScale;
      break;
    case FieldType::kChar:
    case FieldType::kVarChar:
    case FieldType::kNChar:
    case FieldType::kNVarChar:
    case FieldType::kBinary:
    case FieldType::kVarBinary:
      field.size = size <= 0 || size >= kUnlimited ? 0 : static_cast<int>(size);
      break;
    default:
      break;
  }
  return field;
}

Field FieldOf(IAdoField& field) {
  com::OwnedBstr name;
  LONG type = 0;
  LONG_PTR size = 0;
  LONG attributes = 0;
  BYTE precision = 0;
  BYTE scale = 0;
  CheckRows(field.get_Name(name.Receive()), "Field.Name");
  CheckRows(field.get_Type(&type), "Field.Type");
  CheckRows(field.get_DefinedSize(&size), "Field.DefinedSize");
  CheckRows(field.get_Attributes(&attributes), "Field.Attributes");
  // Fields that are no numbers have none.
  if (FAILED(field.get_Precision(&precision)) || FAILED(field.get_NumericScale(&scale))) precision = scale = 0;
  Field described = Describe(static_cast<DataType>(type), size, precision, scale);
  described.name = com::ToText(name.get());
  described.nullable = (attributes & (kFieldIsNullable | kFieldMayBeNull)) != 0;
  return described;
}

std::vector<Field> FieldsOf(IAdoRecordset& rows) {
  com::Pointer<IAdoFields> fields;
  LONG count = 0;
  CheckRows(rows.get_Fields(fields.Receive()), "Recordset.Fields");
  CheckRows(fields->get_Count(&count), "Fields.Count");
  std::vector<Field> described;
  for (LONG i = 0; i < count; ++i) {
    VARIANT index{};
    index.vt = VT_I4;
    index.lVal = i;
    com::Pointer<IAdoField> field;
    CheckRows(fields->get_Item(index, field.Receive()), "Fields.Item");
    described.push_back(FieldOf(*field.get()));
  }
  return described;
}

std::int64_t WholeNumber(const Variant& value, const Field& field) {
  const auto number = value.ToDecimal().ToScaled(0);
  if (!number) {
    Raise(error_number::kOverflow, "A value of the column " + field.name + " is no whole number of 64 bits");
  }
  return *number;
}

void Append(RecordsetBuilder& rows, const Field& field, const VARIANT& cell) {
  const Variant value = com::FromPlainVariant(cell);
  if (value.is_null() || value.is_empty()) {
    rows.AppendNull();
    return;
  }
  switch (field.type) {
    case FieldType::kBit:
      rows.AppendInteger(value.ToBool() ? 1 : 0);
      break;
    case FieldType::kTinyInt:
    case FieldType::kSmallInt:
    case FieldType::kInt:
    case FieldType::kBigInt:
      rows.AppendInteger(WholeNumber(value, field));
      break;
    case FieldType::kReal:
    case FieldType::kFloat:
      rows.AppendDouble(value.ToDouble());
      break;
    case FieldType::kDecimal:
    case FieldType::kMoney: {
      const Decimal number = value.ToDecimal();
      rows.AppendDecimal(number.Rescale(field.scale).value_or(number));
      break;
    }
    case FieldType::kTime: {
      // Of whatever day it comes with the component wants the time.
      const std::int64_t time = value.ToDateTime().milliseconds() % kMillisecondsPerDay;
      rows.AppendDateTime(DateTime(time < 0 ? time + kMillisecondsPerDay : time));
      break;
    }
    case FieldType::kDate:
    case FieldType::kDateTime:
      rows.AppendDateTime(value.ToDateTime());
      break;
    case FieldType::kGuid:
      rows.AppendText(WithoutBraces(value.ToText()));
      break;
    case FieldType::kBinary:
    case FieldType::kVarBinary: {
      const auto* const bytes = value.get_if<Bytes>();
      if (bytes == nullptr) RaiseTypeMismatch();
      rows.AppendBytes(bytes->data(), bytes->size());
      break;
    }
    case FieldType::kChar:
    case FieldType::kVarChar:
    case FieldType::kNChar:
    case FieldType::kNVarChar:
    case FieldType::kDateTimeOffset:
      rows.AppendText(value.ToText());
      break;
  }
}

/// Fields are the block's first dimension, rows its second one.
void AppendBlock(RecordsetBuilder& rows, const VARIANT& block) {
  if (block.vt != (VT_ARRAY | VT_VARIANT)) RaiseTypeMismatch();
  const com::ArrayAccess access(block.parray);
  const std::vector<Field>& fields = rows.fields();
  if (access.dimensions() != 2 || access.size(1) != fields.size()) RaiseTypeMismatch();
  const auto* cell = reinterpret_cast<const VARIANT*>(access.bytes());
  for (std::size_t row = access.size(2); row > 0; --row) {
    rows.BeginRow();
    for (const Field& field : fields) Append(rows, field, *cell++);
  }
}

}  // namespace

void AdoRows::Read(RecordsetBuilder& rows) {
  VARIANT_BOOL at_end = VARIANT_TRUE;
  CheckRows(rows_->get_EOF(&at_end), "Recordset.EOF");
  const bool none = at_end != VARIANT_FALSE;
  while (at_end == VARIANT_FALSE) {
    com::OwnedVariant block;
    CheckRows(rows_->GetRows(kBlockRows, LeftOut(), LeftOut(), &block.get()), "Recordset.GetRows");
    AppendBlock(rows, block.get());
    CheckRows(rows_->get_EOF(&at_end), "Recordset.EOF");
  }
  // As the database produced it, for whom it is handed out to.
  if (!none) CheckRows(rows_->MoveFirst(), "Recordset.MoveFirst");
}

void AdoRows::Detach() { CheckRows(rows_->putref_ActiveConnection(nullptr), "Recordset.ActiveConnection"); }

RecordsetPtr ToRecordset(com::Pointer<IAdoRecordset> rows) {
  std::vector<Field> fields = FieldsOf(*rows.get());
  return std::make_shared<Recordset>(std::move(fields), std::make_shared<AdoRows>(std::move(rows)));
}

}  // namespace tessarlorn::ado
