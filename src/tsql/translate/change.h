// UPDATE and DELETE, and what INSERT has in common with them.
#pragma once

#include <cstdint>
#include <string>

#include "tsql/syntax/statement.h"
#include "tsql/translate/common/translation.h"

namespace tessarlorn::tsql {

/// @param collect the rows are not changed but put into temp."$moved", whole and with the row's number in front
Compiled CompileUpdate(Translation& translation, const UpdateStatement& update, std::uint32_t line, bool collect);
Compiled CompileDelete(Translation& translation, const DeleteStatement& statement);

/// Finishes a change: adds what its OUTPUT clause gives back. @param rows "inserted" or "deleted"
Compiled FinishChange(Translation& translation, const std::vector<SelectItem>& output, const CatalogObject& table,
                      const char* rows, std::string sql);
/// Raises for a view, whose rows are not changed here.
void RequireTable(const CatalogObject& object);
/// The place of a column. Raises 207.
int RequireColumn(const CatalogObject& table, const std::string& name);
/// Raises 207.
[[noreturn]] void RaiseNoColumn(const std::string& name);
/// Raises 264.
[[noreturn]] void RaiseColumnTwice(const std::string& name);
/// The table as messages name it.
std::string ShownName(const CatalogObject& table);

}  // namespace tessarlorn::tsql
