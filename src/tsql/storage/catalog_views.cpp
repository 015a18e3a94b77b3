// System views that are told by others of them, in Transact-SQL: those of the server, and the names that version 2000
// had for the catalog.
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "platform/text/text.h"
#include "tsql/storage/system_views.h"

namespace tessarlorn::tsql {
namespace {

struct ViewText {
  /// "sys" or "information_schema"; "tempdb" for the sys of that database.
  std::string_view schema;
  std::string name;
  std::string query;
  /// It tells of the server, and stands in the database master, too.
  bool of_server = false;
};

/// ", CAST(value AS type) AS name" for each of some names, which blanks part.
std::string Constants(std::string_view value, std::string_view type, std::string_view names) {
  std::string sql;
  for (const std::string_view name : Split(names, ' ')) {
    sql.append(", CAST(").append(value).append(" AS ").append(type).append(") AS ").append(QuoteName(name));
  }
  return sql;
}

/// The query of a view without rows. @param columns name and type of each
std::string Empty(std::string_view columns) {
  std::string sql;
  for (const std::string_view column : Split(columns, ';')) {
    const std::size_t blank = column.find(' ');
    sql.append(Constants("NULL", column.substr(blank + 1), column.substr(0, blank)));
  }
  return "SELECT" + sql.substr(1) + " WHERE 1 = 0";
}

constexpr std::string_view kNames = "nvarchar(128)";
constexpr std::string_view kNoTime = "datetime";

/// Other names of the views of sys.
std::vector<ViewText> OtherNames() {
  std::vector<ViewText> views;
  for (const std::string name : {"objects", "columns", "views", "parameters", "sql_modules"}) {
    views.push_back({"sys", "all_" + name, "SELECT * FROM sys." + name});
  }
  return views;
}

/// Of the database tempdb: the session's temporary tables.
std::vector<ViewText> TemporaryObjects() {
  return {
      {"tempdb", "objects", "SELECT * FROM sys.temporary_tables"},
      {"tempdb", "tables", "SELECT * FROM sys.temporary_tables"},
      {"tempdb", "sysobjects",
       "SELECT name, object_id AS id, type AS xtype, CAST(1 AS smallint) AS uid, parent_object_id AS parent_obj,"
       " create_date AS crdate, type FROM sys.temporary_tables"},
  };
}

std::vector<ViewText> OldViewsOfObjects() {
  return {
      {"sys", "sysobjects",
       "SELECT name, object_id AS id, type AS xtype, CAST(schema_id AS smallint) AS uid" +
           Constants("0", "smallint", "info") + Constants("0", "int", "status base_schema_ver replinfo") +
           ", parent_object_id AS parent_obj, create_date AS crdate" + Constants("0", "smallint", "ftcatid") +
           Constants("0", "int", "schema_ver stats_schema_ver") +
           ", CAST(CASE WHEN type IN ('PK', 'UQ') THEN 'K ' ELSE type END AS char(2)) AS type" +
           Constants("0", "smallint", "userstat sysstat indexdel") + ", create_date AS refdate" +
           Constants("0", "int", "version deltrig instrig updtrig seltrig category") +
           Constants("0", "smallint", "cache") + " FROM sys.objects"},
      {"sys", "syscolumns",
       "SELECT name, object_id AS id, CAST(system_type_id AS tinyint) AS xtype" +
           Constants("0", "tinyint", "typestat") +
           ", CAST(user_type_id AS smallint) AS xusertype, CAST(max_length AS smallint) AS length, precision AS xprec,"
           " scale AS xscale, CAST(column_id AS smallint) AS colid, CAST(is_identity AS smallint) AS colstat,"
           " default_object_id AS cdefault" +
           Constants("0", "int", "domain") + Constants("0", "smallint", "number") +
           ", CAST(column_id AS smallint) AS colorder" + Constants("0", "smallint", "offset") +
           ", CAST(is_identity * 128 + is_nullable * 8 AS tinyint) AS status, CAST(system_type_id AS tinyint) AS type,"
           " CAST(user_type_id AS smallint) AS usertype, CAST(CASE WHEN system_type_id IN (231, 239) AND max_length > 0"
           " THEN max_length / 2 WHEN precision > 0 THEN precision ELSE max_length END AS smallint) AS prec, CAST("
           "CASE WHEN precision > 0 THEN scale END AS int) AS scale, CAST(is_computed AS int) AS iscomputed, isoutparam,"
           " CAST(is_nullable AS int) AS isnullable, collation_name AS collation FROM (SELECT object_id, name, column_id,"
           " system_type_id, user_type_id, max_length, precision, scale, collation_name, CAST(is_nullable AS int) AS"
           " is_nullable, CAST(is_identity AS int) AS is_identity, is_computed, default_object_id, 0 AS isoutparam"
           " FROM sys.columns UNION ALL SELECT object_id, name, parameter_id, system_type_id, user_type_id, max_length,"
           " precision, scale, NULL, 1, 0, 0, 0, CAST(is_output AS int) FROM sys.parameters) c"},
      {"sys", "syscomments",
       "WITH parts AS (SELECT object_id, 1 AS colid, definition FROM sys.sql_modules UNION ALL SELECT object_id, colid"
       " + 1, definition FROM parts WHERE DATALENGTH(definition) > colid * 8000) SELECT object_id AS id" +
           Constants("1", "smallint", "number") + ", CAST(colid AS smallint) AS colid" +
           Constants("0", "smallint", "status") + Constants("2", "smallint", "texttype") +
           Constants("0", "smallint", "language") + Constants("0", "bit", "encrypted compressed") +
           ", CAST(SUBSTRING(definition, colid * 4000 - 3999, 4000) AS nvarchar(4000)) AS text FROM parts"},
      {"sys", "systypes",
       "SELECT name, CAST(system_type_id AS tinyint) AS xtype" + Constants("0", "tinyint", "status") +
           ", CAST(user_type_id AS smallint) AS xusertype, CAST(max_length AS smallint) AS length, precision AS xprec,"
           " scale AS xscale" +
           Constants("0", "int", "tdefault domain") + Constants("4", "smallint", "uid") +
           ", CAST(user_type_id AS smallint) AS usertype" + Constants("0", "bit", "variable") +
           ", is_nullable AS allownulls, CAST(system_type_id AS tinyint) AS type, CAST(precision AS smallint) AS prec,"
           " scale, collation_name AS collation FROM sys.types"},
  };
}

std::vector<ViewText> OldViewsOfKeys() {
  return {
      {"sys", "sysindexes",
       "SELECT i.object_id AS id, CASE WHEN i.is_unique = 1 THEN 2 ELSE 0 END + CASE WHEN i.type = 1 THEN 16 ELSE 0 END +"
       " CASE WHEN i.is_primary_key = 1 THEN 2048 ELSE 0 END + CASE WHEN i.is_unique_constraint = 1 THEN 4096 ELSE 0 END"
       " AS status, CAST(i.index_id AS smallint) AS indid, CAST((SELECT COUNT(*) FROM sys.index_columns k WHERE"
       " k.object_id = i.object_id AND k.index_id = i.index_id AND k.key_ordinal > 0) AS smallint) AS keycnt" +
           Constants("1", "smallint", "groupid") + Constants("NULL", "int", "dpages reserved used") +
           ", p.rows AS rowcnt" + Constants("0", "int", "rowmodctr") + Constants("0", "tinyint", "OrigFillFactor") +
           ", i.name, CAST(p.rows AS int) AS rows FROM sys.indexes i JOIN sys.partitions p ON p.object_id = i.object_id"
           " AND p.index_id = i.index_id"},
      {"sys", "sysindexkeys",
       "SELECT object_id AS id, CAST(index_id AS smallint) AS indid, CAST(column_id AS smallint) AS colid,"
       " CAST(key_ordinal AS smallint) AS keyno FROM sys.index_columns WHERE key_ordinal > 0"},
      {"sys", "sysforeignkeys",
       "SELECT constraint_object_id AS constid, parent_object_id AS fkeyid, referenced_object_id AS rkeyid,"
       " CAST(parent_column_id AS smallint) AS fkey, CAST(referenced_column_id AS smallint) AS rkey,"
       " CAST(constraint_column_id AS smallint) AS keyno FROM sys.foreign_key_columns"},
      {"sys", "sysusers",
       "SELECT CAST(principal_id AS smallint) AS uid" + Constants("0", "smallint", "status") + ", name, sid" +
           Constants("NULL", kNoTime, "createdate updatedate") + Constants("0", "smallint", "altuid gid") +
           ", CASE name WHEN 'dbo' THEN 1 ELSE 0 END AS hasdbaccess, CASE type WHEN 'S' THEN 1 ELSE 0 END AS islogin" +
           Constants("0", "int", "isntname isntgroup isntuser") +
           ", CASE type WHEN 'S' THEN 1 ELSE 0 END AS issqluser" + Constants("0", "int", "isaliased") +
           ", CASE type WHEN 'R' THEN 1 ELSE 0 END AS issqlrole" + Constants("0", "int", "isapprole") +
           " FROM sys.database_principals"},
      {"sys", "sysdatabases",
       "SELECT name, CAST(database_id AS smallint) AS dbid, owner_sid AS sid" + Constants("0", "smallint", "mode") +
           Constants("0", "int", "status status2") + ", create_date AS crdate" + Constants("0", "int", "category") +
           ", compatibility_level AS cmptlevel, (SELECT physical_name FROM"
           " sys.database_files) AS filename" +
           Constants("706", "smallint", "version") + " FROM sys.databases",
       true},
      {"sys", "sysprocesses",
       "SELECT session_id AS spid" + Constants("0", "smallint", "kpid blocked") + Constants("0", "bigint", "waittime") +
           Constants("''", kNames, "lastwaittype") + ", database_id AS dbid" + Constants("1", "smallint", "uid") +
           ", cpu_time AS cpu, login_time, last_request_start_time AS last_batch, open_transaction_count AS open_tran,"
           " CAST(status AS nchar(30)) AS status, CAST(host_name AS nchar(128)) AS hostname, CAST(program_name AS"
           " nchar(128)) AS program_name, CAST('' AS nchar(16)) AS cmd, CAST(login_name AS nchar(128)) AS loginame"
           " FROM sys.dm_exec_sessions",
       true},
  };
}

constexpr std::string_view kDatabase = R"(SELECT CAST(DB_NAME() AS nvarchar(128)) AS name, 1 AS database_id,
 CAST(NULL AS int) AS source_database_id, CAST(0x01 AS varbinary(85)) AS owner_sid, CAST(NULL AS datetime) AS create_date,
 CAST(110 AS tinyint) AS compatibility_level, CAST(SERVERPROPERTY('Collation') AS nvarchar(128)) AS collation_name,
 CAST(0 AS tinyint) AS user_access, CAST('MULTI_USER' AS nvarchar(60)) AS user_access_desc, CAST(0 AS tinyint) AS state,
 CAST('ONLINE' AS nvarchar(60)) AS state_desc, CAST(1 AS tinyint) AS snapshot_isolation_state,
 CAST('ON' AS nvarchar(60)) AS snapshot_isolation_state_desc, CAST(1 AS tinyint) AS recovery_model,
 CAST('FULL' AS nvarchar(60)) AS recovery_model_desc, CAST(2 AS tinyint) AS page_verify_option,
 CAST('CHECKSUM' AS nvarchar(60)) AS page_verify_option_desc)";

constexpr std::string_view kSession =
    R"(SELECT CAST(@@SPID AS smallint) AS session_id, CAST(NULL AS datetime) AS login_time,
 CAST(HOST_NAME() AS nvarchar(128)) AS host_name, CAST(APP_NAME() AS nvarchar(128)) AS program_name,
 CAST(NULL AS int) AS host_process_id, CAST(NULL AS int) AS client_version,
 CAST('' AS nvarchar(32)) AS client_interface_name, CAST(0x01 AS varbinary(85)) AS security_id,
 CAST(SUSER_SNAME() AS nvarchar(128)) AS login_name, CAST('running' AS nvarchar(30)) AS status,
 CAST('us_english' AS nvarchar(128)) AS language, CAST(2 AS smallint) AS transaction_isolation_level,
 CAST(ORIGINAL_LOGIN() AS nvarchar(128)) AS original_login_name, CAST(1 AS smallint) AS database_id,
 @@TRANCOUNT AS open_transaction_count)";

