#include "tsql/storage/system_views.h"

#include <algorithm>
#include <utility>

#include "platform/text/text.h"
#include "tsql/storage/system_view_parts.h"

namespace tessarlorn::tsql {
namespace {

/// The types of the server: name, system_type_id, user_type_id, max_length, precision, scale.
constexpr std::string_view kTypes = R"(SELECT column1 AS name, column2 AS id, column3 AS user_id,
 column4 AS max_length, column5 AS precision, column6 AS scale FROM (VALUES
 ('image',34,34,16,0,0), ('text',35,35,16,0,0), ('uniqueidentifier',36,36,16,0,0), ('date',40,40,3,10,0),
 ('time',41,41,5,16,7), ('datetime2',42,42,8,27,7), ('datetimeoffset',43,43,10,34,7), ('tinyint',48,48,1,3,0),
 ('smallint',52,52,2,5,0), ('int',56,56,4,10,0), ('smalldatetime',58,58,4,16,0), ('real',59,59,4,24,0),
 ('money',60,60,8,19,4), ('datetime',61,61,8,23,3), ('float',62,62,8,53,0), ('ntext',99,99,16,0,0),
 ('bit',104,104,1,1,0), ('decimal',106,106,17,38,38), ('numeric',108,108,17,38,38), ('smallmoney',122,122,4,10,4),
 ('bigint',127,127,8,19,0), ('varbinary',165,165,8000,0,0), ('varchar',167,167,8000,0,0), ('binary',173,173,8000,0,0),
 ('char',175,175,8000,0,0), ('nvarchar',231,231,8000,0,0), ('nchar',239,239,8000,0,0), ('sysname',231,256,256,0,0)))";

/// What a column's type takes and holds, out of kTyped as c and kTypes as t.
constexpr std::string_view kMeasures = R"(t.id AS system_type_id, t.user_id AS user_type_id,
 CASE WHEN c.base LIKE 'n%char' AND c.size > 0 THEN c.size * 2 WHEN c.base LIKE '%char' OR c.base LIKE '%binary' THEN c.size
  WHEN c.base = 'decimal' THEN CASE WHEN c.size <= 9 THEN 5 WHEN c.size <= 19 THEN 9 WHEN c.size <= 28 THEN 13 ELSE 17 END
  ELSE t.max_length END AS max_length,
 CASE c.base WHEN 'decimal' THEN c.size ELSE t.precision END AS precision,
 CASE WHEN c.base IN ('time', 'datetime2', 'datetimeoffset') THEN c.size WHEN c.base = 'decimal' THEN c.places ELSE t.scale END AS scale)";

/// The columns of foreign keys, each with the one that it refers to.
std::string ReferenceColumns() {
  return "SELECT f.id, f.object, f.owner, f.name, f.referenced_id, f.referenced, a.key + 1 AS ordinal,"
         " c.position AS column_id, c.name AS column_name, r.position AS referenced_column_id FROM (" +
         References() +
         ") f, json_each(f.body, '$.columns') a, json_each(f.referenced) b"
         " JOIN main.\"$columns\" c ON c.object = f.object AND c.name = a.value COLLATE NOCASE"
         " JOIN main.\"$columns\" r ON r.object = f.referenced_id AND r.name = b.value COLLATE NOCASE"
         " WHERE a.key = b.key";
}

/// Keys, and what CREATE INDEX made. The latter are SQLite's, by the number of their definition.
std::string Indexes() {
  return "SELECT object, owner, CASE kind WHEN 'PK' THEN 1 ELSE position + 2 END AS index_id, name,"
         " CASE kind WHEN 'PK' THEN 1 ELSE 2 END AS type, 1 AS is_unique, kind, NULL AS inner_name, 0 AS partial FROM (" +
         std::string(kConstraints) +
         ") WHERE kind IN ('PK', 'UQ') UNION ALL"
         " SELECT o.id, o.name, s.rowid + 1000, substr(s.name, length(s.tbl_name) + 2), 2, l.\"unique\", 'IX', s.name,"
         " l.partial FROM main.sqlite_schema s JOIN main.\"$objects\" o ON o.name = s.tbl_name AND o.kind = 'table'"
         " JOIN pragma_index_list(s.tbl_name) l ON l.name = s.name WHERE s.type = 'index' AND l.origin = 'c'"
         " AND s.name NOT LIKE '%$null' UNION ALL SELECT id, name, 0, NULL, 0, 0, 'H', NULL, 0 FROM main.\"$objects\" WHERE"
         " kind = 'table' AND instr(definition, '\"kind\":\"PK\"') = 0";
}

