// The procedures by which clients list types, tables, columns, keys and procedures. ODBC's and JDBC's functions of the
// catalog call them and read the columns by their places. Types and sizes are ODBC's.
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "platform/text/text.h"
#include "tsql/storage/system_view_parts.h"

namespace tessarlorn::tsql {
namespace {

/// Type, name of the type, precision, length and places of a row of INFORMATION_SCHEMA.COLUMNS or PARAMETERS.
constexpr std::string_view kOdbcType =
    R"(CAST(CASE DATA_TYPE WHEN 'bit' THEN -7 WHEN 'tinyint' THEN -6 WHEN 'smallint' THEN 5 WHEN 'int' THEN 4
    WHEN 'bigint' THEN -5 WHEN 'real' THEN 7 WHEN 'float' THEN 6 WHEN 'decimal' THEN 3 WHEN 'money' THEN 3
    WHEN 'smallmoney' THEN 3 WHEN 'datetime' THEN CASE @ODBCVer WHEN 3 THEN 93 ELSE 11 END
    WHEN 'datetime2' THEN CASE @ODBCVer WHEN 3 THEN 93 ELSE 11 END
    WHEN 'smalldatetime' THEN CASE @ODBCVer WHEN 3 THEN 93 ELSE 11 END WHEN 'datetimeoffset' THEN -155
    WHEN 'date' THEN CASE @ODBCVer WHEN 3 THEN 91 ELSE 9 END WHEN 'time' THEN -154 WHEN 'uniqueidentifier' THEN -11
    WHEN 'char' THEN 1 WHEN 'varchar' THEN 12 WHEN 'nchar' THEN -8 WHEN 'binary' THEN -2 WHEN 'varbinary' THEN -3
    ELSE -9 END AS smallint) AS DATA_TYPE,
  DATA_TYPE AS TYPE_NAME,
  COALESCE(NULLIF(CHARACTER_MAXIMUM_LENGTH, -1), NUMERIC_PRECISION, CASE DATA_TYPE WHEN 'datetime' THEN 23
    WHEN 'datetime2' THEN 23 WHEN 'smalldatetime' THEN 16 WHEN 'datetimeoffset' THEN 30 WHEN 'date' THEN 10
    WHEN 'time' THEN 12 WHEN 'uniqueidentifier' THEN 36 WHEN 'bit' THEN 1 ELSE 0 END) AS [PRECISION],
  COALESCE(NULLIF(CHARACTER_OCTET_LENGTH, -1),
    CASE DATA_TYPE WHEN 'bit' THEN 1 WHEN 'tinyint' THEN 1 WHEN 'smallint' THEN 2 WHEN 'int' THEN 4 WHEN 'real' THEN 4
    WHEN 'decimal' THEN NUMERIC_PRECISION + 2 WHEN 'money' THEN 21 WHEN 'smallmoney' THEN 12 WHEN 'bigint' THEN 8
    WHEN 'float' THEN 8 WHEN 'uniqueidentifier' THEN 16 WHEN 'date' THEN 6 WHEN 'time' THEN 12 WHEN 'datetime' THEN 16
    WHEN 'datetime2' THEN 16 WHEN 'smalldatetime' THEN 16 WHEN 'datetimeoffset' THEN 20 ELSE 0 END) AS LENGTH,
  CAST(COALESCE(NUMERIC_SCALE, NULLIF(DATETIME_PRECISION, 0)) AS smallint) AS SCALE)";

/// The base of a number's precision.
constexpr std::string_view kRadix =
    R"(CAST(CASE WHEN DATA_TYPE IN ('real', 'float') THEN 2 WHEN NUMERIC_PRECISION IS NOT NULL THEN 10 END AS smallint))";

/// What stands behind a column's or parameter's remarks.
constexpr std::string_view kOdbcDetails =
    R"(CAST(CASE WHEN DATA_TYPE IN ('datetime', 'datetime2', 'smalldatetime', 'date', 'time') THEN 9 END AS smallint)
    AS SQL_DATA_TYPE,
  CAST(CASE DATA_TYPE WHEN 'datetime' THEN 3 WHEN 'datetime2' THEN 3 WHEN 'smalldatetime' THEN 3 WHEN 'date' THEN 1
    WHEN 'time' THEN 2 END AS smallint) AS SQL_DATETIME_SUB,
  CHARACTER_OCTET_LENGTH AS CHAR_OCTET_LENGTH, ORDINAL_POSITION)";

