// The two service classes as objects of automation: their members are the rows of the operation table.
#pragma once

#include "hosts/objects/automation_object.h"
#include "tessarlorn/operations.h"

namespace tessarlorn {

class ServiceClassObject final : public AutomationObject {
 public:
  ServiceClassObject(Host& host, ServiceClass service) : object_(host, service) {}

  static const ClassDescription& Description(ServiceClass service);
  [[nodiscard]] const ClassDescription& description() const override { return Description(object_.service()); }

 protected:
  Variant Do(const Member& member, MemberUse use, std::span<Variant> arguments) override;

 private:
  ServiceObject object_;
};

}  // namespace tessarlorn
