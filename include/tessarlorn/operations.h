// Every operation of both service classes, by name: what it takes and answers, what it does, and the call.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "tessarlorn/clsGetData.h"
#include "tessarlorn/clsSaveData.h"
#include "tessarlorn/contract.h"
#include "tessarlorn/variant.h"

namespace tessarlorn {

enum class ServiceClass : std::uint8_t { kSaveData, kGetData };

/// "clsSaveData" or "clsGetData".
std::string_view ClassName(ServiceClass service);

/// An argument, with what the member function tells of it and what its contract does.
struct Argument {
  std::string_view name;
  ValueType type = ValueType::kString;
  /// Written back after the call.
  bool in_out = false;
  /// See ArgumentContract.
  bool optional = false;
  /// What it counts as when it is left out, as type libraries write it; "" where nothing stands for that.
  std::string_view fallback = {};
  std::span<const Key> keys = {};
  bool any_key = false;
  Standing stands = Standing::kNowhere;
  Need need = Need::kOptional;
  Names names = Names::kNothing;
  /// Whether it is the connection string.
  bool is_connection = false;
};

class ServiceObject;

/// A row of the table: the operation's contract, and what its member function tells.
struct Operation {
  const Contract* contract = nullptr;
  ServiceClass service = ServiceClass::kSaveData;
  std::string_view name;
  /// A property that is read, not a method.
  bool property = false;
  ValueType result = ValueType::kBoolean;
  std::array<Argument, ArgumentList::kMost> argument_list{};
  std::size_t argument_count = 0;
  Variant (*call)(ServiceObject& object, std::span<Variant> arguments) = nullptr;

  [[nodiscard]] std::span<const Argument> arguments() const noexcept {
    return std::span(argument_list).first(argument_count);
  }
  /// One paragraph: what it does, what it answers when parameters are missing or nothing matches, what it raises.
  [[nodiscard]] std::string help() const { return contract->Explanation(); }
};

/// All operations, those of clsSaveData first, in the order in which the classes declare them.
std::span<const Operation* const> Operations();

/// By "Name" or "Class.Name", without regard to case; nullptr when there is none. A bare name that both classes have
/// (TransMode) is that of clsSaveData.
const Operation* FindOperation(std::string_view name);
const Operation* FindOperation(ServiceClass service, std::string_view name);

/// An instance of one of the service classes, for calls by name. As an instance of that class: one thread, one call at
/// a time.
class ServiceObject {
 public:
  ServiceObject(Host& host, ServiceClass service);
  /// By class name or ProgID ("TessarLornPickingAndDelivery.clsSaveData"), without regard to case. Raises 429 naming it
  /// when there is no such class.
  ServiceObject(Host& host, std::string_view class_name);

  [[nodiscard]] ServiceClass service() const noexcept {
    return std::holds_alternative<clsSaveData>(instance_) ? ServiceClass::kSaveData : ServiceClass::kGetData;
  }
  /// @pre the object is of that class
  template <typename Class>
  [[nodiscard]] Class& As() {
    return std::get<Class>(instance_);
  }

  /// Calls the operation. Each argument is converted to its declared type by automation's rules: empty is "", 0 or
  /// Nothing, null raises 94, any other value that does not fit 13 or 6. In/out arguments are written back. An object
  /// result that is Nothing comes as a null object.
  ///
  /// Raises 438 when the operation is of the other class, 449 "Argument not optional" naming the argument when one is
  /// missing, 450 when there are too many, and what the operation raises.
  Variant Invoke(const Operation& operation, std::span<Variant> arguments);

 private:
  std::variant<std::monostate, clsSaveData, clsGetData> instance_;
};

}  // namespace tessarlorn
