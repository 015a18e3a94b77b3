// What the default siblings share in being called by name.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "tessarlorn/variant.h"

namespace tessarlorn {

/// Raises 438 naming the method.
[[noreturn]] void RaiseNoSuchMethod(std::string_view component, std::string_view method);
/// Raises 450 naming the method when the number of arguments is another.
void ExpectArguments(std::string_view method, std::span<const Variant> arguments, std::size_t count);

}  // namespace tessarlorn