/// Keys, then the columns that indexes order by, then those that they include. SQLite keeps the last with the others,
/// or not at all where the index is unique.
std::string IndexColumns() {
  const std::string notes = "(SELECT object, json_extract(body, '$.index') AS name, body FROM (" +
                            std::string(kConstraints) + ") WHERE kind = 'IX')";
  const std::string with_columns = "(" + Indexes() + ") i JOIN main.\"$columns\" c ON c.object = i.object";
  return "SELECT k.object AS object_id, CASE k.kind WHEN 'PK' THEN 1 ELSE k.position + 2 END AS index_id,"
         " k.ordinal AS index_column_id, k.column_id, k.ordinal AS key_ordinal, 0 AS partition_ordinal,"
         " 0 AS is_descending_key, 0 AS is_included_column FROM (" +
         KeyColumns() +
         ") k WHERE k.kind IN ('PK', 'UQ') UNION ALL"
         " SELECT i.object, i.index_id, x.seqno + 1, c.position, x.seqno + 1, 0, x.\"desc\", 0 FROM " +
         with_columns +
         " JOIN pragma_index_xinfo(i.inner_name) x ON x.key = 1 AND x.name = c.name COLLATE NOCASE WHERE i.kind = 'IX' AND"
         " NOT EXISTS (SELECT 1 FROM " +
         notes +
         " n, json_each(n.body, '$.columns') j WHERE n.object = i.object AND n.name = i.name COLLATE NOCASE AND j.value ="
         " c.name COLLATE NOCASE) UNION ALL"
         " SELECT i.object, i.index_id, (SELECT count(*) FROM pragma_index_xinfo(i.inner_name) WHERE key = 1) + j.key + 1 -"
         " CASE WHEN i.is_unique THEN 0 ELSE json_array_length(n.body, '$.columns') END, c.position, 0, 0, 0, 1 FROM " +
         with_columns + " JOIN " + notes +
         " n ON n.object = i.object AND n.name = i.name COLLATE NOCASE JOIN json_each(n.body, '$.columns') j ON j.value ="
         " c.name COLLATE NOCASE WHERE i.kind = 'IX'";
}

/// What all objects have in common in the views of sys, of a row of kObjects or kConstraints.
std::string ObjectColumns(const std::string& type, const std::string& description) {
  return "name, id AS object_id, NULL AS principal_id, schema_id, schema_name, " + type + " AS type, " + description +
         " AS type_desc, NULL AS create_date, NULL AS modify_date, 0 AS is_ms_shipped";
}

SystemView Objects(const char* name, std::string sql, const std::vector<SystemViewColumn>& more = {}) {
  SystemView view{"sys",
                  name,
                  std::move(sql),
                  {Name("name"),
                   Int("object_id"),
                   Int("principal_id"),
                   Int("schema_id"),
                   {"type", VarCharType(2), false},
                   Code("type_desc"),
                   Time("create_date"),
                   Time("modify_date"),
                   Bit("is_ms_shipped"),
                   Int("parent_object_id")}};
  view.columns.insert(view.columns.end(), more.begin(), more.end());
  return view;
}

/// The view of sys of one kind of object of the database.
SystemView ObjectsOfKind(const char* name, const char* kind, const char* type, const char* description) {
  return Objects(name,
                 From("SELECT " + ObjectColumns("'" + std::string(type) + "'", "'" + std::string(description) + "'") +
                          ", 0 AS parent_object_id",
                      kObjects, " WHERE kind = '" + std::string(kind) + "'"));
}

