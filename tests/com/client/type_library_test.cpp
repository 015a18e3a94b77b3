#include <gtest/gtest.h>

#include "com/client/typed_object.h"

namespace tessarlorn::com_test {
namespace {

std::wstring NameOf(ITypeInfo& info) {
  BSTR name = nullptr;
  EXPECT_EQ(info.GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr), S_OK);
  return Taken(name);
}

/// Shows `look` each function of an interface.
template <typename Look>
UINT EachFunction(ITypeInfo& info, const Look& look) {
  TYPEATTR* attributes = nullptr;
  EXPECT_EQ(info.GetTypeAttr(&attributes), S_OK);
  const UINT count = attributes->cFuncs;
  info.ReleaseTypeAttr(attributes);
  for (UINT i = 0; i < count; ++i) {
    FUNCDESC* function = nullptr;
    EXPECT_EQ(info.GetFuncDesc(i, &function), S_OK);
    // Those of IDispatch are there as well.
    if ((function->wFuncFlags & FUNCFLAG_FRESTRICTED) == 0 || function->memid == DISPID_NEWENUM) look(*function);
    info.ReleaseFuncDesc(function);
  }
  return count;
}

/// An object of each class: by its ProgID, or by its name where only other objects hand it out.
class TypeLibraryTest : public testing::TestWithParam<const wchar_t*> {
 protected:
  static TypedObject Make() {
    const std::wstring_view name(GetParam());
    if (name.find(L'.') != std::wstring_view::npos) return TypedObject(GetParam());
    const TypedObject reads(L"TessarLornPickingAndDelivery.clsGetData");
    const Answer rows = reads.Call(L"ExecuteSQL", {L"Embedded=:memory:types", L"select 1 a"});
    const TypedObject recordset(rows.value.object());
    if (name == L"Recordset") return recordset;
    return TypedObject(recordset.Call(L"Fields", {name == L"Fields" ? Value::LeftOut() : Value(0)}).value.object());
  }

 private:
  Apartment apartment_;
};

// What a client that binds early reads is what one that binds late asks the object for.
TEST_P(TypeLibraryTest, DescribesWhatTheObjectAnswers) {
  const TypedObject object = Make();
  TYPEATTR* attributes = nullptr;
  ASSERT_EQ(object.info()->GetTypeAttr(&attributes), S_OK);
  EXPECT_EQ(attributes->typekind, TKIND_DISPATCH);
  void* same = nullptr;
  EXPECT_EQ(object.get()->QueryInterface(attributes->guid, &same), S_OK);
  if (same != nullptr) static_cast<IUnknown*>(same)->Release();
  object.info()->ReleaseTypeAttr(attributes);
  const UINT count = EachFunction(*object.info(), [&](const FUNCDESC& function) {
    const DISPID id = function.memid;
    const auto parameters = static_cast<UINT>(function.cParams);
    const bool put = (function.invkind & (INVOKE_PROPERTYPUT | INVOKE_PROPERTYPUTREF)) != 0;
    BSTR help = nullptr;
    EXPECT_EQ(object.info()->GetDocumentation(id, nullptr, &help, nullptr, nullptr), S_OK);
    EXPECT_FALSE(Taken(help).empty()) << id;
    BSTR names[16] = {};
    UINT found = 0;
    EXPECT_EQ(object.info()->GetNames(id, names, 16, &found), S_OK);
    // The new value of a property has no name of its own.
    EXPECT_GE(found + (put ? 1 : 0), parameters + 1) << id;
    std::vector<DISPID> ids((put ? parameters - 1 : parameters) + 1);
    EXPECT_EQ(
        object.get()->GetIDsOfNames(IID_NULL, names, static_cast<UINT>(ids.size()), LOCALE_USER_DEFAULT, ids.data()),
        S_OK)
        << id;
    EXPECT_EQ(ids[0], id);
    for (UINT a = 1; a < ids.size(); ++a) EXPECT_EQ(ids[a], static_cast<DISPID>(a - 1)) << id;
    for (BSTR text : names) SysFreeString(text);
  });
  EXPECT_GT(count, 2U);
}

TEST_P(TypeLibraryTest, KnowsTheClassOfTheObject) {
  const TypedObject object = Make();
  const com::Pointer<IProvideClassInfo> provider = com::Query<IProvideClassInfo>(object.get());
  ASSERT_TRUE(provider);
  com::Pointer<ITypeInfo> info;
  ASSERT_EQ(provider->GetClassInfo(info.Receive()), S_OK);
  TYPEATTR* attributes = nullptr;
  ASSERT_EQ(info->GetTypeAttr(&attributes), S_OK);
  EXPECT_EQ(attributes->typekind, TKIND_COCLASS);
  CLSID class_id{};
  const bool creatable = SUCCEEDED(CLSIDFromProgID(GetParam(), &class_id));
  EXPECT_EQ(IsEqualGUID(attributes->guid, class_id) != 0, creatable);
  info->ReleaseTypeAttr(attributes);
  HREFTYPE reference = 0;
  com::Pointer<ITypeInfo> implemented;
  ASSERT_EQ(info->GetRefTypeOfImplType(0, &reference), S_OK);
  ASSERT_EQ(info->GetRefTypeInfo(reference, implemented.Receive()), S_OK);
  EXPECT_EQ(NameOf(*implemented.get()), NameOf(*object.info()));
}

INSTANTIATE_TEST_SUITE_P(Classes, TypeLibraryTest,
                         testing::Values(L"TessarLornPickingAndDelivery.clsSaveData",
                                         L"TessarLornPickingAndDelivery.clsGetData", L"Mirel.Dictionary",
                                         L"Mirel.Vector", L"Recordset", L"Fields", L"Field"));

}  // namespace
}  // namespace tessarlorn::com_test
