// INFORMATION_SCHEMA, but for the views that catalog_views.cpp tells in Transact-SQL.
#include <initializer_list>

#include "tsql/storage/system_view_parts.h"

namespace tessarlorn::tsql {
namespace {

/// What INFORMATION_SCHEMA says of a type, out of kTyped.
const std::string kSizes = R"(base AS DATA_TYPE,
 CASE WHEN base LIKE '%char' OR base LIKE '%binary' THEN size END AS CHARACTER_MAXIMUM_LENGTH,
 CASE WHEN base LIKE 'n%char' AND size > 0 THEN size * 2 WHEN base LIKE '%char' OR base LIKE '%binary' THEN size END
  AS CHARACTER_OCTET_LENGTH,
 CASE base WHEN 'decimal' THEN size WHEN 'money' THEN 19 WHEN 'bigint' THEN 19 WHEN 'int' THEN 10
  WHEN 'smallint' THEN 5 WHEN 'tinyint' THEN 3 WHEN 'float' THEN 53 WHEN 'real' THEN 24 WHEN 'smallmoney' THEN 10 END
  AS NUMERIC_PRECISION,
 CASE WHEN base IN ('float', 'real') THEN 2 WHEN base IN ('decimal', 'money', 'smallmoney', 'bigint', 'int', 'smallint',
  'tinyint') THEN 10 END AS NUMERIC_PRECISION_RADIX,
 CASE WHEN base LIKE 'n%char' THEN 'UNICODE' WHEN base LIKE '%char' THEN 'cp936' END AS CHARACTER_SET_NAME,
 CASE base WHEN 'decimal' THEN places WHEN 'money' THEN 4 WHEN 'smallmoney' THEN 4
  WHEN 'bigint' THEN 0 WHEN 'int' THEN 0 WHEN 'smallint' THEN 0 WHEN 'tinyint' THEN 0 END AS NUMERIC_SCALE,
 CASE base WHEN 'datetime' THEN 3 WHEN 'date' THEN 0 WHEN 'smalldatetime' THEN 0 WHEN 'time' THEN size
  WHEN 'datetime2' THEN size WHEN 'datetimeoffset' THEN size END AS DATETIME_PRECISION,
 CASE WHEN base LIKE '%char' THEN )" +
                           std::string(kCollationName) + " END AS COLLATION_NAME";

std::vector<SystemView> InformationOfObjects() {
  return {
      {"information_schema",
       "schemata",
       From("SELECT 'main' AS CATALOG_NAME, name AS SCHEMA_NAME, 'dbo' AS SCHEMA_OWNER", kSchemas,
            " WHERE schema_id NOT BETWEEN 2 AND 4"),
       {Name("CATALOG_NAME"), Name("SCHEMA_NAME"), Name("SCHEMA_OWNER")}},
      {"information_schema",
       "tables",
       From("SELECT 'main' AS TABLE_CATALOG, schema_name AS TABLE_SCHEMA, name AS TABLE_NAME,"
            " CASE kind WHEN 'table' THEN 'BASE TABLE' ELSE 'VIEW' END AS TABLE_TYPE",
            kObjects, " WHERE kind IN ('table', 'view')"),
       {Name("TABLE_CATALOG"), Name("TABLE_SCHEMA"), Name("TABLE_NAME"), {"TABLE_TYPE", VarCharType(10), false}}},
      {"information_schema",
       "views",
       From("SELECT 'main' AS TABLE_CATALOG, schema_name AS TABLE_SCHEMA, name AS TABLE_NAME, definition AS"
            " VIEW_DEFINITION, 'NONE' AS CHECK_OPTION, 'NO' AS IS_UPDATABLE",
            kObjects, " WHERE kind = 'view'"),
       {Name("TABLE_CATALOG"), Name("TABLE_SCHEMA"), Name("TABLE_NAME"), Text("VIEW_DEFINITION"), Code("CHECK_OPTION"),
        Code("IS_UPDATABLE")}},
      {"information_schema",
       "routines",
       From(
           R"(SELECT 'main' AS SPECIFIC_CATALOG, schema_name AS SPECIFIC_SCHEMA, name AS SPECIFIC_NAME, 'main' AS ROUTINE_CATALOG, schema_name AS ROUTINE_SCHEMA, name AS ROUTINE_NAME, CASE kind WHEN 'procedure' THEN 'PROCEDURE' ELSE 'FUNCTION' END AS ROUTINE_TYPE,
 'SQL' AS ROUTINE_BODY, definition AS ROUTINE_DEFINITION, 'NO' AS IS_DETERMINISTIC, CASE kind WHEN 'procedure' THEN 'MODIFIES' ELSE 'READS' END AS SQL_DATA_ACCESS,
 NULL AS CREATED, NULL AS LAST_ALTERED)",
           kObjects, " WHERE kind IN ('procedure', 'function', 'table function', 'filled table function')"),
       {Name("SPECIFIC_CATALOG"), Name("SPECIFIC_SCHEMA"), Name("SPECIFIC_NAME"), Name("ROUTINE_CATALOG"),
        Name("ROUTINE_SCHEMA"), Name("ROUTINE_NAME"), Code("ROUTINE_TYPE"), Code("ROUTINE_BODY"),
        Text("ROUTINE_DEFINITION"), Code("IS_DETERMINISTIC"), Code("SQL_DATA_ACCESS"), Time("CREATED"),
        Time("LAST_ALTERED")}},
      {"information_schema",
       "sequences",
       From("SELECT 'main' AS SEQUENCE_CATALOG, schema_name AS SEQUENCE_SCHEMA, name AS SEQUENCE_NAME", kObjects,
            " WHERE kind = 'sequence'"),
       {Name("SEQUENCE_CATALOG"), Name("SEQUENCE_SCHEMA"), Name("SEQUENCE_NAME")}},
  };
}

