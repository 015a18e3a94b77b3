#include "hosts/calls/call_arguments.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <set>
#include <utility>

#include "hosts/calls/json_arguments.h"
#include "hosts/calls/wrong_call.h"
#include "platform/text/text.h"

namespace tessarlorn {
namespace {

bool IsCollection(ValueType type) { return type == ValueType::kDictionary || type == ValueType::kVector; }

std::vector<std::string_view> Names(std::span<const Key> keys) {
  std::vector<std::string_view> names;
  for (const Key& key : keys) names.push_back(key.name);
  return names;
}

const Key* FindKey(std::span<const Key> keys, std::string_view name) {
  const auto found = std::find_if(keys.begin(), keys.end(), [&](const Key& key) { return key.name == name; });
  return found == keys.end() ? nullptr : &*found;
}

/// Whether the value is what the declared type wants; any value fits a type that is no collection.
bool Fits(const Variant& value, ValueType type) {
  if (type == ValueType::kDictionary) return value.ToDictionary() != nullptr;
  if (type == ValueType::kVector) return value.ToVector() != nullptr;
  return true;
}

void RequireFit(const Variant& value, ValueType type, const std::string& path) {
  if (Fits(value, type)) return;
  throw WrongCall(path + " wants a " + std::string(TypeName(type)) + ", not " + std::string(value.type_name()), path);
}

[[noreturn]] void ThrowUnknownKey(const std::string& path, const std::string& name, std::span<const Key> keys) {
  throw WrongCall(path + " has no key " + name + DidYouMean(name, Names(keys)), path + "." + name);
}

/// Checks the keys of a Dictionary, or of the Dictionaries in a Vector.
void CheckKeys(const Variant& value, std::span<const Key> keys, const std::string& path) {
  if (const std::shared_ptr<Vector> items = value.ToVector()) {
    for (std::size_t i = 1; i <= items->size(); ++i) {
      std::string item_path = path;
      item_path.append("[").append(std::to_string(i)).append("]");
      if (items->At(i).ToDictionary()) CheckKeys(items->At(i), keys, item_path);
    }
    return;
  }
  for (const auto& [name, entry] : *value.ToDictionary()) {
    const Key* const key = FindKey(keys, name);
    if (key == nullptr) ThrowUnknownKey(path, name, keys);
    std::string key_path = path;
    key_path.append(".").append(name);
    RequireFit(entry, key->type, key_path);
    if (!key->item_keys.empty()) CheckKeys(entry, key->item_keys, key_path);
  }
}

/// What stands before the "=" of a word.
std::string_view Target(std::string_view word) { return word.substr(0, word.find('=')); }

class Reader {
 public:
  explicit Reader(const Operation& operation) : operation_(operation), values_(operation.argument_count) {}

  void TakeJson(const Dictionary& json) {
    for (const auto& [name, value] : json) {
      const std::size_t position = Position(name);
      if (!values_[position].is_empty()) throw WrongCall("argument " + name + " is given twice", name);
      values_[position] = value;
    }
  }

  void TakeWord(const std::string& word) {
    const std::string target(Target(word));
    if (target.size() == word.size()) {
      throw WrongCall("\"" + word + "\" is neither argument=value nor argument.Key=value");
    }
    const std::string value = word.substr(target.size() + 1);
    const std::size_t dot = target.find('.');
    const std::string key_part = dot == std::string::npos ? "" : target.substr(dot);
    if (!seen_.insert(LowerCase(target.substr(0, dot)) + key_part).second) {
      throw WrongCall(target + " is given twice", target);
    }
    const std::size_t position = Position(target.substr(0, dot));
    const Argument& argument = operation_.arguments()[position];
    if (dot == std::string::npos) {
      values_[position] = FromText(value, argument.type, target);
      return;
    }
    if (argument.type != ValueType::kDictionary) {
      throw WrongCall(std::string(argument.name) + " is a " + std::string(TypeName(argument.type)) +
                          " and has no keys" + (argument.type == ValueType::kVector ? "; give it as a JSON array" : ""),
                      target);
    }
    const std::string name = target.substr(dot + 1);
    const Key* const key = FindKey(argument.keys, name);
    if (key == nullptr && !argument.any_key) {
      ThrowUnknownKey(std::string(argument.name), name, argument.keys);
    }
    RequireDictionary(position).SetValue(name, FromText(value, key ? key->type : ValueType::kString, target));
  }

