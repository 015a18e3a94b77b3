#include "hosts/calls/json_text.h"

#include <nlohmann/json.hpp>
#include <set>

#include "tessarlorn/collections.h"

namespace tessarlorn {
namespace {

std::string TextJson(const std::string& text) {
  return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

/// "[…]" or "{…}" around items with commas between them.
template <typename Items, typename Write>
std::string Joined(char open, const Items& items, char close, const Write& write) {
  std::string text(1, open);
  for (const auto& item : items) {
    if (text.size() > 1) text += ',';
    text += write(item);
  }
  return text + close;
}

std::string RowsJson(const RecordsetPtr& rows) {
  const ResultRows shown = SelectColumns(rows, {});
  const JsonRows objects(shown);
  std::string text = "[";
  for (rows->MoveFirst(); !rows->eof(); rows->MoveNext()) text += (text.size() > 1 ? "," : "") + objects.Object();
  return text + "]";
}

}  // namespace

std::string JsonText(const Variant& value, FieldType type) {
  if (value.is_null() || value.is_empty() || value.type_name() == "Nothing") return "null";
  if (const std::shared_ptr<Dictionary> dictionary = value.ToDictionary()) {
    return Joined('{', *dictionary, '}',
                  [](const auto& entry) { return TextJson(entry.first) + ":" + JsonText(entry.second); });
  }
  if (const std::shared_ptr<Vector> items = value.ToVector()) {
    return Joined('[', *items, ']', [](const Variant& item) { return JsonText(item); });
  }
  if (const RecordsetPtr rows = value.ToRecordset()) return RowsJson(rows);
  if (value.is_object()) return TextJson("(" + std::string(value.type_name()) + ")");
  const std::string text = CellText(value, type, CellStyle::kData);
  return value.is_number() ? text : TextJson(text);
}

JsonRows::JsonRows(const ResultRows& shown) : shown_(shown) {
  std::set<std::string> taken;
  for (const std::string& head : shown.heads) {
    std::string key = head;
    for (int number = 2; !taken.insert(key).second; ++number) key = head + "_" + std::to_string(number);
    keys_.push_back(TextJson(key) + ":");
  }
}

std::string JsonRows::Object() const {
  const Recordset& rows = *shown_.rows;
  std::string text = "{";
  for (std::size_t i = 0; i < keys_.size(); ++i) {
    const std::size_t field = shown_.fields[i];
    if (i > 0) text += ',';
    text.append(keys_[i]).append(JsonText(rows.Get(field), rows.fields()[field].type));
  }
  return text + "}";
}

}  // namespace tessarlorn
