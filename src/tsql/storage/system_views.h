// The catalog as queries see it: sys.objects, sys.tables, sys.columns, sys.indexes and their like; and the procedures
// by which clients list tables and columns.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tsql/storage/catalog.h"
#include "tsql/values/types.h"

namespace tessarlorn::tsql {

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

/// The procedure that every database has by that name, without regard to case, or nullptr.
CatalogObjectPtr FindSystemProcedure(std::string_view name);
/// The system view of that name without regard to case, or nullptr.
const SystemView* FindSystemView(std::string_view qualifier, std::string_view name);

}  // namespace tessarlorn::tsql