std::vector<ViewText> ViewsOfServer() {
  return {
      {"sys", "databases",
       std::string(kDatabase) +
           Constants("1", "bit",
                     "is_read_committed_snapshot_on is_ansi_nulls_on is_ansi_padding_on is_ansi_warnings_on "
                     "is_quoted_identifier_on is_auto_create_stats_on") +
           Constants(
               "0", "bit",
               "is_read_only is_auto_close_on is_auto_shrink_on is_in_standby is_cleanly_shutdown "
               "is_ansi_null_default_on is_arithabort_on is_concat_null_yields_null_on is_recursive_triggers_on "
               "is_fulltext_enabled is_trustworthy_on is_db_chaining_on is_published is_subscribed is_distributor "
               "is_broker_enabled is_cdc_enabled is_encrypted"),
       true},
      {"sys", "dm_exec_sessions",
       std::string(kSession) + Constants("0", "int", "cpu_time memory_usage total_elapsed_time prev_error") +
           Constants("NULL", kNoTime, "last_request_start_time last_request_end_time") +
           Constants("0", "bigint", "reads writes logical_reads row_count") + Constants("1", "bit", "is_user_process"),
       true},
      {"sys", "dm_exec_connections",
       "SELECT CAST(@@SPID AS int) AS session_id" + Constants("NULL", kNoTime, "connect_time") +
           Constants("'Shared memory'", "nvarchar(40)", "net_transport") +
           Constants("'TSQL'", "nvarchar(40)", "protocol_type") +
           Constants("'FALSE'", "nvarchar(40)", "encrypt_option") + Constants("'SQL'", "nvarchar(40)", "auth_scheme") +
           Constants("'<local machine>'", "varchar(48)", "client_net_address") +
           Constants("NULL", "varchar(48)", "local_net_address") +
           Constants("NULL", "int", "client_tcp_port local_tcp_port"),
       true},
      {"sys", "configurations",
       "SELECT id AS configuration_id, CAST(name AS nvarchar(35)) AS name, value, 0 AS minimum, 1 AS maximum, value AS"
       " value_in_use, CAST(name AS nvarchar(255)) AS description, CAST(0 AS bit) AS is_dynamic, CAST(1 AS bit) AS"
       " is_advanced FROM (VALUES (518, 'show advanced options', 0), (1539, 'max degree of parallelism', 1),"
       " (1562, 'clr enabled', 0), (16388, 'Ole Automation Procedures', 0), (16390, 'xp_cmdshell', 0)) c (id, name, value)",
       true},
  };
}

