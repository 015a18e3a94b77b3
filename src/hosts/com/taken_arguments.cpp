#include "hosts/com/taken_arguments.h"

#include <algorithm>
#include <string>
#include <utility>

#include "com_base/errors.h"
#include "com_base/plain_values.h"
#include "hosts/com/foreign_object.h"
#include "hosts/com/values.h"

namespace tessarlorn::com {
namespace {

/// Whether an object in its place is read through its default member. What keeps values of any kind keeps the object.
bool TakesPlainValue(const Argument& argument) {
  switch (argument.type) {
    case ValueType::kDictionary:
    case ValueType::kVector:
    case ValueType::kRecordset:
      return false;
    case ValueType::kVariant:
      return argument.in_out;
    default:
      return true;
  }
}

/// JScript has no Set: what it assigns is the object.
bool IsOfScript(const Variant& value) {
  const auto* const object = value.get_if<std::shared_ptr<Object>>();
  const auto* const foreign = dynamic_cast<const ForeignObject*>(object->get());
  return foreign != nullptr && IsOfScript(*foreign);
}

}  // namespace

void TakenArguments::Read(const DISPPARAMS& given, const AutomationObject& object, const Member& member, bool put,
                          bool by_value) {
  const UINT named = given.cNamedArgs;
  const UINT value_count = put ? 1 : 0;
  const std::span<const Argument> declared = member.arguments;
  const bool has_value = named > 0 && given.rgdispidNamedArgs[0] == DISPID_PROPERTYPUT;
  if (named > given.cArgs || put != has_value || given.cArgs > kMost) {
    Raise(error_number::kWrongArgumentCount, "Wrong number of arguments: " + object.description().FullName(member));
  }
  if (given.cArgs == 0) return;
  std::size_t count = given.cArgs - named;
  for (UINT i = named; i < given.cArgs; ++i) sources_[given.cArgs - 1 - i] = &given.rgvarg[i];
  for (UINT i = value_count; i < named; ++i) {
    const DISPID position = given.rgdispidNamedArgs[i];
    const auto index = static_cast<std::size_t>(position);
    if (position < 0 || index >= declared.size()) {
      Raise(error_number::kNoSuchNamedArgument, "Named argument not found: number " + std::to_string(position) +
                                                    " of " + object.description().FullName(member));
    }
    if (sources_[index] != nullptr) {
      Raise(error_number::kWrongArgumentCount, "Argument given twice: " + std::string(declared[index].name) + " of " +
                                                   object.description().FullName(member));
    }
    count = std::max(count, index + 1);
    sources_[index] = &given.rgvarg[i];
  }
  Take(count, put ? &given.rgvarg[0] : nullptr, object, member, by_value);
}

void TakenArguments::Read(std::span<const VARIANT> given, const AutomationObject& object, const Member& member,
                          bool put, bool by_value) {
  const std::size_t count = given.size() - (put ? 1 : 0);
  for (std::size_t i = 0; i < count; ++i) sources_[i] = &given[i];
  Take(count, put ? &given.back() : nullptr, object, member, by_value);
}

void TakenArguments::Take(std::size_t count, const VARIANT* value, const AutomationObject& object, const Member& member,
                          bool by_value) {
  const std::span<const Argument> declared = member.arguments;
  // What is left out at the end counts as not given, so that the object can say which one is missing.
  const auto left_out = [](const VARIANT* source) { return source == nullptr || IsLeftOut(*source); };
  while (count > 0 && left_out(sources_[count - 1])) --count;
  for (std::size_t i = 0; i < count; ++i) {
    if (i >= declared.size()) break;
    if (!declared[i].optional && left_out(sources_[i]))
      RaiseArgumentMissing(declared[i], object.description().FullName(member));
    // Not only when the work is done.
    const VARIANT* const written = declared[i].in_out ? sources_[i] : nullptr;
    if (written != nullptr && (written->vt & VT_BYREF) != 0 && !CanWriteBack(*written)) RaiseTypeMismatch();
  }
  const std::size_t arguments = count;
  if (value != nullptr) sources_[count++] = value;
  while (count_ < count) {
    const VARIANT* const source = sources_[count_];
    Variant& taken = space_.values[count_];
    std::construct_at(&taken, source == nullptr ? Variant() : FromVariant(*source));
    const std::size_t place = count_++;
    if (!taken.holds<std::shared_ptr<Object>>()) continue;
    const bool plain = place < arguments ? place < declared.size() && TakesPlainValue(declared[place])
                                         : by_value && !IsOfScript(taken);
    if (plain) taken = DefaultValueOf(std::move(taken));
  }
}

}  // namespace tessarlorn::com
