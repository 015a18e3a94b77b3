#include "tsql/storage/constraint_text.h"

#include "platform/text/text.h"

namespace tessarlorn::tsql {
namespace {

std::string JsonText(std::string_view text) {
  std::string json = "\"";
  for (const char c : text) {
    if (static_cast<unsigned char>(c) < ' ') {
      json += "\\u00" + HexText(&c, 1);
      continue;
    }
    if (c == '"' || c == '\\') json += '\\';
    json += c;
  }
  return json + "\"";
}

std::string NameText(const std::string& name) { return ",\"name\":" + JsonText(name); }

std::string JsonList(const std::vector<std::string>& texts) {
  std::string json = "[";
  for (const std::string& text : texts) json += (json.size() == 1 ? "" : ",") + JsonText(text);
  return json + "]";
}

/// Writes the constraints of one table.
class Writer {
 public:
  Writer(std::string& definition, const std::string& table) : definition_(definition), table_(table) {}

  void Add(std::string_view kind, std::string name, const std::vector<std::string>& columns,
           const std::string& more = "") {
    if (name.empty()) name = FreeName(kind, columns);
    if (definition_.empty()) definition_ = "[]";
    definition_.pop_back();
    if (definition_.size() > 1) definition_ += ",";
    definition_ += "{\"kind\":" + JsonText(kind) + NameText(name) + ",\"columns\":" + JsonList(columns) + more + "}]";
  }

 private:
  /// PK_table, UQ_table_column.
  [[nodiscard]] std::string FreeName(std::string_view kind, const std::vector<std::string>& columns) const {
    std::string name = kind == "F" ? "FK" : kind == "C" ? "CK" : kind == "D" ? "DF" : std::string(kind);
    name += "_" + table_;
    if (kind != "PK") {
      for (const std::string& column : columns) name += "_" + column;
    }
    std::string free = name;
    for (int i = 2; definition_.find(NameText(free)) != std::string::npos; ++i) free = name + "_" + std::to_string(i);
    return free;
  }

  std::string& definition_;
  const std::string& table_;
};

std::string TextMember(std::string_view text) { return ",\"text\":" + JsonText(text); }

void AddConstraint(Writer& writer, const TableConstraint& constraint) {
  const std::string& name = constraint.name;
  std::visit(Overloaded{
                 [&](const PrimaryKeyRule& key) { writer.Add("PK", name, key.columns); },
                 [&](const UniqueRule& key) { writer.Add("UQ", name, key.columns); },
                 [&](const ForeignKeyRule& key) {
                   const std::string columns = key.referenced_columns.empty()
                                                   ? std::string()
                                                   : ",\"referenced\":" + JsonList(key.referenced_columns);
                   writer.Add("F", name, key.columns, ",\"to\":" + JsonText(key.references.name) + columns);
                 },
                 [&](const CheckRule& check) { writer.Add("C", name, {}, TextMember("(" + check.text + ")")); },
                 [](const DefaultRule&) {},
             },
             constraint.rule);
}

/// The name that the table's constraints give the default of a column, "" for none.
std::string DefaultName(const std::vector<TableConstraint>& constraints, const std::string& column) {
  std::string name;
  for (const TableConstraint& constraint : constraints) {
    const auto* rule = std::get_if<DefaultRule>(&constraint.rule);
    if (rule != nullptr && EqualsIgnoreCase(rule->column, column)) name = constraint.name;
  }
  return name;
}

}  // namespace

void AddConstraints(std::string& definition, const std::string& table, const TableElements& elements) {
  Writer writer(definition, table);
  std::vector<std::string> primary_key;
  for (const ColumnDefinition& column : elements.columns) {
    if (column.primary_key) primary_key.push_back(column.name);
  }
  if (!primary_key.empty()) writer.Add("PK", "", primary_key);
  for (const TableConstraint& constraint : elements.constraints) AddConstraint(writer, constraint);
  for (const ColumnDefinition& column : elements.columns) {
    if (column.unique) writer.Add("UQ", "", {column.name});
    if (column.check != nullptr) writer.Add("C", "", {column.name}, TextMember("(" + column.check_text + ")"));
    if (column.identity) writer.Add("I", "", {column.name}, ",\"seed\":" + std::to_string(column.identity_seed));
    if (column.default_text.empty()) continue;
    writer.Add("D", DefaultName(elements.constraints, column.name), {column.name},
               TextMember("(" + column.default_text + ")"));
  }
}

void AddIndexNote(std::string& definition, const std::string& index, const std::vector<std::string>& included,
                  const std::string& condition) {
  if (definition.empty()) definition = "[]";
  definition.pop_back();
  if (definition.size() > 1) definition += ",";
  definition += R"({"kind":"IX","index":)" + JsonText(index) + ",\"columns\":" + JsonList(included) +
                TextMember(condition.empty() ? "" : "(" + condition + ")") + "}]";
}

bool HasKey(const std::string& definition, const std::string& name) {
  const auto has = [&](std::string_view kind) {
    return FindIgnoreCase(definition, "\"kind\":" + JsonText(kind) + NameText(name)) != std::string::npos;
  };
  return has("PK") || has("UQ");
}

}  // namespace tessarlorn::tsql
