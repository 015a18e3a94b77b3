// The tables, views and indexes of the component as Transact-SQL, part of the program: the files of schema/.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tessarlorn/connection.h"

namespace tessarlorn {

struct SchemaFile {
  /// As "10_orders.sql".
  std::string_view name;
  std::string_view text;
};

/// In the order in which they are to be run.
std::span<const SchemaFile> SchemaFiles();

/// The batches of a script: what stands between lines that hold nothing but GO, in any case, wherever such a line
/// stands. Blank ones are left out. They refer to `script`.
std::vector<std::string_view> SplitBatches(std::string_view script);

/// Makes what is missing of the schema; what is there stays, with its rows. Raises what the database raises; whether
/// the batches before it then stay is up to the caller's transaction.
void ApplySchema(Connection& connection);

/// What is wrong with the order in which the login's session reads '2001-02-03 00:00:00', the form of the dates in the
/// operations' statements; "" when it is year, month, day.
std::string DateOrderWarning(Connection& connection);

}  // namespace tessarlorn
