#include "tsql/translate/queries/for_clause.h"

#include <algorithm>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "platform/text/text.h"
#include "tsql/translate/common/conversion.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

/// A value of a row, and the way to it.
struct Leaf {
  std::vector<std::string> path;
  std::string sql;  // as it stands in the text; NULL where there is nothing
};

/// In the server's form: dates with a T between date and time, floats with all their digits.
std::string TextOf(Translation& translation, const Typed& value) {
  constexpr int kIso = 126;
  constexpr int kAllDigits = 2;
  if (value.type.is_binary()) RaiseUnsupported("Binary data in FOR XML or FOR JSON");
  const bool has_day = value.type.is_date() && value.type.kind != FieldType::kTime;
  return Coerce(translation.parameters, value, NVarCharType(0), Fit::kCast,
                has_day                 ? kIso
                : value.type.is_float() ? kAllDigits
                                        : 0);
}

/// The FOR clause of the query that a select item is, or nullptr.
const ForClause* NestedClause(const Query& query, const std::vector<ResultColumn>& columns, std::size_t i) {
  const Select* select = query.select();
  if (select == nullptr || select->items.size() != columns.size()) return nullptr;
  const auto* subquery = As<ScalarSubquery>(*select->items[i].expression);
  return subquery != nullptr && subquery->query->for_clause ? &*subquery->query->for_clause : nullptr;
}

/// Members of the same name that stand side by side are one, whose members they are.
/// @param member what becomes of a name and its leaf's SQL
/// @param group the same of the SQL of members, "" when there are none
template <typename Member, typename Group>
std::string Nested(std::span<const Leaf> leaves, std::size_t depth, const Member& member, const Group& group) {
  std::string sql;
  for (std::size_t i = 0; i < leaves.size();) {
    const std::string& name = leaves[i].path[depth];
    std::size_t end = i + 1;
    const bool is_leaf = leaves[i].path.size() == depth + 1;
    while (!is_leaf && end < leaves.size() && leaves[end].path.size() > depth + 1 && leaves[end].path[depth] == name) {
      ++end;
    }
    sql += sql.empty() ? "" : " || ";
    sql += is_leaf ? member(name, leaves[i].sql)
                   : group(name, Nested(leaves.subspan(i, end - i), depth + 1, member, group));
    i = end;
  }
  return sql.empty() ? "''" : sql;
}

/// The text where it is not NULL, and else nothing.
std::string Around(const std::string& before, const std::string& sql, const std::string& after) {
  return "coalesce(" + QuoteText(before) + " || " + sql + " || " + QuoteText(after) + ", '')";
}

/// Raises 13601 for a member that another one is, or that another one's members stand in, or do so apart.
void RequireApart(const std::vector<Leaf>& leaves) {
  std::set<std::vector<std::string>> done;
  std::vector<std::string> open;
  for (const Leaf& leaf : leaves) {
    std::vector<std::string> path;
    for (std::size_t depth = 0; depth < leaf.path.size(); ++depth) {
      path.push_back(leaf.path[depth]);
      const bool is_open =
          depth + 1 < leaf.path.size() && depth + 1 < open.size() && std::equal(path.begin(), path.end(), open.begin());
      if (is_open || done.insert(path).second) continue;
      std::string name;
      for (const std::string& part : leaf.path) name += (name.empty() ? "" : ".") + part;
      throw SqlError(13601, "Property '" + name +
                                "' cannot be generated in JSON output due to a conflict with another column name or "
                                "alias. Use different names and aliases for each column in SELECT list.");
    }
    open = leaf.path;
  }
}

class ForTranslator {
 public:
  ForTranslator(Translation& translation, const Query& query, TranslatedQuery rows)
      : translation_(translation), query_(query), clause_(*query.for_clause), rows_(std::move(rows)) {}

  TranslatedQuery Translate(std::string name);