constexpr std::string_view kTables = R"(CREATE PROCEDURE sp_tables @table_name nvarchar(384) = NULL,
  @table_owner nvarchar(384) = NULL, @table_qualifier nvarchar(128) = NULL, @table_type varchar(100) = NULL,
  @fUsePattern bit = 1 AS
IF ISNULL(@table_name, '') = '' AND (@table_qualifier = '%' AND ISNULL(@table_owner, '') = ''
    OR @table_owner = '%' AND ISNULL(@table_qualifier, '') = '' OR @table_type = '%' AND ISNULL(@table_owner, '') = '')
  SELECT CASE @table_qualifier WHEN '%' THEN DB_NAME() END AS TABLE_QUALIFIER,
    CASE @table_owner WHEN '%' THEN owner END AS TABLE_OWNER,
    CAST(NULL AS nvarchar(128)) AS TABLE_NAME,
    CAST(CASE @table_type WHEN '%' THEN CASE n WHEN 1 THEN 'TABLE' ELSE 'VIEW' END END AS varchar(32)) AS TABLE_TYPE,
    CAST(NULL AS varchar(254)) AS REMARKS
  FROM (SELECT CASE SCHEMA_NAME WHEN 'dbo' THEN 1 ELSE 3 END AS n, SCHEMA_NAME AS owner FROM INFORMATION_SCHEMA.SCHEMATA
    UNION ALL SELECT 2, NULL) rows
  WHERE n = 1 OR n = 2 AND @table_type = '%' OR n = 3 AND @table_owner = '%'
ELSE
SELECT DB_NAME() AS TABLE_QUALIFIER, TABLE_SCHEMA AS TABLE_OWNER, TABLE_NAME,
  CAST(CASE TABLE_TYPE WHEN 'VIEW' THEN 'VIEW' ELSE 'TABLE' END AS varchar(32)) AS TABLE_TYPE,
  CAST(NULL AS varchar(254)) AS REMARKS
FROM INFORMATION_SCHEMA.TABLES
WHERE TABLE_NAME LIKE ISNULL(@table_name, '%') AND TABLE_SCHEMA LIKE ISNULL(@table_owner, '%')
  AND CHARINDEX(CASE TABLE_TYPE WHEN 'VIEW' THEN '''VIEW''' ELSE '''TABLE''' END,
    ISNULL(@table_type, '''TABLE'',''VIEW''')) > 0
ORDER BY 4, TABLE_NAME)";

std::string Columns() {
  return R"(CREATE PROCEDURE sp_columns @table_name nvarchar(384),
  @table_owner nvarchar(384) = NULL, @table_qualifier nvarchar(128) = NULL, @column_name nvarchar(384) = NULL,
  @ODBCVer int = 2, @fUsePattern bit = 1 AS
SELECT TABLE_CATALOG AS TABLE_QUALIFIER, TABLE_SCHEMA AS TABLE_OWNER, TABLE_NAME, COLUMN_NAME, )" +
         std::string(kOdbcType) + ", " + std::string(kRadix) + R"( AS RADIX,
  CAST(CASE IS_NULLABLE WHEN 'YES' THEN 1 ELSE 0 END AS smallint) AS NULLABLE, CAST(NULL AS varchar(254)) AS REMARKS,
  COLUMN_DEFAULT AS COLUMN_DEF, )" +
         std::string(kOdbcDetails) + R"(,
  CAST(IS_NULLABLE AS varchar(254)) AS IS_NULLABLE, CAST(0 AS tinyint) AS SS_DATA_TYPE
FROM INFORMATION_SCHEMA.COLUMNS
WHERE TABLE_NAME LIKE @table_name AND TABLE_SCHEMA LIKE ISNULL(@table_owner, '%')
  AND COLUMN_NAME LIKE ISNULL(@column_name, '%')
ORDER BY TABLE_NAME, ORDINAL_POSITION)";
}

