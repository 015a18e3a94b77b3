#include "hosts/http/description/openapi_schema.h"

#include <algorithm>
#include <cstdint>
#include <limits>

#include "automation/order_list.h"
#include "hosts/http/safety/safe_values.h"
#include "platform/text/text.h"

namespace tessarlorn::http {
namespace {

constexpr const char* kDatePattern = R"(^\d{4}-\d{2}-\d{2}([ T]\d{2}:\d{2}(:\d{2}(\.\d{1,3})?)?)?$)";
constexpr const char* kListPattern = R"(^\d+(,\d+)*$)";
constexpr const char* kListOrNonePattern = R"(^(\d+(,\d+)*)?$)";

SchemaJson NumberSchema(ValueType type) {
  switch (type) {
    case ValueType::kLong:
      return {{"type", "integer"}, {"format", "int32"}};
    case ValueType::kInteger:
      return {{"type", "integer"},
              {"minimum", std::numeric_limits<std::int16_t>::min()},
              {"maximum", std::numeric_limits<std::int16_t>::max()}};
    default:
      return {{"type", "number"}};
  }
}

/// One value of a call, by the rules that the door checks it with.
SchemaJson PlainSchema(const Key& key) {
  if (key.stands == Standing::kSql) return {{"type", "string"}};
  if (TakesKeyList(key.type, key.stands, key.names)) {
    return {{"type", {"string", "integer"}},
            {"pattern", key.need == Need::kOptional ? kListOrNonePattern : kListPattern}};
  }
  if (key.stands == Standing::kName) {
    const char* const pattern =
        key.name == "pageTable" ? "^#{0,2}[A-Za-z_][A-Za-z0-9_]*( pageTable)?$" : "^#{0,2}[A-Za-z_][A-Za-z0-9_]*$";
    return {{"type", "string"}, {"pattern", pattern}};
  }
  const bool is_whole = key.type == ValueType::kLong || key.type == ValueType::kInteger;
  if (is_whole || key.type == ValueType::kDouble || key.stands == Standing::kNumber) return NumberSchema(key.type);
  if (key.stands == Standing::kBareNumber) return {{"type", {"string", "integer"}}, {"pattern", R"(^\d+(_.*)?$)"}};
  if (key.type == ValueType::kBoolean) return {{"type", "boolean"}};
  if (key.type == ValueType::kDate) return {{"type", "string"}, {"pattern", kDatePattern}};
  if (key.type == ValueType::kVariant) return {{"type", {"string", "number", "boolean"}}};
  return {{"type", "string"}, {"maxLength", kMostCharacters}};
}

void AddDefault(SchemaJson& schema, std::string_view fallback) {
  if (fallback.empty()) return;
  const SchemaJson& type = schema["type"];
  if (type == "string") {
    schema["default"] = fallback;
  } else if (type == "boolean") {
    schema["default"] = EqualsIgnoreCase(fallback, "true") || fallback == "1";
  } else if (type == "integer" || type == "number") {
    const SchemaJson value = SchemaJson::parse(fallback, nullptr, false);
    if (value.is_number()) schema["default"] = value;
  }
}

SchemaJson ObjectSchema(std::span<const Key> keys);

SchemaJson ItemsSchema(std::span<const Key> keys) {
  return {{"type", "array"}, {"maxItems", kMostKeys}, {"items", ObjectSchema(keys)}};
}

SchemaJson KeySchema(const Key& key) {
  if (key.type == ValueType::kVector) {
    SchemaJson schema = ItemsSchema(key.item_keys);
    schema["description"] = MarkdownText(key.Explanation());
    return schema;
  }
  SchemaJson schema = PlainSchema(key);
  std::string text = MarkdownText(key.Explanation());
  if (key.stands == Standing::kSql) text += "; for users who may pass SQL";
  if (!text.empty()) schema["description"] = text;
  AddDefault(schema, key.fallback);
  return schema;
}

SchemaJson ObjectSchema(std::span<const Key> keys) {
  SchemaJson properties = SchemaJson::object();
  SchemaJson required = SchemaJson::array();
  for (const Key& key : keys) {
    if (key.is_connection()) continue;
    properties[std::string(key.name)] = KeySchema(key);
    if (key.need != Need::kOptional) required.push_back(key.name);
  }
  SchemaJson schema = {{"type", "object"}, {"properties", std::move(properties)}};
  if (!required.empty()) schema["required"] = std::move(required);
  schema["additionalProperties"] = false;
  return schema;
}

/// The argument as if it were a key.
Key KeyOf(const Argument& argument) {
  return {.name = argument.name,
          .type = argument.any_key ? ValueType::kString : argument.type,
          .stands = argument.stands,
          .need = argument.need,
          .fallback = {},
          .help = {},
          .item_keys = argument.keys,
          .names = argument.any_key ? Names::kNothing : argument.names};
}

SchemaJson ArgumentSchema(const Argument& argument) {
  if (argument.any_key) {
    return {{"type", "object"},
            {"description", "Every key counts, whatever its name"},
            {"maxProperties", kMostKeys},
            {"propertyNames", {{"pattern", "^[0-9]{1,23}$"}}},
            {"additionalProperties", KeySchema(KeyOf(argument))}};
  }
  if (argument.type == ValueType::kDictionary) return ObjectSchema(argument.keys);
  if (argument.type == ValueType::kVector) return ItemsSchema(argument.keys);
  SchemaJson schema = KeySchema(KeyOf(argument));
  if (argument.in_out) schema["description"] = "Written back after the call";
  return schema;
}

bool IsNeeded(const Argument& argument) {
  if (argument.need != Need::kOptional) return true;
  const bool holds_keys = argument.type == ValueType::kDictionary || argument.type == ValueType::kVector;
  if (!holds_keys) return !argument.optional && !argument.in_out;
  return std::any_of(argument.keys.begin(), argument.keys.end(),
                     [](const Key& key) { return key.need != Need::kOptional && !key.is_connection(); });
}

SchemaJson ParameterOf(const std::string& name, bool required, SchemaJson schema) {
  SchemaJson parameter = {{"name", name}, {"in", "query"}};
  if (required) parameter["required"] = true;
  if (schema.contains("description")) {
    parameter["description"] = schema["description"];
    schema.erase("description");
  }
  // A query holds texts only.
  if (schema["type"].is_array()) schema["type"] = "string";
  parameter["schema"] = std::move(schema);
  return parameter;
}

/// A value of an answer that is no Null.
SchemaJson ColumnSchema(ValueType type, std::span<const Column> items);

SchemaJson ColumnsSchema(std::span<const Column> columns) {
  SchemaJson properties = SchemaJson::object();
  for (const Column& column : columns) {
    SchemaJson schema = ColumnSchema(column.type, column.item_columns);
    if (schema.contains("type")) {
      if (!schema["type"].is_array()) schema["type"] = SchemaJson::array({schema["type"]});
      schema["type"].push_back("null");
    }
    schema["description"] = MarkdownText(column.help);
    properties[std::string(column.name)] = std::move(schema);
  }
  return {{"type", "object"}, {"properties", std::move(properties)}};
}

SchemaJson ColumnSchema(ValueType type, std::span<const Column> items) {
  switch (type) {
    case ValueType::kString:
    case ValueType::kDate:
      return {{"type", "string"}};
    case ValueType::kBoolean:
      return {{"type", "boolean"}};
    case ValueType::kLong:
    case ValueType::kInteger:
    case ValueType::kDouble:
      return NumberSchema(type);
    case ValueType::kDecimal:
      return {{"type", {"number", "string"}}};
    case ValueType::kVector:
      return {{"type", "array"}, {"items", ColumnsSchema(items)}};
    case ValueType::kRecordset:
      return {{"type", "array"}, {"items", SchemaReference("Row")}};
    case ValueType::kDictionary:
      return ColumnsSchema(items);
    case ValueType::kVariant:
      break;
  }
  return SchemaJson::object();
}

SchemaJson ResultSchema(const Operation& operation, const std::string& row_name) {
  SchemaJson schema = ColumnSchema(operation.result, operation.contract->columns);
  if (operation.result == ValueType::kRecordset) {
    schema = RecordsetSchema(row_name);
  } else if (operation.result == ValueType::kVector) {
    schema = {{"type", "array"}, {"items", ColumnsSchema(operation.contract->columns)}};
  }
  const bool is_object = operation.result == ValueType::kRecordset || operation.result == ValueType::kVector ||
                         operation.result == ValueType::kDictionary;
  if (is_object) schema["type"] = {schema["type"], "null"};
  return schema;
}

bool NamesOrders(std::span<const Key> keys) {
  return std::any_of(keys.begin(), keys.end(),
                     [](const Key& key) { return key.names != Names::kNothing || NamesOrders(key.item_keys); });
}

bool NamesOrders(const Operation& operation) {
  const auto arguments = operation.arguments();
  return std::any_of(arguments.begin(), arguments.end(), [](const Argument& argument) {
    return argument.names != Names::kNothing || NamesOrders(argument.keys);
  });
}

}  // namespace

std::string MarkdownText(std::string_view text) {
  std::string safe;
  for (const char letter : text) {
    if (std::string_view("\\`*[]<").find(letter) != std::string_view::npos) safe += '\\';
    safe += letter;
  }
  return safe;
}

SchemaJson SchemaReference(const std::string& name) { return {{"$ref", "#/components/schemas/" + name}}; }

SchemaJson RequestSchema(const Operation& operation) {
  SchemaJson properties = SchemaJson::object();
  SchemaJson required = SchemaJson::array();
  for (const Argument& argument : operation.arguments()) {
    if (argument.is_connection) continue;
    properties[std::string(argument.name)] = ArgumentSchema(argument);
    if (IsNeeded(argument)) required.push_back(argument.name);
  }
  SchemaJson schema = {{"type", "object"}, {"properties", std::move(properties)}};
  if (!required.empty()) schema["required"] = std::move(required);
  schema["additionalProperties"] = false;
  return schema;
}

SchemaJson QuerySchema(const Operation& operation) {
  SchemaJson parameters = SchemaJson::array();
  for (const Argument& argument : operation.arguments()) {
    const std::string name(argument.name);
    if (argument.is_connection) continue;
    if (argument.any_key || argument.type == ValueType::kVector) return nullptr;
    if (argument.type != ValueType::kDictionary) {
      parameters.push_back(ParameterOf(name, IsNeeded(argument), ArgumentSchema(argument)));
      continue;
    }
    for (const Key& key : argument.keys) {
      if (key.is_connection()) continue;
      if (key.type == ValueType::kVector) return nullptr;
      parameters.push_back(
          ParameterOf(name + "." + std::string(key.name), key.need != Need::kOptional, KeySchema(key)));
    }
  }
  return parameters;
}

SchemaJson RowSchema(const Operation& operation) {
  if (operation.result != ValueType::kRecordset || operation.contract->columns.empty()) return nullptr;
  return ColumnsSchema(operation.contract->columns);
}

SchemaJson QuestionRowSchema(const workbench::Question& question) {
  SchemaJson schema = {{"type", "object"}, {"properties", SchemaJson::object()}, {"required", SchemaJson::array()}};
  for (const Column& column : question.columns) {
    SchemaJson value = ColumnSchema(column.type, {});
    if (column.type == ValueType::kDate) value["type"] = {"string", "null"};
    value["description"] = MarkdownText(column.help);
    schema["properties"][std::string(column.name)] = std::move(value);
    schema["required"].push_back(column.name);
  }
  return schema;
}

SchemaJson RecordsetSchema(const std::string& row_name) {
  return {{"type", "object"},
          {"properties",
           {{"fields", {{"type", "array"}, {"items", SchemaReference("Field")}}},
            {"rows", {{"type", "array"}, {"items", SchemaReference(row_name)}}}}},
          {"required", {"fields", "rows"}}};
}

SchemaJson QuestionSchema(const workbench::Question& question) {
  SchemaJson schema = ObjectSchema(question.keys);
  for (const Key& key : question.keys) {
    SchemaJson& property = schema["properties"][std::string(key.name)];
    if (key.type == ValueType::kString) property["maxLength"] = workbench::kLongestText;
    if (key.type != ValueType::kVector) continue;
    property["items"] =
        key.stands == Standing::kKeyList ? NumberSchema(ValueType::kLong) : SchemaJson{{"type", "string"}};
    property["minItems"] = 1;
    property["maxItems"] = workbench::kMostKeys;
  }
  return schema;
}

SchemaJson AnswerSchema(const Operation& operation, const std::string& row_name) {
  const bool each = FindOrderList(operation).has_value();
  SchemaJson properties = {{"result", ResultSchema(operation, row_name)}};
  SchemaJson required = SchemaJson::array();
  if (each) {
    properties["result"]["description"] = "Not there with each=order";
    properties["orders"] = {{"type", "array"},
                            {"description", "What became of each order; with each=order only"},
                            {"items",
                             {{"type", "object"},
                              {"properties",
                               {{"order", {{"type", "string"}}},
                                {"result", ResultSchema(operation, row_name)},
                                {"problem", SchemaReference("Problem")}}},
                              {"required", {"order"}}}}};
  } else {
    required.push_back("result");
  }
  SchemaJson written = SchemaJson::object();
  for (const Argument& argument : operation.arguments()) {
    if (!argument.in_out) continue;
    written[std::string(argument.name)] = ColumnSchema(argument.type, {});
  }
  if (!written.empty()) {
    properties["arguments"] = {
        {"type", "object"}, {"description", "Arguments that were written back"}, {"properties", std::move(written)}};
    if (!each) required.push_back("arguments");
  }
  if (NamesOrders(operation)) {
    properties["notFound"] = {{"type", "array"},
                              {"description", "What was named and is not there, or not for this user"},
                              {"items", {{"type", "string"}}}};
  }
  properties["dryRun"] = SchemaReference("DryRun");
  SchemaJson schema = {{"type", "object"}, {"properties", std::move(properties)}};
  if (!required.empty()) schema["required"] = std::move(required);
  return schema;
}

}  // namespace tessarlorn::http
