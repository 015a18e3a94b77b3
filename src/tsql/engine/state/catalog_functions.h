// OBJECT_ID, IDENT_CURRENT and COL_LENGTH, and identities that SQLite does not count: row functions that ask the
// session's catalog.
#pragma once

#include "tsql/functions/runtime.h"
#include "tsql/storage/catalog.h"

namespace tessarlorn::tsql {

/// Registers them on a connection. `catalog` outlives it.
void RegisterCatalogFunctions(sqlite3* database, Catalog& catalog, Runtime& runtime);

}  // namespace tessarlorn::tsql
