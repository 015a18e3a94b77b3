#include "hosts/objects/recordset/properties_object.h"

#include <array>
#include <memory>

#include "hosts/objects/recordset/recordset_errors.h"

namespace tessarlorn {
namespace {

constexpr std::array kIndex = {Argument{.name = "Index", .type = ValueType::kVariant}};
constexpr std::array kOptionalIndex = {Argument{.name = "Index", .type = ValueType::kVariant, .optional = true}};

constexpr std::int32_t kCount = MemberId("Count");

}  // namespace

const ClassDescription& PropertiesObject::Description() {
  static const ClassDescription kDescription = {
      .name = "Properties",
      .prog_id = "",
      .class_id = "1598C71D-066B-4AA1-902E-2F4A66E82892",
      .interface_id = "274E7EEA-03BD-4011-A3E7-E01A747C6125",
      .help = "The dynamic properties of a recordset or field. There are none.",
      .members = {
          {.name = "Item",
           .id = kDefaultMember,
           .uses = kGet,
           .arguments = kIndex,
           .help = "Raises 3265: there is no property."},
          {.name = "Count", .id = kCount, .uses = kGet, .result = ValueType::kLong, .help = "0."},
          {.name = "_NewEnum", .id = kEnumerationMember, .uses = kGet, .help = "For Each goes through nothing."},
      }};
  return kDescription;
}

Variant PropertiesObject::Do(const Member& member, MemberUse /*use*/, std::span<Variant> arguments) {
  if (member.id == kCount) return 0;
  RaiseNoSuchField(arguments[0].ToText());
}

Member PropertiesMember() {
  return {.name = "Properties",
          .id = kPropertiesMember,
          .uses = kGet,
          .arguments = kOptionalIndex,
          .help = "The dynamic properties: an empty collection.",
          .result_class = "Properties"};
}

Variant PropertiesOf(std::span<const Variant> arguments) {
  if (!arguments[0].is_empty()) RaiseNoSuchField(arguments[0].ToText());
  return std::shared_ptr<Object>(std::make_shared<PropertiesObject>());
}

}  // namespace tessarlorn
