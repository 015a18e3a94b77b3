#include "platform/recordset_builder.h"

#include "tessarlorn/error.h"

namespace tessarlorn {

RecordsetBuilder::RecordsetBuilder(Recordset& rows) : RecordsetBuilder(RecordsetPtr(RecordsetPtr(), &rows)) {}

RecordsetBuilder::RecordsetBuilder(RecordsetPtr rows) : result_(std::move(rows)), cells_(*result_->cells_) {}

void RecordsetBuilder::Append(const Variant& value, std::size_t field) {
  if (value.is_empty() || value.is_null()) return AppendNull();
  switch (fields()[field].type) {
    case FieldType::kBit:
    case FieldType::kTinyInt:
    case FieldType::kSmallInt:
    case FieldType::kInt:
      return AppendInteger(value.holds<bool>() ? static_cast<int>(value.ToBool()) : value.ToInt32());
    case FieldType::kBigInt: {
      const std::optional<std::int64_t> whole = value.ToDecimal().ToScaled(0);
      if (!whole) Raise(error_number::kOverflow, "Overflow");
      return AppendInteger(*whole);
    }
    case FieldType::kReal:
    case FieldType::kFloat:
      return AppendDouble(value.ToDouble());
    case FieldType::kDecimal:
    case FieldType::kMoney:
      return AppendDecimal(value.ToDecimal());
    case FieldType::kDate:
    case FieldType::kTime:
    case FieldType::kDateTime:
      return AppendDateTime(value.ToDateTime());
    case FieldType::kBinary:
    case FieldType::kVarBinary:
      if (const Bytes* bytes = value.get_if<Bytes>()) return AppendBytes(bytes->data(), bytes->size());
      RaiseTypeMismatch();
    default:
      return AppendText(value.ToText());
  }
}

void RecordsetBuilder::Clear() {
  cells_.Clear();
  result_->Rewind();
}

RecordsetPtr RecordsetBuilder::Finish() {
  cells_.Trim();
  result_->Rewind();
  return result_;
}

}  // namespace tessarlorn
