// The numbers of a recordset's members: the later ones are ADO's own.
#pragma once

#include <cstdint>

#include "hosts/objects/automation_object.h"

namespace tessarlorn::recordset_member {

inline constexpr std::int32_t kAbsolutePage = 1047;
inline constexpr std::int32_t kAbsolutePosition = MemberId("AbsolutePosition");
inline constexpr std::int32_t kActiveConnection = MemberId("ActiveConnection");
inline constexpr std::int32_t kAsAdo = MemberId("AsADO");
inline constexpr std::int32_t kBof = MemberId("BOF");
inline constexpr std::int32_t kBookmark = MemberId("Bookmark");
inline constexpr std::int32_t kClone = MemberId("Clone");
inline constexpr std::int32_t kClose = MemberId("Close");
inline constexpr std::int32_t kCollect = -8;
inline constexpr std::int32_t kCursorLocation = MemberId("CursorLocation");
inline constexpr std::int32_t kCursorType = MemberId("CursorType");
inline constexpr std::int32_t kEditMode = 1026;
inline constexpr std::int32_t kEof = MemberId("EOF");
inline constexpr std::int32_t kFilter = MemberId("Filter");
inline constexpr std::int32_t kFind = MemberId("Find");
inline constexpr std::int32_t kGetRows = MemberId("GetRows");
inline constexpr std::int32_t kGetString = MemberId("GetString");
inline constexpr std::int32_t kLockType = MemberId("LockType");
inline constexpr std::int32_t kMaxRecords = 1009;
inline constexpr std::int32_t kMove = MemberId("Move");
inline constexpr std::int32_t kMoveFirst = MemberId("MoveFirst");
inline constexpr std::int32_t kMoveLast = MemberId("MoveLast");
inline constexpr std::int32_t kMoveNext = MemberId("MoveNext");
inline constexpr std::int32_t kMovePrevious = MemberId("MovePrevious");
inline constexpr std::int32_t kNextRecordset = 1052;
inline constexpr std::int32_t kPageCount = 1050;
inline constexpr std::int32_t kPageSize = 1048;
inline constexpr std::int32_t kRecordCount = MemberId("RecordCount");
inline constexpr std::int32_t kSave = MemberId("Save");
inline constexpr std::int32_t kSort = MemberId("Sort");
inline constexpr std::int32_t kSource = 1011;
inline constexpr std::int32_t kState = MemberId("State");
inline constexpr std::int32_t kStatus = 1029;
inline constexpr std::int32_t kSupports = MemberId("Supports");

}  // namespace tessarlorn::recordset_member
