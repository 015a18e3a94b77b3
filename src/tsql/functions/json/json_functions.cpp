// ISJSON, JSON_VALUE, JSON_QUERY, JSON_MODIFY, and the rows of OPENJSON.
#include <array>
#include <cstdio>
#include <optional>

#include "platform/text/text.h"
#include "tsql/functions/functions.h"
#include "tsql/functions/json/json.h"
#include "tsql/functions/row_table.h"
#include "tsql/functions/sqlite_value.h"
#include "tsql/values/date_text.h"

namespace tessarlorn::tsql {
namespace {

/// What the tree of a text takes at most, for each of its bytes.
constexpr std::size_t kTreeBytes = 50;

JsonNode Parsed(Runtime& runtime, std::string_view text) {
  runtime.memory.Require(text.size() * kTreeBytes);
  return ParseJson(text);
}

// ts_isjson(text)
void IsJson(sqlite3_context* context, Runtime& runtime, Arguments arguments) {
  if (IsNull(arguments[0])) return;
  bool valid = true;
  try {
    Parsed(runtime, TextOf(arguments[0]));
  } catch (const SqlError& error) {
    constexpr int kNotWellFormed = 13609;
    if (error.number() != kNotWellFormed) throw;
    valid = false;
  }
  sqlite3_result_int(context, valid ? 1 : 0);
}

/// The scalar at the end of a path, NULL where there is none. Raises 13608, 13623 and 13625 for strict paths.
Datum ScalarAt(const JsonNode& root, const JsonPath& path, int most_characters) {
  const JsonNode* node = FindNode(root, path);
  if (node == nullptr || node->kind == JsonKind::kNull) return {};
  if (!node->is_scalar()) {
    if (path.strict) throw SqlError(13623, "Scalar value cannot be found in the specified JSON path.");
    return {};
  }
  std::string text = node->Scalar();
  if (most_characters == 0 || TextLength(text, true) <= most_characters) return text;
  if (path.strict) throw SqlError(13625, "String value in the specified JSON path would be truncated.");
  return {};
}

/// The object or array at the end of a path. Raises 13608 and 13624 for strict paths.
Datum FragmentAt(const JsonNode& root, const JsonPath& path) {
  const JsonNode* node = FindNode(root, path);
  if (node == nullptr) return {};
  if (!node->is_scalar()) return std::string(node->text);
  if (path.strict) throw SqlError(13624, "Object or array cannot be found in the specified JSON path.");
  return {};
}

// ts_json_value(text, path)
void JsonValue(sqlite3_context* context, Runtime& runtime, Arguments arguments) {
  if (AnyNull(arguments)) return;
  constexpr int kMostCharacters = 4000;
  const JsonPath path = ParseJsonPath(TextOf(arguments[1]));
  SetResult(context, ScalarAt(Parsed(runtime, TextOf(arguments[0])), path, kMostCharacters));
}

// ts_json_query(text, path)
void JsonQuery(sqlite3_context* context, Runtime& runtime, Arguments arguments) {
  if (AnyNull(arguments)) return;
  const JsonPath path = ParseJsonPath(TextOf(arguments[1]));
  SetResult(context, FragmentAt(Parsed(runtime, TextOf(arguments[0])), path));
}

/// A value as JSON has it. @param raw a text is JSON already
std::string JsonOf(sqlite3_value* value, const SqlType& type, bool raw) {
  if (IsNull(value)) return "null";
  if (raw) return std::string(TextOf(value));
  if (type.kind == FieldType::kBit) return sqlite3_value_int(value) != 0 ? "true" : "false";
  if (type.is_float()) {
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%.17g", sqlite3_value_double(value));
    const std::optional<Decimal> shortest = Decimal::FromDouble(sqlite3_value_double(value));
    return shortest ? shortest->ToString() : text.data();
  }
  if (type.is_number()) return ToDecimal(ToDatum(value), type).ToString();
  constexpr int kIsoStyle = 126;
  const Datum text = Convert(ToDatum(value), type, NVarCharType(0), type.is_text() ? 0 : kIsoStyle);
  return "\"" + EscapedForJson(std::get<std::string>(text)) + "\"";
}

/// The changed text of JSON_MODIFY.
class Modification {
 public:
  Modification(std::string_view text, const JsonNode& root, const JsonPath& path)
      : text_(text), root_(root), path_(path) {}

  std::string With(const std::string& value, bool is_null) const {
    const JsonNode* target = FindNode(root_, path_);
    if (target == nullptr) return is_null ? std::string(text_) : Added(value);
    if (path_.append) return target->kind == JsonKind::kArray ? AddedTo(*target, value) : std::string(text_);
    if (is_null && !path_.strict && !path_.steps.back().by_index) return Removed(target);
    return Replaced(target->text, value);
  }