 private:
  [[nodiscard]] bool is_json() const { return clause_.form == ForClause::Form::kJson; }
  [[nodiscard]] Typed Column(std::size_t i) const { return {"c" + std::to_string(i), rows_.columns[i].type, true, -1}; }
  std::string Xml(std::size_t i, bool attribute);
  std::string XmlRow();
  std::string Json(std::size_t i);
  std::string JsonRow();
  /// Whether all columns are data(), whose values stand apart.
  [[nodiscard]] bool IsList() const;

  Translation& translation_;
  const Query& query_;
  const ForClause& clause_;
  TranslatedQuery rows_;
};

std::string ForTranslator::Xml(std::size_t i, bool attribute) {
  std::string sql = TextOf(translation_, Column(i));
  const ForClause* nested = NestedClause(query_, rows_.columns, i);
  if (clause_.as_value || (nested != nullptr && nested->typed)) return sql;
  std::vector<std::pair<const char*, const char*>> marks = {{"&", "&amp;"}, {"<", "&lt;"}, {">", "&gt;"}};
  if (attribute) marks.emplace_back("\"", "&quot;");
  marks.emplace_back("\r", "&#x0D;");
  for (const auto& [mark, entity] : marks) {
    sql.insert(0, "replace(").append(", '").append(mark).append("', '").append(entity).append("')");
  }
  return sql;
}

bool ForTranslator::IsList() const {
  for (const ResultColumn& column : rows_.columns) {
    if (column.name != "data()") return false;
  }
  return clause_.row.empty();
}

std::string ForTranslator::XmlRow() {
  std::string attributes;
  std::vector<Leaf> leaves;
  for (std::size_t i = 0; i < rows_.columns.size(); ++i) {
    std::string name = rows_.columns[i].name;
    const bool is_text = name.empty() || name == "*" || name == "text()" || name == "node()" || name == "data()";
    const bool raw = clause_.form == ForClause::Form::kXmlRaw;
    if (!raw && is_text) {
      leaves.push_back({{""}, Xml(i, false)});
    } else if (raw || name[0] == '@') {
      if (!raw && !leaves.empty()) {
        throw SqlError(6852,
                       "Attribute-centric column '" + name +
                           "' must not come after a non-attribute-centric sibling in XML hierarchy in FOR XML PATH.");
      }
      if (!raw) name.erase(0, 1);
      if (name.empty())
        throw SqlError(6809, "Unnamed tables cannot be used as XML identifiers as well as unnamed columns.");
      attributes += " || " + Around(" " + name + "=\"", Xml(i, true), "\"");
    } else {
      if (name.find('@') != std::string::npos) RaiseUnsupported("An attribute of an element within the row's");
      Leaf& leaf = leaves.emplace_back();
      for (const std::string_view part : Split(name, '/')) leaf.path.emplace_back(part);
      leaf.sql = Xml(i, false);
    }
  }
  const bool tags = !clause_.as_value;
  const auto member = [&](const std::string& name, const std::string& sql) {
    return name.empty() || !tags ? Around("", sql, "") : Around("<" + name + ">", sql, "</" + name + ">");
  };
  const auto group = [&](const std::string& name, const std::string& sql) {
    return tags ? Around("<" + name + ">", "nullif(" + sql + ", '')", "</" + name + ">") : sql;
  };
  std::string content = Nested(leaves, 0, member, group);
  if (!tags) return content;
  if (clause_.row.empty()) {
    if (attributes.empty()) return content;
    throw SqlError(
        6864, "Row tag omission (empty row tag name) cannot be used with attribute-centric FOR XML serialization.");
  }
  const std::string name = clause_.row;
  const std::string begin = QuoteText("<" + name) + attributes;
  if (leaves.empty()) return begin + " || '/>'";
  return begin + " || coalesce('>' || nullif(" + content + ", '') || " + QuoteText("</" + name + ">") + ", '/>')";
}

