// What the catalog keeps of a table's constraints, for the views and procedures that list them.
#pragma once

#include <string>
#include <vector>

#include "tsql/syntax/statement.h"

namespace tessarlorn::tsql {

/// Adds the constraints of a CREATE TABLE, or of an ALTER TABLE that adds columns, to what the catalog has of the
/// table: "" or a JSON array of objects with kind (PK, UQ, F, C, D as the server has them, I for an identity), name,
/// columns, and text, to and referenced, or seed. What has no name gets one that the table has not yet.
void AddConstraints(std::string& definition, const std::string& table, const TableElements& elements);

/// Adds what the table has of an index: an object of kind IX with index, its name, columns, those of INCLUDE, and text,
/// its condition or "".
void AddIndexNote(std::string& definition, const std::string& index, const std::vector<std::string>& included,
                  const std::string& condition);

/// Whether a key of that name is among them, without regard to case.
bool HasKey(const std::string& definition, const std::string& name);

}  // namespace tessarlorn::tsql
