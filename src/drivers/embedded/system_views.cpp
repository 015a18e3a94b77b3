#include "drivers/embedded/system_views.h"

#include <algorithm>
#include <array>
#include <memory>

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
       R"(SELECT 'main' AS TABLE_CATALOG, 'dbo' AS TABLE_SCHEMA, o.name AS TABLE_NAME, c.name AS COLUMN_NAME,
 c.position AS ORDINAL_POSITION, CASE c.default_text WHEN '' THEN NULL ELSE c.default_text END AS COLUMN_DEFAULT,
 CASE c.nullable WHEN 1 THEN 'YES' ELSE 'NO' END AS IS_NULLABLE, b.base AS DATA_TYPE,
 CASE WHEN b.base NOT LIKE '%char' AND b.base NOT LIKE '%binary' THEN NULL WHEN b.size = 'max' THEN -1
  ELSE CAST(b.size AS INTEGER) END AS CHARACTER_MAXIMUM_LENGTH,
 CASE b.base WHEN 'decimal' THEN CAST(b.size AS INTEGER) WHEN 'money' THEN 19 WHEN 'bigint' THEN 19 WHEN 'int' THEN 10
  WHEN 'smallint' THEN 5 WHEN 'tinyint' THEN 3 WHEN 'float' THEN 53 WHEN 'real' THEN 24 END AS NUMERIC_PRECISION,
 CASE b.base WHEN 'decimal' THEN CAST(substr(b.size, instr(b.size, ',') + 1) AS INTEGER) WHEN 'money' THEN 4
  WHEN 'bigint' THEN 0 WHEN 'int' THEN 0 WHEN 'smallint' THEN 0 WHEN 'tinyint' THEN 0 END AS NUMERIC_SCALE,
 CASE b.base WHEN 'datetime' THEN 3 WHEN 'date' THEN 0 WHEN 'time' THEN 3 END AS DATETIME_PRECISION
FROM main."$columns" c JOIN main."$objects" o ON o.id = c.object
 JOIN (SELECT object, position, CASE instr(type, '(') WHEN 0 THEN type ELSE substr(type, 1, instr(type, '(') - 1) END
   AS base, rtrim(substr(type, instr(type, '(') + 1), ')') AS size FROM main."$columns") b
  ON b.object = c.object AND b.position = c.position)",
       {{"TABLE_CATALOG", NVarCharType(128), false},
        {"TABLE_SCHEMA", NVarCharType(128), false},
        {"TABLE_NAME", NVarCharType(128), false},
        {"COLUMN_NAME", NVarCharType(128), false},
        {"ORDINAL_POSITION", IntType(), false},
        {"COLUMN_DEFAULT", NVarCharType(4000), true},
        {"IS_NULLABLE", VarCharType(3), false},
        {"DATA_TYPE", NVarCharType(128), false},
        {"CHARACTER_MAXIMUM_LENGTH", IntType(), true},
        {"NUMERIC_PRECISION", IntType(), true},
        {"NUMERIC_SCALE", IntType(), true},
        {"DATETIME_PRECISION", IntType(), true}}},
  };
  return views;
}

// What clients ask when they list tables and columns, SQLTables and SQLColumns among them. Types and sizes are ODBC's.
constexpr std::string_view kTables = R"(CREATE PROCEDURE sp_tables @table_name nvarchar(384) = NULL,
  @table_owner nvarchar(384) = NULL, @table_qualifier nvarchar(128) = NULL, @table_type varchar(100) = NULL,
  @fUsePattern bit = 1 AS
SELECT DB_NAME() AS TABLE_QUALIFIER, TABLE_SCHEMA AS TABLE_OWNER, TABLE_NAME,
  CAST(CASE TABLE_TYPE WHEN 'VIEW' THEN 'VIEW' ELSE 'TABLE' END AS varchar(32)) AS TABLE_TYPE,
  CAST(NULL AS varchar(254)) AS REMARKS
FROM INFORMATION_SCHEMA.TABLES
WHERE TABLE_NAME LIKE ISNULL(@table_name, '%') AND TABLE_SCHEMA LIKE ISNULL(@table_owner, '%')
  AND CHARINDEX(CASE TABLE_TYPE WHEN 'VIEW' THEN '''VIEW''' ELSE '''TABLE''' END,
    ISNULL(@table_type, '''TABLE'',''VIEW''')) > 0
ORDER BY 4, TABLE_NAME)";

constexpr std::string_view kColumns = R"(CREATE PROCEDURE sp_columns @table_name nvarchar(384),
  @table_owner nvarchar(384) = NULL, @table_qualifier nvarchar(128) = NULL, @column_name nvarchar(384) = NULL,
  @ODBCVer int = 2, @fUsePattern bit = 1 AS
