// OBJECT_ID, IDENT_CURRENT and COL_LENGTH: row functions that ask the session's catalog.
#pragma once

#include "tsql/storage/catalog.h"

namespace tessarlorn::tsql {

/// Registers them on a connection. `catalog` outlives it.
void RegisterCatalogFunctions(sqlite3* database, Catalog& catalog);

}  // namespace tessarlorn::tsql
