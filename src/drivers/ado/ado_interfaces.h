// The interfaces of ADO that the driver calls, as its type library lays them out: every member in its place. One that
// the driver does not call has no names of arguments, and need not be implemented. Numbers are ADO's own.
#pragma once

#include "com_base/windows_headers.h"

namespace tessarlorn::ado {

constexpr GUID AdoGuid(unsigned long number) {
  return {number, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x6D, 0x2E, 0xA4}};
}
// The classes whose ProgIDs are ADODB.Connection, ADODB.Command and so on.
inline constexpr GUID kConnectionClass = AdoGuid(0x514);
inline constexpr GUID kCommandClass = AdoGuid(0x507);
inline constexpr GUID kRecordsetClass = AdoGuid(0x535);
inline constexpr GUID kStreamClass = AdoGuid(0x566);
// Interfaces have another number since ADO came with Windows 7, and the same members.
inline constexpr GUID kConnectionInterface = AdoGuid(0x1550);
inline constexpr GUID kConnectionInterfaceBefore = AdoGuid(0x550);
inline constexpr GUID kCommandInterface = AdoGuid(0x1508);
inline constexpr GUID kCommandInterfaceBefore = AdoGuid(0x508);
inline constexpr GUID kRecordsetInterface = AdoGuid(0x1556);
inline constexpr GUID kRecordsetInterfaceBefore = AdoGuid(0x556);
inline constexpr GUID kStreamInterface = AdoGuid(0x1565);
inline constexpr GUID kStreamInterfaceBefore = AdoGuid(0x565);

// Values of ADO's enumerations.
inline constexpr LONG kUseClient = 3;
inline constexpr LONG kOptionUnspecified = -1;
inline constexpr LONG kConnectUnspecified = -1;
inline constexpr LONG kLockUnspecified = -1;
inline constexpr LONG kLockBatchOptimistic = 4;
inline constexpr LONG kOpenStatic = 3;
inline constexpr LONG kModeUnknown = 0;
inline constexpr LONG kStreamOptionUnspecified = -1;
inline constexpr LONG kWriteCharacters = 0;
inline constexpr LONG kStateClosed = 0;
inline constexpr LONG kStoredProcedure = 4;
inline constexpr LONG kInput = 1;
inline constexpr LONG kInputAndOutput = 3;
inline constexpr LONG kFieldIsNullable = 0x20;
inline constexpr LONG kFieldMayBeNull = 0x40;

/// What ADO answers where a provider knows no further results.
inline constexpr HRESULT kFeatureNotAvailable = static_cast<HRESULT>(0x800A0CB3);

/// What stands for an argument that is left out.
inline VARIANT LeftOut() {
  VARIANT left_out{};
  left_out.vt = VT_ERROR;
  left_out.scode = DISP_E_PARAMNOTFOUND;
  return left_out;
}

enum class DataType : LONG {
  kSmallInt = 2,
  kInteger = 3,
  kSingle = 4,
  kDouble = 5,
  kCurrency = 6,
  kDate = 7,
  kBoolean = 11,
  kDecimal = 14,
  kTinyInt = 16,
  kUnsignedTinyInt = 17,
  kUnsignedSmallInt = 18,
  kUnsignedInt = 19,
  kBigInt = 20,
  kUnsignedBigInt = 21,
  kGuid = 72,
  kBinary = 128,
  kChar = 129,
  kWChar = 130,
  kNumeric = 131,
  kDBDate = 133,
  kDBTime = 134,
  kDBTimeStamp = 135,
  kVarNumeric = 139,
  kVarChar = 200,
  kLongVarChar = 201,
  kVarWChar = 202,
  kLongVarWChar = 203,
  kVarBinary = 204,
  kLongVarBinary = 205,
};

/// What every object of ADO but collections begins with.
struct IAdoObject : IDispatch {
  virtual HRESULT STDMETHODCALLTYPE get_Properties(IDispatch**) { return E_NOTIMPL; }
};

