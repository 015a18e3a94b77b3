#include <gtest/gtest.h>

#include "com/client/typed_object.h"

namespace tessarlorn::com_test {
namespace {

constexpr const wchar_t* kReads = L"TessarLornPickingAndDelivery.clsGetData";
constexpr const wchar_t* kMemory = L"Embedded=:memory:client";

class CallTest : public testing::Test {
 protected:
  static Answer Ask(const TypedObject& reads, const std::wstring& sql) {
    return reads.Call(L"ExecuteSQL", {kMemory, sql});
  }
  static HRESULT Numbers(IDispatch* object, std::vector<std::wstring> names, std::vector<DISPID>& ids) {
    std::vector<LPOLESTR> texts;
    for (std::wstring& name : names) texts.push_back(name.data());
    ids.assign(names.size(), 0);
    return object->GetIDsOfNames(IID_NULL, texts.data(), static_cast<UINT>(texts.size()), LOCALE_USER_DEFAULT,
                                 ids.data());
  }

  Apartment apartment_;
};

TEST_F(CallTest, NamesAreKnownWithoutRegardToCase) {
  const TypedObject reads(kReads);
  std::vector<DISPID> ids;
  EXPECT_EQ(Numbers(reads.get(), {L"executeSQL", L"STRSQL", L"sdsn"}, ids), S_OK);
  EXPECT_EQ(ids, (std::vector<DISPID>{reads.Number(L"ExecuteSQL"), 1, 0}));
  EXPECT_EQ(Numbers(reads.get(), {L"ExecuteSQL", L"none", L"sDsn"}, ids), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(ids, (std::vector<DISPID>{reads.Number(L"ExecuteSQL"), DISPID_UNKNOWN, 0}));
  EXPECT_EQ(Numbers(reads.get(), {L"ConfirmBill"}, ids), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(Invoke(reads.get(), 12345, DISPATCH_METHOD, {}).status, DISP_E_MEMBERNOTFOUND);
}

TEST_F(CallTest, ArgumentsCanBeNamed) {
  const TypedObject reads(kReads);
  const DISPID id = reads.Number(L"ExecuteSQL");
  const Answer all = Invoke(reads.get(), id, DISPATCH_METHOD, {L"select 5 a", kMemory}, {1, 0});
  ASSERT_EQ(all.status, S_OK);
  EXPECT_NE(all.value.object(), nullptr);
  EXPECT_EQ(Invoke(reads.get(), id, DISPATCH_METHOD, {kMemory, L"select 5 a"}, {1}).status, S_OK);

  const Answer missing = Invoke(reads.get(), id, DISPATCH_METHOD, {L"select 5 a"}, {1});
  EXPECT_EQ(missing.status, DISP_E_EXCEPTION);
  EXPECT_EQ(missing.error, static_cast<HRESULT>(0x800A01C1));
  EXPECT_EQ(missing.description, L"Argument not optional: sDsn of clsGetData.ExecuteSQL");
  for (const auto& named : {std::vector<DISPID>{0}, {1, 1}}) {
    const Answer twice = Invoke(reads.get(), id, DISPATCH_METHOD, {kMemory, L"select 1", L"zz"}, named);
    EXPECT_EQ(twice.error, static_cast<HRESULT>(0x800A01C2));
    EXPECT_EQ(twice.description.substr(0, 21), L"Argument given twice:");
  }
}

TEST_F(CallTest, PropertiesAreWrittenByTheirNewValue) {
  const TypedObject dictionary(L"Mirel.Dictionary");
  const auto put = [&](DISPID id, const std::vector<DISPID>& named) {
    return Invoke(dictionary.get(), id, DISPATCH_PROPERTYPUT, {L"key", L"value"}, named).error;
  };
  EXPECT_EQ(put(DISPID_VALUE, {DISPID_PROPERTYPUT}), 0);
  EXPECT_EQ(put(DISPID_VALUE, {0}), static_cast<HRESULT>(0x800A01C2));
  EXPECT_EQ(put(DISPID_VALUE, {}), static_cast<HRESULT>(0x800A01C2));
  EXPECT_EQ(put(DISPID_NEWENUM, {DISPID_PROPERTYPUT}), static_cast<HRESULT>(0x800A01B6));
  EXPECT_EQ(dictionary.Call(L"Count").value.number(), 1);
}

TEST_F(CallTest, OptionalArgumentsMayBeLeftOutAnywhere) {
  const TypedObject reads(kReads);
  const TypedObject rows(Ask(reads, L"select 1 a, 2 b union all select 3, 4 order by a").value.object());
  // GetRows(Rows, Start, Fields) with the last alone: by name, or with the others left out.
  const DISPID id = rows.Number(L"GetRows");
  for (const Answer& answer : {Invoke(rows.get(), id, DISPATCH_METHOD, {L"b"}, {2}),
                               Invoke(rows.get(), id, DISPATCH_METHOD, {Value::LeftOut(), 1, L"b"})}) {
    ASSERT_EQ(answer.value.type(), VT_ARRAY | VT_VARIANT);
    SAFEARRAY* const cells = Value(answer.value).get().parray;
    ASSERT_EQ(SafeArrayGetDim(cells), 2U);
    EXPECT_EQ(cells->rgsabound[0].cElements, 2U);
    EXPECT_EQ(cells->rgsabound[1].cElements, 1U);
    Invoke(rows.get(), rows.Number(L"MoveFirst"), DISPATCH_METHOD, {});
  }
}

TEST_F(CallTest, AnswersHaveTheDeclaredTypesEvenWhenThereIsNothingToAnswer) {
  const TypedObject reads(kReads);
  const Value nothing(static_cast<IDispatch*>(nullptr));
  EXPECT_EQ(reads.Call(L"bExistStock", {nothing}).value.type(), VT_BOOL);
  EXPECT_EQ(reads.Call(L"GetTotalLogisticsCosts", {nothing}).value.type(), VT_R8);
  const Answer rows = reads.Call(L"GetWeightByFID", {nothing});
  EXPECT_EQ(rows.value.type(), VT_DISPATCH);
  EXPECT_EQ(rows.value.object(), nullptr);
}

TEST_F(CallTest, FilesAndFoldersHaveNamesInAnyLanguage) {
  const wchar_t* const folder = _wgetenv(L"TESSARLORN_TEST_FOLDER");
  ASSERT_NE(folder, nullptr);
  const std::wstring own = folder + std::wstring(L"\\\u8ba2\u5355");
  CreateDirectoryW(own.c_str(), nullptr);
  const TypedObject reads(kReads);
  EXPECT_EQ(reads.Call(L"ExecuteSQL", {L"Embedded=" + own + L"\\\u4e00.db", L"select 1 a"}).description, L"");
  EXPECT_NE(GetFileAttributesW((own + L"\\\u4e00.db").c_str()), INVALID_FILE_ATTRIBUTES);
  const std::wstring none = own + L"\\\u65e0";
  EXPECT_EQ(reads.Call(L"ExecuteSQL", {L"Embedded=" + none + L"\\a.db", L"select 1 a"}).description,
            L"Cannot open the database '" + none + L"\\a.db': the folder '" + none + L"' does not exist.");
}

TEST_F(CallTest, ErrorsNeedNoReceiver) {
  const TypedObject reads(kReads);
  DISPPARAMS none{};
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(
      reads.get()->Invoke(reads.Number(L"ExecuteSQL"), IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr),
      DISP_E_EXCEPTION);
  com::Pointer<ISupportErrorInfo> support = com::Query<ISupportErrorInfo>(reads.get());
  ASSERT_TRUE(support);
  EXPECT_EQ(support->InterfaceSupportsErrorInfo(IID_IDispatch), S_OK);
  EXPECT_EQ(support->InterfaceSupportsErrorInfo(IID_IPersist), S_FALSE);
  com::Pointer<IErrorInfo> info;
  ASSERT_EQ(GetErrorInfo(0, info.Receive()), S_OK);
  com::OwnedBstr source;
  com::OwnedBstr description;
  EXPECT_EQ(info->GetSource(source.Receive()), S_OK);
  EXPECT_EQ(info->GetDescription(description.Receive()), S_OK);
  EXPECT_STREQ(source.get(), L"TessarLornPickingAndDelivery");
  EXPECT_STREQ(description.get(), L"Argument not optional: sDsn of clsGetData.ExecuteSQL");
}

TEST_F(CallTest, ErrorsThatWereTakenDoNotStayWithTheThread) {
  const TypedObject reads(kReads);
  DISPPARAMS none{};
  const DISPID member = reads.Number(L"ExecuteSQL");
  com::Pointer<IErrorInfo> info;
  EXPECT_NE(Ask(reads, L"select nothing").description, L"");
  EXPECT_EQ(GetErrorInfo(0, info.Receive()), S_FALSE);
  reads.get()->Invoke(member, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr);
  EXPECT_EQ(Ask(reads, L"select 1 a").status, S_OK);
  EXPECT_EQ(GetErrorInfo(0, info.Receive()), S_FALSE);
}

// References of each kind that a client's variable may have.
TEST_F(CallTest, InOutArgumentsAreWrittenBackInTheTypeOfTheVariable) {
  const TypedObject reads(kReads);
  ASSERT_EQ(Ask(reads, L"create table IC_WebshopToStorage (FWebShopID int, FWebShopType int)").status, S_OK);
  Ask(reads, L"create table IC_Web2ERPOrders (FID int, FWebShopID int)");
  Ask(reads, L"insert into IC_WebshopToStorage values (7, 42)");
  Ask(reads, L"insert into IC_Web2ERPOrders values (1, 7)");
  const auto call = [&](VARTYPE type, void* target) {
    Value reference;
    reference.get().vt = static_cast<VARTYPE>(type | VT_BYREF);
    reference.get().byref = target;
    return Invoke(reads.get(), reads.Number(L"CheckWebShopTypeSameByOrders"), DISPATCH_METHOD,
                  {kMemory, L"1", reference});
  };
  short small = 0;
  EXPECT_EQ(call(VT_I2, &small).value.get().boolVal, VARIANT_TRUE);
  EXPECT_EQ(small, 42);
  long number = 0;
  EXPECT_EQ(call(VT_I4, &number).status, S_OK);
  EXPECT_EQ(number, 42);
  for (const VARTYPE type :
       {VT_I1, VT_UI1, VT_UI2, VT_UI4, VT_INT, VT_UINT, VT_I8, VT_UI8, VT_R4, VT_R8, VT_CY, VT_DECIMAL, VT_DATE}) {
    Value number_of;
    VARIANT& own = number_of.get();
    EXPECT_EQ(call(type, type == VT_DECIMAL ? static_cast<void*>(&own.decVal) : &own.llVal).status, S_OK) << type;
    own.vt = type;
    EXPECT_EQ(number_of.number(), 42) << type;
  }
  // Refused before anything is done.
  IDispatch* object = nullptr;
  EXPECT_EQ(call(VT_DISPATCH, &object).error, static_cast<HRESULT>(0x800A000D));
  Value any(L"1");
  EXPECT_EQ(call(VT_VARIANT, &any.get()).status, S_OK);
  EXPECT_EQ(any.type(), VT_I2);
  EXPECT_EQ(any.number(), 42);
  Value inner;
  long behind = 0;
  inner.get().vt = VT_I4 | VT_BYREF;
  inner.get().plVal = &behind;
  EXPECT_EQ(call(VT_VARIANT, &inner.get()).status, S_OK);
  EXPECT_EQ(inner.type(), VT_I4 | VT_BYREF);
  EXPECT_EQ(behind, 42);
  BSTR text = SysAllocString(L"1");
  EXPECT_EQ(call(VT_BSTR, &text).status, S_OK);
  EXPECT_STREQ(text, L"42");
  SysFreeString(text);
}

}  // namespace
}  // namespace tessarlorn::com_test
