// Every operation of both service classes, by name: what it takes and answers, what it does, and the call.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "frame/clsGetData.h"
#include "frame/clsSaveData.h"
#include "platform/variant.h"

namespace tessarlorn {

enum class ServiceClass : std::uint8_t { kSaveData, kGetData };

/// "clsSaveData" or "clsGetData".
std::string_view ClassName(ServiceClass service);

/// The types of automation that arguments, keys and results have. kVariant is a value of any type.
enum class ValueType : std::uint8_t {
  kString,
  kLong,
  kInteger,
  kDouble,
  kBoolean,
  kDate,
  kDictionary,
  kVector,
  kRecordset,
  kVariant,
};

/// "String", "Long", …
std::string_view TypeName(ValueType type);

/// Whether an operation does nothing without a key.
enum class Need : std::uint8_t { kOptional, kMandatory };

/// A key that an operation reads from a Dictionary.
struct Key {
  std::string_view name;
  ValueType type = ValueType::kString;
  Need need = Need::kOptional;
  /// What an absent key counts as, as text; "" for an empty text or for nothing at all.
  std::string_view fallback;
  /// One line.
  std::string_view help;
  /// The keys of the Dictionaries in it, for a Vector.
  std::span<const Key> item_keys = {};

  /// Whether it holds the connection string.
  [[nodiscard]] bool is_connection() const noexcept { return name == "sDSN" || name == "sDsn" || name == "sProps"; }
  /// `help`, and what happens without the key where that is more than that it counts as an empty text.
  [[nodiscard]] std::string Explanation() const;
};

struct Argument {
  std::string_view name;
  ValueType type = ValueType::kString;
  /// Written back after the call.
  bool in_out = false;
  bool optional = false;
  /// The keys of a Dictionary, or of the Dictionaries in a Vector.
  std::span<const Key> keys = {};
  /// Every key counts, whatever its name; `keys` is empty.
  bool any_key = false;

  /// Whether it is the connection string.
  [[nodiscard]] bool is_connection() const noexcept {
    return name == "sDsn" || name == "strDSN" || name == "PropsString";
  }
};

class ServiceObject;

struct Operation {
  static constexpr std::size_t kMostArguments = 8;

  ServiceClass service = ServiceClass::kSaveData;
  std::string_view name;
  /// A property that is read, not a method.
  bool property = false;
  ValueType result = ValueType::kBoolean;
  /// One paragraph: what it does, what it answers when parameters are missing or nothing matches, what it raises.
  std::string_view help;
  std::array<Argument, kMostArguments> argument_list{};
  std::size_t argument_count = 0;
  Variant (*call)(ServiceObject& object, std::span<Variant> arguments) = nullptr;

  [[nodiscard]] std::span<const Argument> arguments() const noexcept {
    return std::span(argument_list).first(argument_count);
  }
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
  explicit ServiceObject(ServiceClass service);
  /// By class name or ProgID ("TessarLornPickingAndDelivery.clsSaveData"), without regard to case. Raises 429 naming it
  /// when there is no such class.
  explicit ServiceObject(std::string_view class_name);

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
