#include "hosts/com/values.h"

#include <cstring>
#include <memory>
#include <new>
#include <utility>

#include "com_base/errors.h"
#include "com_base/plain_values.h"
#include "com_base/pointers.h"
#include "drivers/ado/ado_rows.h"
#include "drivers/ado/persisted_rows.h"
#include "hosts/com/dispatch.h"
#include "hosts/com/foreign_object.h"
#include "hosts/objects/array.h"
#include "hosts/objects/automation_object.h"
#include "hosts/objects/recordset/rows_for_ado.h"

namespace tessarlorn::com {
namespace {

Variant FromObject(IUnknown* object) {
  if (object == nullptr) return std::shared_ptr<Object>();
  if (const auto own = OwnObject(object)) return ValueOf(own);
  auto dispatch = Query<IDispatch>(object);
  if (!dispatch) RaiseTypeMismatch();
  return std::shared_ptr<Object>(std::make_shared<ForeignObject>(std::move(dispatch)));
}

/// A copy of a client's array, so that it goes back with the bounds and the type that it came with.
class ArrayCopy final : public ArraySource {
 public:
  /// @pre not nullptr
  ArrayCopy(SAFEARRAY* array, VARTYPE type) : type_(type) {
    if (SafeArrayGetElemsize(array) != WidthOf(type)) RaiseTypeMismatch();
    CheckCopied(SafeArrayCopy(array, &array_));
  }
  ArrayCopy(const ArrayCopy&) = delete;
  ArrayCopy& operator=(const ArrayCopy&) = delete;
  ~ArrayCopy() override { SafeArrayDestroy(array_); }

  [[nodiscard]] SAFEARRAY* array() const noexcept { return array_; }
  [[nodiscard]] Variant At(std::size_t place) const override {
    VARIANT reference{};
    reference.vt = static_cast<VARTYPE>(type_ | VT_BYREF);
    reference.byref = static_cast<std::uint8_t*>(array_->pvData) + place * WidthOf(type_);
    return FromVariant(reference);
  }
  void CopyTo(VARIANT* out) const {
    SAFEARRAY* copy = nullptr;
    CheckCopied(SafeArrayCopy(array_, &copy));
    out->parray = copy;
    out->vt = static_cast<VARTYPE>(VT_ARRAY | type_);
  }

 private:
  static void CheckCopied(HRESULT status) {
    if (FAILED(status)) Raise(ToNumber(status), "The array cannot be read");
  }

