#include "hosts/objects/library/enumerations.h"

#include <array>

namespace tessarlorn {
namespace {

constexpr std::array kTransactionModeConstants = {
    Constant{"NotAnMTSObject", 0},  Constant{"NoTransactions", 1},         Constant{"RequiresTransaction", 2},
    Constant{"UsesTransaction", 3}, Constant{"RequiresNewTransaction", 4},
};
constexpr std::array kObjectStateConstants = {
    Constant{"adStateClosed", 0},
    Constant{"adStateOpen", 1},
};
constexpr std::array kCursorLocationConstants = {
    Constant{"adUseServer", 2},
    Constant{"adUseClient", 3},
};
constexpr std::array kCursorTypeConstants = {
    Constant{"adOpenForwardOnly", 0},
    Constant{"adOpenKeyset", 1},
    Constant{"adOpenDynamic", 2},
    Constant{"adOpenStatic", 3},
};
constexpr std::array kLockTypeConstants = {
    Constant{"adLockReadOnly", 1},
    Constant{"adLockPessimistic", 2},
    Constant{"adLockOptimistic", 3},
    Constant{"adLockBatchOptimistic", 4},
};
constexpr std::array kPositionConstants = {
    Constant{"adPosUnknown", -1},
    Constant{"adPosBOF", -2},
    Constant{"adPosEOF", -3},
};
constexpr std::array kBookmarkConstants = {
    Constant{"adBookmarkCurrent", 0},
    Constant{"adBookmarkFirst", 1},
    Constant{"adBookmarkLast", 2},
};
constexpr std::array kSearchDirectionConstants = {
    Constant{"adSearchForward", 1},
    Constant{"adSearchBackward", -1},
};
constexpr std::array kGetRowsOptionConstants = {
    Constant{"adGetRowsRest", -1},
};
constexpr std::array kStringFormatConstants = {
    Constant{"adClipString", 2},
};
constexpr std::array kFilterGroupConstants = {
    Constant{"adFilterNone", 0},
};
constexpr std::array kEditModeConstants = {
    Constant{"adEditNone", 0},
};
constexpr std::array kRecordStatusConstants = {
    Constant{"adRecUnmodified", 8},
};
constexpr std::array kFieldStatusConstants = {
    Constant{"adFieldOK", 0},
};
constexpr std::array kFieldAttributeConstants = {
    Constant{"adFldFixed", 0x10},
    Constant{"adFldIsNullable", 0x20},
    Constant{"adFldMayBeNull", 0x40},
    Constant{"adFldLong", 0x80},
};
constexpr std::array kPersistFormatConstants = {
    Constant{"adPersistADTG", 0},
    Constant{"adPersistXML", 1},
};
constexpr std::array kCursorOptionConstants = {
    Constant{"adMovePrevious", 0x200}, Constant{"adBookmark", 0x2000},  Constant{"adApproxPosition", 0x4000},
    Constant{"adFind", 0x80000},       Constant{"adUpdate", 0x1008000}, Constant{"adAddNew", 0x1000400},
    Constant{"adDelete", 0x1000800},
};
constexpr std::array kDataTypeConstants = {
    Constant{"adEmpty", 0},       Constant{"adSmallInt", 2},
    Constant{"adInteger", 3},     Constant{"adSingle", 4},
    Constant{"adDouble", 5},      Constant{"adCurrency", 6},
    Constant{"adDate", 7},        Constant{"adBoolean", 11},
    Constant{"adVariant", 12},    Constant{"adUnsignedTinyInt", 17},
    Constant{"adBigInt", 20},     Constant{"adBinary", 128},
    Constant{"adChar", 129},      Constant{"adWChar", 130},
    Constant{"adNumeric", 131},   Constant{"adDBDate", 133},
    Constant{"adDBTime", 134},    Constant{"adDBTimeStamp", 135},
    Constant{"adVarChar", 200},   Constant{"adLongVarChar", 201},
    Constant{"adVarWChar", 202},  Constant{"adLongVarWChar", 203},
    Constant{"adVarBinary", 204}, Constant{"adLongVarBinary", 205},
};

}  // namespace

std::span<const Enumeration> Enumerations() {
  static constexpr std::array kEnumerations = {
      Enumeration{"TransactionMode", "How a class takes part in the transactions of its container.",
                  kTransactionModeConstants},
      Enumeration{"ObjectStateEnum", "Whether a recordset is open.", kObjectStateConstants},
      Enumeration{"CursorLocationEnum", "Where the rows of a recordset are.", kCursorLocationConstants},
      Enumeration{"CursorTypeEnum", "What a recordset shows of changes by others.", kCursorTypeConstants},
      Enumeration{"LockTypeEnum", "Whether rows can be written.", kLockTypeConstants},
      Enumeration{"PositionEnum", "What AbsolutePosition and AbsolutePage answer where there is no current row.",
                  kPositionConstants},
      Enumeration{"BookmarkEnum", "From where Move, GetRows and Find begin.", kBookmarkConstants},
      Enumeration{"SearchDirectionEnum", "Which way Find goes.", kSearchDirectionConstants},
      Enumeration{"GetRowsOptionEnum", "How many rows GetRows reads.", kGetRowsOptionConstants},
      Enumeration{"StringFormatEnum", "How GetString writes rows.", kStringFormatConstants},
      Enumeration{"FilterGroupEnum", "What Filter shows.", kFilterGroupConstants},
      Enumeration{"PersistFormatEnum", "How Save writes rows.", kPersistFormatConstants},
      Enumeration{"CursorOptionEnum", "What Supports can be asked for.", kCursorOptionConstants},
      Enumeration{"DataTypeEnum", "The types of fields.", kDataTypeConstants},
      Enumeration{"EditModeEnum", "Whether a row is being edited.", kEditModeConstants},
      Enumeration{"RecordStatusEnum", "What became of a row.", kRecordStatusConstants},
      Enumeration{"FieldStatusEnum", "What became of a field.", kFieldStatusConstants},
      Enumeration{"FieldAttributeEnum", "Bits of what a field can hold.", kFieldAttributeConstants},
  };
  return kEnumerations;
}

}  // namespace tessarlorn
