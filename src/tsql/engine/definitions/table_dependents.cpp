#include "tsql/engine/definitions/table_dependents.h"

#include <algorithm>

#include "platform/text/text.h"
#include "tsql/engine/definitions/table_maker.h"
#include "tsql/functions/json/json.h"
#include "tsql/storage/system_view_parts.h"
#include "tsql/syntax/token.h"

namespace tessarlorn::tsql {
namespace {

/// Whether SCHEMABINDING stands among the options behind WITH.
bool IsBinding(const std::vector<Token>& tokens) {
  const auto is = [](const Token& token, std::string_view word) {
    return token.kind == TokenKind::kWord && EqualsIgnoreCase(token.text, word);
  };
  auto token = std::find_if(tokens.begin(), tokens.end(), [&](const Token& one) { return is(one, "with"); });
  for (; token != tokens.end() && !is(*token, "as"); ++token) {
    if (is(*token, "schemabinding")) return true;
    if (token->kind != TokenKind::kWord && token->op != Op::kComma) return false;
  }
  return false;
}

}  // namespace

bool NamesColumn(SessionDatabase& database, const std::string& text, const std::string& column) {
  Tokens tokens;
  TokenizeDefinition(text, database.names(), tokens);
  return std::any_of(tokens.tokens.begin(), tokens.tokens.end(),
                     [&](const Token& token) { return EqualsIgnoreCase(token.text, column); });
}

std::vector<std::string> IndexesOn(SessionDatabase& database, const CatalogObject& table, const std::string& column) {
  constexpr const char* kIndexes = R"(SELECT substr(s.name, length(s.tbl_name) + 2) FROM {schema}.sqlite_schema s
 WHERE s.type = 'index' AND s.tbl_name = {table} AND s.sql IS NOT NULL AND s.name NOT LIKE '%$null'
 AND substr(s.name, length(s.tbl_name) + 2) NOT LIKE '$unique%'
 AND (EXISTS (SELECT 1 FROM pragma_index_xinfo(s.name, '{schema}') x WHERE x.name = {column} COLLATE NOCASE)
  OR (instr(s.sql, ' WHERE ') > 0 AND instr(lower(substr(s.sql, instr(s.sql, ' WHERE '))), lower({quoted})) > 0)))";
  std::string sql = ReplaceAll(kIndexes, "{schema}", SchemaOf(table));
  sql = ReplaceAll(ReplaceAll(sql, "{table}", QuoteText(table.table_name())), "{column}", QuoteText(column));
  SqliteStatement found = database.Prepare(ReplaceAll(sql, "{quoted}", QuoteText(QuoteName(column))));
  std::vector<std::string> indexes;
  while (found.Step("SELECT")) indexes.push_back(found.Text(0));
  // A unique index has what it includes in its note alone.
  for (const Constraint& note : ReadConstraints(table.definition)) {
    if (note.kind != "IX" || !note.HasColumn(column)) continue;
    if (std::find(indexes.begin(), indexes.end(), note.index) == indexes.end()) indexes.push_back(note.index);
  }
  return indexes;
}

std::vector<IncomingReference> ReferencesTo(SessionDatabase& database, const CatalogObject& table) {
  std::vector<IncomingReference> references;
  if (table.temporary) return references;
  SqliteStatement found = database.Prepare("SELECT f.owner, f.name, f.referenced FROM (" + References() +
                                           ") f WHERE f.referenced_id = " + std::to_string(table.id));
  while (found.Step("SELECT")) {
    IncomingReference& reference = references.emplace_back();
    reference.table = found.Text(0);
    reference.name = found.Text(1);
    const std::string columns = found.Text(2);
    if (columns.empty()) continue;
    for (const JsonMember& member : ParseJson(columns).members) reference.referenced.push_back(member.value.Scalar());
  }
  return references;
}

bool HasBrokenReference(SessionDatabase& database, const CatalogObject& table, const Constraint& key,
                        const CatalogObject& other, const std::vector<std::string>& referenced,
                        const std::string& former) {
  std::string given;
  std::string equal;
  for (std::size_t i = 0; i < referenced.size(); ++i) {
    const std::string own = "f." + QuoteName(key.columns[i]);
    given += (i == 0 ? "" : " AND ") + own + " IS NOT NULL";
    equal += (i == 0 ? "" : " AND ") + ("p." + QuoteName(referenced[i])) + " = " + own;
    if (!former.empty()) given += " AND " + own + " = k." + QuoteName(referenced[i]);
  }
  return database
      .Prepare("SELECT 1 FROM " + TableSql(table) + " f" + (former.empty() ? "" : ", " + former + " k") + " WHERE " +
               given + " AND NOT EXISTS (SELECT 1 FROM " + TableSql(other) + " p WHERE " + equal + ") LIMIT 1")
      .Step("SELECT");
}