/// The view of sys of constraints.
SystemView ConstraintsOfKind(const char* name, const std::string& kinds, const std::string& more_sql,
                             const std::vector<SystemViewColumn>& more) {
  const std::string type = "CASE kind WHEN 'F' THEN 'F ' WHEN 'C' THEN 'C ' WHEN 'D' THEN 'D ' ELSE kind END";
  const std::string description =
      "CASE kind WHEN 'PK' THEN 'PRIMARY_KEY_CONSTRAINT' WHEN 'UQ' THEN 'UNIQUE_CONSTRAINT' WHEN 'F' THEN"
      " 'FOREIGN_KEY_CONSTRAINT' WHEN 'C' THEN 'CHECK_CONSTRAINT' ELSE 'DEFAULT_CONSTRAINT' END";
  return Objects(name,
                 From("SELECT " + ObjectColumns(type, description) + ", object AS parent_object_id" + more_sql,
                      kConstraints, " k WHERE kind IN (" + kinds + ")"),
                 more);
}

SystemView Sequences() {
  const std::string last = "ts_last(o.id)";
  const std::string at_end = "CASE WHEN o.definition ->> 'increment' > 0 THEN " + last +
                             " > (o.definition ->> 'maximum') - (o.definition ->> 'increment') ELSE " + last +
                             " < (o.definition ->> 'minimum') - (o.definition ->> 'increment') END";
  return Objects(
      "sequences",
      "SELECT o.name, o.id AS object_id, NULL AS principal_id, o.schema_id, 'SO' AS type, 'SEQUENCE_OBJECT' AS"
      " type_desc, NULL AS create_date, NULL AS modify_date, 0 AS is_ms_shipped, 0 AS parent_object_id,"
      " o.definition ->> 'start' AS start_value, o.definition ->> 'increment' AS increment, o.definition ->> 'minimum'"
      " AS minimum_value, o.definition ->> 'maximum' AS maximum_value, o.definition ->> 'cycle' AS is_cycling,"
      " (o.definition ->> 'cache') > 0 AS is_cached, CASE o.definition ->> 'cache' WHEN 50 THEN NULL WHEN 0 THEN NULL"
      " ELSE o.definition ->> 'cache' END AS cache_size, c.system_type_id, c.user_type_id, c.precision, c.scale,"
      " coalesce(" +
          last + ", o.definition ->> 'start') AS current_value, coalesce(" + at_end +
          " AND NOT o.definition ->> 'cycle', 0) AS is_exhausted FROM (" + std::string(kObjects) +
          ") o JOIN (SELECT c.object, " + std::string(kMeasures) + " FROM (" + std::string(kTyped) + ") c JOIN (" +
          std::string(kTypes) + ") t ON t.name = c.base) c ON c.object = o.id WHERE o.kind = 'sequence'",
      {Long("start_value"), Long("increment"), Long("minimum_value"), Long("maximum_value"), Bit("is_cycling"),
       Bit("is_cached"), Int("cache_size"), Int("system_type_id"), Int("user_type_id"), Int("precision"), Int("scale"),
       Long("current_value"), Bit("is_exhausted")});
}