std::string ForTranslator::Json(std::size_t i) {
  const Typed value = Column(i);
  const ForClause* nested = NestedClause(query_, rows_.columns, i);
  const Select* select = query_.select();
  const bool listed = select != nullptr && select->items.size() == rows_.columns.size();
  const auto* call = listed ? As<FunctionCall>(*select->items[i].expression) : nullptr;
  const bool is_json = (nested != nullptr && nested->form == ForClause::Form::kJson && nested->array) ||
                       (call != nullptr && call->name == "json_query");
  std::string sql = TextOf(translation_, value);
  if (value.type.kind == FieldType::kBit) sql = "CASE " + value.sql + " WHEN 1 THEN 'true' WHEN 0 THEN 'false' END";
  if (!is_json && !value.type.is_number())
    sql = "CASE WHEN " + value.sql + " IS NOT NULL THEN replace(json_quote(" + sql + "), '/', '\\/') END";
  return clause_.includes_nulls ? "coalesce(" + sql + ", 'null')" : sql;
}

std::string ForTranslator::JsonRow() {
  std::vector<Leaf> leaves;
  for (std::size_t i = 0; i < rows_.columns.size(); ++i) {
    const std::string& name = rows_.columns[i].name;
    if (name.empty()) {
      throw SqlError(
          13605,
          "Column expressions and data sources without names or aliases cannot be formatted as JSON text using "
          "FOR JSON clause. Add alias to the unnamed column or table.");
    }
    Leaf& leaf = leaves.emplace_back();
    for (const std::string_view part : Split(name, '.')) leaf.path.emplace_back(part);
    leaf.sql = Json(i);
  }
  RequireApart(leaves);
  // Each member brings its comma along, the first one too many.
  const auto member = [](const std::string& name, const std::string& sql) {
    return Around(",\"" + ReplaceAll(ReplaceAll(name, "\\", "\\\\"), "\"", "\\\"") + "\":", sql, "");
  };
  const auto group = [&](const std::string& name, const std::string& sql) {
    return member(name, "('{' || nullif(substr(" + sql + ", 2), '') || '}')");
  };
  return "'{' || substr(" + Nested(leaves, 0, member, group) + ", 2) || '}'";
}

TranslatedQuery ForTranslator::Translate(std::string name) {
  const Select* select = query_.select();
  const bool joins =
      select != nullptr && (select->from.size() != 1 || std::holds_alternative<Join>(select->from[0]->node));
  if (clause_.automatic && joins) RaiseUnsupported("FOR JSON AUTO of anything but one table");
  std::string names;
  for (std::size_t i = 0; i < rows_.columns.size(); ++i) names += (i == 0 ? "c" : ", c") + std::to_string(i);
  const std::string row = is_json() ? JsonRow() : XmlRow();
  const char* separator = is_json() ? "','" : IsList() ? "' '" : "''";
  std::string text = "group_concat(" + row + ", " + separator + ")";
  if (is_json() && clause_.array) text = "'[' || " + text + " || ']'";
  if (!clause_.root.empty() && !clause_.as_value) {
    text = is_json()
               ? QuoteText("{\"" + clause_.root + "\":") + " || " + text + " || '}'"
               : QuoteText("<" + clause_.root + ">") + " || " + text + " || " + QuoteText("</" + clause_.root + ">");
  }
  if (name.empty()) name = std::string(is_json() ? "JSON" : "XML") + "_F52E2B61-18A1-11d1-B105-00805F49916B";
  return {"WITH \"$rows\"(" + names + ") AS (" + rows_.sql + ") SELECT " + text + " AS " + QuoteName(name) +
              " FROM \"$rows\"",
          {{name, NVarCharType(0), true}}};
}

}  // namespace

TranslatedQuery TranslateForClause(Translation& translation, const Query& query, TranslatedQuery rows,
                                   const std::string& name) {
  return ForTranslator(translation, query, std::move(rows)).Translate(name);
}

}  // namespace tessarlorn::tsql
