#include "objects/recordset_object.h"

#include <algorithm>
#include <array>
#include <numeric>

#include "objects/array.h"
#include "objects/recordset_file.h"
#include "objects/row_condition.h"
#include "platform/error.h"
#include "platform/text.h"

namespace tessarlorn {
namespace {

// ADO's own numbers.
constexpr std::int32_t kWrongArguments = 3001;
constexpr std::int32_t kClosed = 3704;
constexpr std::int32_t kStateOpen = 1;
constexpr std::int32_t kUseClient = 3;
constexpr std::int32_t kOpenStatic = 3;
constexpr std::int32_t kLockReadOnly = 1;
constexpr std::int32_t kAllRows = -1;
constexpr std::int32_t kSearchForward = 1;
constexpr std::int32_t kBookmarkCurrent = 0;
constexpr std::int32_t kBookmarkFirst = 1;
constexpr std::int32_t kBookmarkLast = 2;

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
constexpr std::array kFieldIndex = {Any("Index", false)};
constexpr std::array kMoveArguments = {Long("NumRecords", false), Any("Start")};
constexpr std::array kFindArguments = {Text("Criteria", false), Long("SkipRecords"), Long("SearchDirection"),
                                       Any("Start")};
constexpr std::array kGetRowsArguments = {Long("Rows"), Any("Start"), Any("Fields")};
constexpr std::array kGetStringArguments = {Long("StringFormat"), Long("NumRows"), Text("ColumnDelimeter"),
                                            Text("RowDelimeter"), Text("NullExpr")};
constexpr std::array kSaveArguments = {Text("Destination", false), Long("PersistFormat")};

constexpr std::int32_t kAbsolutePosition = MemberId("AbsolutePosition");
constexpr std::int32_t kActiveConnection = MemberId("ActiveConnection");
constexpr std::int32_t kActualSize = MemberId("ActualSize");
constexpr std::int32_t kBof = MemberId("BOF");
constexpr std::int32_t kBookmark = MemberId("Bookmark");
constexpr std::int32_t kClose = MemberId("Close");
constexpr std::int32_t kCount = MemberId("Count");
constexpr std::int32_t kCursorLocation = MemberId("CursorLocation");
constexpr std::int32_t kCursorType = MemberId("CursorType");
constexpr std::int32_t kDefinedSize = MemberId("DefinedSize");
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
constexpr std::int32_t kName = MemberId("Name");
constexpr std::int32_t kNumericScale = MemberId("NumericScale");
constexpr std::int32_t kPrecision = MemberId("Precision");
constexpr std::int32_t kRecordCount = MemberId("RecordCount");
constexpr std::int32_t kSave = MemberId("Save");
constexpr std::int32_t kSort = MemberId("Sort");
constexpr std::int32_t kState = MemberId("State");
constexpr std::int32_t kType = MemberId("Type");

[[noreturn]] void RaiseWrongArguments(const std::string& what) {
  Raise(kWrongArguments,
        "Arguments are of the wrong type, are out of acceptable range, or are in conflict with one another: " + what);
}

std::int32_t LongOr(const Variant& value, std::int32_t fallback) {
  return value.is_empty() ? fallback : value.ToInt32();
}
std::string TextOr(const Variant& value, std::string_view fallback) {
  return value.is_empty() ? std::string(fallback) : value.ToText();
}

struct SortKey {
  std::size_t field = 0;
  bool descending = false;
};

/// "FBuyer, [FDate] DESC".
std::vector<SortKey> ReadSort(const std::string& sort, const Recordset& rows) {
  std::vector<SortKey> keys;
  if (Trim(sort).empty()) return keys;
  for (std::string_view part : Split(sort, ',')) {
    part = Trim(part);
    SortKey key;
    const std::size_t blank = part.rfind(' ');
    if (blank != std::string_view::npos) {
      const std::string_view word = Trim(part.substr(blank));
      key.descending = EqualsIgnoreCase(word, "DESC");
      if (key.descending || EqualsIgnoreCase(word, "ASC")) part = Trim(part.substr(0, blank));
    }
    if (part.size() > 1 && part.front() == '[' && part.back() == ']') part = part.substr(1, part.size() - 2);
    const auto field = rows.FindField(part);
    if (!field) Raise(error_number::kItemNotFound, "Item cannot be found: " + std::string(part));
    key.field = *field;
    keys.push_back(key);
  }
  return keys;
}

/// ADO's number of the type.
std::int32_t TypeNumber(const Field& field) {
  const bool unlimited = field.size == 0;
  switch (field.type) {
    case FieldType::kBit:
      return 11;
    case FieldType::kTinyInt:
      return 17;
    case FieldType::kSmallInt:
      return 2;
    case FieldType::kInt:
      return 3;
    case FieldType::kBigInt:
      return 20;
    case FieldType::kReal:
      return 4;
    case FieldType::kFloat:
      return 5;
    case FieldType::kDecimal:
      return 131;
    case FieldType::kMoney:
      return 6;
    case FieldType::kDate:
      return 133;
    case FieldType::kTime:
      return 134;
    case FieldType::kDateTime:
      return 135;
    case FieldType::kChar:
      return 129;
    case FieldType::kVarChar:
      return unlimited ? 201 : 200;
    case FieldType::kNChar:
      return 130;
    case FieldType::kNVarChar:
      return unlimited ? 203 : 202;
    case FieldType::kBinary:
      return 128;
    case FieldType::kVarBinary:
      return unlimited ? 205 : 204;
    case FieldType::kGuid:
      return 72;
  }
  return 12;
}

/// Bytes of a number or date, characters or bytes of text and binary.
std::int32_t DefinedSize(const Field& field) {
  constexpr std::int32_t kUnlimited = 1073741823;
  switch (field.type) {
    case FieldType::kBit:
    case FieldType::kSmallInt:
      return 2;
    case FieldType::kTinyInt:
      return 1;
    case FieldType::kInt:
    case FieldType::kReal:
      return 4;
    case FieldType::kBigInt:
    case FieldType::kFloat:
    case FieldType::kMoney:
      return 8;
    case FieldType::kDecimal:
      return 19;
    case FieldType::kDate:
    case FieldType::kTime:
      return 6;
    case FieldType::kDateTime:
    case FieldType::kGuid:
      return 16;
    default:
      return field.size == 0 ? kUnlimited : field.size;
  }
}

}  // namespace

RecordsetView::RecordsetView(RecordsetPtr rows) : rows_(std::move(rows)) {
  shown_.resize(rows_->RecordCount());
  std::iota(shown_.begin(), shown_.end(), std::size_t{0});
  position_ = 1;
}

Recordset& RecordsetView::rows() const {
  if (rows_ == nullptr) Raise(kClosed, "Operation is not allowed when the object is closed.");
  return *rows_;
}

void RecordsetView::Move(std::int64_t rows) {
  if ((rows > 0 && eof()) || (rows < 0 && bof())) Raise(error_number::kNoCurrentRecord, "No current record");
  const std::int64_t target = static_cast<std::int64_t>(position_) + rows;
  position_ = static_cast<std::size_t>(std::clamp<std::int64_t>(target, 0, static_cast<std::int64_t>(count()) + 1));
}

Variant RecordsetView::Value(std::size_t field) const {
  Recordset& own = rows();
  if (bof() || eof()) Raise(error_number::kNoCurrentRecord, "No current record");
  own.MoveTo(shown_[position_ - 1]);
  return own.Get(field);
}

std::size_t RecordsetView::FieldIndex(const Variant& name_or_position) const {
  const auto refuse = [&]() -> std::size_t {
    Raise(error_number::kItemNotFound, "Item cannot be found: " + name_or_position.ToText());
  };
  if (name_or_position.is_number()) {
    const std::int32_t position = name_or_position.ToInt32();
    if (position < 0 || static_cast<std::size_t>(position) >= rows().fields().size()) return refuse();
    return static_cast<std::size_t>(position);
  }
  const auto field = rows().FindField(name_or_position.ToText());
  return field ? *field : refuse();
}

void RecordsetView::Show(const std::string& filter, const std::string& sort) {
  Recordset& own = rows();
  const std::vector<SortKey> keys = ReadSort(sort, own);
  std::vector<std::size_t> shown;
  if (Trim(filter).empty()) {
    shown.resize(own.RecordCount());
    std::iota(shown.begin(), shown.end(), std::size_t{0});
  } else {
    const RowCondition condition(filter, own);
    std::size_t row = 0;
    for (own.MoveFirst(); !own.eof(); own.MoveNext(), ++row) {
      if (condition.Holds(own)) shown.push_back(row);
    }
  }
  for (auto key = keys.rbegin(); key != keys.rend(); ++key) {
    // Each value is read once; ties stay in the order of the other keys.
    std::vector<Variant> values(own.RecordCount());
    for (const std::size_t row : shown) {
      own.MoveTo(row);
      values[row] = own.Get(key->field);
    }
    std::stable_sort(shown.begin(), shown.end(), [&](std::size_t a, std::size_t b) {
      const int order = CompareValues(values[a], values[b]);
      return key->descending ? order > 0 : order < 0;
    });
  }
  shown_ = std::move(shown);
  position_ = 1;
}

std::optional<std::size_t> RecordsetView::Find(const std::string& condition, std::size_t from, bool forwards) const {
  Recordset& own = rows();
  const RowCondition wanted(condition, own);
  for (std::size_t at = from; at >= 1 && at <= count(); forwards ? ++at : --at) {
    own.MoveTo(shown_[at - 1]);
    if (wanted.Holds(own)) return at;
  }
  return std::nullopt;
}

RecordsetObject::RecordsetObject(RecordsetPtr rows)
    : recordset_(std::move(rows)), view_(std::make_shared<RecordsetView>(recordset_)) {}

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
  static const ClassDescription kDescription = {
      .name = "Recordset",
      .prog_id = "",
      .class_id = "BEC68DD3-5E0E-42C1-995C-E7AD3340E7E6",
      .interface_id = "416DC365-72FA-4631-942E-A17C6F551512",
      .help = "The rows that an operation answers, all of them at the client. They are not written back.",
      .members = {
          {.name = "Fields",
           .id = kDefaultMember,
           .uses = kGet,
           .arguments = kIndex,
           .help = "The fields, or with a name or a position from 0 one of them."},
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
                 "The current row, from 1; -2 before the first, -3 behind the last.", true),
          {.name = "Bookmark",
           .id = kBookmark,
           .uses = kGet | kPut,
           .help = "The current row, to come back to; good until Sort or Filter is set."},
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
           .help = "Goes to the next row that a condition on one field holds for, or behind the last one."},
          {.name = "Sort",
           .id = kSort,
           .uses = kGet | kPut,
           .result = ValueType::kString,
           .help = "Fields by which the rows are ordered, as \"FDate DESC, FID\"."},
          {.name = "Filter",
           .id = kFilter,
           .uses = kGet | kPut,
           .help =
               "Condition that the shown rows meet, as \"FOrderStatus = 6 AND FBuyer LIKE 'A*'\"; \"\" or 0 for none."},
          {.name = "Save",
           .id = kSave,
           .returns_nothing = true,
           .arguments = kSaveArguments,
           .help = "Writes the shown rows to a new file: 1 as XML, 0 as lines of text with tabs; without a format, XML "
                   "for a name that ends with .xml."},
          step("Close", kClose, "Lets the rows go."),
          number("State", kState, "1 open, 0 closed."),
          {.name = "ActiveConnection",
           .id = kActiveConnection,
           .uses = kGet | kPut,
           .help = "Nothing: the rows have no connection. Only Nothing can be set."},
          number("CursorLocation", kCursorLocation, "3: the rows are at the client."),
          number("CursorType", kCursorType, "3: the rows do not change."),
          number("LockType", kLockType, "1: the rows are read only."),
      }};
  return kDescription;
}

