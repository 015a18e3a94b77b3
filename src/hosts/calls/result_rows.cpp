#include "hosts/calls/result_rows.h"

#include <algorithm>
#include <string_view>

#include "hosts/calls/json_text.h"
#include "hosts/calls/wrong_call.h"
#include "platform/recordset_builder.h"
#include "platform/text/text.h"
#include "platform/value_text.h"
#include "tessarlorn/collections.h"

namespace tessarlorn {
namespace {

void AppendCell(RecordsetBuilder& rows, const Variant& value) {
  if (value.is_null() || value.is_empty()) {
    rows.AppendNull();
  } else {
    rows.AppendText(CellText(value, FieldType::kNVarChar, CellStyle::kDisplay));
  }
}

RecordsetBuilder TextFields(const std::vector<std::string>& names) {
  std::vector<Field> fields(names.size());
  for (std::size_t i = 0; i < names.size(); ++i) fields[i].name = names[i];
  return RecordsetBuilder(fields);
}

RecordsetPtr RowsOfItems(const Vector& items) {
  std::vector<std::string> keys;
  bool all_dictionaries = !items.empty();
  for (const Variant& item : items) {
    const std::shared_ptr<Dictionary> dictionary = item.ToDictionary();
    if (!dictionary) {
      all_dictionaries = false;
      break;
    }
    for (const auto& entry : *dictionary) {
      if (std::find(keys.begin(), keys.end(), entry.first) == keys.end()) keys.push_back(entry.first);
    }
  }
  if (!all_dictionaries) keys = {"Item"};
  RecordsetBuilder rows = TextFields(keys);
  for (const Variant& item : items) {
    rows.BeginRow();
    if (!all_dictionaries) {
      AppendCell(rows, item);
      continue;
    }
    for (const std::string& key : keys) AppendCell(rows, item.ToDictionary()->GetValue(key));
  }
  return rows.Finish();
}

}  // namespace

ResultRows SelectColumns(const RecordsetPtr& rows, const std::vector<std::string>& columns) {
  ResultRows result{.rows = rows, .fields = {}, .heads = {}};
  const std::vector<Field>& fields = rows->fields();
  for (const std::string& column : columns) {
    const std::optional<std::size_t> found = rows->FindField(column);
    if (!found) {
      std::vector<std::string_view> names(fields.size());
      std::transform(fields.begin(), fields.end(), names.begin(),
                     [](const Field& field) { return std::string_view(field.name); });
      throw WrongCall("the result has no column " + column + DidYouMean(column, names), "columns");
    }
    result.fields.push_back(*found);
  }
  for (std::size_t i = 0; columns.empty() && i < fields.size(); ++i) result.fields.push_back(i);
  for (const std::size_t field : result.fields) {
    result.heads.push_back(fields[field].name.empty() ? "Column" + std::to_string(field + 1) : fields[field].name);
  }
  return result;
}

RecordsetPtr RowsOf(const Variant& value) {
  if (RecordsetPtr rows = value.ToRecordset()) return rows;
  if (const std::shared_ptr<Vector> items = value.ToVector()) return RowsOfItems(*items);
  const std::shared_ptr<Dictionary> dictionary = value.ToDictionary();
  RecordsetBuilder rows = dictionary ? TextFields({"Key", "Value"}) : TextFields({"Result"});
  if (dictionary) {
    for (const auto& [key, entry] : *dictionary) {
      rows.BeginRow();
      rows.AppendText(key);
      AppendCell(rows, entry);
    }
  } else {
    rows.BeginRow();
    AppendCell(rows, value);
  }
  return rows.Finish();
}

std::string CellText(const Variant& value, FieldType type, CellStyle style) {
  const bool display = style == CellStyle::kDisplay;
  if (value.is_null()) return display ? "NULL" : "";
  if (value.is_empty()) return "";
  if (const auto* date = value.get_if<DateTime>()) {
    const std::string text = DateText(*date, type);
    return display ? text : ReplaceAll(text, " ", "T");
  }
  if (const auto* bytes = value.get_if<Bytes>()) return "0x" + HexText(bytes->data(), bytes->size());
  if (value.type_name() == "Nothing") return display ? "Nothing" : "";
  if (value.is_object()) return JsonText(value);
  if (!display && value.holds<bool>()) return value.ToBool() ? "true" : "false";
  if (!display && value.holds<double>()) return ExactText(value.ToDouble());
  return value.ToText();
}

}  // namespace tessarlorn