std::vector<SystemView> InformationOfConstraints() {
  const std::string here =
      "'main' AS CONSTRAINT_CATALOG, k.schema_name AS CONSTRAINT_SCHEMA, k.name AS CONSTRAINT_NAME";
  const std::string table = "'main' AS TABLE_CATALOG, k.schema_name AS TABLE_SCHEMA, k.owner_name AS TABLE_NAME";
  const std::vector<SystemViewColumn> names = {Name("CONSTRAINT_CATALOG"), Name("CONSTRAINT_SCHEMA"),
                                               Name("CONSTRAINT_NAME"),    Name("TABLE_CATALOG"),
                                               Name("TABLE_SCHEMA"),       Name("TABLE_NAME")};
  const auto with = [&](std::initializer_list<SystemViewColumn> more) {
    std::vector<SystemViewColumn> columns = names;
    columns.insert(columns.end(), more);
    return columns;
  };
  const std::string key_columns = "SELECT " + here + ", " + table +
                                  ", k.column_name AS COLUMN_NAME, k.ordinal AS ORDINAL_POSITION FROM (" +
                                  KeyColumns() + ") k WHERE k.kind IN ('PK', 'UQ', 'F')";
  return {
      {"information_schema", "table_constraints",
       From("SELECT " + here + ", " + table +
                ", CASE k.kind WHEN 'PK' THEN 'PRIMARY KEY' WHEN 'UQ' THEN 'UNIQUE'"
                " WHEN 'F' THEN 'FOREIGN KEY' ELSE 'CHECK' END AS CONSTRAINT_TYPE, 'NO' AS IS_DEFERRABLE,"
                " 'NO' AS INITIALLY_DEFERRED",
            kConstraints, " k WHERE k.kind IN ('PK', 'UQ', 'F', 'C')"),
       with({Code("CONSTRAINT_TYPE"), Code("IS_DEFERRABLE"), Code("INITIALLY_DEFERRED")})},
      {"information_schema", "key_column_usage", key_columns, with({Name("COLUMN_NAME"), Int("ORDINAL_POSITION")})},
      {"information_schema", "constraint_column_usage", key_columns, with({Name("COLUMN_NAME")})},
      {"information_schema",
       "check_constraints",
       From("SELECT " + here + ", json_extract(k.body, '$.text') AS CHECK_CLAUSE", kConstraints,
            " k WHERE k.kind = 'C'"),
       {Name("CONSTRAINT_CATALOG"), Name("CONSTRAINT_SCHEMA"), Name("CONSTRAINT_NAME"), Text("CHECK_CLAUSE")}},
      {"information_schema",
       "referential_constraints",
       "SELECT " + here +
           ", 'main' AS UNIQUE_CONSTRAINT_CATALOG, u.schema_name AS UNIQUE_CONSTRAINT_SCHEMA,"
           " u.name AS UNIQUE_CONSTRAINT_NAME, 'SIMPLE' AS MATCH_OPTION, 'NO ACTION' AS UPDATE_RULE,"
           " 'NO ACTION' AS DELETE_RULE FROM (" +
           References() + ") k JOIN (" + std::string(kConstraints) +
           ") u ON u.object = k.referenced_id AND u.kind IN ('PK', 'UQ')"
           " AND lower(json_extract(u.body, '$.columns')) = lower(k.referenced)",
       {Name("CONSTRAINT_CATALOG"), Name("CONSTRAINT_SCHEMA"), Name("CONSTRAINT_NAME"),
        Name("UNIQUE_CONSTRAINT_CATALOG"), Name("UNIQUE_CONSTRAINT_SCHEMA"), Name("UNIQUE_CONSTRAINT_NAME"),
        Code("MATCH_OPTION"), Code("UPDATE_RULE"), Code("DELETE_RULE")}},
  };
}