 private:
  [[nodiscard]] std::size_t Begin(std::string_view part) const {
    return static_cast<std::size_t>(part.data() - text_.data());
  }
  [[nodiscard]] std::size_t End(std::string_view part) const { return Begin(part) + part.size(); }
  [[nodiscard]] std::string Replaced(std::string_view part, const std::string& by) const {
    return std::string(text_).replace(Begin(part), part.size(), by);
  }
  /// Behind the last member of an object or an array.
  [[nodiscard]] std::string AddedTo(const JsonNode& parent, const std::string& member) const {
    const std::size_t end = parent.members.empty() ? Begin(parent.text) + 1 : End(parent.members.back().text);
    return std::string(text_).insert(end, (parent.members.empty() ? "" : ",") + member);
  }
  [[nodiscard]] std::string Added(const std::string& value) const {
    const JsonNode* parent = FindNode(root_, path_, path_.steps.size() - 1);
    const JsonStep& last = path_.steps.back();
    if (parent == nullptr || last.by_index || parent->kind != JsonKind::kObject) return std::string(text_);
    return AddedTo(*parent, "\"" + EscapedForJson(last.key) + "\":" + (path_.append ? "[" + value + "]" : value));
  }
  /// The member goes with one of the commas beside it.
  [[nodiscard]] std::string Removed(const JsonNode* target) const {
    const std::vector<JsonMember>& all = FindNode(root_, path_, path_.steps.size() - 1)->members;
    std::size_t i = 0;
    while (&all[i].value != target) ++i;
    const std::size_t begin = i > 0 ? End(all[i - 1].text) : Begin(all[i].text);
    const std::size_t end = i == 0 && all.size() > 1 ? Begin(all[1].text) : End(all[i].text);
    return std::string(text_).erase(begin, end - begin);
  }

  std::string_view text_;
  const JsonNode& root_;
  const JsonPath& path_;
};

// ts_json_modify(text, path, value, type, raw)
void JsonModify(sqlite3_context* context, Runtime& runtime, Arguments arguments) {
  if (IsNull(arguments[0]) || IsNull(arguments[1])) return;
  const std::string_view text = TextOf(arguments[0]);
  const JsonPath path = ParseJsonPath(TextOf(arguments[1]));
  if (path.steps.empty() && !path.append) {
    throw SqlError(13619, "Unsupported JSON path found in argument 2 of JSON_MODIFY.");
  }
  const JsonNode root = Parsed(runtime, text);
  const std::string value = JsonOf(arguments[2], TypeArgument(arguments[3]), sqlite3_value_int(arguments[4]) != 0);
  if (path.steps.empty() && root.kind != JsonKind::kArray) {
    SetText(context, text);
  } else {
    SetText(context, Modification(text, root, path).With(value, IsNull(arguments[2])));
  }
}

/// What OPENJSON opens: nullptr where a lax path leads to nothing.
const JsonNode* Opened(const JsonNode& root, const JsonPath& path) {
  const JsonNode* node = FindNode(root, path);
  if (node == nullptr || !node->is_scalar()) return node;
  if (path.strict) {
    throw SqlError(13611,
                   "Value referenced by JSON path is not an array or object and cannot be opened with OPENJSON.");
  }
  return nullptr;
}

// ts_openjson(text, path): key, value and type of each member
void OpenJson(sqlite3_context* context, Runtime& runtime, Arguments arguments) {
  if (AnyNull(arguments)) return;
  const JsonNode root = Parsed(runtime, TextOf(arguments[0]));
  const JsonNode* opened = Opened(root, ParseJsonPath(TextOf(arguments[1])));
  PackedRows rows;
  for (std::size_t i = 0; opened != nullptr && i < opened->members.size(); ++i) {
    const JsonMember& member = opened->members[i];
    rows.AddRow(3);
    rows.Add(opened->kind == JsonKind::kObject ? member.key : std::to_string(i));
    rows.Add(member.value.kind == JsonKind::kNull ? Datum{} : Datum(member.value.Scalar()));
    rows.Add(static_cast<std::int64_t>(member.value.kind));
  }
  SetResult(context, Blob{rows.bytes()});
}

/// A column of WITH.
struct JsonColumn {
  JsonPath path;
  SqlType type;
  bool as_json;
};

// ts_openjson_with(text, path, column's path, type, as JSON, …): a row for each element of an array, or one for an
// object
void OpenJsonWith(sqlite3_context* context, Runtime& runtime, Arguments arguments) {
  if (AnyNull(arguments)) return;
  std::vector<JsonColumn> columns;
  for (std::size_t i = 2; i + 2 < arguments.size(); i += 3) {
    columns.push_back({ParseJsonPath(TextOf(arguments[i])), TypeArgument(arguments[i + 1]),
                       sqlite3_value_int(arguments[i + 2]) != 0});
  }
  const JsonNode root = Parsed(runtime, TextOf(arguments[0]));
  const JsonNode* opened = Opened(root, ParseJsonPath(TextOf(arguments[1])));
  PackedRows rows;
  const auto add = [&](const JsonNode& node) {
    rows.AddRow(columns.size());
    for (const JsonColumn& column : columns) {
      const Datum text = column.as_json ? FragmentAt(node, column.path) : ScalarAt(node, column.path, 0);
      const bool null = std::holds_alternative<std::monostate>(text);
      rows.Add(null ? Datum{}
                    : Convert(text, NVarCharType(0), column.type, StyleFor(column.type, 0, runtime.date_order)));
    }
  };
  if (opened != nullptr && opened->kind == JsonKind::kObject) {
    add(*opened);
  } else if (opened != nullptr) {
    for (const JsonMember& member : opened->members) add(member.value);
  }
  SetResult(context, Blob{rows.bytes()});
}

}  // namespace

void RegisterJsonFunctions(sqlite3* database, Runtime& runtime) {
  RegisterFunction(database, runtime, "ts_isjson", 1, IsJson);
  RegisterFunction(database, runtime, "ts_json_value", 2, JsonValue);
  RegisterFunction(database, runtime, "ts_json_query", 2, JsonQuery);
  RegisterFunction(database, runtime, "ts_json_modify", 5, JsonModify);
  RegisterFunction(database, runtime, "ts_openjson", 2, OpenJson);
  RegisterFunction(database, runtime, "ts_openjson_with", -1, OpenJsonWith);
}

}  // namespace tessarlorn::tsql
