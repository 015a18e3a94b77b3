#include "platform/error.h"

namespace tessarlorn {

void Raise(std::int32_t number, const std::string& description) {
  throw Error(number, "TessarLornPickingAndDelivery", description);
}

void RaiseTypeMismatch() { Raise(error_number::kTypeMismatch, "Type mismatch"); }

void RaiseOverflow() { Raise(error_number::kOverflow, "Overflow"); }

}  // namespace tessarlorn