std::vector<ViewText> ViewsOfPrincipalsAndSpace() {
  return {
      {"sys", "server_principals",
       "SELECT name, principal_id, sid, type, CAST('SQL_LOGIN' AS nvarchar(60)) AS type_desc, CAST(0 AS bit) AS"
       " is_disabled, create_date, modify_date, CAST(DB_NAME() AS nvarchar(128)) AS default_database_name,"
       " CAST('us_english' AS nvarchar(128)) AS default_language_name FROM sys.database_principals WHERE name = 'dbo'",
       true},
      {"sys", "database_principals",
       "SELECT CAST(name AS nvarchar(128)) AS name, id AS principal_id, CAST(CASE WHEN id < 5 AND id > 0 THEN 'S' ELSE 'R'"
       " END AS char(1)) AS type, CAST(CASE WHEN id < 5 AND id > 0 THEN 'SQL_USER' ELSE 'DATABASE_ROLE' END AS"
       " nvarchar(60)) AS type_desc, CAST(CASE id WHEN 1 THEN 'dbo' END AS nvarchar(128)) AS default_schema_name" +
           Constants("NULL", kNoTime, "create_date modify_date") +
           ", CAST(CASE id WHEN 0 THEN 1 WHEN 16384 THEN 1 END AS int) AS owning_principal_id,"
           " CAST(CASE id WHEN 1 THEN 0x01 WHEN 2 THEN 0x00 END AS varbinary(85)) AS sid,"
           " CAST(CASE id WHEN 0 THEN 1 WHEN 16384 THEN 1 ELSE 0 END AS bit) AS is_fixed_role FROM (VALUES (0, 'public'),"
           " (1, 'dbo'), (2, 'guest'), (3, 'INFORMATION_SCHEMA'), (4, 'sys'), (16384, 'db_owner')) p (id, name)"},
      {"sys", "database_role_members", "SELECT 16384 AS role_principal_id, 1 AS member_principal_id"},
      {"sys", "dm_db_partition_stats",
       "SELECT partition_id, object_id, index_id, partition_number, rows AS row_count" +
           Constants("NULL", "bigint", "used_page_count reserved_page_count in_row_data_page_count") +
           " FROM sys.partitions"},
      {"sys", "data_spaces",
       "SELECT CAST('PRIMARY' AS nvarchar(128)) AS name, 1 AS data_space_id, CAST('FG' AS char(2)) AS type,"
       " CAST('ROWS_FILEGROUP' AS nvarchar(60)) AS type_desc, CAST(1 AS bit) AS is_default, CAST(0 AS bit) AS is_system"},
  };
}

