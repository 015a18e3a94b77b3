// A command with parameters as a server takes it: a call of sp_executesql, whatever its driver thinks of names.
#pragma once

#include <string>
#include <vector>

#include "platform/sql_command.h"

namespace tessarlorn {

/// The arguments of sp_executesql for a command. A procedure becomes a batch that calls it, with a variable for each
/// argument and one more for what it returns.
class ExecuteSql {
 public:
  /// @param command outlives this
  explicit ExecuteSql(SqlCommand& command);

  /// In their order: the batch, the declarations, the values. The driver sends them, and leaves outputs in them.
  [[nodiscard]] std::vector<SqlParameter>& arguments() noexcept { return arguments_; }
  /// Puts outputs and status into the command.
  void GiveBack();

 private:
  SqlCommand& command_;
  std::vector<SqlParameter> arguments_;
};

}  // namespace tessarlorn
