// The driver of databases that Windows reaches through ADO.
#pragma once

#include "tessarlorn/host.h"

namespace tessarlorn {

/// Adds the driver for strings that have the key `Provider`:
///
///     Provider=SQLOLEDB;Data Source=db1;Initial Catalog=erp;User ID=shop;Password="…"
///
/// The string goes to ADO but for two keys: `LoginTimeout`, how many seconds opening a connection may take (default
/// 15), and `StatementTimeout`, how many seconds a batch may take before it is ended with 0x80040E31 (default 0: as
/// long as it takes). Errors are ADO's own: number, Source and
/// description as its Errors collection has them.
void AddAdoDriver(Host& host);

}  // namespace tessarlorn