constexpr std::string_view kDataTypes = R"(CREATE PROCEDURE sp_datatype_info @data_type int = 0, @ODBCVer tinyint = 2 AS
SELECT n AS TYPE_NAME, CAST(CASE WHEN @ODBCVer <> 3 AND t = 93 THEN 11 WHEN @ODBCVer <> 3 AND t = 91 THEN 9 ELSE t END
    AS smallint) AS DATA_TYPE, p AS [PRECISION], CAST(q AS varchar(32)) AS LITERAL_PREFIX,
  CAST(CASE WHEN q IS NOT NULL AND q <> '0x' AND q <> '$' THEN '''' END AS varchar(32)) AS LITERAL_SUFFIX,
  CAST(m AS varchar(32)) AS CREATE_PARAMS, CAST(1 AS smallint) AS NULLABLE, CAST(0 AS smallint) AS CASE_SENSITIVE,
  CAST(CASE WHEN t IN (-1, -4, -10) THEN 1 WHEN q LIKE '%''' THEN 3 ELSE 2 END AS smallint) AS SEARCHABLE,
  CAST(CASE WHEN q IS NULL OR q = '$' THEN CASE n WHEN 'tinyint' THEN 1 WHEN 'bit' THEN NULL ELSE 0 END END AS smallint)
    AS UNSIGNED_ATTRIBUTE,
  CAST(CASE q WHEN '$' THEN 1 ELSE 0 END AS smallint) AS MONEY,
  CAST(CASE WHEN q IS NULL AND n <> 'bit' OR q = '$' THEN 0 END AS smallint) AS AUTO_INCREMENT, n AS LOCAL_TYPE_NAME,
  CAST(l AS smallint) AS MINIMUM_SCALE, CAST(h AS smallint) AS MAXIMUM_SCALE,
  CAST(CASE WHEN t IN (91, 93) THEN 9 ELSE t END AS smallint) AS SQL_DATA_TYPE,
  CAST(CASE t WHEN 91 THEN 1 WHEN 93 THEN 3 END AS smallint) AS SQL_DATETIME_SUB,
  CASE WHEN n IN ('float', 'real') THEN 2 WHEN q IS NULL AND n <> 'bit' OR q = '$' THEN 10 END AS NUM_PREC_RADIX,
  CAST(NULL AS smallint) AS INTERVAL_PRECISION, CAST(u AS smallint) AS USERTYPE