/// sys.objects, tables, views and procedures.
std::vector<SystemView> ObjectViews() {
  const std::string own_type =
      "CASE kind WHEN 'table' THEN 'U ' WHEN 'view' THEN 'V ' WHEN 'procedure' THEN 'P ' WHEN 'function' THEN 'FN'"
      " WHEN 'table function' THEN 'IF' WHEN 'filled table function' THEN 'TF' WHEN 'trigger' THEN 'TR' ELSE 'SO' END";
  const std::string own_description =
      "CASE kind WHEN 'table' THEN 'USER_TABLE' WHEN 'view' THEN 'VIEW' WHEN 'procedure' THEN 'SQL_STORED_PROCEDURE'"
      " WHEN 'function' THEN 'SQL_SCALAR_FUNCTION' WHEN 'table function' THEN 'SQL_INLINE_TABLE_VALUED_FUNCTION'"
      " WHEN 'filled table function' THEN 'SQL_TABLE_VALUED_FUNCTION' WHEN 'trigger' THEN 'SQL_TRIGGER' ELSE"
      " 'SEQUENCE_OBJECT' END";
  const SystemView constraints = ConstraintsOfKind("constraints", "'PK', 'UQ', 'F', 'C', 'D'", "", {});
  return {
      Objects("objects", "SELECT " + ObjectColumns(own_type, own_description) +
                             ", coalesce(table_id, 0) AS parent_object_id FROM (SELECT o.*, t.table_id FROM (" +
                             std::string(kObjects) + ") o LEFT JOIN (" + std::string(kTriggers) +
                             ") t ON t.id = o.id) UNION ALL " + constraints.sql),
      ObjectsOfKind("tables", "table", "U ", "USER_TABLE"),
      // Read as tempdb.sys.objects and tempdb..sysobjects. Table variables begin with another sign.
      Objects(
          "temporary_tables",
          From(
              "SELECT " + ObjectColumns("'U '", "'USER_TABLE'") + ", 0 AS parent_object_id",
              "SELECT name, ts_object_id(name) AS id, 1 AS schema_id, 'dbo' AS schema_name FROM temp.sqlite_schema WHERE type = 'table'"
              " AND name LIKE '#%'")),
      ObjectsOfKind("views", "view", "V ", "VIEW"),
      ObjectsOfKind("procedures", "procedure", "P ", "SQL_STORED_PROCEDURE"),
      {"sys",
       "triggers",
       From("SELECT name, id AS object_id, 1 AS parent_class, 'OBJECT_OR_COLUMN' AS parent_class_desc, table_id AS"
            " parent_id, 'TR' AS type, 'SQL_TRIGGER' AS type_desc, NULL AS create_date, NULL AS modify_date, 0 AS"
            " is_ms_shipped, instr(words, ' off') > 0 AS is_disabled, 0 AS is_not_for_replication, 0 AS"
            " is_instead_of_trigger",
            kTriggers),
       {Name("name"), Int("object_id"), Int("parent_class"), Code("parent_class_desc"), Int("parent_id"), Code("type"),
        Code("type_desc"), Time("create_date"), Time("modify_date"), Bit("is_ms_shipped"), Bit("is_disabled"),
        Bit("is_not_for_replication"), Bit("is_instead_of_trigger")}},
      {"sys",
       "trigger_events",
       From("SELECT t.id AS object_id, e.column1 AS type, e.column2 AS type_desc, 0 AS is_first, 0 AS is_last",
            kTriggers,
            " t JOIN (VALUES (1, 'INSERT'), (2, 'UPDATE'), (3, 'DELETE')) e ON instr(t.words, lower(e.column2)) > 0"),
       {Int("object_id"), Int("type"), Code("type_desc"), Bit("is_first"), Bit("is_last")}},
      Sequences(),
  };
}

