#include "com/client/vtable.h"

#include <cstdlib>
#include <gtest/gtest.h>

namespace tessarlorn::com_test {
namespace {

/// A copy of the sample database for one way of calling.
std::wstring Database(const wchar_t* name) {
  const std::string folder = std::getenv("TESSARLORN_TEST_FOLDER");
  const std::wstring begin(folder.begin(), folder.end());
  const std::wstring path = begin + L"/" + name + L".db";
  for (const wchar_t* const left : {L"", L"-wal", L"-shm"}) DeleteFileW((path + left).c_str());
  EXPECT_TRUE(CopyFileW((begin + L"/sample.db").c_str(), path.c_str(), FALSE));
  return L"Embedded=" + path;
}

/// What operations take: the keys that most of them know.
std::vector<Value> ArgumentsFor(const Vtable::Function& function, const std::wstring& dsn) {
  std::vector<Value> values;
  const TypedObject dictionary(L"Mirel.Dictionary");
  for (const auto& [key, value] : {std::pair<const wchar_t*, Value>{L"sDSN", dsn}, {L"sDsn", dsn}, {L"FID", L"12"}}) {
    dictionary.Put(L"Item", {key, value});
  }
  for (const Vtable::Parameter& parameter : function.parameters) {
    if (parameter.type == VT_DISPATCH && parameter.name.starts_with(L"v")) {
      const TypedObject vector(L"Mirel.Vector");
      vector.Call(L"Add", {dictionary.get()});
      values.emplace_back(vector.get());
    } else if (parameter.type == VT_DISPATCH) {
      values.emplace_back(dictionary.get());
    } else if (parameter.type == VT_BSTR) {
      values.emplace_back(parameter.name == L"sDsn" ? dsn : L"12");
    } else if (parameter.type == VT_VARIANT) {
      values.push_back(Value::LeftOut());
    } else {
      values.emplace_back(1);
      VariantChangeType(&values.back().get(), &values.back().get(), 0, parameter.type);
    }
  }
  return values;
}

/// An object tells how much it holds.
std::wstring Shown(const Answer& answer) {
  IDispatch* const object = answer.value.object();
  if (object == nullptr) return FAILED(answer.status) ? L"" : answer.value.text();
  const TypedObject holder(object);
  return holder.Call(holder.Number(L"RecordCount") == DISPID_UNKNOWN ? L"Count" : L"RecordCount").value.text();
}

class OperationsByVtable : public testing::TestWithParam<const wchar_t*> {
 private:
  Apartment apartment_;
};

TEST_P(OperationsByVtable, AnswerAsByName) {
  const TypedObject object(GetParam());
  const Vtable vtable(object);
  const std::wstring late_dsn = Database(L"late");
  const std::wstring early_dsn = Database(L"early");
  for (const Vtable::Function& function : vtable.functions()) {
    const auto flags = static_cast<WORD>(function.kind);
    const Answer late = Invoke(object.get(), function.id, flags, ArgumentsFor(function, late_dsn));
    const Answer early = vtable.Call(function, ArgumentsFor(function, early_dsn));
    EXPECT_EQ(early.status, late.error) << function.name;
    EXPECT_EQ(early.source, late.source) << function.name;
    EXPECT_EQ(early.description, late.description) << function.name;
    EXPECT_EQ(Shown(early), Shown(late)) << function.name;
  }
}

INSTANTIATE_TEST_SUITE_P(Classes, OperationsByVtable,
                         testing::Values(L"TessarLornPickingAndDelivery.clsSaveData",
                                         L"TessarLornPickingAndDelivery.clsGetData"));

TEST(VtableTest, ObjectsAreTyped) {
  const Apartment apartment;
  const TypedObject dictionary(L"Mirel.Dictionary");
  const Vtable entries(dictionary);
  const Value key(L"FID");
  EXPECT_EQ(entries.Call(entries.Find(L"Item", INVOKE_PROPERTYPUT), {key, Value(7)}).status, S_OK);
  EXPECT_EQ(entries.Call(entries.Find(L"Item", INVOKE_PROPERTYPUTREF), {Value(L"inner"), dictionary.get()}).status,
            S_OK);
  EXPECT_EQ(entries.Get(L"Item", {key}).value.text(), L"7");
  EXPECT_EQ(entries.Get(L"Count").value.number(), 2);
  EXPECT_EQ(entries.Get(L"_NewEnum").value.type(), VT_UNKNOWN);
  EXPECT_EQ(entries.Get(L"Item", {Value(L"inner")}).value.object(), dictionary.get());

  const TypedObject reads(L"TessarLornPickingAndDelivery.clsGetData");
  const Vtable reader(reads);
  const Answer answer =
      reader.Call(L"ExecuteSQL", {L"Embedded=:memory:vtable", L"select 1 a, N'张' b union all select 2, null"});
  ASSERT_NE(answer.value.object(), nullptr);
  const Vtable rows{TypedObject(answer.value.object())};
  const Answer fields = rows.Get(L"Fields");
  ASSERT_NE(fields.value.object(), nullptr);
  const Answer field = Vtable(TypedObject(fields.value.object())).Get(L"Item", {Value(L"b")});
  ASSERT_NE(field.value.object(), nullptr);
  const Vtable name{TypedObject(field.value.object())};
  EXPECT_EQ(name.Get(L"Value").value.text(), L"张");
  EXPECT_EQ(rows.Call(L"MoveNext").status, S_OK);
  EXPECT_EQ(name.Get(L"Value").value.type(), VT_NULL);
  rows.Call(L"MoveNext");
  const Answer behind = rows.Call(L"MoveNext");
  EXPECT_EQ(behind.status, static_cast<HRESULT>(0x800A0BCD));
  EXPECT_FALSE(behind.description.empty());
}

}  // namespace
}  // namespace tessarlorn::com_test
