// The connection string of the ADO driver: what is the component's own in it, and what goes to ADO.
#pragma once

#include <string>
#include <string_view>

#include "drivers/common/server_batches.h"

namespace tessarlorn::ado {

struct ConnectionOptions : TimeOuts {
  /// What Connection.Open gets: the string without the keys of the component.
  std::string ado_string;
};

/// Splits at ";" outside of quotes, " or ', which are doubled within. Takes out LoginTimeout and StatementTimeout.
/// Raises 0x80040E4D for a quote that is not closed, and for one of these keys with no number of seconds.
ConnectionOptions ParseConnectionOptions(std::string_view text);

}  // namespace tessarlorn::ado
