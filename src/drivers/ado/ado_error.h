// What ADO reports becomes the component's error, as ADO has it.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "drivers/ado/ado_interfaces.h"
#include "tessarlorn/error.h"

namespace tessarlorn::ado {

inline constexpr const char* kSource = "TessarLorn ADO driver";

/// What ADO says of one call.
struct Report {
  /// Before the failure; their native numbers are those of the server.
  std::vector<Error> messages;
  /// The connection's first error that is no message, else what the thread's error object says, else the HRESULT alone.
  std::optional<Error> failure;
};
/// Takes what is said of a call just made, which answered `status` and is named `what`.
Report ReportOf(HRESULT status, IAdoConnection* connection, std::string_view what);
/// Raises what is behind a call that failed. `connection` may be nullptr for one that no provider is asked in.
void Check(HRESULT status, IAdoConnection* connection, std::string_view what);

/// Whether the error tells that the connection is gone.
bool IsConnectionLost(const Error& error);

}  // namespace tessarlorn::ado
