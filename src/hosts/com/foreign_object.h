// An object of another component, called by name.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "com_base/pointers.h"
#include "tessarlorn/object.h"

namespace tessarlorn::com {

/// To be used in the apartment that it came from.
class ForeignObject final : public Object {
 public:
  /// @pre not nullptr
  explicit ForeignObject(Pointer<IDispatch> object) : object_(std::move(object)) {}

  /// Raises the error that the member raises, with its number, Source and description.
  Variant Call(std::string_view method, std::span<const Variant> arguments) override {
    return Use(method, DISPATCH_METHOD | DISPATCH_PROPERTYGET, arguments);
  }
  /// Reads a property, and never calls it: a script's function is a value, too. Raises as Call does.
  Variant Get(std::string_view property) { return Use(property, DISPATCH_PROPERTYGET, {}); }
  [[nodiscard]] bool Has(std::string_view member) const;
  /// What the number of the default member answers without arguments; another object's in its place when it is one.
  [[nodiscard]] std::optional<Variant> DefaultValue() override;
  /// What `For Each` goes through, nothing for an object that it does not take. Raises what the enumeration raises.
  [[nodiscard]] std::optional<std::vector<Variant>> Items();
  /// The members that a script gave its object. Nothing for an object whose members are its class's.
  [[nodiscard]] std::optional<std::vector<std::string>> MemberNames() const;
  [[nodiscard]] IDispatch* get() const noexcept { return object_.get(); }

 private:
  Variant Use(std::string_view member, WORD flags, std::span<const Variant> arguments);
  /// Answers DISP_E_UNKNOWNNAME or the like for a member that there is not.
  HRESULT Find(std::string_view member, DISPID& id) const;

  Pointer<IDispatch> object_;
  /// Numbers of the members that were asked for.
  mutable std::map<std::string, DISPID, std::less<>> numbers_;
};

/// Whether it is an object of JScript, whose arrays and objects have no other members in common.
inline bool IsOfScript(const ForeignObject& object) { return object.Has("hasOwnProperty"); }

/// Creates a component by its ProgID. Raises 429 naming it.
std::shared_ptr<Object> CreateForeignObject(std::string_view prog_id);
/// Whether a component of that ProgID is registered.
bool IsRegistered(std::string_view prog_id);

}  // namespace tessarlorn::com
