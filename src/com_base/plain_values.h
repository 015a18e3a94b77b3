// Values that are neither object nor array but of bytes, across the boundary of COM in both directions.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "com_base/windows_headers.h"
#include "tessarlorn/variant.h"

namespace tessarlorn::com {

/// Whether an argument stands for one that was left out.
bool IsLeftOut(const VARIANT& value);
/// The type of a value or of what a reference refers to.
inline VARTYPE TypeBehind(const VARIANT& value) { return static_cast<VARTYPE>(value.vt & ~VT_BYREF); }

/// Bytes of a value of the type behind a reference or in an array; 0 for a type that automation's variables do not
/// have.
std::size_t WidthOf(VARTYPE type);
/// What a reference refers to, as a value that shares it and is not to be cleared. Raises 13 for a reference to
/// nothing.
VARIANT Referred(const VARIANT& reference);
/// Whether the value is an array of bytes in one dimension, or none at all.
bool IsBytes(const VARIANT& value);

/// A value of automation as the component's: what is left out is empty; a reference gives what it refers to; an array
/// of bytes gives Bytes. Raises 13 for objects, other arrays and types that automation does not have, 6 for a date
/// outside of automation's.
Variant FromPlainVariant(const VARIANT& value);
/// The component's value as automation's, in `*out`, which is VT_EMPTY before; false when it is an object. Decimals
/// beyond 28 digits become text. Raises 6 for a date before automation's first one.
bool ToPlainVariant(const Variant& value, VARIANT* out);

/// A text as automation's, in `*out`, which is VT_EMPTY before.
void PutText(std::string_view text, VARIANT* out);

/// Raises std::bad_alloc for what COM could not allocate.
void CheckMemory(const void* allocated);

/// While it lives, an array's values may be read in place.
class ArrayAccess {
 public:
  /// Raises 13 when there is no array, and what stands against reading it.
  explicit ArrayAccess(SAFEARRAY* array);
  ArrayAccess(const ArrayAccess&) = delete;
  ArrayAccess& operator=(const ArrayAccess&) = delete;
  ~ArrayAccess() { SafeArrayUnaccessData(array_); }
  [[nodiscard]] const std::uint8_t* bytes() const noexcept { return static_cast<const std::uint8_t*>(data_); }
  [[nodiscard]] UINT dimensions() const { return SafeArrayGetDim(array_); }
  /// How many values a dimension has, the first one being 1.
  [[nodiscard]] std::size_t size(UINT dimension) const;

 private:
  SAFEARRAY* array_;
  void* data_ = nullptr;
};

}  // namespace tessarlorn::com
