// What the catalog keeps of a table's constraints: for the views and procedures that list them, and for making the
// table once more.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tsql/syntax/statement.h"

namespace tessarlorn::tsql {

/// A constraint, or what is noted of an index or an identity.
struct Constraint {
  /// PK, UQ, F, C, D as the server has them; I an identity, IX an index; "" what is gone, whose place stays.
  std::string kind;
  std::string name;
  std::vector<std::string> columns;  // of IX those of INCLUDE
  /// Of C and D as it was written, in parentheses; of IX its condition, or "".
  std::string text = {};
  std::string to = {};                       // of F: the other table
  std::vector<std::string> referenced = {};  // of F: none for the primary key
  std::int64_t seed = 1;                     // of I
  std::int64_t increment = 0;                // of I: 0 where SQLite counts by itself
  std::string index = {};                    // of IX: its name

  /// Whether the column is one of its columns.
  [[nodiscard]] bool HasColumn(std::string_view column) const;
  [[nodiscard]] bool is_key() const { return kind == "PK" || kind == "UQ"; }
};

using Constraints = std::vector<Constraint>;

/// The constraints of a definition: "" or a JSON array of objects.
Constraints ReadConstraints(const std::string& definition);
std::string WriteConstraints(const Constraints& constraints);
/// The first of that kind, or nullptr.
const Constraint* FindKind(const Constraints& constraints, std::string_view kind);

/// Adds the constraints of a CREATE TABLE or an ALTER TABLE … ADD. What has no name gets one that the table has not
/// yet.
void AddConstraints(Constraints& constraints, const std::string& table, const TableElements& elements);

/// What the identity of a definition counts by, 0 where SQLite counts by itself: by ones from a number above 0.
std::int64_t IncrementOf(const ColumnDefinition& column);

/// Whether a key of that name is among them, without regard to case.
bool HasKey(const std::string& definition, const std::string& name);

}  // namespace tessarlorn::tsql
