// Changes of definitions that stay where they are: names, and what is noted of indexes.
#include "platform/text/text.h"
#include "tsql/storage/catalog.h"
#include "tsql/storage/constraint_text.h"

namespace tessarlorn::tsql {
namespace {

/// The elements of a JSON list of names, the name ?2 as ?3.
std::string RenamedList(std::string_view path) {
  return "(SELECT json_group_array(CASE WHEN n.value = ?2 COLLATE NOCASE THEN ?3 ELSE n.value END) FROM json_each(j.value, '" +
         std::string(path) + "') n)";
}

}  // namespace

void Catalog::Update(const std::string& sql, std::string_view first, std::string_view second, std::string_view third) {
  SqliteStatement statement(database_, sql);
  int parameter = 0;
  for (const std::string_view text : {first, second, third}) {
    statement.BindText(++parameter, text);
  }
  statement.Step("UPDATE");
  Invalidate();
}

void Catalog::ChangeConstraints(const std::string& changed, const std::string& which, std::string_view first,
                                std::string_view second, std::string_view third) {
  Update(R"(UPDATE main."$objects" SET definition = (SELECT json_group_array(json()" + changed +
             R"()) FROM json_each(definition) j) WHERE kind = 'table' AND definition <> '' AND )" + which,
         first, second, third);
}

void Catalog::NoteIndex(const CatalogObject& table, const std::string& index, const std::vector<std::string>& included,
                        const std::string& condition) {
  if (table.temporary || (included.empty() && condition.empty())) return;
  Constraint note;
  note.kind = "IX";
  note.index = index;
  note.columns = included;
  note.text = condition.empty() ? "" : "(" + condition + ")";
  Constraints constraints = ReadConstraints(table.definition);
  constraints.push_back(std::move(note));
  CatalogObject changed = table;
  changed.definition = WriteConstraints(constraints);
  Replace(std::move(changed));
}

void Catalog::RenameIndex(const CatalogObject& table, std::string_view from, std::string_view to) {
  // What is forgotten leaves its place: the numbers of those behind it stay.
  const std::string note = to.empty() ? R"('{"kind":""}')" : "json_set(j.value, '$.index', ?3)";
  ChangeConstraints("CASE WHEN json_extract(j.value, '$.index') = ?2 COLLATE NOCASE THEN " + note + " ELSE j.value END",
                    "name = ?1", table.name, from, to);
}

void Catalog::RenameObject(const CatalogObject& object, std::string_view to) {
  Update(R"(UPDATE main."$objects" SET name = ?2 WHERE name = ?1)", object.name, to);
  if (object.kind == CatalogKind::kTable) {
    ChangeConstraints(
        "CASE WHEN json_extract(j.value, '$.to') = ?1 COLLATE NOCASE THEN json_set(j.value, '$.to', ?2) ELSE j.value END",
        "instr(definition, '\"to\":') > 0", object.name, to);
    Update(R"(UPDATE main."$columns" SET name = ?2 WHERE name = ?1 COLLATE NOCASE
 AND object IN (SELECT id FROM main."$objects" WHERE kind = 'trigger'))",
           object.name, to);
  } else {
    CountUp();
  }
}

void Catalog::RenameColumn(const CatalogObject& table, std::string_view from, std::string_view to) {
  Update(R"(UPDATE main."$columns" SET name = ?3 WHERE name = ?2 COLLATE NOCASE
 AND object = (SELECT id FROM main."$objects" WHERE name = ?1))",
         table.name, from, to);
  ChangeConstraints("CASE WHEN j.value ->> '$.columns' IS NULL THEN j.value ELSE json_set(j.value, '$.columns', json(" +
                        RenamedList("$.columns") + ")) END",
                    "name = ?1", table.name, from, to);
  ChangeConstraints(
      "CASE WHEN json_extract(j.value, '$.to') = ?1 COLLATE NOCASE AND j.value ->> '$.referenced' IS NOT NULL"
      " THEN json_set(j.value, '$.referenced', json(" +
          RenamedList("$.referenced") + ")) ELSE j.value END",
      "instr(definition, '\"referenced\":') > 0", table.name, from, to);
}

}  // namespace tessarlorn::tsql
