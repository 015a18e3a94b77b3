// Arguments for any operation, made of a value for each name.
#pragma once

#include <functional>

#include "tessarlorn/operations.h"

namespace tessarlorn {

/// Answers the value of an argument or key that is no collection; Empty leaves a key out.
using SampleOf = std::function<Variant(std::string_view name, ValueType type, Standing stands)>;

inline Dictionary SampleKeys(std::span<const Key> keys, const std::string& dsn, const SampleOf& sample) {
  Dictionary values;
  for (const Key& key : keys) {
    const Variant value = key.is_connection()              ? Variant(dsn)
                          : key.type == ValueType::kVector ? Vector{SampleKeys(key.item_keys, dsn, sample)}
                                                           : sample(key.name, key.type, key.stands);
    if (!value.is_empty()) values.SetValue(key.name, value);
  }
  return values;
}

/// Where every key counts it is that of "key", with the value of "value".
inline std::vector<Variant> SampleArguments(const Operation& operation, const std::string& dsn,
                                            const SampleOf& sample) {
  std::vector<Variant> arguments;
  for (const Argument& argument : operation.arguments()) {
    if (argument.any_key) {
      const std::string key = sample("key", ValueType::kString, argument.stands).ToText();
      arguments.emplace_back(Dictionary{{key, sample("value", ValueType::kString, argument.stands)}});
    } else if (argument.keys.empty()) {
      arguments.push_back(argument.is_connection ? Variant(dsn)
                                                 : sample(argument.name, argument.type, argument.stands));
    } else {
      const Dictionary keys = SampleKeys(argument.keys, dsn, sample);
      arguments.push_back(argument.type == ValueType::kVector ? Variant(Vector{keys}) : Variant(keys));
    }
  }
  return arguments;
}

}  // namespace tessarlorn
