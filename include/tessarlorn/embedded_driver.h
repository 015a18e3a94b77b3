// The driver of the embedded database: Transact-SQL on SQLite, in this process.
#pragma once

#include "tessarlorn/host.h"

namespace tessarlorn {

/// Adds the driver for strings that have the key `Embedded`:
///
///     Embedded=orders.db;Timeout=30;Synchronous=Full
///
/// `Embedded` is a file, made when it is not there; `:memory:` or `:memory:NAME` a database of this process that lives
/// as long as a connection to it does (the idle ones of a host included). `Timeout` is how many seconds a
/// writer waits for another one (0 to 3600, default 30). `Synchronous=Normal` gives up that a commit outlives a power
/// cut, but never the file's soundness; default `Full`. `Cache` is how many megabytes of the file a connection
/// keeps (default 64), `MaxMemory` how many a batch may take (default 1024). An unknown key or value, a folder that is
/// not there and a file that is no database raise 0x80040E4D or 0x80004005 with a text that names it.
void AddEmbeddedDriver(Host& host);

}  // namespace tessarlorn