void RecordsetObject::GoToStart(const Variant& start) {
  if (start.is_empty()) return;
  const std::int32_t bookmark = start.ToInt32();
  if (bookmark == kBookmarkCurrent) return;
  // Bookmarks are positions behind the three well-known numbers.
  const std::int64_t position = bookmark == kBookmarkFirst  ? 1
                                : bookmark == kBookmarkLast ? static_cast<std::int64_t>(view_->count())
                                                            : std::int64_t{bookmark} - kBookmarkLast;
  if (position < 0 || position > static_cast<std::int64_t>(view_->count())) {
    RaiseWrongArguments("the bookmark " + start.ToText());
  }
  view_->set_position(static_cast<std::size_t>(position));
}

Variant RecordsetObject::GetRows(const Variant& rows, const Variant& start, const Variant& fields) {
  std::vector<std::size_t> columns;
  const auto* const list = fields.get_if<std::shared_ptr<Object>>();
  if (fields.is_empty()) {
    columns.resize(view_->rows().fields().size());
    std::iota(columns.begin(), columns.end(), std::size_t{0});
  } else if (const auto* array = list == nullptr ? nullptr : dynamic_cast<const Array*>(list->get())) {
    for (const Variant& field : array->values()) columns.push_back(view_->FieldIndex(field));
  } else {
    columns.push_back(view_->FieldIndex(fields));
  }
  GoToStart(start);
  if (view_->bof() || view_->eof()) Raise(error_number::kNoCurrentRecord, "No current record");
  const std::int32_t wanted = LongOr(rows, kAllRows);
  if (wanted < kAllRows) RaiseWrongArguments("Rows is " + std::to_string(wanted));
  std::size_t left = view_->count() + 1 - view_->position();
  if (wanted >= 0) left = std::min(left, static_cast<std::size_t>(wanted));
  std::vector<Variant> values;
  values.reserve(left * columns.size());
  for (; left > 0; --left) {
    for (const std::size_t column : columns) values.push_back(view_->Value(column));
    view_->Move(1);
  }
  return std::shared_ptr<Object>(std::make_shared<Array>(std::move(values), columns.size()));
}

