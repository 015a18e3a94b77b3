// The triggers that run.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tsql/storage/catalog.h"
#include "tsql/syntax/statement.h"

namespace tessarlorn::tsql {

/// What a statement does to rows.
struct RowChange {
  RowEvent event = RowEvent::kInsert;
  std::vector<std::string> columns;  // of kUpdate those that it sets
};

struct TriggerState {
  struct Firing {
    CatalogObjectPtr trigger;
    CatalogObjectPtr table;
    const RowChange* change;
  };
  std::vector<Firing> firing;  // innermost last
};

}  // namespace tessarlorn::tsql