struct IAdoCollection : IDispatch {
  virtual HRESULT STDMETHODCALLTYPE get_Count(LONG*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE NewEnum(IUnknown**) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE Refresh() { return E_NOTIMPL; }
};

struct IAdoError : IDispatch {
  virtual HRESULT STDMETHODCALLTYPE get_Number(LONG* number) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Source(BSTR* source) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Description(BSTR* description) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_HelpFile(BSTR*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_HelpContext(LONG*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_SQLState(BSTR* state) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_NativeError(LONG* number) = 0;
};

struct IAdoErrors : IAdoCollection {
  virtual HRESULT STDMETHODCALLTYPE get_Item(VARIANT index, IAdoError** error) = 0;
  virtual HRESULT STDMETHODCALLTYPE Clear() = 0;
};

struct IAdoField : IAdoObject {
  virtual HRESULT STDMETHODCALLTYPE get_ActualSize(LONG_PTR*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_Attributes(LONG* attributes) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_DefinedSize(LONG_PTR* size) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Name(BSTR* name) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Type(LONG* type) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Value(VARIANT*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_Value(VARIANT) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_Precision(BYTE* precision) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_NumericScale(BYTE* scale) = 0;
};

struct IAdoFields : IAdoCollection {
  virtual HRESULT STDMETHODCALLTYPE get_Item(VARIANT index, IAdoField** field) = 0;
};

struct IAdoRecordset : IAdoObject {
  virtual HRESULT STDMETHODCALLTYPE get_AbsolutePosition(LONG_PTR*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_AbsolutePosition(LONG_PTR) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE putref_ActiveConnection(IDispatch* connection) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_ActiveConnection(VARIANT) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_ActiveConnection(VARIANT*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_BOF(VARIANT_BOOL*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_Bookmark(VARIANT*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_Bookmark(VARIANT) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_CacheSize(LONG*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_CacheSize(LONG) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_CursorType(LONG*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_CursorType(LONG) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_EOF(VARIANT_BOOL* eof) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Fields(IAdoFields** fields) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_LockType(LONG*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_LockType(LONG) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_MaxRecords(LONG_PTR*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_MaxRecords(LONG_PTR) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_RecordCount(LONG_PTR*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE putref_Source(IDispatch*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_Source(BSTR) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_Source(VARIANT*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE AddNew(VARIANT, VARIANT) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE CancelUpdate() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE Close() = 0;
  virtual HRESULT STDMETHODCALLTYPE Delete(LONG) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE GetRows(LONG rows, VARIANT start, VARIANT fields, VARIANT* values) = 0;
  virtual HRESULT STDMETHODCALLTYPE Move(LONG_PTR, VARIANT) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE MoveNext() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE MovePrevious() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE MoveFirst() = 0;
  virtual HRESULT STDMETHODCALLTYPE MoveLast() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE Open(VARIANT source, VARIANT connection, LONG cursor, LONG lock, LONG options) = 0;
  virtual HRESULT STDMETHODCALLTYPE Requery(LONG) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE HiddenResync(LONG) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE Update(VARIANT, VARIANT) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_AbsolutePage(LONG_PTR*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_AbsolutePage(LONG_PTR) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_EditMode(LONG*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_Filter(VARIANT*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_Filter(VARIANT) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_PageCount(LONG_PTR*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_PageSize(LONG*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_PageSize(LONG) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_Sort(BSTR*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_Sort(BSTR) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_Status(LONG*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_State(LONG* state) = 0;
  virtual HRESULT STDMETHODCALLTYPE HiddenClone(IAdoRecordset**) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE UpdateBatch(LONG) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE CancelBatch(LONG) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_CursorLocation(LONG*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_CursorLocation(LONG) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE NextRecordset(VARIANT* affected, IAdoRecordset** next) = 0;
  virtual HRESULT STDMETHODCALLTYPE Supports(LONG, VARIANT_BOOL*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_Collect(VARIANT, VARIANT*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_Collect(VARIANT, VARIANT) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_MarshalOptions(LONG*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_MarshalOptions(LONG) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE Find(BSTR, LONG_PTR, LONG, VARIANT) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE Cancel() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_DataSource(IUnknown**) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE putref_DataSource(IUnknown*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE HiddenSave(BSTR, LONG) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_ActiveCommand(IDispatch**) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_StayInSync(VARIANT_BOOL) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_StayInSync(VARIANT_BOOL*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE GetString(LONG, LONG, BSTR, BSTR, BSTR, BSTR*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_DataMember(BSTR*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_DataMember(BSTR) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE CompareBookmarks(VARIANT, VARIANT, LONG*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE Clone(LONG lock, IAdoRecordset** clone) = 0;
};

struct IAdoStream : IDispatch {
  virtual HRESULT STDMETHODCALLTYPE get_Size(LONG_PTR*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_EOS(VARIANT_BOOL*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_Position(LONG_PTR*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_Position(LONG_PTR position) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Type(LONG*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_Type(LONG) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_LineSeparator(LONG*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_LineSeparator(LONG) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_State(LONG*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_Mode(LONG*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_Mode(LONG) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_Charset(BSTR*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_Charset(BSTR) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE Read(LONG, VARIANT*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE Open(VARIANT source, LONG mode, LONG options, BSTR user, BSTR password) = 0;
  virtual HRESULT STDMETHODCALLTYPE Close() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE SkipLine() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE Write(VARIANT) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE SetEOS() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE CopyTo(IAdoStream*, LONG_PTR) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE Flush() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE SaveToFile(BSTR, LONG) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE LoadFromFile(BSTR) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE ReadText(LONG, BSTR*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE WriteText(BSTR text, LONG options) = 0;
};

struct IAdoConnection : IAdoObject {
  virtual HRESULT STDMETHODCALLTYPE get_ConnectionString(BSTR*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_ConnectionString(BSTR) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_CommandTimeout(LONG*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_CommandTimeout(LONG seconds) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_ConnectionTimeout(LONG*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_ConnectionTimeout(LONG seconds) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Version(BSTR*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE Close() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE Execute(BSTR text, VARIANT* affected, LONG options, IAdoRecordset** rows) = 0;
  virtual HRESULT STDMETHODCALLTYPE BeginTrans(LONG*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE CommitTrans() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE RollbackTrans() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE Open(BSTR text, BSTR user, BSTR password, LONG options) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Errors(IAdoErrors** errors) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_DefaultDatabase(BSTR*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_DefaultDatabase(BSTR) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_IsolationLevel(LONG*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_IsolationLevel(LONG) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_Attributes(LONG*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_Attributes(LONG) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_CursorLocation(LONG*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_CursorLocation(LONG location) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Mode(LONG*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_Mode(LONG) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_Provider(BSTR*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_Provider(BSTR) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_State(LONG*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE OpenSchema(LONG, VARIANT, VARIANT, IAdoRecordset**) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE Cancel() = 0;
};

struct IAdoParameter : IAdoObject {
  virtual HRESULT STDMETHODCALLTYPE get_Name(BSTR*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_Name(BSTR) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_Value(VARIANT* value) = 0;
};

struct IAdoParameters : IAdoCollection {
  virtual HRESULT STDMETHODCALLTYPE Append(IDispatch* parameter) = 0;
};

struct IAdoCommand : IAdoObject {
  virtual HRESULT STDMETHODCALLTYPE get_ActiveConnection(IAdoConnection**) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE putref_ActiveConnection(IAdoConnection* connection) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_ActiveConnection(VARIANT) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_CommandText(BSTR*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_CommandText(BSTR text) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_CommandTimeout(LONG*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_CommandTimeout(LONG seconds) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Prepared(VARIANT_BOOL*) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE put_Prepared(VARIANT_BOOL) { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE Execute(VARIANT* affected, VARIANT* parameters, LONG options,
                                            IAdoRecordset** rows) = 0;
  virtual HRESULT STDMETHODCALLTYPE CreateParameter(BSTR name, LONG type, LONG direction, LONG_PTR size, VARIANT value,
                                                    IAdoParameter** parameter) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Parameters(IAdoParameters** parameters) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_CommandType(LONG type) = 0;
};

}  // namespace tessarlorn::ado
