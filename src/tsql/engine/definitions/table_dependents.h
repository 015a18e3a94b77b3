// What depends on the columns and keys of a table.
#pragma once

#include <string>
#include <vector>

#include "tsql/engine/state/session_database.h"
#include "tsql/storage/constraint_text.h"

namespace tessarlorn::tsql {

/// Whether a condition or value, as it was written, has the column's name in it.
bool NamesColumn(SessionDatabase& database, const std::string& text, const std::string& column);

/// The indexes, but for those of constraints, that have the column in any place.
std::vector<std::string> IndexesOn(SessionDatabase& database, const CatalogObject& table, const std::string& column);

/// A foreign key that refers to a table.
struct IncomingReference {
  std::string table;
  std::string name;
  std::vector<std::string> referenced;
};

std::vector<IncomingReference> ReferencesTo(SessionDatabase& database, const CatalogObject& table);

/// Whether a row of a table has a foreign key that no row of the other table has.
/// @param referenced the other table's columns
/// @param former what tells keys of earlier rows: only foreign keys among them count. "" for all
bool HasBrokenReference(SessionDatabase& database, const CatalogObject& table, const Constraint& key,
                        const CatalogObject& other, const std::vector<std::string>& referenced,
                        const std::string& former = "");
/// Raises 1505 where rows have the same key. @param condition of the rows that count, in SQLite's words, or ""
void RequireDistinct(SessionDatabase& database, const CatalogObject& table, const std::vector<std::string>& columns,
                     const std::string& index, const std::string& condition = "");
/// The values of a key as messages show them.
std::string KeyText(const CatalogObject& table, const std::vector<std::string>& columns,
                    const std::vector<Datum>& values);
/// 547 of a constraint. @param kind "CHECK", "FOREIGN KEY" or "REFERENCE"
/// @param columns those of the table that it is about; one alone is named
SqlError Conflict(std::string_view verb, std::string_view kind, const std::string& constraint,
                  const CatalogObject& table, const std::vector<std::string>& columns);

/// The name of a view or function WITH SCHEMABINDING whose text names the object, in two parts, and the column where
/// one is given; "" for none.
std::string BoundTo(SessionDatabase& database, const CatalogObject& object, const std::string& column = "");

/// Whether a constraint or an object of the schema has the name. @param schema "" for dbo
bool IsNameTaken(SessionDatabase& database, const std::string& schema, const std::string& name);

/// Whether two lists have the same names, in whatever order.
bool AreSameColumns(const std::vector<std::string>& some, const std::vector<std::string>& others);

}  // namespace tessarlorn::tsql
