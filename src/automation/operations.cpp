#include "automation/operations.h"

#include <algorithm>
#include <vector>

#include "automation/binding.h"
#include "platform/error.h"
#include "platform/text.h"

namespace tessarlorn {
namespace {

constexpr std::string_view kProject = "TessarLornPickingAndDelivery.";
constexpr std::array kServices = {ServiceClass::kSaveData, ServiceClass::kGetData};

std::span<const Operation> OperationsOf(ServiceClass service) {
  return service == ServiceClass::kSaveData ? SaveOperations() : GetOperations();
}

ServiceClass ServiceByName(std::string_view class_name) {
  const std::string_view bare =
      StartsWithIgnoreCase(class_name, kProject) ? class_name.substr(kProject.size()) : class_name;
  for (const ServiceClass service : kServices) {
    if (EqualsIgnoreCase(bare, ClassName(service))) return service;
  }
  Raise(error_number::kCannotCreateObject, "ActiveX component can't create object: " + std::string(class_name));
}

}  // namespace

std::string_view ClassName(ServiceClass service) {
  return service == ServiceClass::kSaveData ? "clsSaveData" : "clsGetData";
}

std::string_view TypeName(ValueType type) {
  constexpr std::array<std::string_view, 10> kNames = {"String", "Long",       "Integer", "Double",    "Boolean",
                                                       "Date",   "Dictionary", "Vector",  "Recordset", "Variant"};
  return kNames[static_cast<std::size_t>(type)];
}

std::string Key::Explanation() const {
  std::string text(help);
  if (need == Need::kMandatory) text += "; nothing is done without it";
  if (!fallback.empty()) text += "; default " + std::string(fallback);
  return text;
}

std::span<const Operation* const> Operations() {
  static const std::vector<const Operation*> kAll = [] {
    std::vector<const Operation*> all;
    for (const ServiceClass service : kServices) {
      for (const Operation& operation : OperationsOf(service)) all.push_back(&operation);
    }
    return all;
  }();
  return kAll;
}

const Operation* FindOperation(std::string_view name) {
  for (const ServiceClass service : kServices) {
    const std::string_view prefix = ClassName(service);
    if (name.size() > prefix.size() && name[prefix.size()] == '.' && StartsWithIgnoreCase(name, prefix)) {
      return FindOperation(service, name.substr(prefix.size() + 1));
    }
  }
  for (const ServiceClass service : kServices) {
    if (const Operation* operation = FindOperation(service, name)) return operation;
  }
  return nullptr;
}

const Operation* FindOperation(ServiceClass service, std::string_view name) {
  for (const Operation& operation : OperationsOf(service)) {
    if (EqualsIgnoreCase(operation.name, name)) return &operation;
  }
  return nullptr;
}

ServiceObject::ServiceObject(ServiceClass service) {
  if (service == ServiceClass::kSaveData) {
    instance_.emplace<clsSaveData>();
  } else {
    instance_.emplace<clsGetData>();
  }
}

ServiceObject::ServiceObject(std::string_view class_name) : ServiceObject(ServiceByName(class_name)) {}

Variant ServiceObject::Invoke(const Operation& operation, std::span<Variant> arguments) {
  const auto describe = [&] { return std::string(ClassName(operation.service)) + "." + std::string(operation.name); };
  if (operation.service != service()) {
    Raise(error_number::kNoSuchMember, "Object doesn't support this property or method: " + describe());
  }
  if (arguments.size() > operation.argument_count) {
    Raise(error_number::kWrongArgumentCount, "Wrong number of arguments: " + describe());
  }
  if (arguments.size() == operation.argument_count) return operation.call(*this, arguments);
  for (const Argument& argument : operation.arguments().subspan(arguments.size())) {
    if (argument.optional) continue;
    Raise(error_number::kArgumentNotOptional,
          "Argument not optional: " + std::string(argument.name) + " of " + describe());
  }
  std::array<Variant, Operation::kMostArguments> filled;
  const std::span<Variant> all = std::span(filled).first(operation.argument_count);
  std::copy(arguments.begin(), arguments.end(), all.begin());
  Variant result = operation.call(*this, all);
  std::copy_n(all.begin(), arguments.size(), arguments.begin());
  return result;
}

}  // namespace tessarlorn
