#include "hosts/objects/recordset/recordset_view.h"

#include <algorithm>
#include <numeric>

#include "hosts/objects/recordset/field_traits.h"
#include "hosts/objects/recordset/recordset_errors.h"
#include "hosts/objects/recordset/row_condition.h"
#include "hosts/objects/recordset/row_order.h"
#include "platform/text/text.h"
#include "platform/value_text.h"
#include "tessarlorn/object.h"

namespace tessarlorn {
namespace {

std::vector<std::size_t> AllRows(const Recordset& rows) {
  std::vector<std::size_t> numbers(rows.RecordCount());
  std::iota(numbers.begin(), numbers.end(), std::size_t{0});
  return numbers;
}

}  // namespace

std::size_t RecordsetView::NameHash::operator()(std::string_view name) const noexcept {
  std::size_t hash = 0;
  // The bit that tells small letters from capitals does not count.
  for (const char c : name) hash = hash * 31 + (static_cast<unsigned char>(c) | 0x20U);
  return hash;
}

bool RecordsetView::SameName::operator()(std::string_view a, std::string_view b) const noexcept {
  return EqualsIgnoreCase(a, b);
}

RecordsetView::RecordsetView(RecordsetPtr rows) : rows_(std::move(rows)), shown_(AllRows(*rows_)) {}

const RecordsetPtr& RecordsetView::rows() const {
  if (rows_ == nullptr) Raise(error_number::kObjectClosed, "Operation is not allowed when the object is closed.");
  return rows_;
}

void RecordsetView::Close() noexcept {
  names_.clear();
  rows_ = nullptr;
  shown_ = {};
}

void RecordsetView::set_position(std::size_t position) noexcept { position_ = std::min(position, count() + 1); }

void RecordsetView::Move(std::int64_t steps, std::size_t from) {
  if (shown_.empty() || (steps > 0 && from > count()) || (steps < 0 && from == 0)) RaiseNoCurrentRecord();
  set_position(static_cast<std::size_t>(std::max<std::int64_t>(static_cast<std::int64_t>(from) + steps, 0)));
}

const Recordset& RecordsetView::At(std::size_t position) const {
  Recordset& own = *rows();
  own.MoveTo(RowNumber(position));
  return own;
}

Variant RecordsetView::Value(std::size_t position, std::size_t field) const { return At(position).Get(field); }

std::size_t RecordsetView::FieldIndex(const Variant& name_or_position) {
  const std::vector<Field>& all = fields();
  if (name_or_position.is_number()) {
    const double position = name_or_position.ToDouble();
    const bool inside = position >= 0 && position < static_cast<double>(all.size());
    if (!inside) RaiseNoSuchField(name_or_position.ToText());
    return static_cast<std::size_t>(position);
  }
  if (names_.empty()) {
    // Of fields with one name the first is found.
    for (std::size_t i = 0; i < all.size(); ++i) names_.emplace(all[i].name, i);
  }
  if (name_or_position.holds<std::shared_ptr<Object>>()) {
    const Variant value = DefaultValueOf(name_or_position);
    if (!value.is_object()) return FieldIndex(value);
  }
  const auto* const name = name_or_position.get_if<std::string>();
  const auto found = name != nullptr ? names_.find(*name) : names_.find(name_or_position.ToText());
  if (found == names_.end()) RaiseNoSuchField(name_or_position.ToText());
  return found->second;
}

std::size_t RecordsetView::RowNumber(std::size_t position) const {
  if (!IsRow(position)) RaiseNoCurrentRecord();
  return shown_[position - 1];
}

std::optional<std::size_t> RecordsetView::PositionOf(std::size_t row_number) const {
  const auto found = std::find(shown_.begin(), shown_.end(), row_number);
  if (found == shown_.end()) return std::nullopt;
  return static_cast<std::size_t>(found - shown_.begin()) + 1;
}

void RecordsetView::Show(std::string_view filter, std::string_view sort) {
  Recordset& own = *rows();
  std::vector<std::size_t> shown = AllRows(own);
  if (!Trim(filter).empty()) {
    const RowCondition condition(filter, own);
    std::erase_if(shown, [&](std::size_t number) {
      own.MoveTo(number);
      return !condition.Holds(own);
    });
  }
  ShowRows(std::move(shown), sort);
}

void RecordsetView::ShowRows(std::vector<std::size_t> numbers, std::string_view sort) {
  SortRows(sort, *rows(), numbers);
  shown_ = std::move(numbers);
  position_ = 1;
}

std::optional<std::size_t> RecordsetView::Find(std::string_view condition, std::int64_t from, bool forwards) const {
  Recordset& own = *rows();
  const RowCondition wanted(condition, own);
  const auto last = static_cast<std::int64_t>(count());
  for (std::int64_t at = from; at >= 1 && at <= last; forwards ? ++at : --at) {
    const auto position = static_cast<std::size_t>(at);
    own.MoveTo(RowNumber(position));
    if (wanted.Holds(own)) return position;
  }
  return std::nullopt;
}

std::string CellText(const Field& field, const Variant& value) {
  if (const auto* date = value.get_if<DateTime>()) return DateText(*date, field.type);
  const auto* const bytes = value.get_if<Bytes>();
  return bytes == nullptr ? ClientValue(field, value).ToText() : LowerCase(HexText(bytes->data(), bytes->size()));
}

}  // namespace tessarlorn
