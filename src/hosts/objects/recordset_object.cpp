#include "hosts/objects/recordset_object.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <utility>

#include "hosts/objects/array.h"
#include "hosts/objects/field_traits.h"
#include "hosts/objects/recordset_errors.h"
#include "hosts/objects/recordset_file.h"
#include "platform/text/text.h"
#include "tessarlorn/error.h"

namespace tessarlorn {
namespace {

// ADO's own numbers.
constexpr std::int32_t kStateOpen = 1;
constexpr std::int32_t kUseClient = 3;
constexpr std::int32_t kOpenStatic = 3;
constexpr std::int32_t kLockReadOnly = 1;
constexpr std::int32_t kAllRows = -1;
constexpr std::int32_t kSearchForward = 1;
constexpr std::int32_t kSearchBackward = -1;
constexpr std::int32_t kFilterNone = 0;
constexpr std::int32_t kBookmarkCurrent = 0;
constexpr std::int32_t kBookmarkFirst = 1;
constexpr std::int32_t kBookmarkLast = 2;
/// Bookmarks are the rows' own numbers behind the three well-known ones.
constexpr std::int32_t kFirstRowBookmark = kBookmarkLast + 1;
// Of what Supports asks for: approximate position, bookmark, find, move previous.
constexpr std::uint32_t kSupported = 0x4000 | 0x2000 | 0x80000 | 0x200;

constexpr Argument Long(std::string_view name, bool optional = true) {
  return {.name = name, .type = ValueType::kLong, .optional = optional};
}
constexpr Argument Text(std::string_view name, bool optional = true) {
  return {.name = name, .type = ValueType::kString, .optional = optional};
}
constexpr Argument Any(std::string_view name, bool optional = true) {
  return {.name = name, .type = ValueType::kVariant, .optional = optional};
}

constexpr std::array kIndex = {Any("Index")};
constexpr std::array kMoveArguments = {Long("NumRecords", false), Any("Start")};
constexpr std::array kFindArguments = {Text("Criteria", false), Long("SkipRecords"), Long("SearchDirection"),
                                       Any("Start")};
constexpr std::array kGetRowsArguments = {Long("Rows"), Any("Start"), Any("Fields")};
constexpr std::array kGetStringArguments = {Long("StringFormat"), Long("NumRows"), Text("ColumnDelimeter"),
                                            Text("RowDelimeter"), Text("NullExpr")};
constexpr std::array kCloneArguments = {Long("LockType")};
constexpr std::array kSupportsArguments = {Long("CursorOptions", false)};
constexpr std::array kAddNewArguments = {Any("FieldList"), Any("Values")};
constexpr std::array kUpdateArguments = {Any("Fields"), Any("Values")};
constexpr std::array kAffectArguments = {Long("AffectRecords")};
constexpr std::array kRequeryArguments = {Long("Options")};
constexpr std::array kResyncArguments = {Long("AffectRecords"), Long("ResyncValues")};
constexpr std::array kOpenArguments = {Any("Source"), Any("ActiveConnection"), Long("CursorType"), Long("LockType"),
                                       Long("Options")};
constexpr std::array kSaveArguments = {Text("Destination", false), Long("PersistFormat")};

constexpr std::int32_t kAbsolutePosition = MemberId("AbsolutePosition");
constexpr std::int32_t kActiveConnection = MemberId("ActiveConnection");
constexpr std::int32_t kBof = MemberId("BOF");
constexpr std::int32_t kBookmark = MemberId("Bookmark");
constexpr std::int32_t kClone = MemberId("Clone");
constexpr std::int32_t kClose = MemberId("Close");
constexpr std::int32_t kCursorLocation = MemberId("CursorLocation");
constexpr std::int32_t kCursorType = MemberId("CursorType");
constexpr std::int32_t kEof = MemberId("EOF");
constexpr std::int32_t kFilter = MemberId("Filter");
constexpr std::int32_t kFind = MemberId("Find");
constexpr std::int32_t kGetRows = MemberId("GetRows");
constexpr std::int32_t kGetString = MemberId("GetString");
constexpr std::int32_t kLockType = MemberId("LockType");
constexpr std::int32_t kMove = MemberId("Move");
constexpr std::int32_t kMoveFirst = MemberId("MoveFirst");
constexpr std::int32_t kMoveLast = MemberId("MoveLast");
constexpr std::int32_t kMoveNext = MemberId("MoveNext");
constexpr std::int32_t kMovePrevious = MemberId("MovePrevious");
constexpr std::int32_t kRecordCount = MemberId("RecordCount");
constexpr std::int32_t kSave = MemberId("Save");
constexpr std::int32_t kSort = MemberId("Sort");
constexpr std::int32_t kState = MemberId("State");
constexpr std::int32_t kSupports = MemberId("Supports");

std::int32_t LongOr(const Variant& value, std::int32_t fallback) {
  return value.is_empty() ? fallback : value.ToInt32();
}
std::string TextOr(const Variant& value, std::string_view fallback) {
  return value.is_empty() ? std::string(fallback) : value.ToText();
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

const ClassDescription& RecordsetObject::Description() {
  const auto number = [](std::string_view name, std::int32_t id, std::string_view help, bool written = false) {
    return Member{.name = name,
                  .id = id,
                  .uses = static_cast<std::uint8_t>(written ? kGet | kPut : kGet),
                  .result = ValueType::kLong,
                  .help = help};
  };
  const auto step = [](std::string_view name, std::int32_t id, std::string_view help) {
    return Member{.name = name, .id = id, .returns_nothing = true, .help = help};
  };
  // What clients of rows that can be written call.
  const auto refused = [](std::string_view name, std::span<const Argument> arguments = {}) {
    return Member{.name = name,
                  .id = MemberId(name),
                  .returns_nothing = true,
                  .arguments = arguments,
                  .help = "Raises 3251: the rows are read only."};
  };
  static const ClassDescription kDescription = {
      .name = "Recordset",
      .prog_id = "",
      .class_id = "BEC68DD3-5E0E-42C1-995C-E7AD3340E7E6",
      .interface_id = "416DC365-72FA-4631-942E-A17C6F551512",
      .help = "The rows that an operation answers, all of them at the client. They are not written back.",
      .members = {
          {.name = "Fields",
           .id = kDefaultMember,
           .uses = kGet | kPut,
           .arguments = kIndex,
           .help = "The fields, or with a name or a position from 0 one of them. Writing raises 3251.",
           .result_class = "Fields"},
          {.name = "EOF",
           .id = kEof,
           .uses = kGet,
           .result = ValueType::kBoolean,
           .help = "Whether the position is behind the last row."},
          {.name = "BOF",
           .id = kBof,
           .uses = kGet,
           .result = ValueType::kBoolean,
           .help = "Whether the position is before the first row."},
          number("RecordCount", kRecordCount, "Number of rows that the filter shows."),
          number("AbsolutePosition", kAbsolutePosition,
                 "The current row, from 1; -2 before the first, -3 behind the last, -1 when there are no rows.", true),
          {.name = "Bookmark",
           .id = kBookmark,
           .uses = kGet | kPut,
           .help = "The current row, to come back to; stays good for it when Sort or Filter is set, and in a clone."},
          step("MoveFirst", kMoveFirst, "Goes to the first row."),
          step("MoveLast", kMoveLast, "Goes to the last row."),
          step("MoveNext", kMoveNext, "Goes to the next row. Raises 3021 behind the last one."),
          step("MovePrevious", kMovePrevious, "Goes to the row before. Raises 3021 before the first one."),
          {.name = "Move",
           .id = kMove,
           .returns_nothing = true,
           .arguments = kMoveArguments,
           .help = "Goes so many rows on, or back, from the current row, the first (1), the last (2) or a bookmark."},
          {.name = "GetRows",
           .id = kGetRows,
           .arguments = kGetRowsArguments,
           .help =
               "An array (field, row) of the values from the current row on; stands behind the last one of them then."},
          {.name = "GetString",
           .id = kGetString,
           .result = ValueType::kString,
           .arguments = kGetStringArguments,
           .help = "The rows from the current one on as text."},
          {.name = "Find",
           .id = kFind,
           .returns_nothing = true,
           .arguments = kFindArguments,
           .help =
               "Goes to the next row that a condition holds for, the current one included, or behind the last; with "
               "SearchDirection -1 backwards."},
          {.name = "Sort",
           .id = kSort,
           .uses = kGet | kPut,
           .result = ValueType::kString,
           .help = "Fields by which the rows are ordered, as \"FDate DESC, FID\"."},
          {.name = "Filter",
           .id = kFilter,
           .uses = kGet | kPut,
           .help =
               "Condition that the shown rows meet, as \"FOrderStatus = 6 AND FBuyer LIKE 'A*'\"; \"\" or 0 for none, read as 0."},
          {.name = "Save",
           .id = kSave,
           .returns_nothing = true,
           .arguments = kSaveArguments,
           .help = "Writes the shown rows to a new file: 1 as XML, 0 as lines of text with tabs; without a format, XML "
                   "for a name that ends with .xml. Goes to the first row."},
          {.name = "Clone",
           .id = kClone,
           .result = ValueType::kRecordset,
           .arguments = kCloneArguments,
           .help = "The same rows in a recordset with a position of its own, without filter and order."},
          {.name = "Supports",
           .id = kSupports,
           .result = ValueType::kBoolean,
           .arguments = kSupportsArguments,
           .help = "Whether all of the asked CursorOptions are there: 512 to move back, 8192 bookmarks, 16384 "
                   "AbsolutePosition, 524288 Find."},
          step("Close", kClose, "Lets the rows go."),
          number("State", kState, "1 open, 0 closed."),
          {.name = "ActiveConnection",
           .id = kActiveConnection,
           .uses = kGet | kPut,
           .help = "Nothing: the rows have no connection. Only Nothing can be set."},
          number("CursorLocation", kCursorLocation, "3: the rows are at the client."),
          number("CursorType", kCursorType, "3: the rows do not change."),
          number("LockType", kLockType, "1: the rows are read only."),
          refused("AddNew", kAddNewArguments),
          refused("Update", kUpdateArguments),
          refused("UpdateBatch", kAffectArguments),
          refused("Delete", kAffectArguments),
          refused("CancelUpdate"),
          refused("CancelBatch", kAffectArguments),
          refused("Requery", kRequeryArguments),
          refused("Resync", kResyncArguments),
          refused("Open", kOpenArguments),
      }};
  return kDescription;
}

std::size_t RecordsetObject::PositionOf(const Variant& bookmark) const {
  const std::int32_t number = LongOr(bookmark, kBookmarkCurrent);
  if (number == kBookmarkCurrent) return view_->position();
  if (number == kBookmarkFirst) return 1;
  if (number == kBookmarkLast) return view_->count();
  const auto position =
      number < 0 ? std::nullopt : view_->PositionOf(static_cast<std::size_t>(number - kFirstRowBookmark));
  if (!position) RaiseWrongArguments("the bookmark " + bookmark.ToText());
  return *position;
}

std::int32_t RecordsetObject::AbsolutePosition() const {
  constexpr std::int32_t kUnknown = -1;
  constexpr std::int32_t kAtBof = -2;
  constexpr std::int32_t kAtEof = -3;
  if (view_->count() == 0) return kUnknown;
  if (view_->bof()) return kAtBof;
  return view_->eof() ? kAtEof : static_cast<std::int32_t>(view_->position());
}

void RecordsetObject::SetAbsolutePosition(std::int32_t position) {
  if (position < 1 || !view_->IsRow(static_cast<std::size_t>(position))) {
    RaiseWrongArguments("AbsolutePosition " + std::to_string(position));
  }
  view_->set_position(static_cast<std::size_t>(position));
}

Variant RecordsetObject::GetRows(const Variant& rows, const Variant& start, const Variant& fields) {
  std::vector<std::size_t> columns;
  const auto* const list = fields.get_if<std::shared_ptr<Object>>();
  if (fields.is_empty()) {
    columns.resize(view_->fields().size());
    std::iota(columns.begin(), columns.end(), std::size_t{0});
  } else if (const auto* array = list == nullptr ? nullptr : dynamic_cast<const Array*>(list->get())) {
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

void RecordsetObject::SetFilter(const Variant& filter) {
  if (filter.is_number() && filter.ToInt32() != kFilterNone) RaiseWrongArguments("Filter " + filter.ToText());
  std::string text = filter.is_number() ? "" : filter.ToText();
  view_->Show(text, sort_);
  filter_ = std::move(text);
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
      view_->Show(filter_, arguments[0].ToText());
      sort_ = arguments[0].ToText();
      return {};
    case kFilter:
      if (!put) return filter_.empty() ? Variant(kFilterNone) : Variant(filter_);
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
    default:
      RaiseReadOnlyRows(member.name);
  }
}

}  // namespace tessarlorn
