#include "hosts/objects/recordset/recordset_object.h"

#include <algorithm>
#include <numeric>
#include <set>
#include <utility>

#include "hosts/objects/array.h"
#include "hosts/objects/recordset/field_traits.h"
#include "hosts/objects/recordset/properties_object.h"
#include "hosts/objects/recordset/recordset_errors.h"
#include "hosts/objects/recordset/recordset_file.h"
#include "hosts/objects/recordset/recordset_members.h"
#include "hosts/objects/recordset/rows_for_ado.h"
#include "platform/text/text.h"
#include "tessarlorn/error.h"

namespace tessarlorn {
namespace {

using namespace recordset_member;

// ADO's own numbers.
constexpr std::int32_t kStateOpen = 1;
constexpr std::int32_t kUseClient = 3;
constexpr std::int32_t kOpenStatic = 3;
constexpr std::int32_t kLockReadOnly = 1;
constexpr std::int32_t kAllRows = -1;
constexpr std::int32_t kSearchForward = 1;
constexpr std::int32_t kSearchBackward = -1;
constexpr std::int32_t kFilterNone = 0;
constexpr std::int32_t kNotEdited = 0;
constexpr std::int32_t kUnmodified = 8;
constexpr std::int32_t kNoMaximum = 0;
constexpr std::int32_t kBookmarkCurrent = 0;
constexpr std::int32_t kBookmarkFirst = 1;
constexpr std::int32_t kBookmarkLast = 2;
/// Bookmarks are the rows' own numbers behind the three well-known ones.
constexpr std::int32_t kFirstRowBookmark = kBookmarkLast + 1;
// Of what Supports asks for: approximate position, bookmark, find, move previous.
constexpr std::uint32_t kSupported = 0x4000 | 0x2000 | 0x80000 | 0x200;

std::int32_t LongOr(const Variant& value, std::int32_t fallback) {
  return value.is_empty() ? fallback : value.ToInt32();
}
std::string TextOr(const Variant& value, std::string_view fallback) {
  return value.is_empty() ? std::string(fallback) : value.ToText();
}

/// The array that a value is, or nullptr.
const Array* ArrayIn(const Variant& value) {
  const auto* const object = value.get_if<std::shared_ptr<Object>>();
  return object == nullptr ? nullptr : dynamic_cast<const Array*>(object->get());
}

std::int32_t BookmarkNumber(const Variant& bookmark) {
  if (!bookmark.is_number()) RaiseWrongArguments("a bookmark that is no number");
  return bookmark.ToInt32();
}

/// How many rows a call takes from a position on: as many as there are, or as many as it asks for. Raises 3021 when
/// there is none, 3001 for a negative number other than -1.
std::size_t RowsFrom(const RecordsetView& view, std::size_t position, const Variant& asked) {
  if (!view.IsRow(position)) RaiseNoCurrentRecord();
  const std::int32_t wanted = LongOr(asked, kAllRows);
  if (wanted < kAllRows) RaiseWrongArguments(std::to_string(wanted) + " rows");
  const std::size_t left = view.count() + 1 - position;
  return wanted == kAllRows ? left : std::min(left, static_cast<std::size_t>(wanted));
}

/// Some fields of some rows, row by row.
class RowCells final : public ArraySource {
 public:
  RowCells(RecordsetPtr rows, std::vector<std::size_t> numbers, std::vector<std::size_t> columns)
      : rows_(std::move(rows)), numbers_(std::move(numbers)), columns_(std::move(columns)) {}

  [[nodiscard]] Variant At(std::size_t place) const override {
    rows_->MoveTo(numbers_[place / columns_.size()]);
    const std::size_t field = columns_[place % columns_.size()];
    return ClientValue(rows_->fields()[field], rows_->Get(field));
  }
  void Each(std::size_t /*size*/, ValueTaker& taker) const override {
    for (const std::size_t number : numbers_) {
      rows_->MoveTo(number);
      for (const std::size_t field : columns_) HandOver(*rows_, field, taker);
    }
  }

