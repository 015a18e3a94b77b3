// The driver of database servers that are reached over ODBC.
#pragma once

#include <cstdint>

#include "tessarlorn/host.h"

namespace tessarlorn {

/// Whether Connection::Cancel() of the driver's connections ends a batch that runs. That takes a thread from the first
/// connection to the end of the process.
enum class OdbcCancelling : std::uint8_t { kWatched, kNone };

/// Adds the driver for strings that have the key `Driver` or `DSN`:
///
///     Driver=FreeTDS;Server=db1;Port=1433;TDS_Version=7.4;Database=erp;UID=shop;PWD={…};LoginTimeout=15
///
/// The string goes to ODBC but for two keys: `LoginTimeout`, how many seconds opening a connection may take (default
/// 15), and `StatementTimeout`, how many seconds a batch may be silent before it is ended with 0x80040E31 (default 0:
/// as long as it takes). A string that is wrong and a login that is refused raise 0x80040E4D with a text that names the
/// fault and never the password.
void AddOdbcDriver(Host& host, OdbcCancelling cancelling = OdbcCancelling::kWatched);

/// From now on connections go without logging out or freeing what ODBC has of them. For the end of a process, when the
/// libraries of ODBC drivers may be gone before the connections.
void AbandonOdbc() noexcept;

}  // namespace tessarlorn
