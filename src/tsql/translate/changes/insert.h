// INSERT, in all its forms.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tsql/syntax/statement.h"
#include "tsql/translate/common/translation.h"

namespace tessarlorn::tsql {

/// @param identity_insert values of the identity column may be given
/// @param given the rows of INSERT … EXEC, in the place of the statement's own query
Compiled CompileInsert(Translation& translation, const InsertStatement& insert, bool identity_insert,
                       const TranslatedQuery* given);
/// The columns of a new row and their values: those that are given, and defaults. Raises as INSERT … VALUES.
/// @param values none for DEFAULT VALUES
std::vector<std::pair<std::string, std::string>> InsertedValues(Translation& translation, const CatalogObjectPtr& table,
                                                                const std::vector<std::string>& columns,
                                                                const std::vector<ExpressionPtr>& values,
                                                                bool identity_insert, Scope& scope);
/// INSERT of the query into a table made for it by SELECT … INTO.
Compiled CompileInsertInto(Translation& translation, const CatalogObject& table, const Query& query);

}  // namespace tessarlorn::tsql
