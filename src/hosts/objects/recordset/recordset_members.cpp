#include "hosts/objects/recordset/recordset_members.h"

#include <array>

#include "hosts/objects/recordset/properties_object.h"
#include "hosts/objects/recordset/recordset_object.h"

namespace tessarlorn {
namespace {

using namespace recordset_member;

constexpr Argument Long(std::string_view name, bool optional = true) {
  return {.name = name, .type = ValueType::kLong, .optional = optional};
}
constexpr Argument LongElse(std::string_view name, std::string_view fallback) {
  return {.name = name, .type = ValueType::kLong, .optional = true, .fallback = fallback};
}
constexpr Argument Text(std::string_view name, bool optional = true) {
  return {.name = name, .type = ValueType::kString, .optional = optional};
}
constexpr Argument Any(std::string_view name, bool optional = true) {
  return {.name = name, .type = ValueType::kVariant, .optional = optional};
}

constexpr std::array kIndex = {Any("Index")};
constexpr std::array kField = {Any("Index", false)};
constexpr std::array kMoveArguments = {Long("NumRecords", false), Any("Start")};
constexpr std::array kFindArguments = {Text("Criteria", false), LongElse("SkipRecords", "0"),
                                       LongElse("SearchDirection", "1"), Any("Start")};
constexpr std::array kGetRowsArguments = {LongElse("Rows", "-1"), Any("Start"), Any("Fields")};
constexpr std::array kGetStringArguments = {LongElse("StringFormat", "2"), LongElse("NumRows", "-1"),
                                            Text("ColumnDelimeter"), Text("RowDelimeter"), Text("NullExpr")};
constexpr std::array kCloneArguments = {LongElse("LockType", "-1")};
constexpr std::array kSupportsArguments = {Long("CursorOptions", false)};
constexpr std::array kAddNewArguments = {Any("FieldList"), Any("Values")};
constexpr std::array kUpdateArguments = {Any("Fields"), Any("Values")};
constexpr std::array kAffectArguments = {Long("AffectRecords")};
constexpr std::array kRequeryArguments = {Long("Options")};
constexpr std::array kResyncArguments = {Long("AffectRecords"), Long("ResyncValues")};
constexpr std::array kOpenArguments = {Any("Source"), Any("ActiveConnection"), Long("CursorType"), Long("LockType"),
                                       Long("Options")};
constexpr std::array kNextRecordsetArguments = {Any("RecordsAffected")};
constexpr std::array kSaveArguments = {Text("Destination", false), Long("PersistFormat")};

}  // namespace

const ClassDescription& RecordsetObject::Description() {
  const auto number = [](std::string_view name, std::int32_t id, std::string_view help, bool written = false) {
    return Member{.name = name,
                  .id = id,
                  .uses = static_cast<std::uint8_t>(written ? kGet | kPut : kGet),
                  .result = ValueType::kLong,
                  .help = help};
  };
  const auto constant = [](std::string_view name, std::int32_t id, std::string_view enumeration,
                           std::string_view help) {
    return Member{
        .name = name, .id = id, .uses = kGet, .result = ValueType::kLong, .help = help, .result_class = enumeration};
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
               "Condition that the shown rows meet, as \"FOrderStatus = 6 AND FBuyer LIKE 'A*'\", or an array of their "
               "bookmarks; \"\" or 0 for none, read as 0."},
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
          constant("State", kState, "ObjectStateEnum", "1 open, 0 closed."),
          {.name = "ActiveConnection",
           .id = kActiveConnection,
           .uses = kGet | kPut,
           .help = "Nothing: the rows have no connection. Only Nothing can be set."},
          constant("CursorLocation", kCursorLocation, "CursorLocationEnum", "3: the rows are at the client."),
          constant("CursorType", kCursorType, "CursorTypeEnum", "3: the rows do not change."),
          constant("LockType", kLockType, "LockTypeEnum", "1: the rows are read only."),
          refused("AddNew", kAddNewArguments),
          refused("Update", kUpdateArguments),
          refused("UpdateBatch", kAffectArguments),
          refused("Delete", kAffectArguments),
          refused("CancelUpdate"),
          refused("CancelBatch", kAffectArguments),
          refused("Requery", kRequeryArguments),
          refused("Resync", kResyncArguments),
          refused("Open", kOpenArguments),
          number("PageSize", kPageSize, "Rows of a page, 10 at first.", true),
          number("AbsolutePage", kAbsolutePage,
                 "The page of the current row, from 1; -2 before the first row, -3 behind the last, -1 when there are "
                 "no rows. Writing goes to the page's first row.",
                 true),
          number("PageCount", kPageCount, "Number of pages that the filter shows."),
          number("MaxRecords", kMaxRecords, "0: all rows. Writing raises 3705.", true),
          constant("Status", kStatus, "RecordStatusEnum", "8: the current row is as it was read."),
          constant("EditMode", kEditMode, "EditModeEnum", "0: the current row is not being edited."),
          {.name = "Source",
           .id = kSource,
           .uses = kGet | kPut,
           .result = ValueType::kString,
           .help = "Empty: the rows do not know their query. Writing raises 3705."},
          {.name = "NextRecordset",
           .id = kNextRecordset,
           .result = ValueType::kRecordset,
           .arguments = kNextRecordsetArguments,
           .help = "Nothing: there are no further rows."},
          {.name = "Collect",
           .id = kCollect,
           .uses = kGet | kPut,
           .arguments = kField,
           .help = "The value in the current row of a field, by name or by position from 0. Writing raises 3251."},
          PropertiesMember(),
          {.name = "AsADO",
           .id = kAsAdo,
           .help = "ADO's own recordset of the shown rows, without a connection. Raises 429 where ADO is missing."},
      }};
  return kDescription;
}

}  // namespace tessarlorn
