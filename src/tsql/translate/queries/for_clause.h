// FOR XML and FOR JSON: the rows of a query as one text.
#pragma once

#include "tsql/translate/common/translation.h"

namespace tessarlorn::tsql {

/// @param query has a FOR clause
/// @param rows the query without it
/// @param name of the column, "" for the server's own
/// @return one row with one column; NULL when there are no rows
TranslatedQuery TranslateForClause(Translation& translation, const Query& query, TranslatedQuery rows,
                                   const std::string& name);

}  // namespace tessarlorn::tsql
