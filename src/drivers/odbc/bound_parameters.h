// The parameters of a command as ODBC binds them, and the text that calls for them.
#pragma once

#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "drivers/common/execute_sql.h"
#include "drivers/odbc/odbc_handle.h"
#include "tessarlorn/sql_command.h"

namespace tessarlorn::odbc {

/// Bound to a statement while it lives. All values travel beside the text.
class BoundParameters {
 public:
  /// @param command outlives this. Raises 0x80040E14 for an unknown type, 13 and 6 for a value that does not fit its
  /// type.
  BoundParameters(SQLHSTMT statement, SqlCommand& command);
  BoundParameters(const BoundParameters&) = delete;
  BoundParameters& operator=(const BoundParameters&) = delete;
  ~BoundParameters();

  /// Has ODBC send texts as they are: Transact-SQL alone, in which braces and question marks are no escapes of ODBC.
  static void LeaveTextsAlone(SQLHSTMT statement) noexcept;

  /// What is to be executed: the batch itself, or with parameters "{call sp_executesql(?,…)}".
  [[nodiscard]] const std::string& text() const noexcept { return text_; }
  /// Puts outputs and status into the command, once the batch has run to its end. Raises 0x80040E57 for a value that is
  /// longer than its type says.
  void TakeOutputs();

 private:
  /// Where a value waits for the server, or comes back.
  struct Slot {
    SqlArgument* argument = nullptr;
    SQLSMALLINT c_type = SQL_C_WCHAR;
    SQLSMALLINT sql_type = SQL_WVARCHAR;
    SQLULEN size = 0;
    SQLSMALLINT places = 0;
    std::vector<char> buffer;
    SQLLEN length = SQL_NULL_DATA;
  };

  void Add(SqlArgument& argument);
  static void ChooseTypes(Slot& slot);

  SQLHSTMT statement_;
  std::string text_;
  std::optional<ExecuteSql> call_;
  // Their addresses are bound.
  std::deque<Slot> slots_;
};

}  // namespace tessarlorn::odbc
