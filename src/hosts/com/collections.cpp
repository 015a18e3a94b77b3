#include "hosts/com/collections.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "com_base/pointers.h"
#include "hosts/com/foreign_object.h"
#include "hosts/objects/array.h"
#include "platform/text/text.h"
#include "tessarlorn/collections.h"
#include "tessarlorn/error.h"

namespace tessarlorn::com {
namespace {

/// By which two references to one object are known: the only interface that always has the same address.
const void* IdentityOf(const ForeignObject& object) { return Query<IUnknown>(object.get()).get(); }

/// Whether nothing in the value has to be converted: plain values, and the component's collections of such. One that is
/// nested deeper than that may hold itself, which converting finds out.
bool IsOwn(const Variant& value, int depth = 0) {
  constexpr int kDeepest = 8;
  if (!value.is_object()) return true;
  if (depth > kDeepest) return false;
  const auto is_own = [depth](const Variant& inner) { return IsOwn(inner, depth + 1); };
  if (const auto dictionary = value.ToDictionary()) {
    return std::all_of(dictionary->begin(), dictionary->end(), [&](const auto& entry) { return is_own(entry.second); });
  }
  const auto vector = value.ToVector();
  return vector != nullptr && std::all_of(vector->begin(), vector->end(), is_own);
}

/// Converts each object once, however many hold it.
class Collector {
 public:
  Variant Convert(const Variant& value) {
    if (const auto dictionary = value.ToDictionary()) {
      return Once(dictionary.get(), value, [&] { return FromDictionary(*dictionary); });
    }
    if (const auto vector = value.ToVector()) {
      return Once(vector.get(), value, [&] { return FromItems(*vector); });
    }
    const auto* const object = value.get_if<std::shared_ptr<Object>>();
    if (object == nullptr) return value;
    if (const auto* array = dynamic_cast<const Array*>(object->get())) {
      if (array->dimensions() != 1) RaiseTypeMismatch();
      return Once(array, value, [&] { return FromItems(array->Values()); });
    }
    auto* const foreign = dynamic_cast<ForeignObject*>(object->get());
    if (foreign == nullptr) return DefaultValueOf(value);
    return Once(IdentityOf(*foreign), value, [&] { return FromForeign(*foreign, value); });
  }

 private:
  struct Conversion {
    /// Kept, so that no other object takes its address meanwhile.
    Variant source;
    Variant result;
    bool done = false;
  };

  template <typename Make>
  Variant Once(const void* identity, const Variant& source, const Make& make) {
    constexpr int kDeepest = 64;
    const auto [place, is_new] = conversions_.try_emplace(identity);
    Conversion& conversion = place->second;
    if (conversion.done) return conversion.result;
    if (!is_new) Raise(error_number::kInvalidArgument, "A collection holds itself");
    if (depth_ > kDeepest) Raise(error_number::kInvalidArgument, "Collections are nested too deep");
    conversion.source = source;
    ++depth_;
    conversion.result = make();
    --depth_;
    conversion.done = true;
    return conversion.result;
  }

  Variant FromDictionary(const Dictionary& dictionary) {
    auto copy = std::make_shared<Dictionary>();
    for (const auto& [key, item] : dictionary) copy->SetValue(key, Convert(item));
    return copy;
  }

  template <typename Items>
  Variant FromItems(const Items& items) {
    auto vector = std::make_shared<Vector>();
    for (const Variant& item : items) vector->Add(Convert(item));
    return vector;
  }

  /// An object of JScript: an array, one that holds members under names, or one that stands for a value, as a date
  /// does.
  Variant FromScript(ForeignObject& script, const Variant& value) {
    if (script.Has("length") && script.Has("push")) {
      auto vector = std::make_shared<Vector>();
      const std::int32_t length = script.Get("length").ToInt32();
      for (std::int32_t i = 0; i < length; ++i) {
        const std::string index = std::to_string(i);
        vector->Add(script.Has(index) ? Convert(script.Get(index)) : Variant());
      }
      return vector;
    }
    const Variant plain = DefaultValueOf(value);
    const auto names = plain.ToText() == "[object Object]" ? script.MemberNames() : std::nullopt;
    if (!names) return plain;
    auto dictionary = std::make_shared<Dictionary>();
    for (const std::string& name : *names) dictionary->SetValue(name, Convert(script.Get(name)));
    return dictionary;
  }

  Variant FromForeign(ForeignObject& foreign, const Variant& value) {
    if (foreign.Has("hasOwnProperty")) return FromScript(foreign, value);
    if (foreign.Has("Keys") && foreign.Has("Item")) {
      auto dictionary = std::make_shared<Dictionary>();
      const std::shared_ptr<Vector> keys = Convert(foreign.Call("Keys", {})).ToVector();
      if (keys == nullptr) RaiseTypeMismatch();
      for (const Variant& key : *keys) dictionary->SetValue(key.ToText(), Convert(foreign.Call("Item", {&key, 1})));
      return dictionary;
    }
    // Rows are no value, and what else the fields of the current one are is for whoever reads them.
    if (foreign.Has("EOF")) return value;
    // The cells of a sheet can be counted and enumerated, too, but who passes them means what stands in them.
    if (foreign.Has("Value")) return DefaultValueOf(value);
    if (const auto items = foreign.Has("Count") ? foreign.Items() : std::nullopt) return FromItems(*items);
    return DefaultValueOf(value);
  }

  /// By identity; references to its values stay good while it grows.
  std::unordered_map<const void*, Conversion> conversions_;
  int depth_ = 0;
};

/// Whether it is a dictionary that does not tell its keys by case.
bool IgnoresCase(const Variant& value) {
  constexpr std::int32_t kBinary = 0;
  const auto* const object = value.get_if<std::shared_ptr<Object>>();
  auto* const foreign = object == nullptr ? nullptr : dynamic_cast<ForeignObject*>(object->get());
  return foreign != nullptr && foreign->Has("CompareMode") && foreign->Get("CompareMode").ToInt32() != kBinary;
}

/// Raises 5 for a key that an operation would overlook, although it is in a dictionary that finds it in any case.
void CheckCase(const Argument& argument, const Dictionary& dictionary) {
  for (const auto& [key, item] : dictionary) {
    for (const Key& wanted : argument.keys) {
      if (key == wanted.name || !EqualsIgnoreCase(key, wanted.name) || dictionary.Exists(wanted.name)) continue;
      Raise(error_number::kInvalidArgument, std::string(argument.name) + ": the key is \"" + std::string(wanted.name) +
                                                "\", not \"" + key + "\": operations tell upper from lower case");
    }
  }
}

}  // namespace

void WithCollections(std::span<const Argument> declared, std::span<Variant> values) {
  Collector collector;
  for (std::size_t i = 0; i < std::min(declared.size(), values.size()); ++i) {
    if (declared[i].type == ValueType::kDictionary || declared[i].type == ValueType::kVector) {
      if (IsOwn(values[i])) continue;
      const bool ignores_case = IgnoresCase(values[i]);
      values[i] = collector.Convert(values[i]);
      const auto dictionary = ignores_case ? values[i].ToDictionary() : nullptr;
      if (dictionary != nullptr) CheckCase(declared[i], *dictionary);
    }
  }
}

}  // namespace tessarlorn::com