SELECT TABLE_CATALOG AS TABLE_QUALIFIER, TABLE_SCHEMA AS TABLE_OWNER, TABLE_NAME, COLUMN_NAME,
  CAST(CASE DATA_TYPE WHEN 'bit' THEN -7 WHEN 'tinyint' THEN -6 WHEN 'smallint' THEN 5 WHEN 'int' THEN 4
    WHEN 'bigint' THEN -5 WHEN 'real' THEN 7 WHEN 'float' THEN 6 WHEN 'decimal' THEN 3 WHEN 'money' THEN 3
    WHEN 'datetime' THEN CASE @ODBCVer WHEN 3 THEN 93 ELSE 11 END
    WHEN 'date' THEN CASE @ODBCVer WHEN 3 THEN 91 ELSE 9 END WHEN 'time' THEN -154 WHEN 'uniqueidentifier' THEN -11
    WHEN 'char' THEN 1 WHEN 'varchar' THEN 12 WHEN 'nchar' THEN -8 WHEN 'binary' THEN -2 WHEN 'varbinary' THEN -3
    ELSE -9 END AS smallint) AS DATA_TYPE,
  DATA_TYPE AS TYPE_NAME,
  COALESCE(NULLIF(CHARACTER_MAXIMUM_LENGTH, -1), NUMERIC_PRECISION, CASE DATA_TYPE WHEN 'datetime' THEN 23
    WHEN 'date' THEN 10 WHEN 'time' THEN 12 WHEN 'uniqueidentifier' THEN 36 WHEN 'bit' THEN 1 ELSE 0 END) AS [PRECISION],
  COALESCE(NULLIF(CHARACTER_MAXIMUM_LENGTH, -1) * CASE WHEN DATA_TYPE LIKE 'n%' THEN 2 ELSE 1 END,
    CASE DATA_TYPE WHEN 'bit' THEN 1 WHEN 'tinyint' THEN 1 WHEN 'smallint' THEN 2 WHEN 'int' THEN 4 WHEN 'real' THEN 4
    WHEN 'decimal' THEN NUMERIC_PRECISION + 2 WHEN 'money' THEN 21 WHEN 'bigint' THEN 8 WHEN 'float' THEN 8
    WHEN 'uniqueidentifier' THEN 16 WHEN 'date' THEN 6 WHEN 'time' THEN 12 WHEN 'datetime' THEN 16 ELSE 0 END) AS LENGTH,
  CAST(COALESCE(NUMERIC_SCALE, NULLIF(DATETIME_PRECISION, 0)) AS smallint) AS SCALE,
  CAST(CASE WHEN DATA_TYPE IN ('real', 'float') THEN 2 WHEN NUMERIC_PRECISION IS NOT NULL THEN 10 END AS smallint)
    AS RADIX,
  CAST(CASE IS_NULLABLE WHEN 'YES' THEN 1 ELSE 0 END AS smallint) AS NULLABLE, CAST(NULL AS varchar(254)) AS REMARKS,
  COLUMN_DEFAULT AS COLUMN_DEF,
  CAST(CASE WHEN DATA_TYPE IN ('datetime', 'date', 'time') THEN 9 END AS smallint) AS SQL_DATA_TYPE,
  CAST(CASE DATA_TYPE WHEN 'datetime' THEN 3 WHEN 'date' THEN 1 WHEN 'time' THEN 2 END AS smallint)
    AS SQL_DATETIME_SUB,
  CHARACTER_MAXIMUM_LENGTH * CASE WHEN DATA_TYPE LIKE 'n%' THEN 2 ELSE 1 END AS CHAR_OCTET_LENGTH, ORDINAL_POSITION,
  CAST(IS_NULLABLE AS varchar(254)) AS IS_NULLABLE, CAST(0 AS tinyint) AS SS_DATA_TYPE
FROM INFORMATION_SCHEMA.COLUMNS
WHERE TABLE_NAME LIKE @table_name AND TABLE_SCHEMA LIKE ISNULL(@table_owner, '%')
  AND COLUMN_NAME LIKE ISNULL(@column_name, '%')
ORDER BY TABLE_NAME, ORDINAL_POSITION)";

CatalogObjectPtr MakeProcedure(std::string_view name, std::string_view definition) {
  auto procedure = std::make_shared<CatalogObject>();
  procedure->kind = CatalogKind::kProcedure;
  procedure->name = name;
  procedure->definition = definition;
  procedure->Seal();
  return procedure;
}

}  // namespace

CatalogObjectPtr FindSystemProcedure(std::string_view name) {
  static const std::array procedures = {MakeProcedure("sp_tables", kTables), MakeProcedure("sp_columns", kColumns)};
  const auto* const found =
      std::find_if(procedures.begin(), procedures.end(),
                   [name](const CatalogObjectPtr& procedure) { return EqualsIgnoreCase(procedure->name, name); });
  return found == procedures.end() ? nullptr : *found;
}

const SystemView* FindSystemView(std::string_view qualifier, std::string_view name) {
  for (const SystemView& view : SystemViews()) {
    if (EqualsIgnoreCase(view.qualifier, qualifier) && EqualsIgnoreCase(view.name, name)) return &view;
  }
  return nullptr;
}

}  // namespace tessarlorn::embedded