Variant RecordsetObject::GetString(std::span<const Variant> arguments) {
  constexpr std::int32_t kClipString = 2;
  if (LongOr(arguments[0], kClipString) != kClipString) RaiseWrongArguments("StringFormat is not 2");
  const std::int32_t wanted = LongOr(arguments[1], kAllRows);
  const std::string column_end = TextOr(arguments[2], "\t");
  const std::string row_end = TextOr(arguments[3], "\r");
  const std::string null_text = TextOr(arguments[4], "");
  const std::size_t columns = view_->rows().fields().size();
  if (view_->bof() || view_->eof()) Raise(error_number::kNoCurrentRecord, "No current record");
  std::string text;
  for (std::int32_t row = 0; !view_->eof() && (wanted < 0 || row < wanted); ++row, view_->Move(1)) {
    for (std::size_t column = 0; column < columns; ++column) {
      if (column > 0) text += column_end;
      const Variant value = view_->Value(column);
      text += value.is_null() ? null_text : value.ToText();
    }
    text += row_end;
  }
  return text;
}

void RecordsetObject::Find(std::span<const Variant> arguments) {
  const bool forwards = LongOr(arguments[2], kSearchForward) >= 0;
  const std::int32_t skip = LongOr(arguments[1], 0);
  GoToStart(arguments[3]);
  if (view_->count() == 0) Raise(error_number::kNoCurrentRecord, "No current record");
  const std::int64_t from = static_cast<std::int64_t>(view_->position()) + (forwards ? skip : -std::int64_t{skip});
  const std::size_t first = from < 0 ? 0 : static_cast<std::size_t>(from);
  const auto found = view_->Find(arguments[0].ToText(), first, forwards);
  view_->set_position(found ? *found : forwards ? view_->count() + 1 : 0);
}

