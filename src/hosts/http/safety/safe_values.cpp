#include "hosts/http/safety/safe_values.h"

#include <algorithm>
#include <cstdint>
#include <limits>

#include "automation/order_list.h"
#include "platform/text/text.h"
#include "tessarlorn/collections.h"

namespace tessarlorn::http {
namespace {

constexpr std::string_view kDigits = "0123456789";

bool IsDigits(std::string_view text, std::size_t most) {
  return !text.empty() && text.size() <= most && text.find_first_not_of(kDigits) == std::string_view::npos;
}

/// Whether the text is one literal of Transact-SQL without exponent, or a minus and one.
bool IsPlainNumber(std::string_view text, ValueType type) {
  if (type == ValueType::kLong) return WholeNumber<std::int32_t>(text).has_value();
  if (type == ValueType::kInteger) return WholeNumber<std::int16_t>(text).has_value();
  constexpr std::size_t kMostDigits = 15;
  if (text.starts_with('-')) text.remove_prefix(1);
  const std::size_t point = text.find('.');
  if (!IsDigits(text.substr(0, point), kMostDigits)) return false;
  return point == std::string_view::npos || IsDigits(text.substr(point + 1), kMostDigits);
}

bool IsOrderKey(std::string_view text) { return WholeNumber<std::int32_t>(text, 0).has_value(); }

bool IsFlag(const Variant& value, const std::string& text) {
  return value.holds<bool>() || text == "0" || text == "1" || text == "-1" || EqualsIgnoreCase(text, "true") ||
         EqualsIgnoreCase(text, "false");
}

bool IsIsoDate(const Variant& value, const std::string& text) {
  if (value.holds<DateTime>()) return true;
  return text.size() > 9 && IsDigits(text.substr(0, 4), 4) && text[4] == '-' && text[7] == '-' &&
         DateTime::Parse(text).has_value();
}

/// @param alias what may stand behind the name
bool IsTableName(std::string_view text, std::string_view alias) {
  constexpr std::size_t kMostLetters = 128;
  if (!alias.empty() && text.ends_with(" " + std::string(alias))) text.remove_suffix(alias.size() + 1);
  if (text.size() > kMostLetters) return false;
  for (int signs = 0; signs < 2 && text.starts_with('#'); ++signs) text.remove_prefix(1);
  const auto is_letter = [](char c) { return c == '_' || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
  return !text.empty() && is_letter(text.front()) &&
         std::all_of(text.begin(), text.end(), [&](char c) { return is_letter(c) || (c >= '0' && c <= '9'); });
}

std::size_t CharactersOf(std::string_view text) {
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

/// The text in an answer: on one line and not longer than a line.
std::string Shown(std::string_view text) {
  constexpr std::size_t kMostShown = 60;
  std::string shown;
  for (std::size_t at = 0; at < text.size();) {
    AppendCharacter(shown, NextCharacter(text, at));
    if (shown.size() >= kMostShown && at < text.size()) {
      shown += "…";
      break;
    }
  }
  return Quoted(OnOneLine(shown), '"', '"');
}

class Check {
 public:
  explicit Check(bool sql_allowed) : sql_allowed_(sql_allowed) {}

  /// These answer whether what they check is refused.
  bool Refuses(const Argument& argument, const Variant& value) {
    const std::string path(argument.name);
    if (argument.is_connection) return false;
    if (argument.any_key) return RefusesEntries(argument, path, value);
    const Key as_key{.name = argument.name,
                     .type = argument.type,
                     .stands = argument.stands,
                     .need = argument.need,
                     .fallback = {},
                     .help = {},
                     .item_keys = argument.keys,
                     .names = argument.names};
    if (argument.type == ValueType::kDictionary) return RefusesKeys(argument.keys, path, value);
    return RefusesValue(as_key, path, value, true);
  }

  std::optional<RefusedValue> refused;

 private:
  bool Refuse(std::string path, std::string why, bool wants_sql = false) {
    refused = RefusedValue{.path = std::move(path), .why = std::move(why), .wants_sql = wants_sql};
    return true;
  }

  /// Whether it is no Dictionary, or one with a value that is refused. Empty is Nothing.
  bool RefusesKeys(std::span<const Key> keys, const std::string& path, const Variant& value) {
    if (value.is_empty()) return false;
    const std::shared_ptr<Dictionary> values = value.ToDictionary();
    if (!values) return Refuse(path, "is no Dictionary");
    for (const auto& pair : *values) {
      const std::string& name = pair.first;
      const auto key = std::find_if(keys.begin(), keys.end(), [&](const Key& one) { return one.name == name; });
      if (key == keys.end()) return Refuse(path, "has no key " + Shown(name));
      if (!key->is_connection() && RefusesValue(*key, path + "." + name, pair.second, false)) return true;
    }
    return false;
  }

  /// The same for a Dictionary of which every key counts.
  bool RefusesEntries(const Argument& argument, const std::string& path, const Variant& value) {
    constexpr std::size_t kMostDigits = 23;
    if (value.is_empty()) return false;
    const std::shared_ptr<Dictionary> values = value.ToDictionary();
    if (!values) return Refuse(path, "is no Dictionary");
    if (values->size() > kMostKeys) return Refuse(path, TooMany("keys"));
    const Key row{.name = argument.name, .stands = argument.stands, .fallback = {}, .help = {}};
    for (const auto& [name, entry] : *values) {
      if (!IsDigits(name, kMostDigits)) return Refuse(path, "has whole numbers for keys; " + Shown(name) + " is none");
      if (RefusesValue(row, path + "." + name, entry, false)) return true;
    }
    return false;
  }

  bool RefusesItems(std::span<const Key> keys, const std::string& path, const Variant& value) {
    if (value.is_empty()) return false;
    const std::shared_ptr<Vector> items = value.ToVector();
    if (!items) return Refuse(path, "is no Vector");
    if (items->size() > kMostKeys) return Refuse(path, TooMany("items"));
    std::size_t place = 0;
    for (const Variant& item : *items) {
      const std::string item_path = path + "[" + std::to_string(++place) + "]";
      if (!item.ToDictionary()) return Refuse(item_path, "is no Dictionary");
      if (RefusesKeys(keys, item_path, item)) return true;
    }
    return false;
  }

  static std::string TooMany(const char* what) {
    return "has more than " + std::to_string(kMostKeys) + " " + std::string(what);
  }

  bool RefusesValue(const Key& row, const std::string& path, const Variant& value, bool is_argument) {
    if (row.type == ValueType::kVector) return RefusesItems(row.item_keys, path, value);
    if (value.is_null()) return Refuse(path, "is null");
    if (value.is_object() || value.holds<Bytes>()) {
      return Refuse(path, "is one value, not a " + std::string(value.type_name()));
    }
    const std::string text = value.ToText();
    if (text.find('\0') != std::string::npos) return Refuse(path, "has the character NUL");
    if (!IsValidUtf8(text)) return Refuse(path, "is no valid UTF-8");
    if (text.empty()) {
      // An empty text is no number to automation; only Empty is.
      const bool typed = row.type != ValueType::kString && row.type != ValueType::kVariant;
      const bool counts = EmptyCounts(row, is_argument) || (is_argument && typed && !value.is_empty());
      return counts && RefusesEmpty(row, path);
    }
    return RefusesText(row, path, value, text);
  }

  /// Whether the operation does not take an empty value for one that is not given.
  static bool EmptyCounts(const Key& row, bool is_argument) {
    switch (row.stands) {
      case Standing::kSql:
        return is_argument;
      case Standing::kName:
        return row.need != Need::kMandatory;
      case Standing::kNumber:
      case Standing::kBareNumber:
        return !is_argument && row.need != Need::kMandatory && (row.need != Need::kOptional || !row.fallback.empty());
      default:
        return row.type == ValueType::kDate;
    }
  }

  bool RefusesEmpty(const Key& row, const std::string& path) {
    if (row.stands != Standing::kSql) return Refuse(path, "is empty; leave it out, or give a value");
    return !sql_allowed_ && RefuseSql(path);
  }

  bool RefuseSql(const std::string& path) { return Refuse(path, "is SQL, which you may not pass", true); }

  bool RefusesText(const Key& row, const std::string& path, const Variant& value, const std::string& text) {
    if (row.stands == Standing::kSql) return !sql_allowed_ && RefuseSql(path);
    if (TakesKeyList(row.type, row.stands, row.names)) return RefusesList(path, text);
    if (row.stands == Standing::kName) {
      // The page is joined under this name.
      const std::string_view alias = row.name == "pageTable" ? row.name : std::string_view();
      return !IsTableName(text, alias) &&
             Refuse(path, "is the name of a table, in letters, digits and _; " + Shown(text) + " is none");
    }
    const bool is_number = row.type == ValueType::kLong || row.type == ValueType::kInteger ||
                           row.type == ValueType::kDouble || row.stands == Standing::kNumber;
    if (is_number) return RefusesNumber(row.type, path, value, text);
    if (row.stands == Standing::kBareNumber) return RefusesFieldKey(path, text);
    if (row.type == ValueType::kBoolean) {
      return !IsFlag(value, text) && Refuse(path, "is a Boolean; " + Shown(text) + " is none");
    }
    if (row.type == ValueType::kDate) {
      return !IsIsoDate(value, text) && Refuse(path, "is a date, as 2024-05-06 07:08:09; " + Shown(text) + " is none");
    }
    return CharactersOf(text) > kMostCharacters &&
           Refuse(path, "has more than " + std::to_string(kMostCharacters) + " characters");
  }

  bool RefusesList(const std::string& path, const std::string& text) {
    std::size_t count = 0;
    for (const std::string_view key : Split(text, ',')) {
      if (!IsOrderKey(key)) return Refuse(path, "is a list of keys; " + Shown(key) + " is no whole number");
      if (++count > kMostKeys) return Refuse(path, TooMany("keys"));
    }
    return false;
  }

  bool RefusesNumber(ValueType type, const std::string& path, const Variant& value, const std::string& text) {
    const bool whole = type == ValueType::kLong || type == ValueType::kInteger;
    // A Boolean is a number to automation, but its text is a word.
    if (!value.holds<bool>() && !value.holds<DateTime>() && IsPlainNumber(text, type)) return false;
    return Refuse(path, (whole ? "is a whole number; " : "is a number; ") + Shown(text) +
                            " is none in plain digits, or too large");
  }

  /// Class type and field key: what stands before the first _ is a bare number, the rest a text.
  bool RefusesFieldKey(const std::string& path, const std::string& text) {
    if (CharactersOf(text) <= kMostCharacters && IsOrderKey(text.substr(0, text.find('_')))) return false;
    return Refuse(path, "is a class type and a field key, as 1014301_FStockID; " + Shown(text) + " is none");
  }

  bool sql_allowed_;
};

}  // namespace

std::optional<RefusedValue> FindRefusedValue(const Operation& operation, std::span<const Variant> arguments,
                                             bool sql_allowed) {
  Check check(sql_allowed);
  const std::size_t count = std::min(arguments.size(), operation.argument_count);
  for (std::size_t i = 0; i < count; ++i) {
    if (check.Refuses(operation.arguments()[i], arguments[i])) break;
  }
  return std::move(check.refused);
}

}  // namespace tessarlorn::http
