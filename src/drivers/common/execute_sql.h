// A command with parameters as a server takes it: a call of sp_executesql, whatever its driver thinks of names.
#pragma once

#include <vector>

#include "tessarlorn/recordset.h"
#include "tessarlorn/sql_command.h"
#include "tessarlorn/variant.h"

namespace tessarlorn {

/// An argument of sp_executesql.
struct SqlArgument {
  /// What it is declared as. Types that go as texts have the size of their longest text; the batch itself has no name.
  Field field;
  /// In the field's type, or Null: bool, whole number of 64 bits, double, Decimal, DateTime, Bytes. Dates and times
  /// alone, and all other types, are texts.
  Variant value;
  bool is_output = false;
};

/// The arguments of sp_executesql for a command. A procedure becomes a batch that calls it, with a variable for each
/// argument and one more for what it returns.
class ExecuteSql {
 public:
  /// @param command outlives this. Raises 0x80040E14 for an unknown type, 13 and 6 for a value that does not fit its
  /// type.
  explicit ExecuteSql(SqlCommand& command);

  /// In their order: the batch, the declarations, the values. The driver sends them, and leaves outputs in them.
  [[nodiscard]] std::vector<SqlArgument>& arguments() noexcept { return arguments_; }
  /// Puts outputs and status into the command.
  void GiveBack();

 private:
  SqlCommand& command_;
  std::vector<SqlArgument> arguments_;
};

}  // namespace tessarlorn
