#include "com/values.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "com/dispatch.h"
#include "com/errors.h"
#include "com/foreign_object.h"
#include "com/pointers.h"
#include "objects/array.h"
#include "objects/automation_object.h"
#include "platform/collections.h"

namespace tessarlorn::com {
namespace {

constexpr int kCurrencyScale = 4;
constexpr int kDecimalScale = 28;

Variant FromDecimal(const DECIMAL& value) {
  Decimal::Limbs limbs{};
  limbs[0] = static_cast<std::uint32_t>(value.Lo64 & 0xffffffffU);
  limbs[1] = static_cast<std::uint32_t>(value.Lo64 >> 32);
  limbs[2] = value.Hi32;
  return Decimal::FromLimbs(limbs, value.scale, (value.sign & DECIMAL_NEG) != 0).value_or(Decimal());
}

Variant FromObject(IUnknown* object) {
  if (object == nullptr) return std::shared_ptr<Object>();
  if (const auto own = OwnObject(object)) return ValueOf(own);
  auto dispatch = Query<IDispatch>(object);
  if (!dispatch) RaiseTypeMismatch();
  return std::shared_ptr<Object>(std::make_shared<ForeignObject>(std::move(dispatch)));
}

/// While it lives, an array's values may be read in place.
class ArrayAccess {
 public:
  explicit ArrayAccess(SAFEARRAY* array) : array_(array) {
    if (const HRESULT status = SafeArrayAccessData(array_, &data_); FAILED(status)) {
      Raise(ToNumber(status), "The array cannot be read");
    }
  }
  ArrayAccess(const ArrayAccess&) = delete;
  ArrayAccess& operator=(const ArrayAccess&) = delete;
  ~ArrayAccess() { SafeArrayUnaccessData(array_); }
  [[nodiscard]] const std::uint8_t* bytes() const noexcept { return static_cast<const std::uint8_t*>(data_); }

