// The dynamic properties of a recordset or field as clients of automation see them: there are none.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "hosts/objects/automation_object.h"

namespace tessarlorn {

/// An empty collection.
class PropertiesObject final : public AutomationObject {
 public:
  static const ClassDescription& Description();
  [[nodiscard]] const ClassDescription& description() const override { return Description(); }
  [[nodiscard]] std::vector<Variant> Items() const override { return {}; }

 protected:
  Variant Do(const Member& member, MemberUse use, std::span<Variant> arguments) override;
};

inline constexpr std::int32_t kPropertiesMember = 500;
/// The member Properties of an object that has them.
Member PropertiesMember();
/// What it answers: the collection, or with a name or position the property of it, which raises 3265.
Variant PropertiesOf(std::span<const Variant> arguments);

}  // namespace tessarlorn
