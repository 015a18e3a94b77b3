// Table variables: temporary tables of a batch or procedure body. They end with it, and no rollback changes them.
#pragma once

#include <string>
#include <vector>

#include "tsql/engine/state/session_database.h"

namespace tessarlorn::tsql {

/// The table variables that are declared while it lives; those of the caller are not seen meanwhile.
class TableVariableScope {
 public:
  explicit TableVariableScope(SessionDatabase& database) : database_(database) { database_.catalog().EnterScope(); }
  TableVariableScope(const TableVariableScope&) = delete;
  TableVariableScope& operator=(const TableVariableScope&) = delete;
  ~TableVariableScope();

 private:
  SessionDatabase& database_;
};

/// What the table variables hold before a rollback, as SQLite takes back what was done to them.
class TableVariableCopies {
 public:
  /// Copies them. Where that fails, for want of memory, they are empty or gone behind the rollback.
  explicit TableVariableCopies(SessionDatabase& database) noexcept;
  void PutBack() noexcept;

 private:
  struct Copy {
    std::string table;                     // as SQLite has it
    std::vector<std::string> definitions;  // of the table and its indexes
    std::vector<std::vector<Datum>> rows;
    std::string last_identity;
    std::string columns;  // but for the computed ones
  };
  Copy CopyOf(const CatalogObject& table);
  void PutBack(const Copy& copy);

  SessionDatabase& database_;
  std::vector<Copy> copies_;
};

}  // namespace tessarlorn::tsql
