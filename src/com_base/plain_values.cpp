#include "com_base/plain_values.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <new>

#include "com_base/errors.h"
#include "com_base/pointers.h"
#include "platform/single.h"

namespace tessarlorn::com {
namespace {

constexpr int kCurrencyScale = 4;
constexpr int kDecimalScale = 28;
/// The day before automation's first one, whose hours are further below zero than itself.
constexpr double kBeforeFirstDay = -657435;

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

void PutInteger(std::int16_t value, ClientType type, VARIANT* out) {
  if (type == ClientType::kByte && value >= 0 && value <= std::numeric_limits<BYTE>::max()) {
    out->vt = VT_UI1;
    out->bVal = static_cast<BYTE>(value);
  } else {
    out->vt = VT_I2;
    out->iVal = value;
  }
}

void PutLong(std::int32_t value, ClientType type, VARIANT* out) {
  if (type == ClientType::kLongLong) {
    out->vt = VT_I8;
    out->llVal = value;
  } else {
    out->vt = VT_I4;
    out->lVal = value;
  }
}

void PutReal(double value, ClientType type, VARIANT* out) {
  if (type == ClientType::kSingle && !(std::abs(value) > std::numeric_limits<float>::max())) {
    out->vt = VT_R4;
    out->fltVal = static_cast<float>(value);
  } else {
    out->vt = VT_R8;
    out->dblVal = value;
  }
}

void PutDate(const DateTime& value, VARIANT* out) {
  const double date = value.ToAutomation();
  if (date <= kBeforeFirstDay) RaiseOverflow();
  out->vt = VT_DATE;
  out->date = date;
}

void PutDecimal(const Decimal& value, ClientType type, VARIANT* out) {
  if (const auto scaled = type == ClientType::kCurrency ? value.ToScaled(kCurrencyScale) : std::nullopt) {
    out->vt = VT_CY;
    out->cyVal.int64 = *scaled;
    return;
  }
  if (const auto whole = type == ClientType::kLongLong ? value.ToScaled(0) : std::nullopt) {
    out->vt = VT_I8;
    out->llVal = *whole;
    return;
  }
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

std::size_t WidthOf(VARTYPE type) {
  if ((type & VT_ARRAY) != 0) return sizeof(SAFEARRAY*);
  switch (type) {
    case VT_I1:
    case VT_UI1:
      return sizeof(BYTE);
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
      return sizeof(SHORT);
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
    case VT_ERROR:
      return sizeof(LONG);
    case VT_I8:
    case VT_UI8:
    case VT_R8:
    case VT_CY:
    case VT_DATE:
      return sizeof(LONGLONG);
    case VT_DECIMAL:
      return sizeof(DECIMAL);
    case VT_BSTR:
    case VT_DISPATCH:
    case VT_UNKNOWN:
      return sizeof(void*);
    case VT_VARIANT:
      return sizeof(VARIANT);
    default:
      return 0;
  }
}

VARIANT Referred(const VARIANT& reference) {
  const VARTYPE type = TypeBehind(reference);
  const std::size_t width = WidthOf(type);
  if (reference.byref == nullptr || width == 0) RaiseTypeMismatch();
  if (type == VT_VARIANT) return *reference.pvarVal;
  VARIANT value{};
  if (type == VT_DECIMAL) {
    value.decVal = *reference.pdecVal;
  } else {
    std::memcpy(&value.llVal, reference.byref, width);
  }
  value.vt = type;
  return value;
}

bool IsBytes(const VARIANT& value) {
  return value.vt == (VT_ARRAY | VT_UI1) && (value.parray == nullptr || SafeArrayGetDim(value.parray) == 1);
}

Variant FromPlainVariant(const VARIANT& value) {
  if ((value.vt & VT_BYREF) != 0) return FromPlainVariant(Referred(value));
  if (IsLeftOut(value)) return {};
  switch (value.vt) {
    case VT_EMPTY:
      return {};
    case VT_NULL:
      return Null{};
    case VT_BOOL:
      return value.boolVal != VARIANT_FALSE;
    case VT_I1:
      return static_cast<std::int16_t>(static_cast<signed char>(value.cVal));
    case VT_UI1:
      return Variant(std::int16_t{value.bVal}).WithClientType(ClientType::kByte);
    case VT_I2:
      return static_cast<std::int16_t>(value.iVal);
    case VT_UI2:
      return static_cast<std::int32_t>(value.uiVal);
    case VT_I4:
    case VT_INT:
      return static_cast<std::int32_t>(value.lVal);
    case VT_UI4:
    case VT_UINT:
      return static_cast<std::int64_t>(value.ulVal);
    case VT_I8:
      return static_cast<std::int64_t>(value.llVal);
    case VT_UI8: {
      const std::uint64_t number = value.ullVal;
      const Decimal::Limbs limbs = {static_cast<std::uint32_t>(number), static_cast<std::uint32_t>(number >> 32)};
      return Decimal::FromLimbs(limbs, 0, false).value_or(Decimal());
    }
    case VT_R4:
      return Variant(Widened(value.fltVal)).WithClientType(ClientType::kSingle);
    case VT_R8:
      return value.dblVal;
    case VT_CY:
      return Variant(Decimal::FromScaled(value.cyVal.int64, kCurrencyScale)).WithClientType(ClientType::kCurrency);
    case VT_DECIMAL:
      return FromDecimal(value.decVal);
    case VT_DATE: {
      const auto date = DateTime::FromAutomation(value.date);
      if (!date) RaiseOverflow();
      return *date;
    }
    case VT_ARRAY | VT_UI1:
      return FromBytes(value.parray);
    case VT_BSTR:
      return ToText(value.bstrVal);
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
    PutInteger(*small, value.client_type(), out);
  } else if (const auto* number = value.get_if<std::int32_t>()) {
    PutLong(*number, value.client_type(), out);
  } else if (const auto* real = value.get_if<double>()) {
    PutReal(*real, value.client_type(), out);
  } else if (const auto* decimal = value.get_if<Decimal>()) {
    PutDecimal(*decimal, value.client_type(), out);
  } else if (const auto* date = value.get_if<DateTime>()) {
    PutDate(*date, out);
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
