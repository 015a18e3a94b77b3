#include "hosts/com/collections.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
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

/// A script counts the milliseconds from 1970 on, of the time without a zone. Raises 6 for a year outside of 1 to 9999.
Variant FromScriptDate(ForeignObject& script) {
  constexpr double kMinute = 60'000;
  constexpr double kDay = 24 * 60 * kMinute;
  const auto begin_of = [](int year) { return static_cast<double>(DaysFromCivil(year, 1, 1)) * kDay; };
  const double zone = script.Call("getTimezoneOffset", {}).ToDouble() * kMinute;
  const double date = script.Call("getTime", {}).ToDouble() - zone + begin_of(1970);
  // A date that is not a number fails this as well.
  if (!(date >= begin_of(1) && date < begin_of(10000))) RaiseOverflow();
  return DateTime(std::llround(date));
}

void RefuseOtherCase(std::string_view name, std::span<const Key> keys, const Dictionary& dictionary) {
  for (const auto& [key, item] : dictionary) {
    for (const Key& wanted : keys) {
      if (key == wanted.name || !EqualsIgnoreCase(key, wanted.name) || dictionary.Exists(wanted.name)) continue;
      Raise(error_number::kInvalidArgument, std::string(name) + ": the key is \"" + std::string(wanted.name) +
                                                "\", not \"" + key + "\": operations tell upper from lower case");
    }
  }
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

  /// Raises 5 for a key that an operation would overlook, although it is in a dictionary that finds it in any case.
  /// @param keys of the dictionary that the value is, or of those in the vector that it is
  void CheckCase(std::string_view name, std::span<const Key> keys, const Variant& value) const {
    if (ignoring_case_.empty()) return;
    if (const auto vector = value.ToVector()) {
      for (const Variant& item : *vector) CheckCase(name, keys, item);
    }
    const auto dictionary = value.ToDictionary();
    if (dictionary == nullptr) return;
    if (ignoring_case_.contains(dictionary)) RefuseOtherCase(name, keys, *dictionary);
    for (const Key& key : keys) {
      if (!key.item_keys.empty()) CheckCase(key.name, key.item_keys, dictionary->GetValue(key.name));
    }
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

  Variant FromScriptArray(ForeignObject& script) {
    constexpr std::int32_t kLongest = 1'000'000;
    const std::int32_t length = script.Get("length").ToInt32();
    if (length > kLongest) RaiseInvalidArgument("an array of " + std::to_string(length) + " elements");
    auto vector = std::make_shared<Vector>();
    for (std::int32_t i = 0; i < length; ++i) {
      const std::string index = std::to_string(i);
      vector->Add(script.Has(index) ? Convert(script.Get(index)) : Variant());
    }
    return vector;
  }

  /// An object of JScript: an array, a date, one that holds members under names, or one that stands for a text or
  /// number.
  Variant FromScript(ForeignObject& script, const Variant& value) {
    if (script.Has("length") && script.Has("push") && script.Has("splice")) return FromScriptArray(script);
    if (script.Has("getTime") && script.Has("getTimezoneOffset")) return FromScriptDate(script);
    const Variant plain = DefaultValueOf(value);
    const auto names = plain.ToText() == "[object Object]" ? script.MemberNames() : std::nullopt;
    if (!names) return plain;
    auto dictionary = std::make_shared<Dictionary>();
    for (const std::string& name : *names) dictionary->SetValue(name, Convert(script.Get(name)));
    return dictionary;
  }

  Variant FromForeign(ForeignObject& foreign, const Variant& value) {
    if (IsOfScript(foreign)) return FromScript(foreign, value);
    if (foreign.Has("Keys") && foreign.Has("Item")) {
      auto dictionary = std::make_shared<Dictionary>();
      const std::shared_ptr<Vector> keys = Convert(foreign.Call("Keys", {})).ToVector();
      if (keys == nullptr) RaiseTypeMismatch();
      for (const Variant& key : *keys) dictionary->SetValue(key.ToText(), Convert(foreign.Call("Item", {&key, 1})));
      constexpr std::int32_t kBinary = 0;
      if (foreign.Has("CompareMode") && foreign.Get("CompareMode").ToInt32() != kBinary)
        ignoring_case_.insert(dictionary);
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
  /// Those that were made of dictionaries which do not tell their keys by case.
  std::unordered_set<std::shared_ptr<Dictionary>> ignoring_case_;
  int depth_ = 0;
};

}  // namespace

void WithCollections(std::span<const Argument> declared, std::span<Variant> values) {
  Collector collector;
  for (std::size_t i = 0; i < std::min(declared.size(), values.size()); ++i) {
    if (declared[i].type == ValueType::kDictionary || declared[i].type == ValueType::kVector) {
      if (IsOwn(values[i])) continue;
      values[i] = collector.Convert(values[i]);
      collector.CheckCase(declared[i].name, declared[i].keys, values[i]);
    }
  }
}

}  // namespace tessarlorn::com
