// The shown rows of a recordset in pages.
#pragma once

#include <cstdint>

#include "hosts/objects/recordset/recordset_view.h"

namespace tessarlorn {

/// AbsolutePosition and AbsolutePage where no row is current.
enum : std::int32_t { kUnknownPosition = -1, kPositionAtBof = -2, kPositionAtEof = -3 };
/// One of these, or 0 when a row is current.
std::int32_t PlaceWithoutRow(const RecordsetView& view);

class RecordsetPages {
 public:
  [[nodiscard]] std::int32_t size() const noexcept { return size_; }
  /// Raises 3001 for a size below 1.
  void set_size(std::int32_t size);
  [[nodiscard]] std::int32_t Count(const RecordsetView& view) const;
  /// The page of the current row, from 1, or PlaceWithoutRow().
  [[nodiscard]] std::int32_t Current(const RecordsetView& view) const;
  /// Goes to the first row of a page. Raises 3001 when there is no such page.
  void GoTo(std::int32_t page, RecordsetView& view) const;

 private:
  std::int32_t size_ = 10;
};

}  // namespace tessarlorn