/// Keys, checks, defaults and foreign keys.
std::vector<SystemView> ConstraintViews() {
  const std::string constraint_text = ", json_extract(body, '$.text') AS definition";
  const std::string of_column =
      ", coalesce((SELECT c.position FROM main.\"$columns\" c WHERE c.object = k.object AND c.name = json_extract(k.body,"
      " '$.columns[0]') COLLATE NOCASE), 0) AS parent_column_id";
  return {
      ConstraintsOfKind("key_constraints", "'PK', 'UQ'",
                        ", CASE kind WHEN 'PK' THEN 1 ELSE position + 2 END AS unique_index_id",
                        {Int("unique_index_id")}),
      ConstraintsOfKind("check_constraints", "'C'", constraint_text + of_column,
                        {Text("definition"), Int("parent_column_id")}),
      ConstraintsOfKind("default_constraints", "'D'", constraint_text + of_column,
                        {Text("definition"), Int("parent_column_id")}),
      Objects(
          "foreign_keys",
          From("SELECT " + ObjectColumns("'F '", "'FOREIGN_KEY_CONSTRAINT'") +
                   ", object AS parent_object_id,"
                   " referenced_id AS referenced_object_id, 1 AS key_index_id, 0 AS is_disabled, 0 AS is_not_trusted,"
                   " 0 AS delete_referential_action, 'NO_ACTION' AS delete_referential_action_desc,"
                   " 0 AS update_referential_action, 'NO_ACTION' AS update_referential_action_desc",
               References()),
          {Int("referenced_object_id"), Int("key_index_id"), Bit("is_disabled"), Bit("is_not_trusted"),
           Int("delete_referential_action"), Code("delete_referential_action_desc"), Int("update_referential_action"),
           Code("update_referential_action_desc")}),
      {"sys",
       "foreign_key_columns",
       From(
           "SELECT id AS constraint_object_id, ordinal AS constraint_column_id, object AS parent_object_id, column_id AS"
           " parent_column_id, referenced_id AS referenced_object_id, referenced_column_id",
           ReferenceColumns()),
       {Int("constraint_object_id"), Int("constraint_column_id"), Int("parent_object_id"), Int("parent_column_id"),
        Int("referenced_object_id"), Int("referenced_column_id")}},
  };
}

/// Columns of tables and views, and parameters of procedures.
std::vector<SystemView> ColumnViews() {
  const std::vector<SystemViewColumn> column_columns = {
      Int("object_id"),        Name("name"),       Int("column_id"),   Int("system_type_id"),
      Int("user_type_id"),     Int("max_length"),  Int("precision"),   Int("scale"),
      Name("collation_name"),  Bit("is_nullable"), Bit("is_identity"), Bit("is_computed"),
      Int("default_object_id")};
  const auto with = [](std::vector<SystemViewColumn> columns, const std::vector<SystemViewColumn>& more) {
    columns.insert(columns.end(), more.begin(), more.end());
    return columns;
  };
  const std::string seed = "coalesce((SELECT json_extract(k.body, '$.seed') FROM (" + std::string(kConstraints) +
                           ") k WHERE k.object = c.object AND k.kind = 'I'), 1)";
  const std::string increment = ReplaceAll(seed, "$.seed", "$.increment");
  const std::string columns =
      "SELECT c.object AS object_id, c.name, c.position AS column_id, " + std::string(kMeasures) +
      ", CASE WHEN c.base LIKE '%char' THEN " + std::string(kCollationName) +
      " END AS collation_name, c.nullable AS is_nullable,"
      " c.identity = 1 AS is_identity, c.identity >= 3 AS is_computed, '(' || c.default_text || ')' AS definition,"
      " c.identity = 4 AS is_persisted,"
      " coalesce((SELECT k.id FROM (" +
      std::string(kConstraints) +
      ") k WHERE k.object = c.object AND k.kind = 'D' AND json_extract(k.body, '$.columns[0]') = c.name COLLATE NOCASE),"
      " 0) AS default_object_id, " +
      seed + " AS seed_value, " + increment +
      " AS increment_value, (SELECT s.seq FROM main.sqlite_sequence s WHERE s.name = c.owner AND (" + increment +
      " < 0 OR s.seq >= " + seed + ")) AS last_value FROM (" + std::string(kTyped) + ") c JOIN (" +
      std::string(kTypes) + ") t ON t.name = c.base WHERE c.of_call = 0 AND c.owner_kind <> 'trigger'";
  return {
      {"sys", "columns", columns, column_columns},
      {"sys", "identity_columns", columns + " AND c.identity = 1",
       with(column_columns, {Int("seed_value"), Int("increment_value"), Int("last_value")})},
      {"sys", "computed_columns", columns + " AND c.identity >= 3",
       with(column_columns, {Text("definition"), Bit("is_persisted")})},
      {"sys",
       "parameters",
       "SELECT c.object AS object_id, c.name, c.parameter_position AS parameter_id, " + std::string(kMeasures) +
           ", c.default_text IN ('output', 'return') AS is_output, 0 AS has_default_value FROM (" +
           std::string(kTyped) + ") c JOIN (" + std::string(kTypes) + ") t ON t.name = c.base WHERE c.of_call = 1",
       {Int("object_id"), Name("name"), Int("parameter_id"), Int("system_type_id"), Int("user_type_id"),
        Int("max_length"), Int("precision"), Int("scale"), Bit("is_output"), Bit("has_default_value")}},
  };
}

