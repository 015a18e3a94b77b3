// Lists of order keys ("12,15,20") and the long statement lists that are made from them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "frame/text_builder.h"
#include "tessarlorn/connection.h"

namespace tessarlorn {

/// The elements between commas as they stand; none for the empty text.
std::vector<std::string_view> SplitKeys(std::string_view keys);

/// An element as a number. Raises 13 for a text that is none, 6 for one beyond 32 bits.
std::int32_t KeyNumber(std::string_view key);

/// Blocks that go to the database in one batch.
inline constexpr std::size_t kBlocksPerBatch = 150;

/// Calls `write(TextBuilder&, item)` for each item and executes the text after every 150 of them and at the end.
/// Batches that ran before one fails stay applied.
/// @param head goes in front of the first batch; without items it is executed alone
template <typename Items, typename Write>
void ExecuteInBatches(Connection& connection, const Items& items, const Write& write, std::string_view head = {}) {
  TextBuilder text;
  text.Append(head);
  std::size_t count = 0;
  for (const auto& item : items) {
    write(text, item);
    if (++count == kBlocksPerBatch) {
      connection.Execute(text.GetText());
      text.Clear();
      count = 0;
    }
  }
  if (!text.empty()) connection.Execute(text.GetText());
}

}  // namespace tessarlorn