  std::vector<Variant> Finish(std::string_view dsn) && {
    for (std::size_t i = 0; i < values_.size(); ++i) {
      const Argument& argument = operation_.arguments()[i];
      Connect(i, dsn);
      if (values_[i].is_empty()) {
        RequireGiven(argument);
        continue;
      }
      RequireFit(values_[i], argument.type, std::string(argument.name));
      if (IsCollection(argument.type) && !argument.any_key) {
        CheckKeys(values_[i], argument.keys, std::string(argument.name));
      }
    }
    return std::move(values_);
  }

 private:
  std::size_t Position(std::string_view name) const {
    const std::span<const Argument> arguments = operation_.arguments();
    if (arguments.empty()) throw WrongCall(std::string(operation_.name) + " takes no arguments");
    std::vector<std::string_view> names;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      if (EqualsIgnoreCase(arguments[i].name, name)) return i;
      names.push_back(arguments[i].name);
    }
    std::string hint = DidYouMean(name, names);
    for (const Argument& argument : arguments) {
      if (argument.type != ValueType::kDictionary || FindKey(argument.keys, name) == nullptr) continue;
      hint = "; did you mean " + std::string(argument.name) + "." + std::string(name) + "?";
    }
    throw WrongCall(std::string(operation_.name) + " has no argument " + std::string(name) + hint, std::string(name));
  }

  static Variant FromText(const std::string& text, ValueType type, const std::string& path) {
    if (!IsCollection(type)) return text;
    if (!text.starts_with(type == ValueType::kVector ? '[' : '{')) {
      throw WrongCall(
          path + " is a " + std::string(TypeName(type)) + ": give it as a JSON " +
              (type == ValueType::kVector ? "array, [...]" : "object, {...}, or each key as " + path + ".Key=value"),
          path);
    }
    return ReadJson(text, path);
  }

  /// The Dictionary of an argument, made when nothing is there.
  Dictionary& RequireDictionary(std::size_t position) {
    Variant& value = values_[position];
    if (value.is_empty()) value = std::make_shared<Dictionary>();
    RequireFit(value, ValueType::kDictionary, std::string(operation_.arguments()[position].name));
    return *value.ToDictionary();
  }

  /// A value that the operation would take for 0 or "" is not left out by mistake; an object that is not there is
  /// Nothing.
  void RequireGiven(const Argument& argument) const {
    if (argument.optional || argument.in_out || IsCollection(argument.type)) return;
    throw WrongCall(std::string(operation_.name) + " wants the argument " + std::string(argument.name) + ", a " +
                        std::string(TypeName(argument.type)) +
                        (argument.type == ValueType::kString ? "; it may be empty" : ""),
                    std::string(argument.name));
  }

  void Connect(std::size_t position, std::string_view dsn) {
    const Argument& argument = operation_.arguments()[position];
    if (argument.is_connection && values_[position].is_empty()) values_[position] = Given(dsn);
    if (argument.type != ValueType::kDictionary) return;
    for (const Key& key : argument.keys) {
      if (!key.is_connection()) continue;
      Dictionary& dictionary = RequireDictionary(position);
      if (!dictionary.Exists(key.name)) dictionary.SetValue(key.name, Given(dsn));
    }
  }

  [[nodiscard]] std::string_view Given(std::string_view dsn) const {
    if (!dsn.empty()) return dsn;
    throw WrongCall(std::string(operation_.name) + " wants a connection string: give --dsn or set TESSARLORN_DSN");
  }

  const Operation& operation_;
  std::vector<Variant> values_;
  /// Targets of the words so far: the argument in small letters, the key as it is.
  std::set<std::string> seen_;
};

}  // namespace

const Operation& RequireOperation(std::string_view name) {
  if (const Operation* operation = FindOperation(name)) return *operation;
  std::vector<std::string_view> names;
  for (const Operation* operation : Operations()) names.push_back(operation->name);
  const std::size_t dot = name.rfind('.');
  const std::string_view bare = dot == std::string_view::npos ? name : name.substr(dot + 1);
  throw WrongCall("unknown operation " + std::string(name) + DidYouMean(bare, names, "; 'tessarlorn ops' lists them"));
}

std::vector<Variant> ReadCallArguments(const Operation& operation, const Variant& json,
                                       std::span<const std::string> words, std::string_view dsn) {
  Reader reader(operation);
  if (!json.is_empty()) {
    RequireFit(json, ValueType::kDictionary, "the JSON of the arguments");
    reader.TakeJson(*json.ToDictionary());
  }
  // Whole arguments first, so that they do not take back a key that was given before them.
  for (const bool keys : {false, true}) {
    for (const std::string& word : words) {
      if ((Target(word).find('.') != std::string_view::npos) == keys) reader.TakeWord(word);
    }
  }
  return std::move(reader).Finish(dsn);
}

}  // namespace tessarlorn
