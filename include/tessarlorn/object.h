// Components that are called by name at run time, as the neighbours of the service classes are.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "tessarlorn/variant.h"

namespace tessarlorn {

class AutomationObject;

/// A component that is called by name at run time.
class Object {
 public:
  virtual ~Object() = default;
  /// The object as clients of automation see it, nullptr for one that they do not. Scripts ask for it with each field
  /// that they read, which a cast is too slow for.
  [[nodiscard]] virtual AutomationObject* automation() noexcept { return nullptr; }
  /// Raises 438 naming the method when there is none, and whatever the method raises.
  virtual Variant Call(std::string_view method, std::span<const Variant> arguments) = 0;
  /// What the object stands for where a value is wanted: a plain value or an array. Nothing for an object without one,
  /// as collections are. Raises what reading it raises.
  [[nodiscard]] virtual std::optional<Variant> DefaultValue() { return std::nullopt; }
};

/// The default value of an object that has one; any other value as it is.
Variant DefaultValueOf(Variant value);

/// Makes a new instance of a component.
using ObjectCreator = std::function<std::shared_ptr<Object>()>;

}  // namespace tessarlorn
