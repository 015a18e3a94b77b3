// What the system views and procedures of several files are made of.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tsql/storage/system_views.h"

namespace tessarlorn::tsql {

// Columns of views, by their types.
inline SystemViewColumn Bit(std::string name) { return {std::move(name), BitType(), true}; }
inline SystemViewColumn Int(const char* name) { return {name, IntType(), true}; }
inline SystemViewColumn Long(const char* name) { return {name, BigIntType(), true}; }
inline SystemViewColumn Time(const char* name) { return {name, DateTimeType(), true}; }
inline SystemViewColumn Name(const char* name) { return {name, NVarCharType(128), true}; }
inline SystemViewColumn Code(const char* name) { return {name, VarCharType(60), true}; }
inline SystemViewColumn Text(const char* name) { return {name, NVarCharType(0), true}; }

/// The objects, each with its own name, and its schema's name and number. `full_name` is the catalog's.
inline constexpr std::string_view kObjects = R"(SELECT o.id, o.name AS full_name, o.kind, o.definition,
 substr(o.name, coalesce(length(s.name), 0) + 1) AS name, coalesce(rtrim(s.name, '.'), 'dbo') AS schema_name,
 coalesce(CAST(s.definition AS INTEGER), 1) AS schema_id FROM main."$objects" o LEFT JOIN main."$objects" s
 ON s.kind = 'schema' AND s.name = substr(o.name, 1, instr(o.name, '.')) WHERE o.kind <> 'schema')";

/// The schemas.
inline constexpr std::string_view kSchemas = R"(SELECT column1 AS name, column2 AS schema_id FROM (VALUES ('dbo', 1),
 ('guest', 2), ('INFORMATION_SCHEMA', 3), ('sys', 4)) UNION ALL SELECT rtrim(name, '.'), CAST(definition AS INTEGER)
 FROM main."$objects" WHERE kind = 'schema')";

/// Columns of tables and parameters of procedures, with the parts of their types: base, size (-1 for (max)), places.
/// Whether they are of a call: 1 for parameters and what a function returns, 0 for columns.
inline const std::string kTyped =
    R"(SELECT *, CASE owner_kind WHEN 'procedure' THEN 1 WHEN 'function' THEN 1 WHEN 'sequence' THEN -1
   WHEN 'table function' THEN default_text = 'parameter'
   WHEN 'filled table function' THEN default_text = 'parameter' ELSE 0 END AS of_call,
  CASE default_text WHEN 'return' THEN 0 ELSE row_number() OVER (PARTITION BY object, default_text = '' ORDER BY position)
   END AS parameter_position, CASE size_text WHEN 'max' THEN -1 ELSE CAST(size_text AS INTEGER) END
  AS size, CAST(substr(size_text, instr(size_text, ',') + 1) AS INTEGER) AS places
 FROM (SELECT c.*, o.full_name AS owner, o.name AS owner_name, o.schema_name, o.kind AS owner_kind,
   CASE instr(c.type, '(') WHEN 0 THEN c.type ELSE substr(c.type, 1, instr(c.type, '(') - 1) END AS base,
   CASE instr(c.type, '(') WHEN 0 THEN '' ELSE rtrim(substr(c.type, instr(c.type, '(') + 1), ')') END AS size_text
  FROM main."$columns" c JOIN ()" +
    std::string(kObjects) + ") o ON o.id = c.object)";

/// The constraints of tables, as TableConstraints wrote them. Their numbers stand beyond those of objects.
inline const std::string kConstraints =
    R"(SELECT o.id AS object, o.full_name AS owner, o.name AS owner_name, o.schema_name, o.schema_id,
 j.key AS position, 1000000000 + o.id * 1000 + j.key AS id, json_extract(j.value, '$.kind') AS kind,
 json_extract(j.value, '$.name') AS name, j.value AS body FROM ()" +
    std::string(kObjects) + R"() o, json_each(CASE o.definition WHEN '' THEN '[]' ELSE o.definition END) j
 WHERE o.kind = 'table')";

/// The columns of keys and foreign keys, of kConstraints.
inline std::string KeyColumns() {
  return "SELECT k.id, k.object, k.owner_name, k.schema_name, k.kind, k.name, k.position, j.key + 1 AS ordinal,"
         " c.position AS column_id, c.name AS column_name FROM (" +
         kConstraints +
         ") k, json_each(k.body, '$.columns') j"
         " JOIN main.\"$columns\" c ON c.object = k.object AND c.name = j.value COLLATE NOCASE";
}

/// Foreign keys with the key that each refers to.
inline std::string References() {
  return "SELECT f.*, p.id AS referenced_id, coalesce(json_extract(f.body, '$.referenced'),"
         " (SELECT json_extract(k.body, '$.columns') FROM (" +
         kConstraints + ") k WHERE k.object = p.id AND k.kind = 'PK')) AS referenced FROM (" + kConstraints +
         ") f JOIN main.\"$objects\" p ON p.name = json_extract(f.body, '$.to') COLLATE NOCASE WHERE f.kind = 'F'";
}

/// The triggers with their tables and the words of their rules, see trigger_rule.h.
inline const std::string kTriggers =
    "SELECT o.id, o.name, p.id AS table_id, c.default_text AS words FROM (" + std::string(kObjects) + R"() o
 JOIN main."$columns" c ON c.object = o.id
 JOIN main."$objects" p ON p.name = c.name COLLATE NOCASE WHERE o.kind = 'trigger')";

inline std::string From(std::string_view head, std::string_view source, std::string_view tail = "") {
  return std::string(head) + " FROM (" + std::string(source) + ")" + std::string(tail);
}

/// A procedure of the server's and the batch that would create it.
struct ProcedureText {
  std::string_view name;
  std::string_view definition;
};
/// sp_help and its like.
std::vector<ProcedureText> HelpProcedures();
/// The views of INFORMATION_SCHEMA.
std::vector<SystemView> InformationSchema();

}  // namespace tessarlorn::tsql
