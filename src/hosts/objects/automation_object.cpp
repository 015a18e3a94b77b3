#include "hosts/objects/automation_object.h"

#include <algorithm>
#include <array>
#include <vector>

#include "automation/arguments.h"
#include "hosts/objects/array.h"
#include "hosts/objects/dictionary_object.h"
#include "hosts/objects/known_objects.h"
#include "hosts/objects/recordset/field_object.h"
#include "hosts/objects/recordset/properties_object.h"
#include "hosts/objects/recordset/recordset_object.h"
#include "hosts/objects/service_class.h"
#include "hosts/objects/vector_object.h"
#include "platform/text/text.h"
#include "tessarlorn/error.h"

namespace tessarlorn {
namespace {

template <typename Object>
std::shared_ptr<Object> As(const std::shared_ptr<AutomationObject>& object) {
  return std::dynamic_pointer_cast<Object>(object);
}

}  // namespace

const Member* ClassDescription::Find(std::string_view member) const {
  const auto found = std::find_if(members.begin(), members.end(),
                                  [member](const Member& own) { return EqualsIgnoreCase(own.name, member); });
  return found == members.end() ? nullptr : &*found;
}

const Member* ClassDescription::Find(std::int32_t id) const {
  const auto found = std::find_if(members.begin(), members.end(), [id](const Member& own) { return own.id == id; });
  return found == members.end() ? nullptr : &*found;
}

std::string ClassDescription::FullName(const Member& member) const {
  return std::string(name) + "." + std::string(member.name);
}

Variant AutomationObject::Use(const Member& member, MemberUse use, std::span<Variant> arguments) {
  const auto describe = [&] { return description().FullName(member); };
  if ((member.uses & use) == 0) {
    Raise(error_number::kNoSuchMember, "Object doesn't support this property or method: " + describe());
  }
  if (member.id == kEnumerationMember) return ToArray(Items());
  return CallWithAllArguments(member.arguments, arguments, use == kPut, describe,
                              [&](std::span<Variant> all) { return Do(member, use, all); });
}

Variant AutomationObject::Call(std::string_view method, std::span<const Variant> arguments) {
  const Member* const member = description().Find(method);
  if (member == nullptr) {
    Raise(error_number::kNoSuchMember, "Object doesn't support this property or method: " +
                                           std::string(description().name) + "." + std::string(method));
  }
  std::vector<Variant> own(arguments.begin(), arguments.end());
  return Use(*member, (member->uses & kCall) != 0 ? kCall : kGet, own);
}

std::vector<Variant> AutomationObject::Items() const {
  Raise(error_number::kNoSuchMember, "Object not a collection: " + std::string(description().name));
}

std::span<const ClassDescription* const> AutomationClasses() {
  static const std::array kClasses = {
      &ServiceClassObject::Description(ServiceClass::kSaveData),
      &ServiceClassObject::Description(ServiceClass::kGetData),
      &DictionaryObject::Description(),
      &VectorObject::Description(),
      &RecordsetObject::Description(),
      &FieldsObject::Description(),
      &FieldObject::Description(),
      &PropertiesObject::Description(),
  };
  return kClasses;
}

std::shared_ptr<AutomationObject> ObjectOf(const Variant& value) {
  if (const auto* object = value.get_if<std::shared_ptr<Object>>()) {
    AutomationObject* const own = *object == nullptr ? nullptr : (*object)->automation();
    return own == nullptr ? nullptr : std::shared_ptr<AutomationObject>(*object, own);
  }
  if (const auto dictionary = value.ToDictionary()) {
    return KnownObjects<DictionaryObject, Dictionary>::Instance().Of(dictionary);
  }
  if (const auto vector = value.ToVector()) return KnownObjects<VectorObject, Vector>::Instance().Of(vector);
  if (auto recordset = value.ToRecordset()) return std::make_shared<RecordsetObject>(std::move(recordset));
  return nullptr;
}

Variant ValueOf(const std::shared_ptr<AutomationObject>& object) {
  if (const auto dictionary = As<DictionaryObject>(object)) return dictionary->dictionary();
  if (const auto vector = As<VectorObject>(object)) return vector->vector();
  return std::shared_ptr<Object>(object);
}

}  // namespace tessarlorn
