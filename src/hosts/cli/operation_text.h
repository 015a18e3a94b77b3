// Operations in words: the signature of one, and the page of all.
#pragma once

#include <string>

#include "tessarlorn/operations.h"

namespace tessarlorn::cli {

/// "GetEntryData(sDsn As String, dctParameters As Dictionary) As Recordset"
std::string SignatureText(const Operation& operation);

/// docs/operations.md: every operation with its arguments, keys and an example, by task.
std::string OperationsPage();

}  // namespace tessarlorn::cli
