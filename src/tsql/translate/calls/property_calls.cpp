// OBJECTPROPERTY and its like: facts of the server, the database, and its objects, columns and indexes, by their names.
#include <algorithm>
#include <array>
#include <span>
#include <string>

#include "tsql/storage/system_views.h"
#include "tsql/translate/calls/call_topics.h"

namespace tessarlorn::tsql {
namespace {

/// The name in lower case, and the SQL of its value.
struct Property {
  std::string_view name;
  std::string_view value;
};

constexpr std::array kServerProperties = {
    Property{"collation", kCollationName},
    Property{"edition", "'Embedded'"},
    Property{"engineedition", "'4'"},
    Property{"isclustered", "'0'"},
    Property{"isfulltextinstalled", "'0'"},
    Property{"ishadrenabled", "'0'"},
    Property{"isintegratedsecurityonly", "'0'"},
    Property{"issingleuser", "'0'"},
    Property{"machinename", "'localhost'"},
    Property{"productlevel", "'RTM'"},
    Property{"productmajorversion", "'11'"},
    Property{"productminorversion", "'0'"},
    Property{"productversion", "'11.0.7001.0'"},
    Property{"servername", "'localhost'"},
};

constexpr std::array kDatabaseProperties = {
    Property{"collation", kCollationName},  Property{"isautoclose", "'0'"}, Property{"isautoshrink", "'0'"},
    Property{"isfulltextenabled", "'0'"},   Property{"isinstandby", "'0'"}, Property{"recovery", "'FULL'"},
    Property{"sqlsortorder", "'0'"},        Property{"status", "'ONLINE'"}, Property{"updateability", "'READ_WRITE'"},
    Property{"useraccess", "'MULTI_USER'"}, Property{"version", "'706'"},
};

// Of a row o of sys.objects. "TableHas…" counts the objects and columns of the table, see ObjectPropertySql.
constexpr std::array kObjectProperties = {
    Property{"ischeckcnst", "type = 'C '"},
    Property{"isconstraint", "type IN ('PK', 'UQ', 'F ', 'C ', 'D ')"},
    Property{"isdefaultcnst", "type = 'D '"},
    Property{"isencrypted", "CASE WHEN type IN ('P ', 'V ', 'FN', 'IF', 'TF') THEN 0 END"},
    Property{"execisansinullson", "CASE WHEN type IN ('P ', 'V ', 'FN', 'IF', 'TF') THEN 1 END"},
    Property{"execisquotedidenton", "CASE WHEN type IN ('P ', 'V ', 'FN', 'IF', 'TF') THEN 1 END"},
    Property{"isforeignkey", "type = 'F '"},
    Property{"isinlinefunction", "type = 'IF'"},
    Property{"ismsshipped", "0"},
    Property{"isprimarykey", "type = 'PK'"},
    Property{"isprocedure", "type = 'P '"},
    Property{"isscalarfunction", "type = 'FN'"},
    Property{"isschemabound", "CASE WHEN type IN ('P ', 'V ', 'FN', 'IF', 'TF') THEN 0 END"},
    Property{"issystemtable", "0"},
    Property{"istable", "type = 'U '"},
    Property{"istablefunction", "type IN ('IF', 'TF')"},
    Property{"istrigger", "type = 'TR'"},
    Property{"isuniquecnst", "type = 'UQ'"},
    Property{"isusertable", "type = 'U '"},
    Property{"isview", "type = 'V '"},
    Property{"ownerid", "1"},
    Property{"schemaid", "schema_id"},
};

constexpr std::array kConstraintProperties = {
    Property{"tablehascheckcnst", "C "},  Property{"tablehasdefaultcnst", "D "}, Property{"tablehasforeignkey", "F "},
    Property{"tablehasprimarykey", "PK"}, Property{"tablehasuniquecnst", "UQ"},
};

constexpr std::array kColumnProperties = {
    Property{"allowsnull", "is_nullable"},
    Property{"charmaxlen",
             "CASE WHEN system_type_id IN (231, 239) AND max_length > 0 THEN max_length / 2"
             " WHEN system_type_id IN (165, 167, 173, 175, 231) THEN max_length END"},
    Property{"columnid", "column_id"},
    Property{"iscomputed", "is_computed"},
    Property{"iscursortype", "0"},
    Property{"isdeterministic", "NULL"},
    Property{"isfulltextindexed", "0"},
    Property{"isidentity", "is_identity"},
    Property{"isidnotforrepl", "0"},
    Property{"isindexable", "max_length <> -1"},
    Property{"isprimarykey", "NULL"},
    Property{"isrowguidcol", "0"},
    Property{"issparse", "0"},
    Property{"precision",
             "CASE WHEN precision > 0 THEN precision WHEN system_type_id IN (231, 239) AND max_length > 0"
             " THEN max_length / 2 ELSE max_length END"},
    Property{"scale", "CASE WHEN precision > 0 THEN scale END"},
    Property{"usesansitrim", "CASE WHEN system_type_id IN (165, 167, 173, 175, 231, 239) THEN 1 END"},
};

constexpr std::array kIndexProperties = {
    Property{"indexdepth", "NULL"},        Property{"indexfillfactor", "0"},     Property{"indexid", "index_id"},
    Property{"isautostatistics", "0"},     Property{"isclustered", "type = 1"},  Property{"isdisabled", "0"},
    Property{"isfulltextkey", "0"},        Property{"ishypothetical", "0"},      Property{"ispadindex", "0"},
    Property{"ispagelockdisallowed", "0"}, Property{"isrowlockdisallowed", "0"}, Property{"isstatistics", "0"},
    Property{"isunique", "is_unique"},
};

const std::string& SqlOf(std::string_view view) { return FindSystemView("sys", view)->sql; }

/// The WHENs of a CASE over the name of a property.
std::string Branches(std::span<const Property> properties) {
  std::string sql;
  for (const Property& property : properties) {
    sql.append(" WHEN '").append(property.name).append("' THEN ").append(property.value);
  }
  return sql;
}

/// The value of a property that the call's last argument names, of the row of a view.
std::string OfRow(const Call& call, const std::string& branches, const std::string& view,
                  const std::string& condition) {
  return "(SELECT CASE lower(" + call.Text(call.count() - 1) + ")" + branches + " END FROM (" + view + ") o WHERE " +
         condition + ")";
}

std::string ObjectPropertySql(const Call& call) {
  std::string branches = Branches(kObjectProperties);
  const auto table_has = [&](std::string_view name, const std::string& view, const std::string& condition) {
    branches.append(" WHEN '").append(name).append("' THEN CASE type WHEN 'U ' THEN EXISTS (SELECT 1 FROM (");
    branches.append(view).append(") p WHERE ").append(condition).append(") END");
  };
  for (const Property& property : kConstraintProperties) {
    table_has(property.name, SqlOf("objects"),
              "p.parent_object_id = o.object_id AND p.type = '" + std::string(property.value) + "'");
  }
  const std::string of_table = "p.object_id = o.object_id AND ";
  table_has("tablehasidentity", SqlOf("columns"), of_table + "p.is_identity");
  table_has("tablehasindex", SqlOf("indexes"), of_table + "p.index_id > 0");
  table_has("tablehasclustindex", SqlOf("indexes"), of_table + "p.type = 1");
  return OfRow(call, branches, SqlOf("objects"), "o.object_id = " + call.Int(0));
}

Typed ValueOf(const Call& call, std::span<const Property> properties) {
  return {"CASE lower(" + call.Text(call.count() - 1) + ")" + Branches(properties) + " END", NVarCharType(128), true,
          -1};
}

}  // namespace

Typed PropertyCall(const Call& call) {
  const std::string& name = call.name();
  if (name == "serverproperty") {
    call.Require(1);
    return ValueOf(call, kServerProperties);
  }
  if (name == "databasepropertyex") {
    call.Require(2);
    return ValueOf(call, kDatabaseProperties);
  }
  if (name == "objectproperty" || name == "objectpropertyex") {
    call.Require(2);
    return {ObjectPropertySql(call), IntType(), true, -1};
  }
  const bool of_column = name == "columnproperty";
  if (!of_column && name != "indexproperty") return {};
  call.Require(3);
  const std::string condition = "o.object_id = " + call.Int(0) + " AND o.name = " + call.Text(1) + " COLLATE TSQL";
  return {OfRow(call, of_column ? Branches(kColumnProperties) : Branches(kIndexProperties),
                SqlOf(of_column ? "columns" : "indexes"), condition),
          IntType(), true, -1};
}

}  // namespace tessarlorn::tsql
