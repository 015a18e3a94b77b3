// What `tessarlorn serve --demo` shows to a newcomer.
#pragma once

#include <string>

#include "hosts/cli/commands.h"

namespace tessarlorn::cli {

/// Fills a database that has no orders with sample orders, and gives its user "demo" a new password: answers that.
/// Without a connection string the context gets that of the file demo.db. Raises UsageError for a database that has
/// orders and no such user, an administrator with the id 16394: it is not there to play with.
std::string PrepareDemo(CommandContext& context);

}  // namespace tessarlorn::cli
