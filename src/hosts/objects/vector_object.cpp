#include "hosts/objects/vector_object.h"

#include <array>

#include "hosts/objects/known_objects.h"
#include "tessarlorn/error.h"

namespace tessarlorn {
namespace {

constexpr std::array kIndex = {Argument{.name = "Index", .type = ValueType::kLong}};
constexpr std::array kItem = {Argument{.name = "Item", .type = ValueType::kVariant}};

constexpr std::int32_t kAdd = MemberId("Add");
constexpr std::int32_t kClear = MemberId("Clear");
constexpr std::int32_t kCount = MemberId("Count");
constexpr std::int32_t kRemove = MemberId("Remove");

}  // namespace

VectorObject::~VectorObject() { KnownObjects<VectorObject, Vector>::Instance().Forget(vector_.get()); }

const ClassDescription& VectorObject::Description() {
  static const ClassDescription kDescription = {
      .name = "Vector",
      .prog_id = "Mirel.Vector",
      .class_id = "8E81B607-5334-4BA0-90B0-03B0209FBA25",
      .interface_id = "B5BD92C3-FC54-4239-A8E5-E9FCBCC6699C",
      .help = "Values in order, counted from 1.",
      .title = "Tessar Lorn picking and delivery: vector",
      .create = [](Host&) -> std::shared_ptr<AutomationObject> { return ObjectOf(std::make_shared<Vector>()); },
      .members = {
          {.name = "Item",
           .id = kDefaultMember,
           .uses = kGet | kPut,
           .arguments = kIndex,
           .help = "The value at a position. Raises 9 when there is no such position."},
          {.name = "Count", .id = kCount, .uses = kGet, .result = ValueType::kLong, .help = "Number of values."},
          {.name = "Add",
           .id = kAdd,
           .returns_nothing = true,
           .arguments = kItem,
           .help = "Adds a value behind the others."},
          {.name = "Remove",
           .id = kRemove,
           .returns_nothing = true,
           .arguments = kIndex,
           .help = "Takes the value at a position away. Raises 9 when there is no such position."},
          {.name = "Clear", .id = kClear, .returns_nothing = true, .help = "Takes all values away."},
          {.name = "_NewEnum", .id = kEnumerationMember, .uses = kGet, .help = "For Each goes through the values."},
      }};
  return kDescription;
}

Variant VectorObject::Do(const Member& member, MemberUse use, std::span<Variant> arguments) {
  const auto position = [&] {
    const std::int32_t index = arguments[0].ToInt32();
    return index < 0 ? std::size_t{0} : static_cast<std::size_t>(index);
  };
  switch (member.id) {
    case kDefaultMember:
      if (use == kGet) return vector_->At(position());
      vector_->Set(position(), arguments[1]);
      return {};
    case kCount:
      return static_cast<std::int32_t>(vector_->size());
    case kAdd:
      vector_->Add(arguments[0]);
      return {};
    case kRemove:
      vector_->Remove(position());
      return {};
    default:
      *vector_ = {};
      return {};
  }
}

}  // namespace tessarlorn
