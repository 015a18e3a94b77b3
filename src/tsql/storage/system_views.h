// The catalog as queries see it: sys.objects, sys.tables, sys.columns, sys.indexes and their like; and the procedures
// by which clients list tables and columns.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tsql/storage/catalog.h"
#include "tsql/values/types.h"

namespace tessarlorn::tsql {

/// SQL for the name of the file's collation, see TextOrder in text_order.h.
constexpr std::string_view kCollationName =
    "(SELECT CASE user_version WHEN 2 THEN 'Chinese_PRC_Stroke_CI_AS' WHEN 3 THEN 'Chinese_Taiwan_Stroke_CI_AS'"
    " ELSE 'Chinese_PRC_CI_AS' END FROM pragma_user_version)";

struct SystemViewColumn {
  std::string name;
  SqlType type;
  bool nullable = true;
};

struct SystemView {
  std::string qualifier;  // "sys" or "information_schema"
  std::string name;
  std::string sql;
  std::vector<SystemViewColumn> columns;
};

/// The procedure of the engine that sp_rename calls.
constexpr std::string_view kRenameProcedure = "sp_$rename";

/// The procedure that every database has by that name, without regard to case, or nullptr.
CatalogObjectPtr FindSystemProcedure(std::string_view name);
/// The system view of that name without regard to case, or nullptr.
const SystemView* FindSystemView(std::string_view qualifier, std::string_view name);
/// The same for those that are defined in Transact-SQL. The old names, as sysobjects, need no schema.
CatalogObjectPtr FindCatalogView(std::string_view qualifier, std::string_view name);
/// The schema of a qualifier that may name this database, too: "sys" of "main.sys".
std::string_view SchemaHere(std::string_view qualifier);

}  // namespace tessarlorn::tsql
