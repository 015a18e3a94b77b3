// When a trigger of the catalog fires: of which table, for which changes, and whether it is switched on.
#pragma once

#include <string>
#include <vector>

#include "tsql/storage/catalog.h"
#include "tsql/syntax/statement.h"

namespace tessarlorn::tsql {

struct TriggerRule {
  std::string table;
  std::vector<RowEvent> events;
  bool on = true;

  [[nodiscard]] bool Answers(RowEvent event) const;
};

/// The column in which the catalog keeps it: the table's name, and words like "insert update off".
Column ToColumn(const TriggerRule& rule);
/// @param trigger an object of CatalogKind::kTrigger
TriggerRule RuleOf(const CatalogObject& trigger);

}  // namespace tessarlorn::tsql
