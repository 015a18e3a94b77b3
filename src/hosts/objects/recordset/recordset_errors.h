// The errors that clients of recordsets know, by ADO's numbers.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "tessarlorn/error.h"

namespace tessarlorn {

namespace error_number {
inline constexpr std::int32_t kWrongArguments = 3001;
inline constexpr std::int32_t kReadOnlyRows = 3251;
inline constexpr std::int32_t kObjectOpen = 3705;
inline constexpr std::int32_t kInvalidBookmark = FromHresult(0x80040E0E);
}  // namespace error_number

/// 3001. @param what the argument at fault
[[noreturn]] inline void RaiseWrongArguments(const std::string& what) {
  Raise(error_number::kWrongArguments,
        "Arguments are of the wrong type, are out of acceptable range, or are in conflict with one another: " + what);
}
/// 3251. @param what the field or member that would write
[[noreturn]] inline void RaiseReadOnlyRows(std::string_view what) {
  Raise(error_number::kReadOnlyRows,
        "Current Recordset does not support updating. Its rows are read only: " + std::string(what));
}
/// 0x80040E0E, for a bookmark of a row that is not there.
[[noreturn]] inline void RaiseInvalidBookmark(const std::string& bookmark) {
  Raise(error_number::kInvalidBookmark, "The bookmark is not valid: " + bookmark);
}
/// 3705. @param what the member that only a closed recordset's may be written
[[noreturn]] inline void RaiseObjectOpen(std::string_view what) {
  Raise(error_number::kObjectOpen, "Operation is not allowed when the object is open: " + std::string(what));
}
/// 3021.
[[noreturn]] inline void RaiseNoCurrentRecord() { Raise(error_number::kNoCurrentRecord, "No current record"); }
/// 3265.
[[noreturn]] inline void RaiseNoSuchField(std::string_view name) {
  Raise(error_number::kItemNotFound, "Item cannot be found: " + std::string(name));
}

}  // namespace tessarlorn