/// What is there on a server and never here.
std::vector<ViewText> EmptyViews() {
  const std::string object =
      "name nvarchar(128);object_id int;principal_id int;schema_id int;parent_object_id int;type char(2);"
      "type_desc nvarchar(60);create_date datetime;modify_date datetime;is_ms_shipped bit;";
  return {
      {"sys", "synonyms", Empty(object + "base_object_name nvarchar(1035)")},
      {"sys", "table_types",
       Empty("name nvarchar(128);system_type_id tinyint;user_type_id int;schema_id int;type_table_object_id int")},
      {"sys", "database_permissions",
       Empty(
           "class tinyint;class_desc nvarchar(60);major_id int;minor_id int;grantee_principal_id int;"
           "grantor_principal_id int;type char(4);permission_name nvarchar(128);state char(1);state_desc nvarchar(60)")},
      {"information_schema", "domains",
       Empty(
           "DOMAIN_CATALOG nvarchar(128);DOMAIN_SCHEMA nvarchar(128);DOMAIN_NAME nvarchar(128);DATA_TYPE nvarchar(128)")},
  };
}

std::vector<ViewText> InformationViews() {
  constexpr std::string_view kEverything =
      " FROM (VALUES ('SELECT'), ('INSERT'), ('UPDATE'), ('DELETE'), ('REFERENCES')) p (privilege)"
      " CROSS JOIN INFORMATION_SCHEMA.";
  const std::string grant =
      "SELECT CAST('dbo' AS nvarchar(128)) AS GRANTOR, CAST('dbo' AS nvarchar(128)) AS GRANTEE, TABLE_CATALOG,"
      " TABLE_SCHEMA, TABLE_NAME, ";
  const std::string privilege =
      "CAST(privilege AS varchar(10)) AS PRIVILEGE_TYPE, CAST('YES' AS varchar(3)) AS IS_GRANTABLE";
  return {
      {"information_schema", "constraint_table_usage",
       "SELECT TABLE_CATALOG, TABLE_SCHEMA, TABLE_NAME, CONSTRAINT_CATALOG, CONSTRAINT_SCHEMA, CONSTRAINT_NAME FROM"
       " INFORMATION_SCHEMA.TABLE_CONSTRAINTS"},
      {"information_schema", "table_privileges", grant + privilege + std::string(kEverything) + "TABLES"},
      {"information_schema", "column_privileges",
       grant + "COLUMN_NAME, " + privilege + std::string(kEverything) + "COLUMNS WHERE privilege <> 'DELETE'"},
  };
}

