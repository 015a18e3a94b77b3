#include "hosts/objects/dictionary_object.h"

#include <array>
#include <string>

#include "hosts/objects/array.h"
#include "hosts/objects/known_objects.h"
#include "tessarlorn/error.h"

namespace tessarlorn {
namespace {

constexpr Argument kKey = {.name = "Key", .type = ValueType::kString};
constexpr Argument kItem = {.name = "Item", .type = ValueType::kVariant};
constexpr std::array kKeyOnly = {kKey};
constexpr std::array kKeyAndItem = {kKey, kItem};
constexpr std::array kKeyAndDefault = {kKey,
                                       Argument{.name = "Default", .type = ValueType::kVariant, .optional = true}};

constexpr std::int32_t kAdd = MemberId("Add");
constexpr std::int32_t kCompareMode = MemberId("CompareMode");
constexpr std::int32_t kCount = MemberId("Count");
constexpr std::int32_t kExists = MemberId("Exists");
constexpr std::int32_t kGetValue = MemberId("GetValue");
constexpr std::int32_t kItems = MemberId("Items");
constexpr std::int32_t kKeys = MemberId("Keys");
constexpr std::int32_t kRemove = MemberId("Remove");
constexpr std::int32_t kRemoveAll = MemberId("RemoveAll");
constexpr std::int32_t kRename = MemberId("Key");
constexpr std::int32_t kSetValue = MemberId("SetValue");

constexpr std::int32_t kBinaryCompare = 0;

std::vector<Variant> KeysOf(const Dictionary& dictionary) {
  std::vector<Variant> keys;
  keys.reserve(dictionary.size());
  for (const auto& [key, value] : dictionary) keys.emplace_back(key);
  return keys;
}

[[noreturn]] void RaiseNoSuchKey(const std::string& key) {
  constexpr std::int32_t kNoSuchKey = 32811;
  Raise(kNoSuchKey, "There is no key " + key);
}

void RefuseKnown(const Dictionary& dictionary, const std::string& key) {
  if (!dictionary.Exists(key)) return;
  Raise(error_number::kKeyExists, "This key is already associated with an element of this collection: " + key);
}

void Rename(Dictionary& dictionary, const std::string& key, const std::string& new_key) {
  if (!dictionary.Exists(key)) RaiseNoSuchKey(key);
  RefuseKnown(dictionary, new_key);
  dictionary.Rename(key, new_key);
}

void SetCompareMode(const Dictionary& dictionary, std::int32_t mode) {
  if (!dictionary.empty()) RaiseInvalidArgument("CompareMode of a Dictionary that has keys");
  if (mode != kBinaryCompare) RaiseInvalidArgument("CompareMode. The operations tell upper from lower case in keys");
}

}  // namespace

DictionaryObject::~DictionaryObject() {
  KnownObjects<DictionaryObject, Dictionary>::Instance().Forget(dictionary_.get());
}

const ClassDescription& DictionaryObject::Description() {
  static const ClassDescription kDescription = {
      .name = "Dictionary",
      .prog_id = "Mirel.Dictionary",
      .class_id = "EA42DD31-F11F-497C-BA9E-E9406C345382",
      .interface_id = "539F9DFF-7B1B-45D5-9EE1-3F700662A494",
      .help = "Values under keys. Keys are texts whose case counts; they keep the order in which they came.",
      .title = "Tessar Lorn picking and delivery: dictionary",
      .create = [](Host&) -> std::shared_ptr<AutomationObject> { return ObjectOf(std::make_shared<Dictionary>()); },
      .members = {
          {.name = "Item",
           .id = kDefaultMember,
           .uses = kGet | kPut,
           .arguments = kKeyOnly,
           .help = "The value under a key, Empty when there is none. Writing adds the key when it is new."},
          {.name = "Count", .id = kCount, .uses = kGet, .result = ValueType::kLong, .help = "Number of keys."},
          {.name = "Add",
           .id = kAdd,
           .returns_nothing = true,
           .arguments = kKeyAndItem,
           .help = "Adds a key with its value. Raises 457 when the key is there already."},
          {.name = "Exists",
           .id = kExists,
           .result = ValueType::kBoolean,
           .arguments = kKeyOnly,
           .help = "Whether there is such a key."},
          {.name = "GetValue",
           .id = kGetValue,
           .arguments = kKeyAndDefault,
           .help = "The value under a key, or the default when there is none."},
          {.name = "SetValue",
           .id = kSetValue,
           .returns_nothing = true,
           .arguments = kKeyAndItem,
           .help = "Writes the value under a key, which is added when it is new."},
          {.name = "Remove",
           .id = kRemove,
           .returns_nothing = true,
           .arguments = kKeyOnly,
           .help = "Takes a key and its value away. Raises 32811 when there is no such key."},
          {.name = "RemoveAll", .id = kRemoveAll, .returns_nothing = true, .help = "Takes all keys away."},
          {.name = "Keys", .id = kKeys, .help = "The keys as an array, in their order."},
          {.name = "Items", .id = kItems, .help = "The values as an array, in the order of their keys."},
          {.name = "_NewEnum", .id = kEnumerationMember, .uses = kGet, .help = "For Each goes through the keys."},
          {.name = "CompareMode",
           .id = kCompareMode,
           .uses = kGet | kPut,
           .result = ValueType::kLong,
           .help =
               "0: the case of keys counts, as it does to the operations. Only 0 can be written, while there are no "
               "keys; anything else raises 5."},
          {.name = "Key",
           .id = kRename,
           .uses = kPut,
           .result = ValueType::kString,
           .arguments = kKeyOnly,
           .help = "Gives a value another key in the place of the old one. Raises 32811 when there is no such key, 457 "
                   "when the new one is there already."},
      }};
  return kDescription;
}

std::vector<Variant> DictionaryObject::Items() const { return KeysOf(*dictionary_); }

Variant DictionaryObject::Do(const Member& member, MemberUse use, std::span<Variant> arguments) {
  const auto key = [&] { return arguments[0].ToText(); };
  switch (member.id) {
    case kDefaultMember:
      if (use == kGet) return dictionary_->GetValue(key());
      dictionary_->SetValue(key(), arguments[1]);
      return {};
    case kCount:
      return static_cast<std::int32_t>(dictionary_->size());
    case kAdd:
      RefuseKnown(*dictionary_, key());
      dictionary_->SetValue(key(), arguments[1]);
      return {};
    case kExists:
      return dictionary_->Exists(key());
    case kGetValue:
      return dictionary_->GetValue(key(), arguments[1]);
    case kSetValue:
      dictionary_->SetValue(key(), arguments[1]);
      return {};
    case kRemove:
      if (!dictionary_->Remove(key())) RaiseNoSuchKey(key());
      return {};
    case kRemoveAll:
      *dictionary_ = {};
      return {};
    case kCompareMode:
      if (use == kGet) return kBinaryCompare;
      SetCompareMode(*dictionary_, arguments[0].ToInt32());
      return {};
    case kRename:
      Rename(*dictionary_, key(), arguments[1].ToText());
      return {};
    case kKeys:
      return ToArray(KeysOf(*dictionary_));
    default: {
      std::vector<Variant> items;
      items.reserve(dictionary_->size());
      for (const auto& [own_key, value] : *dictionary_) items.push_back(value);
      return ToArray(std::move(items));
    }
  }
}

}  // namespace tessarlorn