std::vector<SystemView> IndexViews() {
  return {
      {"sys",
       "indexes",
       From(
           "SELECT object AS object_id, name, index_id, type, CASE type WHEN 0 THEN 'HEAP' WHEN 1 THEN"
           " 'CLUSTERED' ELSE 'NONCLUSTERED' END AS"
           " type_desc, is_unique, kind = 'PK' AS is_primary_key, kind = 'UQ' AS is_unique_constraint, partial AS"
           " has_filter, (SELECT json_extract(k.body, '$.text') FROM (" +
               std::string(kConstraints) +
               ") k WHERE k.object = i.object"
               " AND k.kind = 'IX' AND json_extract(k.body, '$.index') = i.name COLLATE NOCASE AND partial) AS filter_definition,"
               " 0 AS is_disabled, 1 AS data_space_id, 0 AS fill_factor, 1 AS allow_row_locks, 1 AS allow_page_locks",
           Indexes(), " i"),
       {Int("object_id"), Name("name"), Int("index_id"), Int("type"), Code("type_desc"), Bit("is_unique"),
        Bit("is_primary_key"), Bit("is_unique_constraint"), Bit("has_filter"), Text("filter_definition"),
        Bit("is_disabled"), Int("data_space_id"), Int("fill_factor"), Bit("allow_row_locks"), Bit("allow_page_locks")}},
      {"sys",
       "index_columns",
       IndexColumns(),
       {Int("object_id"), Int("index_id"), Int("index_column_id"), Int("column_id"), Int("key_ordinal"),
        Int("partition_ordinal"), Bit("is_descending_key"), Bit("is_included_column")}},
      {"sys",
       "partitions",
       From("SELECT object * 10000 + index_id AS partition_id, object AS object_id, index_id, 1 AS partition_number,"
            " object * 10000 + index_id AS hobt_id, ts_row_count(object) AS rows, 0 AS data_compression, 'NONE' AS"
            " data_compression_desc",
            Indexes()),
       {Long("partition_id"), Int("object_id"), Int("index_id"), Int("partition_number"), Long("hobt_id"), Long("rows"),
        Int("data_compression"), Code("data_compression_desc")}},
  };
}

/// What is the same in every database, and texts of definitions.
std::vector<SystemView> ServerViews() {
  return {
      {"sys",
       "schemas",
       From("SELECT name, schema_id, CASE WHEN schema_id < 5 THEN schema_id ELSE 1 END AS principal_id", kSchemas),
       {Name("name"), Int("schema_id"), Int("principal_id")}},
      {"sys",
       "database_files",
       "SELECT 1 AS file_id, 0 AS type, 'ROWS' AS type_desc, 1 AS data_space_id, 'main' AS name, (SELECT file FROM"
       " pragma_database_list WHERE name = 'main') AS physical_name, 0 AS state, 'ONLINE' AS state_desc,"
       " (SELECT page_count FROM pragma_page_count) * (SELECT page_size FROM pragma_page_size) / 8192 AS size,"
       " -1 AS max_size, 0 AS is_read_only",
       {Int("file_id"),
        Int("type"),
        Code("type_desc"),
        Int("data_space_id"),
        Name("name"),
        {"physical_name", NVarCharType(260), true},
        Int("state"),
        Code("state_desc"),
        Int("size"),
        Int("max_size"),
        Bit("is_read_only")}},
      {"sys",
       "types",
       From("SELECT name, id AS system_type_id, user_id AS user_type_id, 4 AS schema_id, max_length, precision, scale,"
            " CASE WHEN name LIKE '%char' OR name LIKE '%text' THEN " +
                std::string(kCollationName) +
                " END AS collation_name,"
                " 1 AS is_nullable, 0 AS is_user_defined, 0 AS is_table_type",
            kTypes),
       {Name("name"), Int("system_type_id"), Int("user_type_id"), Int("schema_id"), Int("max_length"), Int("precision"),
        Int("scale"), Name("collation_name"), Bit("is_nullable"), Bit("is_user_defined"), Bit("is_table_type")}},
      {"sys",
       "sql_modules",
       From("SELECT id AS object_id, definition", kObjects, " WHERE kind NOT IN ('table', 'sequence')"),
       {Int("object_id"), Text("definition")}},
      {"sys",
       "extended_properties",
       "SELECT 0 AS class, 0 AS major_id, 0 AS minor_id, '' AS name, '' AS value, '' AS class_desc WHERE 0",
       {Int("class"), Int("major_id"), Int("minor_id"), Name("name"), Text("value"), Code("class_desc")}},
  };
}

