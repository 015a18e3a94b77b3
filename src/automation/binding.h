// Makes a row of the operation table from a member function: types from its signature, the call from its pointer.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

#include "tessarlorn/error.h"
#include "tessarlorn/operations.h"

namespace tessarlorn {

/// Converts one argument to the parameter type and keeps what the parameter refers to during the call.
template <typename Parameter>
class BoundArgument;

/// Text, in.
template <>
class BoundArgument<std::string_view> {
 public:
  static constexpr ValueType kType = ValueType::kString;
  static constexpr bool kInOut = false;

  explicit BoundArgument(const Variant& variant) {
    if (variant.is_null()) Raise(error_number::kInvalidUseOfNull, "Invalid use of Null");
    value_ = variant.ToText();
  }
  [[nodiscard]] std::string_view Get() const noexcept { return value_; }
  void WriteBack() {}

 private:
  std::string value_;
};

/// Long and Boolean, in.
template <typename Parameter>
requires std::is_same_v<Parameter, std::int32_t> || std::is_same_v<Parameter, bool>
class BoundArgument<Parameter> {
 public:
  static constexpr bool kIsLong = std::is_same_v<Parameter, std::int32_t>;
  static constexpr ValueType kType = kIsLong ? ValueType::kLong : ValueType::kBoolean;
  static constexpr bool kInOut = false;

  explicit BoundArgument(const Variant& variant) {
    if constexpr (kIsLong) {
      value_ = variant.ToInt32();
    } else {
      value_ = variant.ToBool();
    }
  }
  [[nodiscard]] Parameter Get() const noexcept { return value_; }
  void WriteBack() {}

 private:
  Parameter value_;
};

/// Integer, in/out.
template <>
class BoundArgument<std::int16_t&> {
 public:
  static constexpr ValueType kType = ValueType::kInteger;
  static constexpr bool kInOut = true;

  explicit BoundArgument(Variant& variant) : variant_(variant), value_(variant.ToInt16()) {}
  std::int16_t& Get() noexcept { return value_; }
  void WriteBack() { variant_ = value_; }

 private:
  Variant& variant_;
  std::int16_t value_;
};

/// Variant, in/out: the caller's own.
template <>
class BoundArgument<Variant&> {
 public:
  static constexpr ValueType kType = ValueType::kVariant;
  static constexpr bool kInOut = true;

  explicit BoundArgument(Variant& variant) : variant_(variant) {}
  Variant& Get() noexcept { return variant_; }
  void WriteBack() {}

 private:
  Variant& variant_;
};

template <typename Collection>
requires std::is_same_v<Collection, Dictionary> || std::is_same_v<Collection, Vector>
class BoundArgument<const Collection*> {
 public:
  static constexpr ValueType kType =
      std::is_same_v<Collection, Dictionary> ? ValueType::kDictionary : ValueType::kVector;
  static constexpr bool kInOut = false;

  explicit BoundArgument(const Variant& variant) {
    if (variant.is_empty() || variant.type_name() == "Nothing") return;
    const auto* value = variant.get_if<std::shared_ptr<Collection>>();
    if (value == nullptr) RaiseTypeMismatch();
    value_ = *value;
  }
  [[nodiscard]] const Collection* Get() const noexcept { return value_.get(); }
  void WriteBack() {}