 private:
  SAFEARRAY* array_;
  void* data_ = nullptr;
};

Variant FromArray(SAFEARRAY* array, VARTYPE type) {
  if (array == nullptr) return ToArray({});
  const UINT dimensions = SafeArrayGetDim(array);
  if (dimensions == 0 || dimensions > 2) RaiseTypeMismatch();
  std::size_t count = 1;
  std::size_t first = 0;
  for (UINT dimension = 1; dimension <= dimensions; ++dimension) {
    LONG lower = 0;
    LONG upper = 0;
    if (FAILED(SafeArrayGetLBound(array, dimension, &lower)) || FAILED(SafeArrayGetUBound(array, dimension, &upper))) {
      RaiseTypeMismatch();
    }
    const auto size = static_cast<std::size_t>(std::int64_t{upper} - lower + 1);
    if (dimension == 1) first = size;
    count *= size;
  }
  const ArrayAccess access(array);
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

void CheckMemory(const void* allocated) {
  if (allocated == nullptr) throw std::bad_alloc();
}

void PutText(std::string_view text, VARIANT* out) {
  out->bstrVal = NewBstr(text);
  CheckMemory(out->bstrVal);
  out->vt = VT_BSTR;
}

void PutDecimal(const Decimal& value, VARIANT* out) {
  const Decimal::Limbs& limbs = value.limbs();
  const bool fits = value.scale() <= kDecimalScale &&
                    std::all_of(limbs.begin() + 3, limbs.end(), [](std::uint32_t limb) { return limb == 0; });
  if (!fits) return PutText(value.ToString(), out);
  DECIMAL decimal{};
  decimal.scale = static_cast<BYTE>(value.scale());
  decimal.sign = value.negative() ? DECIMAL_NEG : 0;
  decimal.Lo64 = (std::uint64_t{limbs[1]} << 32) | limbs[0];
  decimal.Hi32 = limbs[2];
  out->decVal = decimal;
  // The type stands in the same place as a part of the decimal that is not used.
  out->vt = VT_DECIMAL;
}

void PutBytes(const Bytes& bytes, VARIANT* out) {
  SAFEARRAY* const array = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(bytes.size()));
  CheckMemory(array);
  if (!bytes.empty()) std::memcpy(array->pvData, bytes.data(), bytes.size());
  out->parray = array;
  out->vt = VT_ARRAY | VT_UI1;
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
    for (std::size_t i = 0; i < count; ++i) ToVariant(values.At(i), &cells[i]);
  } catch (...) {
    VariantClear(out);
    throw;
  }
}

void PutObject(const Variant& value, VARIANT* out) {
  const auto* const object = value.get_if<std::shared_ptr<Object>>();
  if (auto own = ObjectOf(value)) {
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

VARTYPE TypeBehind(const VARIANT& reference) { return static_cast<VARTYPE>(reference.vt & ~VT_BYREF); }

Variant Collected(const Variant& value, int depth) {
  constexpr int kDeepest = 64;
  if (depth > kDeepest) Raise(error_number::kInvalidArgument, "Collections are nested too deep");
  const auto vector_of = [depth](const auto& items) {
    auto vector = std::make_shared<Vector>();
    for (const Variant& item : items) vector->Add(Collected(item, depth + 1));
    return vector;
  };
  if (const auto dictionary = value.ToDictionary()) {
    auto copy = std::make_shared<Dictionary>();
    for (const auto& [key, item] : *dictionary) copy->SetValue(key, Collected(item, depth + 1));
    return copy;
  }
  if (const auto vector = value.ToVector()) return vector_of(*vector);
  const auto* const object = value.get_if<std::shared_ptr<Object>>();
  if (object == nullptr) return value;
  if (const auto* array = dynamic_cast<const Array*>(object->get())) return vector_of(array->Values());
  auto* const foreign = dynamic_cast<ForeignObject*>(object->get());
  if (foreign == nullptr) return value;
  if (foreign->Has("Keys") && foreign->Has("Item")) {
    auto dictionary = std::make_shared<Dictionary>();
    const std::shared_ptr<Vector> keys = Collected(foreign->Call("Keys", {}), depth + 1).ToVector();
    if (keys == nullptr) RaiseTypeMismatch();
    for (const Variant& key : *keys) {
      dictionary->SetValue(key.ToText(), Collected(foreign->Call("Item", {&key, 1}), depth + 1));
    }
    return dictionary;
  }
  if (foreign->Has("Count") && foreign->Has("Item") && !foreign->Has("EOF")) return vector_of(foreign->Items());
  return value;
}

}  // namespace

bool IsLeftOut(const VARIANT& value) {
  if (value.vt == (VT_VARIANT | VT_BYREF)) return value.pvarVal != nullptr && IsLeftOut(*value.pvarVal);
  return value.vt == VT_ERROR && value.scode == DISP_E_PARAMNOTFOUND;
}

Variant FromVariant(const VARIANT& value) {
  const bool reference = (value.vt & VT_BYREF) != 0;
  if (reference && value.byref == nullptr) RaiseTypeMismatch();
  if (value.vt == (VT_VARIANT | VT_BYREF)) return FromVariant(*value.pvarVal);
  if (IsLeftOut(value)) return {};
  if ((value.vt & VT_ARRAY) != 0) {
    return FromArray(reference ? *value.pparray : value.parray, static_cast<VARTYPE>(value.vt & VT_TYPEMASK));
  }
  const auto get = [reference](auto own, const auto* behind) { return reference ? *behind : own; };
  switch (TypeBehind(value)) {
    case VT_EMPTY:
      return {};
    case VT_NULL:
      return Null{};
    case VT_BOOL:
      return get(value.boolVal, value.pboolVal) != VARIANT_FALSE;
    case VT_I1:
      return static_cast<std::int16_t>(static_cast<signed char>(get(value.cVal, value.pcVal)));
    case VT_UI1:
      return static_cast<std::int16_t>(get(value.bVal, value.pbVal));
    case VT_I2:
      return static_cast<std::int16_t>(get(value.iVal, value.piVal));
    case VT_UI2:
      return static_cast<std::int32_t>(get(value.uiVal, value.puiVal));
    case VT_I4:
    case VT_INT:
      return static_cast<std::int32_t>(get(value.lVal, value.plVal));
    case VT_UI4:
    case VT_UINT:
      return static_cast<std::int64_t>(get(value.ulVal, value.pulVal));
    case VT_I8:
      return static_cast<std::int64_t>(get(value.llVal, value.pllVal));
    case VT_UI8: {
      const std::uint64_t number = get(value.ullVal, value.pullVal);
      const Decimal::Limbs limbs = {static_cast<std::uint32_t>(number), static_cast<std::uint32_t>(number >> 32)};
      return Decimal::FromLimbs(limbs, 0, false).value_or(Decimal());
    }
    case VT_R4:
      return static_cast<double>(get(value.fltVal, value.pfltVal));
    case VT_R8:
      return get(value.dblVal, value.pdblVal);
    case VT_CY:
      return Decimal::FromScaled(get(value.cyVal, value.pcyVal).int64, kCurrencyScale);
    case VT_DECIMAL:
      return FromDecimal(reference ? *value.pdecVal : value.decVal);
    case VT_DATE: {
      const auto date = DateTime::FromAutomation(get(value.date, value.pdate));
      if (!date) RaiseOverflow();
      return *date;
    }
    case VT_BSTR:
      return ToText(get(value.bstrVal, value.pbstrVal));
    case VT_DISPATCH:
      return FromObject(get(value.pdispVal, value.ppdispVal));
    case VT_UNKNOWN:
      return FromObject(get(value.punkVal, value.ppunkVal));
    default:
      RaiseTypeMismatch();
  }
}

void ToVariant(const Variant& value, VARIANT* out) {
  VariantInit(out);
  if (value.is_empty()) return;
  if (value.is_null()) {
    out->vt = VT_NULL;
  } else if (const auto* flag = value.get_if<bool>()) {
    out->vt = VT_BOOL;
    out->boolVal = *flag ? VARIANT_TRUE : VARIANT_FALSE;
  } else if (const auto* small = value.get_if<std::int16_t>()) {
    out->vt = VT_I2;
    out->iVal = *small;
  } else if (const auto* number = value.get_if<std::int32_t>()) {
    out->vt = VT_I4;
    out->lVal = *number;
  } else if (const auto* real = value.get_if<double>()) {
    out->vt = VT_R8;
    out->dblVal = *real;
  } else if (const auto* decimal = value.get_if<Decimal>()) {
    PutDecimal(*decimal, out);
  } else if (const auto* date = value.get_if<DateTime>()) {
    out->vt = VT_DATE;
    out->date = date->ToAutomation();
  } else if (const auto* text = value.get_if<std::string>()) {
    PutText(*text, out);
  } else if (const auto* bytes = value.get_if<Bytes>()) {
    PutBytes(*bytes, out);
  } else {
    PutObject(value, out);
  }
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

Variant WithCollections(const Variant& value) { return Collected(value, 0); }

}  // namespace tessarlorn::com