/// Columns of bits that are 0 in every row, by their view.
struct Flags {
  std::string_view view;
  std::string_view names;
};
constexpr Flags kFlags[] = {
    {"objects", "is_published is_schema_published"},
    {"tables",
     "is_published is_schema_published lock_on_bulk_load is_replicated has_replication_filter is_merge_published"
     " is_sync_tran_subscribed has_unchecked_assembly_data large_value_types_out_of_row is_tracked_by_cdc is_filetable"},
    {"views",
     "is_published is_schema_published is_replicated has_replication_filter has_opaque_metadata"
     " has_unchecked_assembly_data with_check_option is_date_correlation_view is_tracked_by_cdc"},
    {"procedures",
     "is_published is_schema_published is_auto_executed is_execution_replicated is_repl_serializable_only"
     " skips_repl_constraints"},
    {"columns",
     "is_rowguidcol is_filestream is_replicated is_non_sql_subscribed is_merge_published is_dts_replicated"
     " is_xml_document is_sparse is_column_set"},
    {"parameters", "is_cursor_ref is_xml_document is_readonly"},
    {"types", "is_assembly_type"},
    {"indexes", "ignore_dup_key is_padded is_hypothetical"},
    {"key_constraints", "is_published is_schema_published is_system_named"},
    {"check_constraints", "is_disabled is_not_for_replication is_not_trusted is_system_named"},
    {"default_constraints", "is_published is_schema_published is_system_named"},
    {"foreign_keys", "is_not_for_replication is_system_named"},
    {"sql_modules", "is_schema_bound uses_database_collation is_recompiled null_on_null_input"},
};

void AddFlags(SystemView& view) {
  for (const Flags& flags : kFlags) {
    if (view.qualifier != "sys" || view.name != flags.view) continue;
    std::string sql = "SELECT *";
    for (const std::string_view name : Split(flags.names, ' ')) {
      sql.append(", 0 AS ").append(name);
      view.columns.push_back(Bit(std::string(name)));
    }
    view.sql = From(sql, view.sql);
  }
}

const std::vector<SystemView>& SystemViews() {
  static const std::vector<SystemView> views = [] {
    std::vector<SystemView> all;
    for (const auto group : {ObjectViews, ConstraintViews, ColumnViews, IndexViews, ServerViews, InformationSchema}) {
      for (SystemView& view : group()) {
        AddFlags(view);
        all.push_back(std::move(view));
      }
    }
    return all;
  }();
  return views;
}

}  // namespace

std::string_view SchemaHere(std::string_view qualifier) {
  constexpr std::string_view kHere = "main.";
  return EqualsIgnoreCase(qualifier.substr(0, kHere.size()), kHere) ? qualifier.substr(kHere.size()) : qualifier;
}

const SystemView* FindSystemView(std::string_view qualifier, std::string_view name) {
  const std::string_view schema = SchemaHere(qualifier);
  for (const SystemView& view : SystemViews()) {
    if (EqualsIgnoreCase(view.qualifier, schema) && EqualsIgnoreCase(view.name, name)) return &view;
  }
  return nullptr;
}

}  // namespace tessarlorn::tsql
