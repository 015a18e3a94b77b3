// The functions of a class's interface, as compilers bind to them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/objects/automation_object.h"

namespace tessarlorn {

/// A member in one of its uses.
struct InterfaceFunction {
  const Member* member = nullptr;
  /// Of the member among those of its class.
  std::size_t position = 0;
  MemberUse use = kCall;
  /// A put by Set, which compilers allow for nothing else.
  bool by_reference = false;
  /// Those that compilers see, see Member::result_class.
  std::span<const Argument> arguments = {};
};

/// In the order of the vtable, behind the functions of IDispatch.
std::vector<InterfaceFunction> InterfaceFunctions(const ClassDescription& description);

/// A type in the words of the type library, of C++, and of VARIANT.
struct InterfaceType {
  std::string library;
  std::string_view compiled;
  std::string_view variant;
};
InterfaceType TypeOf(const Argument& argument);
/// Of what a member answers, or takes as its new value.
InterfaceType ResultType(const Member& member);

/// "_Class"
std::string InterfaceName(std::string_view class_name);

}  // namespace tessarlorn