void RecordsetObject::Save(const Variant& destination, const Variant& format) const {
  const std::string path = destination.ToText();
  const bool xml = format.is_empty()
                       ? EqualsIgnoreCase(path.substr(path.size() - std::min<std::size_t>(4, path.size())), ".xml")
                       : format.ToInt32() == 1;
  if (!format.is_empty() && (format.ToInt32() < 0 || format.ToInt32() > 1)) RaiseWrongArguments("PersistFormat");
  const std::size_t position = view_->position();
  SaveRecordset(*view_, path, xml);
  view_->set_position(position);
}

Variant RecordsetObject::Do(const Member& member, MemberUse use, std::span<Variant> arguments) {
  if (member.id == kState) return view_->open() ? kStateOpen : 0;
  static_cast<void>(view_->rows());
  const bool put = use == kPut;
  switch (member.id) {
    case kDefaultMember:
      if (arguments[0].is_empty()) return std::shared_ptr<Object>(std::make_shared<FieldsObject>(view_));
      return std::shared_ptr<Object>(std::make_shared<FieldObject>(view_, view_->FieldIndex(arguments[0])));
    case kEof:
      return view_->eof();
    case kBof:
      return view_->bof();
    case kRecordCount:
      return static_cast<std::int32_t>(view_->count());
    case kAbsolutePosition: {
      constexpr std::int32_t kAtBof = -2;
      constexpr std::int32_t kAtEof = -3;
      if (!put) {
        if (view_->bof()) return kAtBof;
        return view_->eof() ? kAtEof : static_cast<std::int32_t>(view_->position());
      }
      const std::int32_t position = arguments[0].ToInt32();
      if (position < 1 || static_cast<std::size_t>(position) > view_->count()) {
        RaiseWrongArguments("AbsolutePosition " + std::to_string(position));
      }
      view_->set_position(static_cast<std::size_t>(position));
      return {};
    }
    case kBookmark:
      if (put) {
        GoToStart(arguments[0]);
        return {};
      }
      if (view_->bof() || view_->eof()) Raise(error_number::kNoCurrentRecord, "No current record");
      return static_cast<std::int32_t>(view_->position()) + kBookmarkLast;
    case kMoveFirst:
    case kMoveLast:
      if (view_->count() == 0) Raise(error_number::kNoCurrentRecord, "No current record");
      view_->set_position(member.id == kMoveFirst ? 1 : view_->count());
      return {};
    case kMoveNext:
      view_->Move(1);
      return {};
    case kMovePrevious:
      view_->Move(-1);
      return {};
    case kMove:
      GoToStart(arguments[1]);
      view_->Move(arguments[0].ToInt32());
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
    case kFilter: {
      if (!put) return filter_;
      // adFilterNone is 0.
      const std::string filter = arguments[0].is_number() && arguments[0].ToInt32() == 0 ? "" : arguments[0].ToText();
      view_->Show(filter, sort_);
      filter_ = filter;
      return {};
    }
    case kSave:
      Save(arguments[0], arguments[1]);
      return {};
    case kClose:
      view_->Close();
      recordset_ = nullptr;
      return {};
    case kActiveConnection:
      if (put && !arguments[0].is_empty() && arguments[0].type_name() != "Nothing") {
        RaiseWrongArguments("ActiveConnection can only be set to Nothing");
      }
      if (put) view_->rows().Detach();
      return std::shared_ptr<Object>();
    case kCursorLocation:
      return kUseClient;
    case kCursorType:
      return kOpenStatic;
    default:
      return kLockReadOnly;
  }
}

