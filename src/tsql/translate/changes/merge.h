// MERGE.
#pragma once

#include "tsql/syntax/statement.h"
#include "tsql/translate/common/translation.h"

namespace tessarlorn::tsql {

/// @param identity_insert values of the identity column may be given
Compiled CompileMerge(Translation& translation, const MergeStatement& merge, bool identity_insert);

}  // namespace tessarlorn::tsql