 private:
  RecordsetPtr rows_;
  std::vector<std::size_t> numbers_;
  std::vector<std::size_t> columns_;
};

}  // namespace

std::size_t RecordsetObject::RowOf(const Variant& bookmark) const {
  const std::int64_t row = std::int64_t{BookmarkNumber(bookmark)} - kFirstRowBookmark;
  if (row < 0 || row >= static_cast<std::int64_t>(view_->rows()->RecordCount())) {
    RaiseInvalidBookmark(bookmark.ToText());
  }
  return static_cast<std::size_t>(row);
}

std::size_t RecordsetObject::PositionOf(const Variant& bookmark) const {
  if (bookmark.is_empty()) return view_->position();
  const std::int32_t number = BookmarkNumber(bookmark);
  if (number == kBookmarkCurrent) return view_->position();
  if (number == kBookmarkFirst) return 1;
  if (number == kBookmarkLast) return view_->count();
  const auto position = view_->PositionOf(RowOf(bookmark));
  if (!position) RaiseInvalidBookmark(bookmark.ToText());
  return *position;
}

std::int32_t RecordsetObject::AbsolutePosition() const {
  const std::int32_t place = PlaceWithoutRow(*view_);
  return place != 0 ? place : static_cast<std::int32_t>(view_->position());
}

void RecordsetObject::SetAbsolutePosition(std::int32_t position) {
  if (position < 1 || !view_->IsRow(static_cast<std::size_t>(position))) {
    RaiseWrongArguments("AbsolutePosition " + std::to_string(position));
  }
  view_->set_position(static_cast<std::size_t>(position));
}

Variant RecordsetObject::GetRows(const Variant& rows, const Variant& start, const Variant& fields) {
  std::vector<std::size_t> columns;
  if (fields.is_empty()) {
    columns.resize(view_->fields().size());
    std::iota(columns.begin(), columns.end(), std::size_t{0});
  } else if (const Array* const array = ArrayIn(fields)) {
    for (const Variant& field : array->Values()) columns.push_back(view_->FieldIndex(field));
    if (columns.empty()) RaiseWrongArguments("Fields names none");
  } else {
    columns.push_back(view_->FieldIndex(fields));
  }
  const std::size_t first = PositionOf(start);
  const std::size_t end = first + RowsFrom(*view_, first, rows);
  std::vector<std::size_t> numbers;
  numbers.reserve(end - first);
  for (std::size_t position = first; position < end; ++position) numbers.push_back(view_->RowNumber(position));
  view_->set_position(end);
  const std::size_t width = columns.size();
  const std::size_t size = numbers.size() * width;
  auto cells = std::make_unique<RowCells>(view_->rows(), std::move(numbers), std::move(columns));
  return std::shared_ptr<Object>(std::make_shared<Array>(std::move(cells), size, width));
}

Variant RecordsetObject::GetString(std::span<const Variant> arguments) {
  constexpr std::int32_t kClipString = 2;
  if (LongOr(arguments[0], kClipString) != kClipString) RaiseWrongArguments("StringFormat is not 2");
  const std::string column_end = TextOr(arguments[2], "\t");
  const std::string row_end = TextOr(arguments[3], "\r");
  const std::string null_text = TextOr(arguments[4], "");
  const std::size_t columns = view_->fields().size();
  const std::size_t first = view_->position();
  const std::size_t end = first + RowsFrom(*view_, first, arguments[1]);
  std::string text;
  for (std::size_t position = first; position < end; ++position) {
    for (std::size_t column = 0; column < columns; ++column) {
      if (column > 0) text += column_end;
      const Variant value = view_->Value(position, column);
      text += value.is_null() ? null_text : CellText(view_->fields()[column], value);
    }
    text += row_end;
  }
  view_->set_position(end);
  return text;
}

void RecordsetObject::Find(std::span<const Variant> arguments) {
  const std::int64_t skip = LongOr(arguments[1], 0);
  const std::int32_t direction = LongOr(arguments[2], kSearchForward);
  if (direction != kSearchForward && direction != kSearchBackward) RaiseWrongArguments("SearchDirection");
  const std::size_t start = PositionOf(arguments[3]);
  if (!view_->IsRow(start)) RaiseNoCurrentRecord();
  const bool forwards = direction == kSearchForward;
  const auto found = view_->Find(arguments[0].ToText(), static_cast<std::int64_t>(start) + skip * direction, forwards);
  view_->set_position(found ? *found : forwards ? view_->count() + 1 : 0);
}

void RecordsetObject::Show(const Variant& filter, const std::string& sort) {
  const Array* const bookmarks = ArrayIn(filter);
  if (bookmarks == nullptr) return view_->Show(filter.is_number() ? "" : filter.ToText(), sort);
  std::set<std::size_t> rows;
  for (const Variant& bookmark : bookmarks->Values()) rows.insert(RowOf(bookmark));
  view_->ShowRows({rows.begin(), rows.end()}, sort);
}

void RecordsetObject::SetFilter(const Variant& filter) {
  if (filter.is_number() && filter.ToInt32() != kFilterNone) RaiseWrongArguments("Filter " + filter.ToText());
  Show(filter, sort_);
  const bool none = ArrayIn(filter) == nullptr && (filter.is_number() || Trim(filter.ToText()).empty());
  filter_ = none ? Variant(kFilterNone) : filter;
}

Variant RecordsetObject::Collect(const Variant& name_or_position, MemberUse use) {
  const std::size_t number = view_->FieldIndex(name_or_position);
  const Field& field = view_->fields()[number];
  if (use == kPut) RaiseReadOnlyRows(field.name);
  return ClientValue(field, view_->Value(number));
}

/// Raises 3021 when no row is current.
Variant RecordsetObject::OfTheRow(std::int32_t value) const {
  static_cast<void>(view_->RowNumber(view_->position()));
  return value;
}

void RecordsetObject::SetActiveConnection(const Variant& connection) {
  if (!connection.is_empty() && connection.type_name() != "Nothing") {
    RaiseWrongArguments("ActiveConnection can only be set to Nothing");
  }
  view_->rows()->Detach();
}

void RecordsetObject::Save(const Variant& destination, const Variant& format) {
  constexpr std::int32_t kText = 0;
  constexpr std::int32_t kXml = 1;
  const std::string path = destination.ToText();
  const bool xml_name = path.size() >= 4 && EqualsIgnoreCase(path.substr(path.size() - 4), ".xml");
  const std::int32_t wanted = LongOr(format, xml_name ? kXml : kText);
  if (wanted != kText && wanted != kXml) RaiseWrongArguments("PersistFormat");
  SaveRecordset(*view_, path, wanted == kXml);
  view_->set_position(1);
}

const std::shared_ptr<AutomationObject>* RecordsetObject::Element(const Member& member, std::int32_t position) const {
  return member.id == kDefaultMember ? &fields_->At(position) : nullptr;
}

Variant RecordsetObject::Do(const Member& member, MemberUse use, std::span<Variant> arguments) {
  if (member.id == kState) return view_->open() ? kStateOpen : 0;
  const bool put = use == kPut;
  if (member.id == kDefaultMember) {
    if (!arguments[0].is_empty()) return fields_->Item(arguments[0], use);
    if (put) RaiseReadOnlyRows(member.name);
    return std::shared_ptr<Object>(fields_);
  }
  const RecordsetPtr& rows = view_->rows();
  switch (member.id) {
    case kEof:
      return view_->eof();
    case kBof:
      return view_->bof();
    case kRecordCount:
      return static_cast<std::int32_t>(view_->count());
    case kAbsolutePosition:
      if (!put) return AbsolutePosition();
      SetAbsolutePosition(arguments[0].ToInt32());
      return {};
    case kBookmark:
      if (!put) return static_cast<std::int32_t>(view_->RowNumber(view_->position())) + kFirstRowBookmark;
      view_->set_position(PositionOf(arguments[0]));
      return {};
    case kMoveFirst:
      view_->Move(0, 1);
      return {};
    case kMoveLast:
      view_->Move(0, view_->count());
      return {};
    case kMoveNext:
      view_->Move(1, view_->position());
      return {};
    case kMovePrevious:
      view_->Move(-1, view_->position());
      return {};
    case kMove:
      view_->Move(arguments[0].ToInt32(), PositionOf(arguments[1]));
      return {};
    case kGetRows:
      return GetRows(arguments[0], arguments[1], arguments[2]);
    case kGetString:
      return GetString(arguments);
    case kFind:
      Find(arguments);
      return {};
    case kSort:
      if (!put) return sort_;
      Show(filter_, arguments[0].ToText());
      sort_ = arguments[0].ToText();
      return {};
    case kFilter:
      if (!put) return filter_;
      SetFilter(arguments[0]);
      return {};
    case kSave:
      Save(arguments[0], arguments[1]);
      return {};
    case kClone:
      return std::shared_ptr<Object>(std::make_shared<RecordsetObject>(rows));
    case kSupports:
      return (static_cast<std::uint32_t>(arguments[0].ToInt32()) & ~kSupported) == 0;
    case kClose:
      view_->Close();
      return {};
    case kActiveConnection:
      if (put) SetActiveConnection(arguments[0]);
      return std::shared_ptr<Object>();
    case kCursorLocation:
      return kUseClient;
    case kCursorType:
      return kOpenStatic;
    case kLockType:
      return kLockReadOnly;
    case kPageSize:
      if (!put) return pages_.size();
      pages_.set_size(arguments[0].ToInt32());
      return {};
    case kAbsolutePage:
      if (!put) return pages_.Current(*view_);
      pages_.GoTo(arguments[0].ToInt32(), *view_);
      return {};
    case kPageCount:
      return pages_.Count(*view_);
    case kMaxRecords:
      if (put) RaiseObjectOpen(member.name);
      return kNoMaximum;
    case kStatus:
      return OfTheRow(kUnmodified);
    case kEditMode:
      return OfTheRow(kNotEdited);
    case kSource:
      if (put) RaiseObjectOpen(member.name);
      return "";
    case kNextRecordset:
      return std::shared_ptr<Object>();
    case kCollect:
      return Collect(arguments[0], use);
    case kAsAdo:
      return std::shared_ptr<Object>(std::make_shared<RowsForAdo>(RecordsetXml(*view_)));
    case kPropertiesMember:
      return PropertiesOf(arguments);
    default:
      RaiseReadOnlyRows(member.name);
  }
}

}  // namespace tessarlorn