std::vector<SystemView> InformationOfColumns() {
  const auto with_sizes = [](std::vector<SystemViewColumn> columns) {
    for (SystemViewColumn& column :
         std::vector{Name("DATA_TYPE"), Int("CHARACTER_MAXIMUM_LENGTH"), Int("CHARACTER_OCTET_LENGTH"),
                     Int("NUMERIC_PRECISION"), Int("NUMERIC_PRECISION_RADIX"), Int("NUMERIC_SCALE"),
                     Int("DATETIME_PRECISION"), Name("CHARACTER_SET_NAME"), Name("COLLATION_NAME")}) {
      columns.push_back(std::move(column));
    }
    return columns;
  };
  return {
      {"information_schema", "columns",
       From(
           R"(SELECT 'main' AS TABLE_CATALOG, schema_name AS TABLE_SCHEMA, owner_name AS TABLE_NAME, name AS COLUMN_NAME,
 position AS ORDINAL_POSITION, CASE WHEN identity < 3 THEN nullif(default_text, '') END AS COLUMN_DEFAULT,
 CASE nullable WHEN 1 THEN 'YES' ELSE 'NO' END AS IS_NULLABLE, )" +
               kSizes,
           kTyped, " WHERE of_call = 0 AND owner_kind IN ('table', 'view')"),
       with_sizes({Name("TABLE_CATALOG"),
                   Name("TABLE_SCHEMA"),
                   Name("TABLE_NAME"),
                   Name("COLUMN_NAME"),
                   Int("ORDINAL_POSITION"),
                   {"COLUMN_DEFAULT", NVarCharType(4000), true},
                   {"IS_NULLABLE", VarCharType(3), false}})},
      {"information_schema", "parameters",
       From(
           "SELECT 'main' AS SPECIFIC_CATALOG, schema_name AS SPECIFIC_SCHEMA, owner_name AS SPECIFIC_NAME, parameter_position AS"
           " ORDINAL_POSITION, CASE default_text WHEN 'output' THEN 'INOUT' WHEN 'return' THEN 'OUT' ELSE 'IN' END AS"
           " PARAMETER_MODE, CASE default_text WHEN 'return' THEN 'YES' ELSE 'NO' END AS IS_RESULT, name AS PARAMETER_NAME, " +
               kSizes,
           kTyped, " WHERE of_call = 1"),
       with_sizes({Name("SPECIFIC_CATALOG"), Name("SPECIFIC_SCHEMA"), Name("SPECIFIC_NAME"), Int("ORDINAL_POSITION"),
                   Code("PARAMETER_MODE"), Code("IS_RESULT"), Name("PARAMETER_NAME")})},
  };
}

}  // namespace

std::vector<SystemView> InformationSchema() {
  std::vector<SystemView> all = InformationOfObjects();
  for (const auto group : {InformationOfConstraints, InformationOfColumns}) {
    for (SystemView& view : group()) all.push_back(std::move(view));
  }
  return all;
}

}  // namespace tessarlorn::tsql
