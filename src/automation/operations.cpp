#include "tessarlorn/operations.h"

#include <vector>

#include "automation/arguments.h"
#include "automation/binding.h"
#include "platform/text/text.h"
#include "tessarlorn/error.h"

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

ServiceObject::ServiceObject(Host& host, ServiceClass service) {
  if (service == ServiceClass::kSaveData) {
    instance_.emplace<clsSaveData>(host);
  } else {
    instance_.emplace<clsGetData>(host);
  }
}

ServiceObject::ServiceObject(Host& host, std::string_view class_name)
    : ServiceObject(host, ServiceByName(class_name)) {}

Variant ServiceObject::Invoke(const Operation& operation, std::span<Variant> arguments) {
  const auto describe = [&] { return std::string(ClassName(operation.service)) + "." + std::string(operation.name); };
  if (operation.service != service()) {
    Raise(error_number::kNoSuchMember, "Object doesn't support this property or method: " + describe());
  }
  return CallWithAllArguments(operation.arguments(), arguments, false, describe,
                              [&](std::span<Variant> all) { return operation.call(*this, all); });
}

}  // namespace tessarlorn
