// What For Each asks a collection for.
#pragma once

#include <vector>

#include "com_base/pointers.h"
#include "tessarlorn/variant.h"

namespace tessarlorn::com {

/// An IEnumVARIANT over the items as they are now.
Pointer<IUnknown> MakeEnumeration(std::vector<Variant> items);

}  // namespace tessarlorn::com