 private:
  std::shared_ptr<Collection> value_;
};

template <typename Result>
constexpr ValueType kResultType = [] {
  if constexpr (std::is_same_v<Result, bool>) return ValueType::kBoolean;
  if constexpr (std::is_same_v<Result, double>) return ValueType::kDouble;
  if constexpr (std::is_same_v<Result, std::string>) return ValueType::kString;
  if constexpr (std::is_same_v<Result, RecordsetPtr>) return ValueType::kRecordset;
  if constexpr (std::is_same_v<Result, std::optional<Dictionary>>) return ValueType::kDictionary;
  if constexpr (std::is_same_v<Result, std::optional<Vector>> || std::is_same_v<Result, Vector>) {
    return ValueType::kVector;
  }
  if constexpr (std::is_same_v<Result, std::int16_t>) return ValueType::kInteger;
  if constexpr (std::is_same_v<Result, std::int32_t> || std::is_enum_v<Result>) return ValueType::kLong;
}();

template <typename Value>
Variant ToVariant(Value value) {
  if constexpr (std::is_enum_v<Value>) {
    return static_cast<std::underlying_type_t<Value>>(value);
  } else {
    return value;
  }
}
template <typename Collection>
Variant ToVariant(std::optional<Collection> value) {
  return value ? std::make_shared<Collection>(*std::move(value)) : std::shared_ptr<Collection>();
}

template <typename Member>
struct Signature;
template <typename ResultType, typename ClassType, typename... Parameters>
struct Signature<ResultType (ClassType::*)(Parameters...)> {
  using Result = ResultType;
  using Class = ClassType;
  static constexpr std::size_t kCount = sizeof...(Parameters);
  static constexpr std::array<ValueType, kCount> kTypes = {BoundArgument<Parameters>::kType...};
  static constexpr std::array<bool, kCount> kInOut = {BoundArgument<Parameters>::kInOut...};

  /// Converts the arguments, calls, writes back.
  template <typename Member>
  static Variant Call(Class& object, Member member, std::span<Variant> arguments) {
    return Call(object, member, arguments, std::index_sequence_for<Parameters...>());
  }

 private:
  template <typename Member, std::size_t... kIndex>
  static Variant Call(Class& object, Member member, [[maybe_unused]] std::span<Variant> arguments,
                      std::index_sequence<kIndex...>) {
    std::tuple<BoundArgument<Parameters>...> bound{arguments[kIndex]...};
    Variant result = ToVariant((object.*member)(std::get<kIndex>(bound).Get()...));
    (std::get<kIndex>(bound).WriteBack(), ...);
    return result;
  }
};
template <typename ResultType, typename ClassType, typename... Parameters>
struct Signature<ResultType (ClassType::*)(Parameters...) const noexcept>
    : Signature<ResultType (ClassType::*)(Parameters...)> {};

/// A row of the table. Does not compile without a contract that has as many arguments as the member.
template <auto kMember>
consteval Operation Bind() {
  using Bound = Signature<decltype(kMember)>;
  const Contract& contract = kContract<kMember>;
  if (contract.arguments.size() != Bound::kCount) throw "an argument of the member function is not described";
  Operation operation;
  operation.contract = &contract;
  operation.service =
      std::is_same_v<typename Bound::Class, clsSaveData> ? ServiceClass::kSaveData : ServiceClass::kGetData;
  operation.name = contract.name;
  operation.property = std::is_enum_v<typename Bound::Result>;
  operation.result = kResultType<typename Bound::Result>;
  operation.argument_count = Bound::kCount;
  for (std::size_t i = 0; i < Bound::kCount; ++i) {
    const ArgumentContract& argument = contract.arguments[i];
    operation.argument_list[i] = {
        .name = argument.name,
        .type = Bound::kTypes[i],
        .in_out = Bound::kInOut[i],
        .optional = argument.optional,
        .fallback = argument.optional && Bound::kTypes[i] == ValueType::kString ? R"("")" : "",
        .keys = argument.keys,
        .any_key = argument.any_key,
        .stands = argument.stands,
        .need = argument.need,
        .names = argument.names,
        .is_connection = argument.is_connection()};
  }
  operation.call = [](ServiceObject& object, std::span<Variant> values) {
    return Bound::Call(object.As<typename Bound::Class>(), kMember, values);
  };
  return operation;
}

/// The rows of each class.
std::span<const Operation> SaveOperations();
std::span<const Operation> GetOperations();

}  // namespace tessarlorn
