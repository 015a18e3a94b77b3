#include "hosts/objects/service_class.h"

#include <deque>
#include <memory>
#include <string>

namespace tessarlorn {
namespace {

template <ServiceClass kService>
std::shared_ptr<AutomationObject> Create(Host& host) {
  return std::make_shared<ServiceClassObject>(host, kService);
}

ClassDescription MakeDescription(ServiceClass service) {
  const bool saves = service == ServiceClass::kSaveData;
  ClassDescription description;
  description.name = ClassName(service);
  description.prog_id = saves ? "TessarLornPickingAndDelivery.clsSaveData" : "TessarLornPickingAndDelivery.clsGetData";
  description.class_id = saves ? "0FCEDCEA-3E55-4379-AD0E-E995153A457A" : "914BB553-55C6-4512-A89A-BACA8B46710B";
  description.interface_id = saves ? "1E27C942-8EE4-44B4-ABCC-69B5FBA148B5" : "F8090680-DED3-472A-B6BD-5DEBC50A61AE";
  description.help = saves ? "Changes orders; most operations answer whether they did." : "Reads orders.";
  description.title = saves ? "Tessar Lorn picking and delivery: writes" : "Tessar Lorn picking and delivery: reads";
  description.create = saves ? Create<ServiceClass::kSaveData> : Create<ServiceClass::kGetData>;
  // Members refer to their texts for good.
  static std::deque<std::string> texts;
  for (const Operation* const operation : Operations()) {
    if (operation->service != service) continue;
    texts.push_back(operation->help());
    description.members.push_back({.name = operation->name,
                                   .id = MemberId(operation->name),
                                   .uses = operation->property ? kGet : kCall,
                                   .result = operation->result,
                                   .arguments = operation->arguments(),
                                   .help = texts.back(),
                                   .operation = operation,
                                   .result_class = operation->name == "TransMode" ? "TransactionMode" : ""});
  }
  return description;
}

}  // namespace

const ClassDescription& ServiceClassObject::Description(ServiceClass service) {
  static const ClassDescription kSave = MakeDescription(ServiceClass::kSaveData);
  static const ClassDescription kGet = MakeDescription(ServiceClass::kGetData);
  return service == ServiceClass::kSaveData ? kSave : kGet;
}

Variant ServiceClassObject::Do(const Member& member, MemberUse /*use*/, std::span<Variant> arguments) {
  return object_.Invoke(*member.operation, arguments);
}

}  // namespace tessarlorn
