#include "frame/parameters.h"

#include <algorithm>

#include "tessarlorn/error.h"

namespace tessarlorn {

bool Parameters::HasAllOf(std::span<const Key> keys) const {
  return std::all_of(keys.rbegin(), keys.rend(), [this](const Key& key) {
    if (key.need == Need::kMandatory) return HasText(key.name);
    return key.need != Need::kGiven || Has(key.name);
  });
}

std::string Parameters::Dsn(std::span<const Key> keys) const {
  const auto key = std::find_if(keys.begin(), keys.end(), [](const Key& one) { return one.is_connection(); });
  return key == keys.end() ? std::string() : Text(key->name);
}

std::string Parameters::Text(std::string_view key) const {
  const Variant* value = Find(key);
  return value == nullptr ? std::string() : value->ToText();
}

std::string Parameters::TextOrDefault(const Key& key) const {
  const Variant* value = Find(key.name);
  return value == nullptr ? std::string(key.fallback) : value->ToText();
}

std::int32_t Parameters::Number(std::string_view key) const {
  const Variant* value = Find(key);
  return value == nullptr || value->ToText().empty() ? 0 : value->ToInt32();
}

const Variant& Parameters::Value(std::string_view key) const {
  static const Variant kMissing;
  const Variant* value = Find(key);
  return value == nullptr ? kMissing : *value;
}

bool Parameters::IsNumber(std::string_view key, std::int32_t number) const {
  const Variant* value = Find(key);
  if (value == nullptr || value->is_empty()) return false;
  const auto* text = value->get_if<std::string>();
  return (text == nullptr || !text->empty()) && value->Equals(number);
}

std::shared_ptr<Dictionary> ItemDictionary(const Variant& item) {
  std::shared_ptr<Dictionary> dictionary = item.ToDictionary();
  if (!dictionary) RaiseTypeMismatch();
  return dictionary;
}

}  // namespace tessarlorn
