#include "tessarlorn/recordset.h"

#include <algorithm>
#include <utility>

#include "platform/packed_rows.h"
#include "platform/recordset_builder.h"
#include "platform/text/text.h"
#include "tessarlorn/error.h"

namespace tessarlorn {

Recordset::Recordset(std::vector<Field> fields) : fields_(std::move(fields)), cells_(std::make_unique<PackedRows>()) {}

Recordset::Recordset(std::vector<Field> fields, std::shared_ptr<RowSource> source) : Recordset(std::move(fields)) {
  source_ = std::move(source);
  unread_ = true;
}

Recordset::~Recordset() = default;

std::size_t Recordset::RecordCount() const {
  if (unread_) Read();
  return cells_->count();
}

void Recordset::MoveNext() {
  if (eof()) Raise(error_number::kNoCurrentRecord, "No current record");
  ++position_;
}

void Recordset::MoveTo(std::size_t position) {
  if (position > RecordCount()) Raise(error_number::kNoCurrentRecord, "No current record");
  position_ = position;
}

std::optional<std::size_t> Recordset::FindField(std::string_view name) const {
  const auto found = std::find_if(fields_.begin(), fields_.end(),
                                  [name](const Field& field) { return EqualsIgnoreCase(field.name, name); });
  if (found == fields_.end()) return std::nullopt;
  return static_cast<std::size_t>(found - fields_.begin());
}

void Recordset::Detach() {
  if (source_ != nullptr) source_->Detach();
  attached_ = false;
}

void Recordset::Read() const {
  unread_ = false;
  // The rows that are asked for were there all the time, but elsewhere.
  auto& rows = const_cast<Recordset&>(*this);
  const std::size_t position = position_;
  RecordsetBuilder builder(rows);
  try {
    source_->Read(builder);
    builder.Finish();
  } catch (...) {
    builder.Clear();
    unread_ = true;
    throw;
  }
  rows.position_ = position;
}

void Recordset::Locate() const {
  cell_offsets_.resize(fields_.size());
  const std::uint8_t* const start = cells_->row(position_);
  const std::uint8_t* cell = start;
  for (std::uint32_t& offset : cell_offsets_) {
    offset = static_cast<std::uint32_t>(cell - start);
    cell = PackedRows::Skip(cell);
  }
  located_row_ = position_;
}

const std::uint8_t* Recordset::Cell(std::size_t field) const {
  if (located_row_ != position_) {
    if (eof()) Raise(error_number::kNoCurrentRecord, "No current record");
    Locate();
  }
  if (field >= fields_.size()) {
    Raise(error_number::kItemNotFound, "Item cannot be found: field " + std::to_string(field));
  }
  return cells_->row(position_) + cell_offsets_[field];
}

Variant Recordset::Get(std::size_t field) const { return PackedRows::Value(Cell(field), fields_[field]); }

Variant Recordset::Get(std::string_view field) const {
  const std::optional<std::size_t> position = FindField(field);
  if (!position) Raise(error_number::kItemNotFound, "Item cannot be found: " + std::string(field));
  return Get(*position);
}

std::string_view Recordset::GetText(std::size_t field) const {
  if (const std::optional<std::string_view> text = FindText(field)) return *text;
  if (!IsNull(field)) RaiseTypeMismatch();
  return {};
}

std::optional<std::string_view> Recordset::FindText(std::size_t field) const { return PackedRows::Text(Cell(field)); }

bool Recordset::IsNull(std::size_t field) const { return PackedRows::IsNull(Cell(field)); }

std::size_t Recordset::memory() const noexcept { return cells_->memory(); }

void Recordset::Rewind() noexcept {
  position_ = 0;
  located_row_ = static_cast<std::size_t>(-1);
}

}  // namespace tessarlorn
