// INSERT, in all its forms.
#pragma once

#include "tsql/syntax/statement.h"
#include "tsql/translate/common/translation.h"

namespace tessarlorn::tsql {

/// @param identity_insert values of the identity column may be given
/// @param given the rows of INSERT … EXEC, in the place of the statement's own query
Compiled CompileInsert(Translation& translation, const InsertStatement& insert, bool identity_insert,
                       const TranslatedQuery* given);
/// INSERT of the query into a table made for it by SELECT … INTO.
Compiled CompileInsertInto(Translation& translation, const CatalogObject& table, const Query& query);

}  // namespace tessarlorn::tsql