FROM (VALUES ('datetimeoffset', -155, 34, '''', 'scale', 0, 7, 0), ('time', -154, 16, '''', 'scale', 0, 7, 0),
  ('uniqueidentifier', -11, 36, '''', NULL, NULL, NULL, 0), ('ntext', -10, 1073741823, 'N''', NULL, NULL, NULL, 0),
  ('nvarchar', -9, 4000, 'N''', 'max length', NULL, NULL, 0), ('sysname', -9, 128, 'N''', NULL, NULL, NULL, 18),
  ('nchar', -8, 4000, 'N''', 'length', NULL, NULL, 0), ('bit', -7, 1, NULL, NULL, 0, 0, 16),
  ('tinyint', -6, 3, NULL, NULL, 0, 0, 5), ('bigint', -5, 19, NULL, NULL, 0, 0, 0),
  ('image', -4, 2147483647, '0x', NULL, NULL, NULL, 20), ('varbinary', -3, 8000, '0x', 'max length', NULL, NULL, 4),
  ('binary', -2, 8000, '0x', 'length', NULL, NULL, 3), ('text', -1, 2147483647, '''', NULL, NULL, NULL, 19),
  ('char', 1, 8000, '''', 'length', NULL, NULL, 1), ('numeric', 2, 38, NULL, 'precision,scale', 0, 38, 10),
  ('decimal', 3, 38, NULL, 'precision,scale', 0, 38, 24), ('money', 3, 19, '$', NULL, 4, 4, 11),
  ('smallmoney', 3, 10, '$', NULL, 4, 4, 21), ('int', 4, 10, NULL, NULL, 0, 0, 7),
  ('smallint', 5, 5, NULL, NULL, 0, 0, 6), ('float', 6, 53, NULL, NULL, NULL, NULL, 8),
  ('real', 7, 24, NULL, NULL, NULL, NULL, 23), ('varchar', 12, 8000, '''', 'max length', NULL, NULL, 2),
  ('date', 91, 10, '''', NULL, NULL, NULL, 0), ('datetime2', 93, 27, '''', 'scale', 0, 7, 0),
  ('datetime', 93, 23, '''', NULL, 3, 3, 12), ('smalldatetime', 93, 16, '''', NULL, 0, 0, 22))
  AS types (n, t, p, q, m, l, h, u)
WHERE @data_type = 0 OR t = CASE @data_type WHEN 11 THEN 93 WHEN 9 THEN 91 ELSE @data_type END
ORDER BY 2, USERTYPE)";

constexpr std::string_view kPrimaryKeys = R"(CREATE PROCEDURE sp_pkeys @table_name nvarchar(384),
  @table_owner nvarchar(384) = NULL, @table_qualifier nvarchar(128) = NULL AS
SELECT k.TABLE_CATALOG AS TABLE_QUALIFIER, k.TABLE_SCHEMA AS TABLE_OWNER, k.TABLE_NAME, k.COLUMN_NAME,
  CAST(k.ORDINAL_POSITION AS smallint) AS KEY_SEQ, k.CONSTRAINT_NAME AS PK_NAME
FROM INFORMATION_SCHEMA.KEY_COLUMN_USAGE k JOIN INFORMATION_SCHEMA.TABLE_CONSTRAINTS c
  ON c.CONSTRAINT_NAME = k.CONSTRAINT_NAME AND c.TABLE_NAME = k.TABLE_NAME AND c.TABLE_SCHEMA = k.TABLE_SCHEMA
  AND c.CONSTRAINT_TYPE = 'PRIMARY KEY'
WHERE k.TABLE_NAME = @table_name AND k.TABLE_SCHEMA LIKE ISNULL(@table_owner, '%')
ORDER BY KEY_SEQ)";

constexpr std::string_view kForeignKeys = R"(CREATE PROCEDURE sp_fkeys @pktable_name nvarchar(384) = NULL,
  @pktable_owner nvarchar(384) = NULL, @pktable_qualifier nvarchar(128) = NULL, @fktable_name nvarchar(384) = NULL,
  @fktable_owner nvarchar(384) = NULL, @fktable_qualifier nvarchar(128) = NULL AS
SELECT DB_NAME() AS PKTABLE_QUALIFIER, SCHEMA_NAME(p.schema_id) AS PKTABLE_OWNER, p.name AS PKTABLE_NAME,
  pc.name AS PKCOLUMN_NAME, DB_NAME() AS FKTABLE_QUALIFIER, SCHEMA_NAME(f.schema_id) AS FKTABLE_OWNER,
  f.name AS FKTABLE_NAME, fc.name AS FKCOLUMN_NAME, CAST(c.constraint_column_id AS smallint) AS KEY_SEQ,
  CAST(1 AS smallint) AS UPDATE_RULE, CAST(1 AS smallint) AS DELETE_RULE, k.name AS FK_NAME,
  (SELECT MIN(i.name) FROM sys.key_constraints i WHERE i.parent_object_id = p.object_id AND i.type = 'PK') AS PK_NAME,
  CAST(7 AS smallint) AS DEFERRABILITY
FROM sys.foreign_keys k JOIN sys.foreign_key_columns c ON c.constraint_object_id = k.object_id
  JOIN sys.tables f ON f.object_id = c.parent_object_id JOIN sys.tables p ON p.object_id = c.referenced_object_id
  JOIN sys.columns fc ON fc.object_id = c.parent_object_id AND fc.column_id = c.parent_column_id
  JOIN sys.columns pc ON pc.object_id = c.referenced_object_id AND pc.column_id = c.referenced_column_id
WHERE p.name = ISNULL(@pktable_name, p.name) AND f.name = ISNULL(@fktable_name, f.name)
  AND SCHEMA_NAME(p.schema_id) LIKE ISNULL(@pktable_owner, '%') AND SCHEMA_NAME(f.schema_id) LIKE ISNULL(@fktable_owner, '%')
ORDER BY FKTABLE_NAME, FK_NAME, KEY_SEQ)";

constexpr std::string_view kStatistics = R"(CREATE PROCEDURE sp_statistics @table_name nvarchar(384),
  @table_owner nvarchar(384) = NULL, @table_qualifier nvarchar(128) = NULL, @index_name nvarchar(384) = '%',
  @is_unique char(1) = 'N', @accuracy char(1) = 'Q' AS
SELECT DB_NAME() AS TABLE_QUALIFIER, SCHEMA_NAME(t.schema_id) AS TABLE_OWNER, t.name AS TABLE_NAME,
  CAST(1 - i.is_unique AS smallint) AS NON_UNIQUE, t.name AS INDEX_QUALIFIER, i.name AS INDEX_NAME,
  CAST(CASE i.type WHEN 1 THEN 1 ELSE 3 END AS smallint) AS TYPE, CAST(k.key_ordinal AS smallint) AS SEQ_IN_INDEX,
  c.name AS COLUMN_NAME, CAST(CASE k.is_descending_key WHEN 1 THEN 'D' ELSE 'A' END AS char(1)) AS COLLATION,
  CAST(NULL AS int) AS CARDINALITY, CAST(NULL AS int) AS PAGES, CAST(NULL AS varchar(128)) AS FILTER_CONDITION
FROM sys.tables t JOIN sys.indexes i ON i.object_id = t.object_id
  JOIN sys.index_columns k ON k.object_id = i.object_id AND k.index_id = i.index_id
  JOIN sys.columns c ON c.object_id = k.object_id AND c.column_id = k.column_id
WHERE t.name = @table_name AND SCHEMA_NAME(t.schema_id) LIKE ISNULL(@table_owner, '%') AND i.name LIKE @index_name AND k.key_ordinal > 0
  AND (@is_unique <> 'Y' OR i.is_unique = 1)
UNION ALL
SELECT DB_NAME(), SCHEMA_NAME(schema_id), name, NULL, NULL, NULL, 0, NULL, NULL, NULL, NULL, NULL, NULL FROM sys.tables
WHERE name = @table_name AND SCHEMA_NAME(schema_id) LIKE ISNULL(@table_owner, '%') AND @is_unique <> 'Y'
ORDER BY 4, 7, 6, 8)";

/// The columns that tell a row from all others: of the primary key, or else of the first unique index.
std::string SpecialColumns() {
  return R"(CREATE PROCEDURE sp_special_columns @table_name nvarchar(384), @table_owner nvarchar(384) = NULL,
  @table_qualifier nvarchar(128) = NULL, @col_type char(1) = 'R', @scope char(1) = 'T', @nullable char(1) = 'U',
  @ODBCVer int = 2 AS
SELECT CAST(CASE @scope WHEN 'C' THEN 0 ELSE 1 END AS smallint) AS SCOPE, COLUMN_NAME, )" +
         std::string(kOdbcType) + R"(, CAST(1 AS smallint) AS PSEUDO_COLUMN
FROM INFORMATION_SCHEMA.COLUMNS JOIN sys.tables t ON t.name = TABLE_NAME AND SCHEMA_NAME(t.schema_id) = TABLE_SCHEMA
  JOIN sys.index_columns k ON k.object_id = t.object_id AND k.column_id = ORDINAL_POSITION
WHERE @col_type = 'R' AND TABLE_NAME = @table_name AND TABLE_SCHEMA LIKE ISNULL(@table_owner, '%') AND k.index_id = (SELECT MIN(i.index_id) FROM sys.indexes i
    WHERE i.object_id = t.object_id AND i.is_unique = 1 AND i.has_filter = 0)
ORDER BY k.key_ordinal)";
}

constexpr std::string_view kProcedures = R"(CREATE PROCEDURE sp_stored_procedures @sp_name nvarchar(390) = NULL,
  @sp_owner nvarchar(384) = NULL, @sp_qualifier nvarchar(128) = NULL, @fUsePattern bit = 1 AS
SELECT ROUTINE_CATALOG AS PROCEDURE_QUALIFIER, ROUTINE_SCHEMA AS PROCEDURE_OWNER,
  CAST(ROUTINE_NAME + ';1' AS nvarchar(134)) AS PROCEDURE_NAME, -1 AS NUM_INPUT_PARAMS, -1 AS NUM_OUTPUT_PARAMS,
  -1 AS NUM_RESULT_SETS, CAST(NULL AS varchar(254)) AS REMARKS, CAST(2 AS smallint) AS PROCEDURE_TYPE
FROM INFORMATION_SCHEMA.ROUTINES
WHERE ROUTINE_NAME LIKE ISNULL(@sp_name, '%') AND ROUTINE_SCHEMA LIKE ISNULL(@sp_owner, '%')
ORDER BY PROCEDURE_NAME)";

std::string ProcedureColumns() {
  return R"(CREATE PROCEDURE sp_sproc_columns @procedure_name nvarchar(390) = '%', @procedure_owner nvarchar(384) = NULL,
  @procedure_qualifier nvarchar(128) = NULL, @column_name nvarchar(384) = NULL, @ODBCVer int = 2,
  @fUsePattern bit = 1 AS
SELECT SPECIFIC_CATALOG AS PROCEDURE_QUALIFIER, SPECIFIC_SCHEMA AS PROCEDURE_OWNER,
  CAST(SPECIFIC_NAME + ';1' AS nvarchar(134)) AS PROCEDURE_NAME, PARAMETER_NAME AS COLUMN_NAME,
  CAST(CASE PARAMETER_MODE WHEN 'RETURN' THEN 5 WHEN 'INOUT' THEN 2 ELSE 1 END AS smallint) AS COLUMN_TYPE, )" +
         std::string(kOdbcType) + ", " + std::string(kRadix) + R"( AS RADIX,
  CAST(CASE PARAMETER_MODE WHEN 'RETURN' THEN 0 ELSE 1 END AS smallint) AS NULLABLE,
  CAST(NULL AS varchar(254)) AS REMARKS, CAST(NULL AS nvarchar(4000)) AS COLUMN_DEF, )" +
         std::string(kOdbcDetails) +
         R"(, CAST(CASE PARAMETER_MODE WHEN 'RETURN' THEN 'NO' ELSE 'YES' END AS varchar(254)) AS IS_NULLABLE,
  CAST(0 AS tinyint) AS SS_DATA_TYPE
FROM (SELECT SPECIFIC_CATALOG, SPECIFIC_SCHEMA, SPECIFIC_NAME, PARAMETER_NAME, PARAMETER_MODE, DATA_TYPE,
    CHARACTER_MAXIMUM_LENGTH, CHARACTER_OCTET_LENGTH, NUMERIC_PRECISION, NUMERIC_SCALE, DATETIME_PRECISION,
    ORDINAL_POSITION FROM INFORMATION_SCHEMA.PARAMETERS
  UNION ALL SELECT ROUTINE_CATALOG, ROUTINE_SCHEMA, ROUTINE_NAME, CAST('@RETURN_VALUE' AS nvarchar(128)),
    CAST('RETURN' AS varchar(10)), CAST('int' AS nvarchar(128)), NULL, NULL, 10, 0,
    NULL, 0 FROM INFORMATION_SCHEMA.ROUTINES) p
WHERE SPECIFIC_NAME LIKE CASE WHEN @procedure_name LIKE '%;1' THEN LEFT(@procedure_name, LEN(@procedure_name) - 2)
    ELSE ISNULL(@procedure_name, '%') END
  AND SPECIFIC_SCHEMA LIKE ISNULL(@procedure_owner, '%') AND PARAMETER_NAME LIKE ISNULL(@column_name, '%')
ORDER BY PROCEDURE_NAME, ORDINAL_POSITION)";
}

constexpr std::string_view kDatabases = R"(CREATE PROCEDURE sp_databases AS
SELECT DB_NAME() AS DATABASE_NAME, CAST(NULL AS int) AS DATABASE_SIZE, CAST(NULL AS varchar(254)) AS REMARKS)";

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
  static const std::vector<CatalogObjectPtr> procedures = [] {
    std::vector<CatalogObjectPtr> all = {
        MakeProcedure("sp_tables", kTables),
        MakeProcedure("sp_columns", Columns()),
        MakeProcedure("sp_datatype_info", kDataTypes),
        MakeProcedure("sp_pkeys", kPrimaryKeys),
        MakeProcedure("sp_fkeys", kForeignKeys),
        MakeProcedure("sp_statistics", kStatistics),
        MakeProcedure("sp_special_columns", SpecialColumns()),
        MakeProcedure("sp_stored_procedures", kProcedures),
        MakeProcedure("sp_sproc_columns", ProcedureColumns()),
        MakeProcedure("sp_databases", kDatabases),
    };
    for (const ProcedureText& text : HelpProcedures()) all.push_back(MakeProcedure(text.name, text.definition));
    return all;
  }();
  // Clients ask by these names for what later versions of the server know of types.
  for (const std::string_view version : {"_90", "_100"}) {
    if (name.ends_with(version)) name.remove_suffix(version.size());
  }
  const auto found = std::find_if(procedures.begin(), procedures.end(), [name](const CatalogObjectPtr& procedure) {
    return EqualsIgnoreCase(procedure->name, name);
  });
  return found == procedures.end() ? nullptr : *found;
}

}  // namespace tessarlorn::tsql
