#include "hosts/objects/recordset/recordset_pages.h"

#include <string>

#include "hosts/objects/recordset/recordset_errors.h"

namespace tessarlorn {

std::int32_t PlaceWithoutRow(const RecordsetView& view) {
  if (view.count() == 0) return kUnknownPosition;
  if (view.bof()) return kPositionAtBof;
  return view.eof() ? kPositionAtEof : 0;
}

void RecordsetPages::set_size(std::int32_t size) {
  if (size < 1) RaiseWrongArguments("PageSize " + std::to_string(size));
  size_ = size;
}

std::int32_t RecordsetPages::Count(const RecordsetView& view) const {
  const auto rows = static_cast<std::int64_t>(view.count());
  return static_cast<std::int32_t>((rows + size_ - 1) / size_);
}

std::int32_t RecordsetPages::Current(const RecordsetView& view) const {
  if (const std::int32_t place = PlaceWithoutRow(view); place != 0) return place;
  return static_cast<std::int32_t>(static_cast<std::int64_t>(view.position() - 1) / size_) + 1;
}

void RecordsetPages::GoTo(std::int32_t page, RecordsetView& view) const {
  if (page < 1 || page > Count(view)) RaiseWrongArguments("AbsolutePage " + std::to_string(page));
  view.set_position(static_cast<std::size_t>(page - 1) * static_cast<std::size_t>(size_) + 1);
}

}  // namespace tessarlorn
