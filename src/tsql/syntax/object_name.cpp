#include "tsql/syntax/object_name.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/text/text.h"

namespace tessarlorn::tsql {

bool IsServerSchema(std::string_view schema) {
  constexpr std::array<std::string_view, 5> kSchemas = {"", "dbo", "guest", "information_schema", "sys"};
  return std::any_of(kSchemas.begin(), kSchemas.end(),
                     [&](std::string_view known) { return EqualsIgnoreCase(known, schema); });
}

ObjectName MakeObjectName(std::string qualifier, std::string name) {
  const std::size_t dot = qualifier.rfind('.');
  const std::string schema = dot == std::string::npos ? qualifier : qualifier.substr(dot + 1);
  const std::string database = dot == std::string::npos ? "" : qualifier.substr(0, dot);
  const bool here = database.empty() || EqualsIgnoreCase(database, "main");
  if (IsServerSchema(schema) || IsTemporaryName(name) || !here) return {std::move(qualifier), std::move(name)};
  return {database, schema + "." + name, schema};
}

}  // namespace tessarlorn::tsql
