// Values across the boundary of COM, in both directions.
#pragma once

#include <string_view>

#include "com_base/windows_headers.h"
#include "hosts/objects/value_taker.h"
#include "tessarlorn/variant.h"

namespace tessarlorn::com {

/// A value of automation as the component's, plain ones as FromPlainVariant has them; the component's own objects come
/// as what they stand for, others as ForeignObject; arrays as Array, which keeps bounds and type for the way back, of
/// bytes in one dimension as Bytes. Raises 13 for a type that automation does not have.
Variant FromVariant(const VARIANT& value);
/// The component's value as automation's, in `*out`, which is not read; plain ones as ToPlainVariant has them.
void ToVariant(const Variant& value, VARIANT* out);
/// Writes values as ToVariant does into VARIANTs that are empty, one behind the other.
class VariantWriter final : public ValueTaker {
 public:
  explicit VariantWriter(VARIANT* next) : next_(next) {}
  void TakeText(std::string_view text) override;
  void Take(const Variant& value) override;

 private:
  VARIANT* next_;
};
/// Whether a variable of the type behind a reference can take a value.
bool CanWriteBack(const VARIANT& reference);
/// Writes the value behind a reference that a caller gave, converted to the type there; a VARIANT that is a reference
/// itself keeps being one. Raises 13 when it cannot be converted, 6 when it does not fit.
void WriteBack(const Variant& value, const VARIANT& reference);

}  // namespace tessarlorn::com
