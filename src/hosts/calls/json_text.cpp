#include "hosts/calls/json_text.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>

#include "platform/text/text.h"
#include "tessarlorn/collections.h"

namespace tessarlorn {
namespace {

/// Whether it stands between quotes as it is.
bool IsPlain(std::string_view text) {
  const bool plain = std::all_of(text.begin(), text.end(),
                                 [](char c) { return static_cast<unsigned char>(c) >= ' ' && c != '"' && c != '\\'; });
  return plain && IsValidUtf8(text);
}

bool IsLongNumber(const Variant& value) {
  constexpr std::size_t kExactDigits = 15;
  const auto* const decimal = value.get_if<Decimal>();
  if (decimal == nullptr || decimal->scale() > 0) return false;
  const std::string digits = decimal->ToString();
  return digits.size() - (digits.starts_with('-') ? 1 : 0) > kExactDigits;
}

void AppendRows(std::string& json, Recordset& rows, const ResultRows& shown, LongNumbers long_numbers) {
  const JsonRows objects(shown, long_numbers);
  json += '[';
  for (rows.MoveFirst(); !rows.eof(); rows.MoveNext()) {
    if (json.back() != '[') json += ',';
    objects.AppendObject(json, rows);
  }
  json += ']';
}

}  // namespace

void AppendJsonText(std::string& json, std::string_view text) {
  if (IsPlain(text)) {
    json.append(1, '"').append(text).append(1, '"');
  } else {
    json += nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
  }
}

void AppendJson(std::string& json, const Variant& value, FieldType type, LongNumbers long_numbers) {
  if (value.is_null() || value.is_empty() || value.type_name() == "Nothing") {
    json += "null";
  } else if (const auto* text = value.get_if<std::string>()) {
    AppendJsonText(json, *text);
  } else if (const std::shared_ptr<Dictionary> dictionary = value.ToDictionary()) {
    json += '{';
    for (const auto& [key, entry] : *dictionary) {
      if (json.back() != '{') json += ',';
      AppendJsonText(json, key);
      json += ':';
      AppendJson(json, entry, FieldType::kNVarChar, long_numbers);
    }
    json += '}';
  } else if (const std::shared_ptr<Vector> items = value.ToVector()) {
    json += '[';
    for (const Variant& item : *items) {
      if (json.back() != '[') json += ',';
      AppendJson(json, item, FieldType::kNVarChar, long_numbers);
    }
    json += ']';
  } else if (const RecordsetPtr rows = value.ToRecordset()) {
    AppendRows(json, *rows, SelectColumns(rows, {}), long_numbers);
  } else if (value.is_object()) {
    AppendJsonText(json, "(" + std::string(value.type_name()) + ")");
  } else if (value.is_number() && (long_numbers == LongNumbers::kAsNumbers || !IsLongNumber(value))) {
    json += CellText(value, type, CellStyle::kData);
  } else {
    AppendJsonText(json, CellText(value, type, CellStyle::kData));
  }
}

std::string JsonText(const Variant& value, FieldType type) {
  std::string json;
  AppendJson(json, value, type);
  return json;
}

JsonRows::JsonRows(const ResultRows& shown, LongNumbers long_numbers)
    : long_numbers_(long_numbers), fields_(shown.fields) {
  std::set<std::string> taken;
  for (const std::string& head : shown.heads) {
    std::string key = head;
    for (int number = 2; !taken.insert(key).second; ++number) key = head + "_" + std::to_string(number);
    std::string lead(1, leads_.empty() ? '{' : ',');
    AppendJsonText(lead, key);
    leads_.push_back(lead + ":");
    keys_.push_back(std::move(key));
  }
}

void JsonRows::AppendObject(std::string& json, const Recordset& rows) const {
  for (std::size_t i = 0; i < leads_.size(); ++i) {
    json += leads_[i];
    if (const std::optional<std::string_view> text = rows.FindText(fields_[i])) {
      AppendJsonText(json, *text);
    } else {
      AppendJson(json, rows.Get(fields_[i]), rows.fields()[fields_[i]].type, long_numbers_);
    }
  }
  json += leads_.empty() ? "{}" : "}";
}

}  // namespace tessarlorn
