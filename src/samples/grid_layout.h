// The layout of the sample installation's order grid.
#pragma once

#include "tessarlorn/connection.h"

namespace tessarlorn::cli {

/// Adds the fields of header and lines to ICClassTableInfo unless fields are there that no user defined. Raises what
/// the database raises.
void WriteGridLayout(Connection& connection);

}  // namespace tessarlorn::cli
