#include "tsql/storage/trigger_rule.h"

#include <algorithm>

#include "platform/text/text.h"

namespace tessarlorn::tsql {
namespace {

constexpr std::string_view kEventWords[] = {"insert", "update", "delete"};
constexpr std::string_view kOffWord = "off";

}  // namespace

bool TriggerRule::Answers(RowEvent event) const {
  return on && std::find(events.begin(), events.end(), event) != events.end();
}

Column ToColumn(const TriggerRule& rule) {
  std::string words;
  const auto add = [&](std::string_view word) { words.append(words.empty() ? "" : " ").append(word); };
  for (const RowEvent event : rule.events) add(kEventWords[static_cast<std::size_t>(event)]);
  if (!rule.on) add(kOffWord);
  return {rule.table, IntType(), true, false, words};
}

TriggerRule RuleOf(const CatalogObject& trigger) {
  const Column& column = trigger.columns[0];
  TriggerRule rule{column.name, {}, true};
  for (const std::string_view word : Split(column.default_text, ' ')) {
    if (word == kOffWord) rule.on = false;
    for (std::size_t i = 0; i < std::size(kEventWords); ++i) {
      if (word == kEventWords[i]) rule.events.push_back(static_cast<RowEvent>(i));
    }
  }
  return rule;
}

}  // namespace tessarlorn::tsql
