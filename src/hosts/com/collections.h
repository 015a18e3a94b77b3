// Collections of other components as the component's own.
#pragma once

#include <span>

#include "tessarlorn/operations.h"
#include "tessarlorn/variant.h"

namespace tessarlorn::com {

/// Puts Dictionary or Vector in the place of every collection among the arguments that are declared as one, nested ones
/// too: an object with Keys and Item becomes a Dictionary, one with Count that can be enumerated a Vector, an array a
/// Vector; JScript's arrays and objects do as well. Any other object in them that has a default value, as a field or a
/// cell has, becomes that value. What several hold is one object for all of them afterwards. Raises what their members
/// raise, 5 for one that is nested too deep or holds itself, or whose key an operation would overlook for its case, 13
/// for an array with several dimensions.
void WithCollections(std::span<const Argument> declared, std::span<Variant> values);

}  // namespace tessarlorn::com