void RequireDistinct(SessionDatabase& database, const CatalogObject& table, const std::vector<std::string>& columns,
                     const std::string& index, const std::string& condition) {
  const std::string list = NameList(columns);
  SqliteStatement doubles = database.Prepare("SELECT " + list + " FROM " + TableSql(table) +
                                             (condition.empty() ? "" : " WHERE " + condition) + " GROUP BY " + list +
                                             " HAVING count(*) > 1 LIMIT 1");
  if (!doubles.Step("SELECT")) return;
  std::vector<Datum> values;
  for (std::size_t i = 0; i < columns.size(); ++i) values.push_back(doubles.Value(static_cast<int>(i)));
  throw SqlError(1505,
                 "The CREATE UNIQUE INDEX statement terminated because a duplicate key was found for the object name "
                 "'" +
                     table.full_name() + "' and the index name '" + index + "'. The duplicate key value is (" +
                     KeyText(table, columns, values) + ").");
}

std::string KeyText(const CatalogObject& table, const std::vector<std::string>& columns,
                    const std::vector<Datum>& values) {
  std::string shown;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const Column& column = table.columns[static_cast<std::size_t>(table.FindColumn(columns[i]))];
    const Datum text = Convert(values[i], column.type, NVarCharType(0));
    const auto* words = std::get_if<std::string>(&text);
    shown += (i == 0 ? "" : ", ") + (words == nullptr ? "<NULL>" : *words);
  }
  return shown;
}

SqlError Conflict(std::string_view verb, std::string_view kind, const std::string& constraint,
                  const CatalogObject& table, const std::vector<std::string>& columns) {
  return {547, "The " + std::string(verb) + " statement conflicted with the " + std::string(kind) + " constraint \"" +
                   constraint + "\". The conflict occurred in database \"" + (table.temporary ? "tempdb" : "main") +
                   "\", table \"" + (table.name.starts_with('@') ? table.name : table.full_name()) + "\"" +
                   (columns.size() == 1 ? ", column '" + columns[0] + "'." : ".")};
}

std::string BoundTo(SessionDatabase& database, const CatalogObject& object, const std::string& column) {
  const std::string schema = object.schema.empty() ? "dbo" : object.schema;
  SqliteStatement found = database.Prepare(
      R"(SELECT name, definition FROM main."$objects" WHERE (kind = 'view' OR kind LIKE '%function')
 AND definition LIKE '%schemabinding%' AND name <> )" +
      QuoteText(object.name) + " ORDER BY id");
  while (found.Step("SELECT")) {
    const std::string text = found.Text(1);
    Tokens tokens;
    TokenizeDefinition(text, database.names(), tokens);
    const std::vector<Token>& all = tokens.tokens;
    const auto is_word = [&](std::string_view word) {
      return std::any_of(all.begin(), all.end(),
                         [&](const Token& token) { return EqualsIgnoreCase(token.text, word); });
    };
    bool named = false;
    for (std::size_t i = 0; i + 2 < all.size() && !named; ++i) {
      named = EqualsIgnoreCase(all[i].text, schema) && all[i + 1].op == Op::kDot &&
              EqualsIgnoreCase(all[i + 2].text, object.own_name());
    }
    if (named && IsBinding(all) && (column.empty() || is_word(column))) return found.Text(0);
  }
  return {};
}

bool IsNameTaken(SessionDatabase& database, const std::string& schema, const std::string& name) {
  if (database.catalog().Find(MakeObjectName(schema, name).name) != nullptr) return true;
  SqliteStatement found =
      database.Prepare("SELECT 1 FROM (" + std::string(kConstraints) +
                       ") WHERE kind IN ('PK', 'UQ', 'F', 'C', 'D') AND lower(name) = lower(" + QuoteText(name) +
                       ") AND schema_name = " + QuoteText(schema.empty() ? "dbo" : schema));
  return found.Step("SELECT");
}

bool AreSameColumns(const std::vector<std::string>& some, const std::vector<std::string>& others) {
  const auto among_others = [&](const std::string& name) {
    return std::any_of(others.begin(), others.end(),
                       [&](const std::string& other) { return EqualsIgnoreCase(name, other); });
  };
  return some.size() == others.size() && std::all_of(some.begin(), some.end(), among_others);
}

}  // namespace tessarlorn::tsql
