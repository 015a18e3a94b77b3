// Names of tables, views, procedures and other objects.
#pragma once

#include <string>
#include <string_view>

namespace tessarlorn::tsql {

/// Whether a table of that name is a temporary one (#t) or a table variable (@t).
inline bool IsTemporaryName(std::string_view name) { return !name.empty() && (name[0] == '#' || name[0] == '@'); }

/// A name of up to three parts as written: [database.][schema.]object, or @t for a table variable.
struct ObjectName {
  /// What stands before `name`: "dbo", "tempdb.." …, "" when none. It is kept for messages only.
  std::string qualifier;
  /// As the catalog knows it: "t", or "s.t" in a schema of the database's own.
  std::string name;
  /// That schema, "" for dbo and the server's.
  std::string schema = {};
  [[nodiscard]] bool temporary() const { return IsTemporaryName(name); }
  [[nodiscard]] bool variable() const { return !name.empty() && name[0] == '@'; }
  /// Without its schema.
  [[nodiscard]] std::string own_name() const { return schema.empty() ? name : name.substr(schema.size() + 1); }
};

/// Whether every database has a schema of that name, or a name leaves it out.
bool IsServerSchema(std::string_view schema);
/// The name behind a qualifier as it was written: "", "dbo", "main.s" …
ObjectName MakeObjectName(std::string qualifier, std::string name);

}  // namespace tessarlorn::tsql