  SAFEARRAY* array_ = nullptr;
  VARTYPE type_;
};

Variant FromArray(SAFEARRAY* array, VARTYPE type) {
  if (array == nullptr) return ToArray({});
  auto copy = std::make_unique<ArrayCopy>(array, type);
  const ArrayAccess access(copy->array());
  std::size_t count = 1;
  for (UINT dimension = 1; dimension <= access.dimensions(); ++dimension) count *= access.size(dimension);
  const std::size_t columns = access.dimensions() == 1 ? 0 : access.size(1);
  return std::shared_ptr<Object>(std::make_shared<Array>(std::move(copy), count, columns));
}

void PutArray(const Array& values, VARIANT* out) {
  if (const auto* const copy = dynamic_cast<const ArrayCopy*>(values.source())) return copy->CopyTo(out);
  const std::size_t count = values.size();
  SAFEARRAYBOUND bounds[2] = {{static_cast<ULONG>(count), 0}, {}};
  if (values.dimensions() == 2) {
    bounds[0].cElements = static_cast<ULONG>(values.columns());
    bounds[1].cElements = static_cast<ULONG>(values.columns() == 0 ? 0 : count / values.columns());
  }
  SAFEARRAY* const array = SafeArrayCreate(VT_VARIANT, static_cast<UINT>(values.dimensions()), bounds);
  CheckMemory(array);
  out->parray = array;
  out->vt = VT_ARRAY | VT_VARIANT;
  try {
    VariantWriter cells(static_cast<VARIANT*>(array->pvData));
    values.Each(cells);
  } catch (...) {
    VariantClear(out);
    throw;
  }
}

/// ADO's own recordset, where the value is one.
IDispatch* AdoObjectOf(const Variant& value) {
  const RecordsetPtr rows = value.ToRecordset();
  const auto* const source = rows == nullptr ? nullptr : dynamic_cast<const ado::AdoRows*>(rows->source().get());
  return source == nullptr ? nullptr : source->recordset().get();
}

void PutObject(const Variant& value, VARIANT* out) {
  const auto* const object = value.get_if<std::shared_ptr<Object>>();
  if (IDispatch* const ado = AdoObjectOf(value)) {
    out->pdispVal = Pointer<IDispatch>(ado).Release();
  } else if (const auto own = ObjectOf(value)) {
    out->pdispVal = MakeDispatch(own).Release();
  } else if (const auto* array = object == nullptr ? nullptr : dynamic_cast<const Array*>(object->get())) {
    return PutArray(*array, out);
  } else if (const auto* rows = object == nullptr ? nullptr : dynamic_cast<const RowsForAdo*>(object->get())) {
    out->pdispVal = ado::OpenPersisted(rows->xml()).Release();
  } else if (auto* foreign = object == nullptr ? nullptr : dynamic_cast<ForeignObject*>(object->get())) {
    out->pdispVal = Pointer<IDispatch>(foreign->get()).Release();
  } else {
    if (value.type_name() != "Nothing") RaiseTypeMismatch();
    out->pdispVal = nullptr;
  }
  out->vt = VT_DISPATCH;
}

}  // namespace

Variant FromVariant(const VARIANT& value) {
  if ((value.vt & VT_BYREF) != 0) return FromVariant(Referred(value));
  if (value.vt == VT_DISPATCH || value.vt == VT_UNKNOWN) return FromObject(value.punkVal);
  // Only a client's own number goes back in this type. Scripts do not know it, so the database's never come in it.
  if (value.vt == VT_I8 || value.vt == VT_UI8) return FromPlainVariant(value).WithClientType(ClientType::kLongLong);
  if ((value.vt & VT_ARRAY) == 0 || IsBytes(value)) return FromPlainVariant(value);
  return FromArray(value.parray, static_cast<VARTYPE>(value.vt & VT_TYPEMASK));
}

void ToVariant(const Variant& value, VARIANT* out) {
  VariantInit(out);
  if (!ToPlainVariant(value, out)) PutObject(value, out);
}

void VariantWriter::TakeText(std::string_view text) { PutText(text, next_++); }

void VariantWriter::Take(const Variant& value) {
  if (!ToPlainVariant(value, next_)) PutObject(value, next_);
  ++next_;
}

bool CanWriteBack(const VARIANT& reference) {
  const VARTYPE type = TypeBehind(reference);
  if (type == VT_VARIANT && reference.pvarVal != nullptr && (reference.pvarVal->vt & VT_BYREF) != 0) {
    return CanWriteBack(*reference.pvarVal);
  }
  return WidthOf(type) != 0 && (type & VT_ARRAY) == 0 && type != VT_DISPATCH && type != VT_UNKNOWN && type != VT_ERROR;
}

void WriteBack(const Variant& value, const VARIANT& reference) {
  if ((reference.vt & VT_BYREF) == 0 || reference.byref == nullptr) return;
  const VARTYPE type = TypeBehind(reference);
  const bool any = type == VT_VARIANT;
  if (any && (reference.pvarVal->vt & VT_BYREF) != 0) return WriteBack(value, *reference.pvarVal);
  OwnedVariant own;
  ToVariant(value, &own.get());
  if (any) {
    if (FAILED(VariantCopy(reference.pvarVal, &own.get()))) throw std::bad_alloc();
    return;
  }
  const HRESULT status = VariantChangeType(&own.get(), &own.get(), 0, type);
  if (status == DISP_E_OVERFLOW) RaiseOverflow();
  if (FAILED(status)) RaiseTypeMismatch();
  VARIANT& from = own.get();
  switch (type) {
    case VT_BSTR:
      SysFreeString(std::exchange(*reference.pbstrVal, std::exchange(from.bstrVal, nullptr)));
      return;
    case VT_DECIMAL:
      *reference.pdecVal = from.decVal;
      reference.pdecVal->wReserved = 0;
      return;
    default:
      std::memcpy(reference.byref, &from.llVal, WidthOf(type));
  }
}

}  // namespace tessarlorn::com
