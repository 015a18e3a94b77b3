// The procedures by which people look at the database: sp_help and its like.
#include "tsql/storage/system_view_parts.h"

namespace tessarlorn::tsql {
namespace {

constexpr std::string_view kHelpText = R"(CREATE PROCEDURE sp_helptext @objname nvarchar(776),
  @columnname nvarchar(128) = NULL AS
DECLARE @text nvarchar(max), @database nvarchar(128) = DB_NAME()
IF OBJECT_ID(@objname) IS NULL BEGIN RAISERROR(15009, 16, 1, @objname, @database) RETURN 1 END
SET @text = OBJECT_DEFINITION(OBJECT_ID(@objname))
IF @text IS NULL BEGIN RAISERROR(15197, 16, 1, @objname) RETURN 1 END;
WITH lines (first, next) AS (
  SELECT 1, CASE WHEN CHARINDEX(CHAR(10), @text) BETWEEN 1 AND 255 THEN CHARINDEX(CHAR(10), @text) + 1 ELSE 256 END
  UNION ALL
  SELECT next, CASE WHEN CHARINDEX(CHAR(10), @text, next) BETWEEN next AND next + 254
      THEN CHARINDEX(CHAR(10), @text, next) + 1 ELSE next + 255 END
  FROM lines WHERE next <= DATALENGTH(@text) / 2)
SELECT CAST(SUBSTRING(@text, first, next - first) AS nvarchar(255)) AS Text FROM lines ORDER BY first)";

constexpr std::string_view kHelpIndex = R"(CREATE PROCEDURE sp_helpindex @objname nvarchar(776) AS
DECLARE @id int = OBJECT_ID(@objname), @database nvarchar(128) = DB_NAME()
IF @id IS NULL BEGIN RAISERROR(15009, 16, 1, @objname, @database) RETURN 1 END
IF NOT EXISTS (SELECT 1 FROM sys.indexes WHERE object_id = @id AND index_id > 0) BEGIN
  PRINT 'The object ''' + @objname + ''' does not have any indexes, or you do not have permissions.'
  RETURN 0
END
SELECT i.name AS index_name,
  CAST(CASE i.type WHEN 1 THEN 'clustered' ELSE 'nonclustered' END + CASE i.is_unique WHEN 1 THEN ', unique' ELSE '' END +
    CASE i.is_primary_key WHEN 1 THEN ', primary key' ELSE '' END +
    CASE i.is_unique_constraint WHEN 1 THEN ', unique key' ELSE '' END + ' located on PRIMARY' AS varchar(210))
    AS index_description,
  CAST((SELECT STRING_AGG(c.name + CASE k.is_descending_key WHEN 1 THEN '(-)' ELSE '' END, ', ')
      WITHIN GROUP (ORDER BY k.key_ordinal) FROM sys.index_columns k
      JOIN sys.columns c ON c.object_id = k.object_id AND c.column_id = k.column_id
    WHERE k.object_id = i.object_id AND k.index_id = i.index_id AND k.key_ordinal > 0) AS nvarchar(2078)) AS index_keys
FROM sys.indexes i WHERE i.object_id = @id AND i.index_id > 0 ORDER BY i.name)";

constexpr std::string_view kHelpConstraint = R"(CREATE PROCEDURE sp_helpconstraint @objname nvarchar(776),
  @nomsg varchar(5) = 'msg' AS
DECLARE @id int = OBJECT_ID(@objname), @database nvarchar(128) = DB_NAME()
IF @id IS NULL BEGIN RAISERROR(15009, 16, 1, @objname, @database) RETURN 1 END
IF @nomsg <> 'nomsg' SELECT @objname AS [Object Name]
IF EXISTS (SELECT 1 FROM sys.objects WHERE parent_object_id = @id)
  SELECT CAST(kind AS nvarchar(146)) AS constraint_type, CAST(name AS nvarchar(128)) AS constraint_name,
    CAST(CASE WHEN part = 1 AND type = 'F' THEN 'No Action' WHEN part = 1 THEN '(n/a)' ELSE ' ' END AS nvarchar(9)) AS delete_action,
    CAST(CASE WHEN part = 1 AND type = 'F' THEN 'No Action' WHEN part = 1 THEN '(n/a)' ELSE ' ' END AS nvarchar(9)) AS update_action,
    CAST(CASE WHEN part = 1 AND type IN ('F', 'C') THEN 'Enabled' WHEN part = 1 THEN '(n/a)' ELSE ' ' END AS varchar(8))
      AS status_enabled,
    CAST(CASE WHEN part = 1 AND type IN ('F', 'C') THEN 'Is_For_Replication' WHEN part = 1 THEN '(n/a)' ELSE ' ' END
      AS varchar(19)) AS status_for_replication,
    CAST(keys AS nvarchar(2126)) AS constraint_keys
  FROM (
    SELECT 1 AS part, k.type, k.name, k.name AS sorted, CASE k.type WHEN 'PK' THEN 'PRIMARY KEY (clustered)'
        ELSE 'UNIQUE (non-clustered)' END AS kind,
      (SELECT STRING_AGG(COLUMN_NAME, ', ') WITHIN GROUP (ORDER BY ORDINAL_POSITION)
        FROM INFORMATION_SCHEMA.KEY_COLUMN_USAGE u WHERE u.CONSTRAINT_NAME = k.name AND u.TABLE_NAME = OBJECT_NAME(@id)
          AND u.TABLE_SCHEMA = OBJECT_SCHEMA_NAME(@id)) AS keys
    FROM sys.key_constraints k WHERE k.parent_object_id = @id
    UNION ALL SELECT 1, 'C', name, name, CASE parent_column_id WHEN 0 THEN 'CHECK Table Level '
        ELSE 'CHECK on column ' + COL_NAME(@id, parent_column_id) END, definition
    FROM sys.check_constraints WHERE parent_object_id = @id
    UNION ALL SELECT 1, 'D', name, name, 'DEFAULT on column ' + COL_NAME(@id, parent_column_id), definition
    FROM sys.default_constraints WHERE parent_object_id = @id
    UNION ALL SELECT p.n, 'F', CASE p.n WHEN 1 THEN f.name ELSE ' ' END, f.name, CASE p.n WHEN 1 THEN 'FOREIGN KEY' ELSE ' ' END,
      (SELECT CASE p.n WHEN 1 THEN STRING_AGG(COL_NAME(c.parent_object_id, c.parent_column_id), ', ')
          WITHIN GROUP (ORDER BY c.constraint_column_id)
        ELSE 'REFERENCES main.' + OBJECT_SCHEMA_NAME(f.referenced_object_id) + '.' + OBJECT_NAME(f.referenced_object_id) + ' (' +
          STRING_AGG(COL_NAME(c.referenced_object_id, c.referenced_column_id), ', ')
          WITHIN GROUP (ORDER BY c.constraint_column_id) + ')' END
        FROM sys.foreign_key_columns c WHERE c.constraint_object_id = f.object_id)
    FROM sys.foreign_keys f CROSS JOIN (VALUES (1), (2)) p (n) WHERE f.parent_object_id = @id) rows
  ORDER BY sorted, part
ELSE PRINT 'No constraints are defined on object ''' + @objname + ''', or you do not have permissions.'
IF EXISTS (SELECT 1 FROM sys.foreign_keys WHERE referenced_object_id = @id)
  SELECT CAST('main.' + OBJECT_SCHEMA_NAME(parent_object_id) + '.' + OBJECT_NAME(parent_object_id) + ': ' + name AS nvarchar(516))
    AS [Table is referenced by foreign key]
  FROM sys.foreign_keys WHERE referenced_object_id = @id ORDER BY 1
ELSE PRINT 'No foreign keys reference table ''' + @objname + ''', or you do not have permissions on referencing tables.')";

constexpr std::string_view kHelp = R"(CREATE PROCEDURE sp_help @objname nvarchar(776) = NULL AS
DECLARE @id int = OBJECT_ID(@objname), @database nvarchar(128) = DB_NAME(), @type char(2)
IF @objname IS NULL BEGIN
  SELECT name AS Name, CAST('dbo' AS nvarchar(128)) AS Owner, CAST(CASE type WHEN 'U' THEN 'user table' WHEN 'V' THEN 'view'
      WHEN 'P' THEN 'stored procedure' WHEN 'TR' THEN 'trigger' WHEN 'PK' THEN 'primary key cns' WHEN 'UQ' THEN 'unique constraint'
      WHEN 'F' THEN 'foreign key cns' WHEN 'C' THEN 'check cns' WHEN 'FN' THEN 'scalar function'
      WHEN 'IF' THEN 'inline function' WHEN 'TF' THEN 'table function' WHEN 'SO' THEN 'sequence object' ELSE 'default (maybe cns)' END AS nvarchar(31)) AS Object_type
  FROM sys.objects ORDER BY Owner, Object_type DESC, Name
  RETURN 0
END
IF @id IS NULL BEGIN RAISERROR(15009, 16, 1, @objname, @database) RETURN 1 END
SELECT @type = type FROM sys.objects WHERE object_id = @id
SELECT name AS Name, CAST('dbo' AS nvarchar(128)) AS Owner, CAST(CASE type WHEN 'U' THEN 'user table' WHEN 'V' THEN 'view'
    WHEN 'FN' THEN 'scalar function' WHEN 'IF' THEN 'inline function' WHEN 'TF' THEN 'table function' WHEN 'SO' THEN 'sequence object'
    WHEN 'TR' THEN 'trigger' ELSE 'stored procedure' END AS nvarchar(31)) AS Type, create_date AS Created_datetime
FROM sys.objects WHERE object_id = @id
IF @type IN ('SO', 'TR') RETURN 0
IF @type IN ('P', 'FN', 'IF', 'TF') BEGIN
  IF EXISTS (SELECT 1 FROM sys.parameters WHERE object_id = @id)
    SELECT name AS Parameter_name, TYPE_NAME(user_type_id) AS Type, CAST(length AS smallint) AS Length,
      CAST(prec AS int) AS Prec, CAST(scale AS int) AS Scale, CAST(colid AS int) AS Param_order, collation AS Collation
    FROM (SELECT c.name, c.xusertype AS user_type_id, c.length, c.prec, c.scale, c.colid, c.collation
      FROM sys.syscolumns c WHERE c.id = @id AND (@type NOT IN ('IF', 'TF') OR c.name LIKE '@%')) p ORDER BY colid
  IF @type NOT IN ('IF', 'TF') RETURN 0
END
SELECT name AS Column_name, TYPE_NAME(xusertype) AS Type, CAST(CASE iscomputed WHEN 1 THEN 'yes' ELSE 'no' END AS varchar(35)) AS Computed, CAST(length AS int) AS Length,
  CAST(CASE WHEN xprec > 0 THEN CAST(prec AS varchar(5)) ELSE '     ' END AS char(5)) AS Prec,
  CAST(CASE WHEN xprec > 0 THEN CAST(scale AS varchar(5)) ELSE '     ' END AS char(5)) AS Scale,
  CAST(CASE isnullable WHEN 1 THEN 'yes' ELSE 'no' END AS varchar(35)) AS Nullable,
  CAST(CASE WHEN xtype IN (165, 167, 173, 175) THEN 'no' ELSE '(n/a)' END AS varchar(35)) AS TrimTrailingBlanks,
  CAST(CASE WHEN xtype IN (165, 167, 173, 175) THEN CASE isnullable WHEN 1 THEN 'yes' ELSE 'no' END ELSE '(n/a)' END
    AS varchar(35)) AS FixedLenNullInSource, collation AS Collation
FROM sys.syscolumns WHERE id = @id AND (@type NOT IN ('IF', 'TF') OR name NOT LIKE '@%') ORDER BY colid
IF EXISTS (SELECT 1 FROM sys.identity_columns WHERE object_id = @id)
  SELECT name AS [Identity], seed_value AS Seed, increment_value AS Increment, 0 AS [Not For Replication]
  FROM sys.identity_columns WHERE object_id = @id
ELSE SELECT CAST('No identity column defined.' AS nvarchar(128)) AS [Identity], CAST(NULL AS int) AS Seed,
  CAST(NULL AS int) AS Increment, CAST(NULL AS int) AS [Not For Replication]
SELECT CAST('No rowguidcol column defined.' AS nvarchar(128)) AS [RowGuidCol]
IF @type = 'U' BEGIN
  SELECT CAST('PRIMARY' AS nvarchar(128)) AS Data_located_on_filegroup
  EXEC sp_helpindex @objname
  EXEC sp_helpconstraint @objname, 'nomsg'
END)";

constexpr std::string_view kHelpTrigger =
    R"(CREATE PROCEDURE sp_helptrigger @tabname nvarchar(776), @triggertype char(6) = NULL AS
DECLARE @id int = OBJECT_ID(@tabname), @database nvarchar(128) = DB_NAME()
IF @id IS NULL BEGIN RAISERROR(15009, 16, 1, @tabname, @database) RETURN 1 END
SELECT * FROM (SELECT t.name AS trigger_name, CAST('dbo' AS nvarchar(128)) AS trigger_owner,
    (SELECT COUNT(*) FROM sys.trigger_events e WHERE e.object_id = t.object_id AND e.type = 2) AS isupdate,
    (SELECT COUNT(*) FROM sys.trigger_events e WHERE e.object_id = t.object_id AND e.type = 3) AS isdelete,
    (SELECT COUNT(*) FROM sys.trigger_events e WHERE e.object_id = t.object_id AND e.type = 1) AS isinsert,
    1 AS isafter, 0 AS isinsteadof, OBJECT_SCHEMA_NAME(t.object_id) AS trigger_schema
  FROM sys.triggers t WHERE t.parent_id = @id) h
WHERE @triggertype IS NULL OR CASE @triggertype WHEN 'UPDATE' THEN isupdate WHEN 'DELETE' THEN isdelete ELSE isinsert END = 1
ORDER BY trigger_name)";

constexpr std::string_view kSpaceUsed = R"(CREATE PROCEDURE sp_spaceused @objname nvarchar(776) = NULL,
  @updateusage varchar(5) = 'false' AS
DECLARE @id int = OBJECT_ID(@objname), @database nvarchar(128) = DB_NAME()
IF @objname IS NOT NULL AND @id IS NULL BEGIN RAISERROR(15009, 16, 1, @objname, @database) RETURN 1 END
IF @objname IS NULL
  SELECT @database AS database_name, CAST(STR(size / 128.0, 15, 2) + ' MB' AS varchar(18)) AS database_size,
    CAST(NULL AS varchar(18)) AS [unallocated space]
  FROM sys.database_files
ELSE SELECT OBJECT_NAME(@id) AS name, CAST(rows AS char(20)) AS rows, CAST(NULL AS varchar(18)) AS reserved,
  CAST(NULL AS varchar(18)) AS data, CAST(NULL AS varchar(18)) AS index_size, CAST(NULL AS varchar(18)) AS unused
FROM sys.partitions WHERE object_id = @id AND index_id < 2)";

constexpr std::string_view kWho = R"(CREATE PROCEDURE sp_who @loginame nvarchar(128) = NULL AS
SELECT spid, CAST(0 AS smallint) AS ecid, status, loginame, hostname, CAST(blocked AS char(5)) AS blk,
  DB_NAME(dbid) AS dbname, cmd, 0 AS request_id
FROM sys.sysprocesses)";

constexpr std::string_view kWho2 = R"(CREATE PROCEDURE sp_who2 @loginame nvarchar(128) = NULL AS
SELECT CAST(spid AS char(5)) AS SPID, status AS Status, loginame AS Login, hostname AS HostName,
  CAST('  .' AS char(5)) AS BlkBy, DB_NAME(dbid) AS DBName, cmd AS Command, cpu AS CPUTime, CAST(NULL AS int) AS DiskIO,
  last_batch AS LastBatch, program_name AS ProgramName, CAST(spid AS char(5)) AS SPID, CAST('0' AS char(5)) AS REQUESTID
FROM sys.sysprocesses)";

constexpr std::string_view kHelpDatabase = R"(CREATE PROCEDURE sp_helpdb @dbname nvarchar(128) = NULL AS
SELECT d.name, CAST(STR(f.size / 128.0, 10, 2) + ' MB' AS nvarchar(13)) AS db_size, CAST('dbo' AS nvarchar(128)) AS owner,
  CAST(d.database_id AS smallint) AS dbid, CAST(NULL AS nvarchar(11)) AS created,
  CAST('Status=ONLINE, Updateability=READ_WRITE, UserAccess=MULTI_USER, Recovery=FULL' AS nvarchar(600)) AS status,
  d.compatibility_level
FROM sys.databases d CROSS JOIN sys.database_files f WHERE d.name = ISNULL(@dbname, d.name))";

constexpr std::string_view kServerInfo = R"(CREATE PROCEDURE sp_server_info @attribute_id int = NULL AS
SELECT id AS attribute_id, CAST(name AS varchar(60)) AS attribute_name, CAST(value AS varchar(255)) AS attribute_value
FROM (VALUES (1, 'DBMS_NAME', 'Microsoft SQL Server'), (2, 'DBMS_VER', @@VERSION), (10, 'OWNER_TERM', 'owner'),
  (11, 'TABLE_TERM', 'table'), (12, 'MAX_OWNER_NAME_LENGTH', '128'), (13, 'TABLE_LENGTH', '128'),
  (14, 'MAX_QUAL_LENGTH', '128'), (15, 'COLUMN_LENGTH', '128'), (16, 'IDENTIFIER_CASE', 'MIXED'), (17, 'TX_ISOLATION', '2'),
  (18, 'COLLATION_SEQ', CAST(SERVERPROPERTY('Collation') AS varchar(128))), (19, 'SAVEPOINT_SUPPORT', 'Y'),
  (20, 'MULTI_RESULT_SETS', 'Y'), (22, 'ACCESSIBLE_TABLES', 'Y'), (100, 'USERID_LENGTH', '128'),
  (101, 'QUALIFIER_TERM', 'database'), (102, 'NAMED_TRANSACTIONS', 'Y'), (103, 'SPROC_AS_LANGUAGE', 'Y'),
  (104, 'ACCESSIBLE_SPROC', 'Y'), (105, 'MAX_INDEX_COLS', '16'), (106, 'RENAME_TABLE', 'Y'), (107, 'RENAME_COLUMN', 'Y'),
  (108, 'DROP_COLUMN', 'Y'), (109, 'INCREASE_COLUMN_LENGTH', 'N'), (110, 'DDL_IN_TRANSACTION', 'Y'),
  (111, 'DESCENDING_INDEXES', 'Y'), (112, 'SP_RENAME', 'Y'), (113, 'REMOTE_SPROC', 'N'),
  (500, 'SYS_SPROC_VERSION', CAST(SERVERPROPERTY('ProductVersion') AS varchar(128)))) a (id, name, value)
WHERE id = ISNULL(@attribute_id, id) ORDER BY id)";

constexpr std::string_view kTablePrivileges = R"(CREATE PROCEDURE sp_table_privileges @table_name nvarchar(384),
  @table_owner nvarchar(384) = NULL, @table_qualifier nvarchar(128) = NULL, @fUsePattern bit = 1 AS
SELECT TABLE_CATALOG AS TABLE_QUALIFIER, TABLE_SCHEMA AS TABLE_OWNER, TABLE_NAME, GRANTOR, GRANTEE,
  CAST(PRIVILEGE_TYPE AS varchar(32)) AS PRIVILEGE, IS_GRANTABLE
FROM INFORMATION_SCHEMA.TABLE_PRIVILEGES
WHERE TABLE_NAME LIKE @table_name AND TABLE_SCHEMA LIKE ISNULL(@table_owner, '%') ORDER BY 3, 6)";

constexpr std::string_view kColumnPrivileges = R"(CREATE PROCEDURE sp_column_privileges @table_name nvarchar(384),
  @table_owner nvarchar(384) = NULL, @table_qualifier nvarchar(128) = NULL, @column_name nvarchar(384) = NULL AS
SELECT TABLE_CATALOG AS TABLE_QUALIFIER, TABLE_SCHEMA AS TABLE_OWNER, TABLE_NAME, COLUMN_NAME, GRANTOR, GRANTEE,
  CAST(PRIVILEGE_TYPE AS varchar(32)) AS PRIVILEGE, IS_GRANTABLE
FROM INFORMATION_SCHEMA.COLUMN_PRIVILEGES
WHERE TABLE_NAME = @table_name AND TABLE_SCHEMA LIKE ISNULL(@table_owner, '%')
  AND COLUMN_NAME LIKE ISNULL(@column_name, '%') ORDER BY 4, 7)";

constexpr std::string_view kRename = R"(CREATE PROCEDURE sp_rename @objname nvarchar(1035), @newname nvarchar(128),
  @objtype varchar(13) = NULL AS
EXEC [sp_$rename] @objname, @newname, @objtype
RAISERROR(15477, 0, 1))";

}  // namespace

std::vector<ProcedureText> HelpProcedures() {
  return {
      {"sp_help", kHelp},
      {"sp_helptext", kHelpText},
      {"sp_helpindex", kHelpIndex},
      {"sp_helpconstraint", kHelpConstraint},
      {"sp_helpdb", kHelpDatabase},
      {"sp_helptrigger", kHelpTrigger},
      {"sp_spaceused", kSpaceUsed},
      {"sp_who", kWho},
      {"sp_who2", kWho2},
      {"sp_server_info", kServerInfo},
      {"sp_table_privileges", kTablePrivileges},
      {"sp_column_privileges", kColumnPrivileges},
      {"sp_rename", kRename},
  };
}

}  // namespace tessarlorn::tsql
