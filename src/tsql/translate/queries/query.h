// Queries: select lists, VALUES, set operators, common table expressions.
#pragma once

#include <string>
#include <vector>

#include "tsql/translate/common/translation.h"

namespace tessarlorn::tsql {

TranslatedQuery TranslateQuery(Translation& translation, const Query& query, const Scope* parent,
                               const SelectOptions& options);

/// The WITH clause, "" when there is none. Its tables are known to `translation` from here on.
std::string TranslateWith(Translation& translation, const std::vector<CommonTable>& tables, const Scope* parent);

// One body each: select.cpp, set_operation.cpp, query.cpp.
TranslatedQuery TranslateSelect(Translation& translation, const Query& query, const Select& select, const Scope* parent,
                                const SelectOptions& options);
TranslatedQuery TranslateSet(Translation& translation, const Query& query, const SetOperation& set, const Scope* parent,
                             const SelectOptions& options);
TranslatedQuery TranslateRows(Translation& translation, const ValueRows& values, const Scope* parent,
                              const SelectOptions& options);

/// Raises 10709 for rows of different widths.
void RequireSameWidth(const ValueRows& values);
/// Gives the columns other names. Raises 8158 and 8159 for another number of them.
void Rename(std::vector<ResultColumn>& columns, const std::vector<std::string>& names, const std::string& owner);
/// Raises 8155 and 8156 for columns without a name of their own, 4511 and 4506 in a definition, 1038 and 2705 in a new
/// table.
void CheckNames(const std::vector<ResultColumn>& columns, const std::string& owner,
                QueryOwner kind = QueryOwner::kDerivedTable);
/// Whether values of both types are kept alike in SQLite.
bool StoresAlike(const SqlType& a, const SqlType& b);

}  // namespace tessarlorn::tsql
