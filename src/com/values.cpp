#include "com/values.h"

#include <algorithm>
#include <new>
#include <utility>

#include "com/base/plain_values.h"
#include "com/base/pointers.h"
#include "com/dispatch.h"
#include "com/foreign_object.h"
#include "drivers/ado/ado_rows.h"
#include "objects/array.h"
#include "objects/automation_object.h"

namespace tessarlorn::com {
namespace {

Variant FromObject(IUnknown* object) {
  if (object == nullptr) return std::shared_ptr<Object>();
  if (const auto own = OwnObject(object)) return ValueOf(own);
  auto dispatch = Query<IDispatch>(object);
  if (!dispatch) RaiseTypeMismatch();
  return std::shared_ptr<Object>(std::make_shared<ForeignObject>(std::move(dispatch)));
}

Variant FromArray(SAFEARRAY* array, VARTYPE type) {
  if (array == nullptr) return ToArray({});
  const ArrayAccess access(array);
  const UINT dimensions = access.dimensions();
  if (dimensions == 0 || dimensions > 2) RaiseTypeMismatch();
  const std::size_t first = access.size(1);
  const std::size_t count = dimensions == 1 ? first : first * access.size(2);
  if (type == VT_UI1 && dimensions == 1) return Bytes(access.bytes(), access.bytes() + count);
  const std::size_t width = SafeArrayGetElemsize(array);
  std::vector<Variant> values;
  values.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    VARIANT reference{};
    reference.vt = static_cast<VARTYPE>(type | VT_BYREF);
    reference.byref = const_cast<std::uint8_t*>(access.bytes() + i * width);
    values.push_back(FromVariant(reference));
  }
  if (dimensions == 1) return ToArray(std::move(values));
  return std::shared_ptr<Object>(std::make_shared<Array>(std::move(values), first));
}

void PutArray(const Array& values, VARIANT* out) {
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
    auto* const cells = static_cast<VARIANT*>(array->pvData);
    for (std::size_t i = 0; i < count; ++i) {
      if (const auto text = values.TextAt(i)) {
        PutText(*text, &cells[i]);
      } else {
        ToVariant(values.At(i), &cells[i]);
      }
    }
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
  } else if (auto own = ObjectOf(value)) {
    out->pdispVal = MakeDispatch(std::move(own)).Release();
  } else if (const auto* array = object == nullptr ? nullptr : dynamic_cast<const Array*>(object->get())) {
    return PutArray(*array, out);
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
  const bool reference = (value.vt & VT_BYREF) != 0;
  if (reference && value.byref == nullptr) RaiseTypeMismatch();
  if (value.vt == (VT_VARIANT | VT_BYREF)) return FromVariant(*value.pvarVal);
  const VARTYPE type = TypeBehind(value);
  if (type == VT_DISPATCH || type == VT_UNKNOWN) return FromObject(reference ? *value.ppunkVal : value.punkVal);
  if ((type & VT_ARRAY) == 0) return FromPlainVariant(value);
  return FromArray(reference ? *value.pparray : value.parray, static_cast<VARTYPE>(type & VT_TYPEMASK));
}

void ToVariant(const Variant& value, VARIANT* out) {
  VariantInit(out);
  if (!ToPlainVariant(value, out)) PutObject(value, out);
}

void WriteBack(const Variant& value, const VARIANT& reference) {
  if ((reference.vt & VT_BYREF) == 0 || reference.byref == nullptr) return;
  OwnedVariant own;
  ToVariant(value, &own.get());
  const VARTYPE type = TypeBehind(reference);
  if (type == VT_VARIANT) {
    if (FAILED(VariantCopy(reference.pvarVal, &own.get()))) throw std::bad_alloc();
    return;
  }
  if (FAILED(VariantChangeType(&own.get(), &own.get(), 0, type))) RaiseTypeMismatch();
  VARIANT& from = own.get();
  switch (type) {
    case VT_BSTR:
      SysFreeString(std::exchange(*reference.pbstrVal, std::exchange(from.bstrVal, nullptr)));
      return;
    case VT_I2:
    case VT_BOOL:
      *reference.piVal = from.iVal;
      return;
    case VT_I4:
    case VT_INT:
      *reference.plVal = from.lVal;
      return;
    case VT_R8:
    case VT_DATE:
      *reference.pdblVal = from.dblVal;
      return;
    default:
      RaiseTypeMismatch();
  }
}

}  // namespace tessarlorn::com
