// The driver of database servers that are reached over ODBC.
#pragma once

#include "platform/connection.h"

namespace tessarlorn {

/// Registers the driver for strings that begin with `Driver=` or `DSN=`:
///
///     Driver=FreeTDS;Server=db1;Port=1433;TDS_Version=7.4;Database=erp;UID=shop;PWD={…};LoginTimeout=15
///
/// The string goes to ODBC but for two keys: `LoginTimeout`, how many seconds opening a connection may take (default
/// 15), and `StatementTimeout`, how many seconds a batch may be silent before it is ended with 0x80040E31 (default 0:
/// as long as it takes). A string that is wrong and a login that is refused raise 0x80040E4D with a text that names the
/// fault and never the password.
void RegisterOdbcDriver();

}  // namespace tessarlorn