struct CatalogView {
  std::string_view schema;
  bool of_server;
  CatalogObjectPtr view;
};

const std::vector<CatalogView>& CatalogViews() {
  static const std::vector<CatalogView> views = [] {
    std::vector<CatalogView> all;
    for (const auto group : {OtherNames, TemporaryObjects, OldViewsOfObjects, OldViewsOfKeys, ViewsOfServer,
                             ViewsOfPrincipalsAndSpace, EmptyViews, InformationViews}) {
      for (const ViewText& text : group()) {
        auto view = std::make_shared<CatalogObject>();
        view->kind = CatalogKind::kView;
        view->name = text.name;
        view->definition = "CREATE VIEW " + text.name + " AS " + text.query;
        view->Seal();
        all.push_back({text.schema, text.of_server, std::move(view)});
      }
    }
    return all;
  }();
  return views;
}

}  // namespace

CatalogObjectPtr FindCatalogView(std::string_view qualifier, std::string_view name) {
  const std::size_t dot = qualifier.rfind('.');
  const std::string_view database = dot == std::string_view::npos ? std::string_view{} : qualifier.substr(0, dot);
  const bool in_master = EqualsIgnoreCase(database, "master");
  const bool in_tempdb = EqualsIgnoreCase(database, "tempdb");
  const std::string_view schema = in_master || in_tempdb ? qualifier.substr(dot + 1) : SchemaHere(qualifier);
  const bool old_schema = schema.empty() || EqualsIgnoreCase(schema, "dbo");
  for (const CatalogView& entry : CatalogViews()) {
    if (!EqualsIgnoreCase(entry.view->name, name)) continue;
    if ((in_master && !entry.of_server) || in_tempdb != (entry.schema == "tempdb")) continue;
    const bool old = entry.view->name.starts_with("sys");
    const bool in_schema = EqualsIgnoreCase(in_tempdb ? "sys" : entry.schema, schema);
    if (in_schema || (old && old_schema)) return entry.view;
  }
  return nullptr;
}

}  // namespace tessarlorn::tsql
