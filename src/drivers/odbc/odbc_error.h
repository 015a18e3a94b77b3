// What ODBC reports becomes the component's error: its number, the server's own words, native number and SQLSTATE.
#pragma once

#include <vector>

#include "drivers/odbc/odbc_handle.h"
#include "tessarlorn/error.h"

namespace tessarlorn::odbc {

inline constexpr const char* kSource = "TessarLorn ODBC driver";

/// A message or warning, not an error.
bool IsInformation(const Diagnostic& record);
/// The connection is gone, or the server says that it ends it.
bool IsConnectionLost(const Diagnostic& record);
/// Whether batches on the connection still answer behind this error: the server's own, as opposed to a cancelled,
/// timed-out or lost one.
bool GoesOn(const Diagnostic& record);

/// The record that names the cause: the first error with a number of its own, else the first error, else the first
/// record. An empty one when there are none.
Diagnostic Cause(const std::vector<Diagnostic>& records);
/// The same for a login: what the server said besides "Login failed" comes first.
Diagnostic LoginCause(const std::vector<Diagnostic>& records);
/// The cause of an error that lost the connection, in clear words where the ODBC driver has none.
Diagnostic OfLostConnection(Diagnostic cause);

/// The error of a statement.
Error ToError(const Diagnostic& cause);
/// The error of opening a connection: a time-out, else a refused login.
Error ToLoginError(const Diagnostic& cause);

[[noreturn]] void RaiseCancelled();

}  // namespace tessarlorn::odbc
