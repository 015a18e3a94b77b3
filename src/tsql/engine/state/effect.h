// What statements do to the database.
#pragma once

#include <cstdint>

#include "tsql/syntax/statement.h"

namespace tessarlorn::tsql {

/// What a statement does to the database by itself, without the statements in its body.
enum class Effect : std::uint8_t { kNone, kChangesRows, kDefines };
/// SELECT … INTO defines.
Effect EffectOf(const Statement& statement);
/// Whether it changes rows of a table variable, which belong to no transaction.
bool IsOnTableVariable(const Statement& statement);
/// Whether all tables that it changes or defines are temporary by their names.
bool IsOnTemporaryTables(const Statement& statement);

}  // namespace tessarlorn::tsql
