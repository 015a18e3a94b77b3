// The arguments of one call, as the object takes them.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <span>

#include "automation/arguments.h"
#include "com_base/windows_headers.h"
#include "hosts/objects/automation_object.h"

namespace tessarlorn::com {

/// In the order of the member's, with the VARIANTs that they came in. Not on the heap, and no more values than there
/// are: a script that reads a recordset calls a million times. One of the Read functions is to be called, once. They
/// raise 448, 449 and 450.
class TakenArguments {
 public:
  TakenArguments() = default;
  TakenArguments(const TakenArguments&) = delete;
  TakenArguments& operator=(const TakenArguments&) = delete;
  ~TakenArguments() { std::destroy_n(space_.values.data(), count_); }

  /// Those of an Invoke. The new value of a property goes last; `by_value` tells that it is put without Set.
  void Read(const DISPPARAMS& given, const AutomationObject& object, const Member& member, bool put, bool by_value);
  /// Those of a function of the vtable: all of them, in order.
  void Read(std::span<const VARIANT> given, const AutomationObject& object, const Member& member, bool put,
            bool by_value);
  [[nodiscard]] std::span<Variant> values() noexcept { return {space_.values.data(), count_}; }
  /// nullptr for one that is left out.
  [[nodiscard]] const VARIANT* source(std::size_t argument) const noexcept { return sources_[argument]; }

 private:
  static constexpr std::size_t kMost = ArgumentList::kMost + 1;

  /// Room for values that begin and end when they are told to.
  union Space {
    Space() noexcept {}
    Space(const Space&) = delete;
    Space& operator=(const Space&) = delete;
    ~Space() {}
    std::array<Variant, kMost> values;
  };

  /// @param count of the sources without `value`, the new one of a property, which may be nullptr
  void Take(std::size_t count, const VARIANT* value, const AutomationObject& object, const Member& member,
            bool by_value);

  std::array<const VARIANT*, kMost> sources_{};
  Space space_;
  std::size_t count_ = 0;
};

}  // namespace tessarlorn::com
