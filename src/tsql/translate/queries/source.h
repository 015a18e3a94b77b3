// FROM: tables, views, derived tables, common tables and joins, and the columns that they bring.
#pragma once

#include <string>
#include <vector>

#include "tsql/translate/common/translation.h"

namespace tessarlorn::tsql {

/// The FROM clause, "" for no sources. Their columns are added to the scope.
std::string TranslateFrom(Translation& translation, const std::vector<TableSourcePtr>& sources, Scope& scope);
/// One source alone, without FROM.
std::string TranslateSource(Translation& translation, const TableSource& source, Scope& scope);
/// A table or view of that name alone, without FROM.
std::string TranslateTable(Translation& translation, const NamedTable& table, Scope& scope);

}  // namespace tessarlorn::tsql
