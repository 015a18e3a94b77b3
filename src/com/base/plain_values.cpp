#include "com/base/plain_values.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "com/base/errors.h"
#include "com/base/pointers.h"

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

Bytes FromBytes(SAFEARRAY* array) {
  if (array == nullptr) return {};
  const ArrayAccess access(array);
  if (access.dimensions() != 1) RaiseTypeMismatch();
  return {access.bytes(), access.bytes() + access.size(1)};
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

}  // namespace

bool IsLeftOut(const VARIANT& value) {
  if (value.vt == (VT_VARIANT | VT_BYREF)) return value.pvarVal != nullptr && IsLeftOut(*value.pvarVal);
  return value.vt == VT_ERROR && value.scode == DISP_E_PARAMNOTFOUND;
}

Variant FromPlainVariant(const VARIANT& value) {
  const bool reference = (value.vt & VT_BYREF) != 0;
  if (reference && value.byref == nullptr) RaiseTypeMismatch();
  if (value.vt == (VT_VARIANT | VT_BYREF)) return FromPlainVariant(*value.pvarVal);
  if (IsLeftOut(value)) return {};
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
    case VT_ARRAY | VT_UI1:
      return FromBytes(get(value.parray, value.pparray));
    case VT_BSTR:
      return ToText(get(value.bstrVal, value.pbstrVal));
    default:
      RaiseTypeMismatch();
  }
}

bool ToPlainVariant(const Variant& value, VARIANT* out) {
  if (value.is_empty()) return true;
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
    return false;
  }
  return true;
}

void PutText(std::string_view text, VARIANT* out) {
  out->bstrVal = NewBstr(text);
  CheckMemory(out->bstrVal);
  out->vt = VT_BSTR;
}

void CheckMemory(const void* allocated) {
  if (allocated == nullptr) throw std::bad_alloc();
}

ArrayAccess::ArrayAccess(SAFEARRAY* array) : array_(array) {
  if (array_ == nullptr) RaiseTypeMismatch();
  if (const HRESULT status = SafeArrayAccessData(array_, &data_); FAILED(status)) {
    Raise(ToNumber(status), "The array cannot be read");
  }
}

std::size_t ArrayAccess::size(UINT dimension) const {
  LONG lower = 0;
  LONG upper = 0;
  if (FAILED(SafeArrayGetLBound(array_, dimension, &lower)) || FAILED(SafeArrayGetUBound(array_, dimension, &upper))) {
    RaiseTypeMismatch();
  }
  return static_cast<std::size_t>(std::int64_t{upper} - lower + 1);
}

}  // namespace tessarlorn::com