const ClassDescription& FieldsObject::Description() {
  static const ClassDescription kDescription = {
      .name = "Fields",
      .prog_id = "",
      .class_id = "3BCEB113-4921-4F1C-8BDF-3E74DD67C1DB",
      .interface_id = "864CBACF-3DCA-41B8-88BE-BA3C9C1EA818",
      .help = "The fields of a recordset.",
      .members = {
          {.name = "Item",
           .id = kDefaultMember,
           .uses = kGet,
           .arguments = kFieldIndex,
           .help = "A field by name or by position from 0. Raises 3265 when there is none."},
          {.name = "Count", .id = kCount, .uses = kGet, .result = ValueType::kLong, .help = "Number of fields."},
          {.name = "_NewEnum", .id = kEnumerationMember, .uses = kGet, .help = "For Each goes through the fields."},
      }};
  return kDescription;
}

std::vector<Variant> FieldsObject::Items() const {
  std::vector<Variant> fields;
  for (std::size_t i = 0; i < view_->rows().fields().size(); ++i) {
    fields.emplace_back(std::shared_ptr<Object>(std::make_shared<FieldObject>(view_, i)));
  }
  return fields;
}

Variant FieldsObject::Do(const Member& member, MemberUse /*use*/, std::span<Variant> arguments) {
  if (member.id == kCount) return static_cast<std::int32_t>(view_->rows().fields().size());
  return std::shared_ptr<Object>(std::make_shared<FieldObject>(view_, view_->FieldIndex(arguments[0])));
}

const ClassDescription& FieldObject::Description() {
  const auto number = [](std::string_view name, std::int32_t id, std::string_view help) {
    return Member{.name = name, .id = id, .uses = kGet, .result = ValueType::kLong, .help = help};
  };
  static const ClassDescription kDescription = {
      .name = "Field",
      .prog_id = "",
      .class_id = "5673A645-148A-4CB4-86C9-E17863D84D3D",
      .interface_id = "6F69B62D-BC58-457E-BC9B-4306A22F0426",
      .help = "A column of a recordset.",
      .members = {
          {.name = "Value", .id = kDefaultMember, .uses = kGet, .help = "The value in the current row."},
          {.name = "Name", .id = kName, .uses = kGet, .result = ValueType::kString, .help = "The column's name."},
          number("Type", kType, "ADO's number of the type, as 202 for nvarchar."),
          number("DefinedSize", kDefinedSize, "Characters of text, bytes of anything else."),
          number("ActualSize", kActualSize, "Of the value in the current row."),
          number("Precision", kPrecision, "Digits of a decimal."),
          number("NumericScale", kNumericScale, "Places of a decimal."),
      }};
  return kDescription;
}

Variant FieldObject::Do(const Member& member, MemberUse /*use*/, std::span<Variant> /*arguments*/) {
  const Field& field = view_->rows().fields()[field_];
  switch (member.id) {
    case kName:
      return field.name;
    case kType:
      return TypeNumber(field);
    case kDefinedSize:
      return DefinedSize(field);
    case kActualSize: {
      const Variant value = view_->Value(field_);
      if (value.is_null()) return std::int32_t{0};
      if (const auto* text = value.get_if<std::string>()) return static_cast<std::int32_t>(Utf16Length(*text));
      if (const auto* bytes = value.get_if<Bytes>()) return static_cast<std::int32_t>(bytes->size());
      return DefinedSize(field);
    }
    case kPrecision:
      return std::int32_t{field.precision};
    case kNumericScale:
      return std::int32_t{field.scale};
    default:
      return view_->Value(field_);
  }
}

}  // namespace tessarlorn
