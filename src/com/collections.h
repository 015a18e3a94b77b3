// Collections of other components as the component's own.
#pragma once

#include <span>

#include "platform/variant.h"

namespace tessarlorn::com {

/// Puts Dictionary or Vector in the place of every collection, nested ones too: an object with Keys and Item becomes a
/// Dictionary, one with Count that can be enumerated a Vector, an array a Vector. What several hold is one object for
/// all of them afterwards. Raises what their members raise, and 5 for one that is nested too deep or holds itself.
void WithCollections(std::span<Variant> values);

}  // namespace tessarlorn::com
