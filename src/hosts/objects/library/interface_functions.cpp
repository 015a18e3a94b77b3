#include "hosts/objects/library/interface_functions.h"

namespace tessarlorn {
namespace {

InterfaceType PlainType(ValueType type) {
  switch (type) {
    case ValueType::kString:
      return {"BSTR", "BSTR", "VT_BSTR"};
    case ValueType::kLong:
      return {"long", "LONG", "VT_I4"};
    case ValueType::kInteger:
      return {"short", "SHORT", "VT_I2"};
    case ValueType::kDouble:
      return {"double", "double", "VT_R8"};
    case ValueType::kBoolean:
      return {"VARIANT_BOOL", "VARIANT_BOOL", "VT_BOOL"};
    case ValueType::kDate:
      return {"DATE", "DATE", "VT_DATE"};
    case ValueType::kDictionary:
      return {"_Dictionary*", "IDispatch*", "VT_DISPATCH"};
    case ValueType::kVector:
      return {"_Vector*", "IDispatch*", "VT_DISPATCH"};
    case ValueType::kRecordset:
      return {"_Recordset*", "IDispatch*", "VT_DISPATCH"};
    default:
      return {"VARIANT", "VARIANT", "VT_VARIANT"};
  }
}

}  // namespace

std::string InterfaceName(std::string_view class_name) { return "_" + std::string(class_name); }

InterfaceType TypeOf(const Argument& argument) {
  // What can be left out without a default value is a VARIANT: only that can stand for nothing.
  return PlainType(argument.optional && argument.fallback.empty() ? ValueType::kVariant : argument.type);
}

InterfaceType ResultType(const Member& member) {
  if (member.id == kEnumerationMember) return {"IUnknown*", "IUnknown*", "VT_UNKNOWN"};
  InterfaceType type = PlainType(member.result);
  if (member.result_class.empty()) return type;
  if (member.result == ValueType::kLong) return {std::string(member.result_class), type.compiled, type.variant};
  return {InterfaceName(member.result_class) + "*", "IDispatch*", "VT_DISPATCH"};
}

std::vector<InterfaceFunction> InterfaceFunctions(const ClassDescription& description) {
  std::vector<InterfaceFunction> functions;
  for (std::size_t i = 0; i < description.members.size(); ++i) {
    const Member& member = description.members[i];
    // An object is written by its own members.
    const bool object = !member.result_class.empty() && member.result != ValueType::kLong;
    const bool shortened = object && !member.arguments.empty() && member.arguments[0].optional;
    InterfaceFunction function{.member = &member, .position = i};
    if (!shortened) function.arguments = member.arguments;
    for (const MemberUse use : {kCall, kGet, kPut}) {
      function.use = use;
      function.by_reference = false;
      if ((member.uses & use) == 0 || (use == kPut && object)) continue;
      functions.push_back(function);
      function.by_reference = true;
      if (use == kPut && member.result == ValueType::kVariant) functions.push_back(function);
    }
  }
  return functions;
}

}  // namespace tessarlorn
