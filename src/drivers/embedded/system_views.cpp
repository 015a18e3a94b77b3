#include "drivers/embedded/system_views.h"

#include "platform/text.h"

namespace tessarlorn::embedded {
namespace {

const std::vector<SystemView>& SystemViews() {
  static const std::vector<SystemView> views = {
      {"sys",
       "objects",
       R"(SELECT name, id AS object_id, CASE kind WHEN 'table' THEN 'U ' WHEN 'view' THEN 'V ' ELSE 'P ' END AS type FROM main."$objects")",
       {{"name", NVarCharType(128), false}, {"object_id", IntType(), false}, {"type", VarCharType(2), false}}},
      {"sys",
       "tables",
       R"(SELECT name, id AS object_id FROM main."$objects" WHERE kind = 'table')",
       {{"name", NVarCharType(128), false}, {"object_id", IntType(), false}}},
      {"sys",
       "views",
       R"(SELECT name, id AS object_id FROM main."$objects" WHERE kind = 'view')",
       {{"name", NVarCharType(128), false}, {"object_id", IntType(), false}}},
      {"sys",
       "procedures",
       R"(SELECT name, id AS object_id FROM main."$objects" WHERE kind = 'procedure')",
       {{"name", NVarCharType(128), false}, {"object_id", IntType(), false}}},
      {"sys",
       "columns",
       R"(SELECT object AS object_id, name, position AS column_id, nullable AS is_nullable, identity = 1 AS is_identity FROM main."$columns")",
       {{"object_id", IntType(), false},
        {"name", NVarCharType(128), false},
        {"column_id", IntType(), false},
        {"is_nullable", BitType(), false},
        {"is_identity", BitType(), false}}},
      {"sys",
       "indexes",
       R"(SELECT o.id AS object_id, substr(s.name, length(s.tbl_name) + 2) AS name FROM main.sqlite_schema s JOIN main."$objects" o ON o.name = s.tbl_name WHERE s.type = 'index' AND s.name NOT LIKE 'sqlite%')",
       {{"object_id", IntType(), false}, {"name", NVarCharType(128), true}}},
      {"information_schema",
       "tables",
       R"(SELECT 'dbo' AS TABLE_SCHEMA, name AS TABLE_NAME, CASE kind WHEN 'table' THEN 'BASE TABLE' ELSE 'VIEW' END AS TABLE_TYPE FROM main."$objects" WHERE kind <> 'procedure')",
       {{"TABLE_SCHEMA", NVarCharType(128), false},
        {"TABLE_NAME", NVarCharType(128), false},
        {"TABLE_TYPE", VarCharType(10), false}}},
      {"information_schema",
       "columns",
       R"(SELECT 'dbo' AS TABLE_SCHEMA, o.name AS TABLE_NAME, c.name AS COLUMN_NAME, c.position AS ORDINAL_POSITION, CASE c.nullable WHEN 1 THEN 'YES' ELSE 'NO' END AS IS_NULLABLE, c.type AS DATA_TYPE FROM main."$columns" c JOIN main."$objects" o ON o.id = c.object)",
       {{"TABLE_SCHEMA", NVarCharType(128), false},
        {"TABLE_NAME", NVarCharType(128), false},
        {"COLUMN_NAME", NVarCharType(128), false},
        {"ORDINAL_POSITION", IntType(), false},
        {"IS_NULLABLE", VarCharType(3), false},
        {"DATA_TYPE", NVarCharType(128), false}}},
  };
  return views;
}

}  // namespace

const SystemView* FindSystemView(std::string_view qualifier, std::string_view name) {
  for (const SystemView& view : SystemViews()) {
    if (EqualsIgnoreCase(view.qualifier, qualifier) && EqualsIgnoreCase(view.name, name)) return &view;
  }
  return nullptr;
}

}  // namespace tessarlorn::embedded
