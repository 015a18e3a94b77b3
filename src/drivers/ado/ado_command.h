// A command with parameters as ADO takes it: its command object, which calls sp_executesql.
#pragma once

#include <string_view>
#include <vector>

#include "com_base/pointers.h"
#include "drivers/ado/ado_error.h"
#include "drivers/ado/ado_interfaces.h"
#include "drivers/common/execute_sql.h"
#include "tessarlorn/sql_command.h"

namespace tessarlorn::ado {

class AdoCommand {
 public:
  /// @param connection, command outlive this
  /// @param timeout seconds, 0 = no limit; that of the connection does not count for commands
  /// Raises what ExecuteSql and ADO raise.
  AdoCommand(IAdoConnection* connection, SqlCommand& command, int timeout);

  /// Answers as Connection.Execute does.
  HRESULT Execute(IAdoRecordset** rows) { return command_->Execute(nullptr, nullptr, kOptionUnspecified, rows); }
  /// Puts outputs and status into the command. ADO has them once the last result was taken.
  void TakeOutputs();

 private:
  void Add(const SqlArgument& argument, IAdoParameters& parameters);
  void CheckCall(HRESULT status, std::string_view what) { Check(status, connection_, what); }

  IAdoConnection* connection_;
  com::Pointer<IAdoCommand> command_;
  ExecuteSql call_;
  /// One for each argument.
  std::vector<com::Pointer<IAdoParameter>> parameters_;
};

}  // namespace tessarlorn::ado
