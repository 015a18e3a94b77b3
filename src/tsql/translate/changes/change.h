// UPDATE and DELETE.
#pragma once

#include <cstdint>

#include "tsql/syntax/statement.h"
#include "tsql/translate/common/translation.h"

namespace tessarlorn::tsql {

/// @param collect the rows are not changed but put into temp."$moved", whole and with the row's number in front
Compiled CompileUpdate(Translation& translation, const UpdateStatement& update, std::uint32_t line, bool collect);
Compiled CompileDelete(Translation& translation, const DeleteStatement& statement);

}  // namespace tessarlorn::tsql
