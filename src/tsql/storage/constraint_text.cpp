#include "tsql/storage/constraint_text.h"

#include <algorithm>
#include <utility>

#include "platform/text/text.h"
#include "tsql/functions/json/json.h"

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

std::string JsonOf(const Constraint& constraint) {
  std::string json = "{\"kind\":" + JsonText(constraint.kind);
  if (constraint.kind.empty()) return json + "}";
  const auto add = [&](const char* key, const std::string& text) {
    if (!text.empty()) json.append(",\"").append(key).append("\":").append(JsonText(text));
  };
  add("name", constraint.name);
  add("index", constraint.index);
  json += ",\"columns\":" + JsonList(constraint.columns);
  add("text", constraint.text);
  add("to", constraint.to);
  if (!constraint.referenced.empty()) json += ",\"referenced\":" + JsonList(constraint.referenced);
  if (constraint.kind == "I") json += ",\"seed\":" + std::to_string(constraint.seed);
  if (constraint.increment != 0) json += ",\"increment\":" + std::to_string(constraint.increment);
  return json + "}";
}

std::vector<std::string> TextsOf(const JsonNode& list) {
  std::vector<std::string> texts;
  for (const JsonMember& member : list.members) texts.push_back(member.value.Scalar());
  return texts;
}

Constraint ConstraintOf(const JsonNode& node) {
  Constraint constraint;
  for (const JsonMember& member : node.members) {
    const JsonNode& value = member.value;
    if (member.key == "kind") constraint.kind = value.Scalar();
    if (member.key == "name") constraint.name = value.Scalar();
    if (member.key == "columns") constraint.columns = TextsOf(value);
    if (member.key == "text") constraint.text = value.Scalar();
    if (member.key == "to") constraint.to = value.Scalar();
    if (member.key == "referenced") constraint.referenced = TextsOf(value);
    if (member.key == "seed") constraint.seed = std::stoll(value.Scalar());
    if (member.key == "increment") constraint.increment = std::stoll(value.Scalar());
    if (member.key == "index") constraint.index = value.Scalar();
  }
  return constraint;
}

/// Adds constraints to those of one table, and names them.
class Adder {
 public:
  Adder(Constraints& constraints, const std::string& table) : constraints_(constraints), table_(table) {}

  void Add(Constraint constraint) {
    if (constraint.name.empty()) constraint.name = FreeName(constraint);
    constraints_.push_back(std::move(constraint));
  }

 private:
  /// PK_table, UQ_table_column.
  [[nodiscard]] std::string FreeName(const Constraint& constraint) const {
    const std::string& kind = constraint.kind;
    std::string name = (kind == "F" ? "FK" : kind == "C" ? "CK" : kind == "D" ? "DF" : kind) + "_" + table_;
    if (kind != "PK") {
      for (const std::string& column : constraint.columns) name += "_" + column;
    }
    std::string free = name;
    const auto has_it = [&](const Constraint& other) { return EqualsIgnoreCase(other.name, free); };
    for (int i = 2; std::any_of(constraints_.begin(), constraints_.end(), has_it); ++i) {
      free = name + "_" + std::to_string(i);
    }
    return free;
  }

  Constraints& constraints_;
  const std::string& table_;
};

Constraint MakeConstraint(const char* kind, std::string name, std::vector<std::string> columns,
                          const std::string& text = "") {
  Constraint constraint;
  constraint.kind = kind;
  constraint.name = std::move(name);
  constraint.columns = std::move(columns);
  constraint.text = text.empty() ? "" : "(" + text + ")";
  return constraint;
}

void AddConstraint(Adder& adder, const TableConstraint& constraint) {
  const std::string& name = constraint.name;
  std::visit(Overloaded{
                 [&](const PrimaryKeyRule& key) { adder.Add(MakeConstraint("PK", name, key.columns)); },
                 [&](const UniqueRule& key) { adder.Add(MakeConstraint("UQ", name, key.columns)); },
                 [&](const ForeignKeyRule& key) {
                   Constraint reference = MakeConstraint("F", name, key.columns);
                   reference.to = key.references.name;
                   reference.referenced = key.referenced_columns;
                   adder.Add(std::move(reference));
                 },
                 [&](const CheckRule& check) {
                   std::vector<std::string> columns;
                   if (!check.column.empty()) columns.push_back(check.column);
                   adder.Add(MakeConstraint("C", name, std::move(columns), check.text));
                 },
                 [&](const DefaultRule& rule) {
                   if (rule.value != nullptr) adder.Add(MakeConstraint("D", name, {rule.column}, rule.text));
                 },
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

bool Constraint::HasColumn(std::string_view column) const {
  return std::any_of(columns.begin(), columns.end(),
                     [&](const std::string& own) { return EqualsIgnoreCase(own, column); });
}

Constraints ReadConstraints(const std::string& definition) {
  Constraints constraints;
  if (definition.empty()) return constraints;
  for (const JsonMember& member : ParseJson(definition).members) constraints.push_back(ConstraintOf(member.value));
  return constraints;
}

std::string WriteConstraints(const Constraints& constraints) {
  std::string json;
  for (const Constraint& constraint : constraints) json += (json.empty() ? "[" : ",") + JsonOf(constraint);
  return json.empty() ? json : json + "]";
}

const Constraint* FindKind(const Constraints& constraints, std::string_view kind) {
  const auto found = std::find_if(constraints.begin(), constraints.end(),
                                  [&](const Constraint& constraint) { return constraint.kind == kind; });
  return found == constraints.end() ? nullptr : &*found;
}

void AddConstraints(Constraints& constraints, const std::string& table, const TableElements& elements) {
  Adder adder(constraints, table);
  for (const ColumnDefinition& column : elements.columns) {
    if (column.primary_key) adder.Add(MakeConstraint("PK", "", {column.name}));
  }
  for (const TableConstraint& constraint : elements.constraints) {
    // Foreign keys of temporary tables are not enforced.
    if (IsTemporaryName(table) && std::holds_alternative<ForeignKeyRule>(constraint.rule)) continue;
    AddConstraint(adder, constraint);
  }
  for (const ColumnDefinition& column : elements.columns) {
    if (column.unique) adder.Add(MakeConstraint("UQ", "", {column.name}));
    if (column.check != nullptr) adder.Add(MakeConstraint("C", "", {column.name}, column.check_text));
    if (column.identity) {
      Constraint identity = MakeConstraint("I", "", {column.name});
      identity.seed = column.identity_seed;
      identity.increment = IncrementOf(column);
      adder.Add(std::move(identity));
    }
    if (column.default_text.empty()) continue;
    adder.Add(MakeConstraint("D", DefaultName(elements.constraints, column.name), {column.name}, column.default_text));
  }
}

std::int64_t IncrementOf(const ColumnDefinition& column) {
  return column.identity_increment == 1 && column.identity_seed > 0 ? 0 : column.identity_increment;
}

bool HasKey(const std::string& definition, const std::string& name) {
  const auto has = [&](std::string_view kind) {
    return FindIgnoreCase(definition, "\"kind\":" + JsonText(kind) + NameText(name)) != std::string::npos;
  };
  return has("PK") || has("UQ");
}

}  // namespace tessarlorn::tsql
