#include "hosts/calls/dry_run.h"

#include <algorithm>
#include <memory>

#include "platform/text/text.h"

namespace tessarlorn {

void DryRun::Changed(std::string_view table, std::int64_t rows) {
  const auto found = std::find_if(changes_.begin(), changes_.end(),
                                  [table](const auto& change) { return EqualsIgnoreCase(change.first, table); });
  if (found == changes_.end()) {
    changes_.emplace_back(table, rows);
  } else {
    found->second += rows;
  }
}

Dictionary DryRun::Report() const {
  auto statements = std::make_shared<Vector>();
  for (const std::string& statement : statements_) statements->Add(statement);
  auto changes = std::make_shared<Vector>();
  for (const auto& [table, rows] : changes_) {
    changes->Add(std::make_shared<Dictionary>(Dictionary{{"table", table}, {"rows", Variant(rows)}}));
  }
  return {{"statements", statements}, {"changes", changes}};
}

}  // namespace tessarlorn
