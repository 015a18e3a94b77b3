// The connection string of the ODBC driver: what is the component's own in it, and what goes to ODBC.
#pragma once

#include <string>
#include <string_view>

#include "drivers/common/server_batches.h"

namespace tessarlorn::odbc {

struct ConnectionOptions : TimeOuts {
  /// What SQLDriverConnect gets: the string without the keys of the component.
  std::string odbc_string;
  /// As the string has it, "" when it has none.
  std::string password;

  /// The text with the password made unreadable where it stands as a word of its own: a short one is part of others.
  [[nodiscard]] std::string WithoutPassword(std::string_view text) const;
};

/// Raises 0x80040E4D with a text that names the key at fault, when it is one that the driver knows, and no value.
ConnectionOptions ParseConnectionOptions(std::string_view text);

}  // namespace tessarlorn::odbc
