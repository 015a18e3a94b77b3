// Values on their way in and back, and objects in the place of values.
#include <gtest/gtest.h>

#include "com/client/fake_object.h"
#include "com/client/typed_object.h"

namespace tessarlorn::com_test {
namespace {

constexpr const wchar_t* kMemory = L"Embedded=:memory:values";
constexpr HRESULT kTypeMismatch = static_cast<HRESULT>(0x800A000D);
constexpr HRESULT kOverflow = static_cast<HRESULT>(0x800A0006);

class ValuesTest : public testing::Test {
 protected:
  Value Rows(const std::wstring& sql) const { return reads_.Call(L"ExecuteSQL", {kMemory, sql}).value; }
  static Value Field(const Value& rows, const Value& index) {
    return TypedObject(rows.object()).Call(L"Fields", {index}).value;
  }
  Answer Put(const Value& key, const Value& value, WORD flags = DISPATCH_PROPERTYPUT) const {
    return Invoke(dictionary_.get(), DISPID_VALUE, flags, {key, value}, {DISPID_PROPERTYPUT});
  }
  [[nodiscard]] Value Get(const Value& key) const {
    return Invoke(dictionary_.get(), DISPID_VALUE, DISPATCH_PROPERTYGET, {key}).value;
  }
  static Value Date(double days) {
    Value value(days);
    value.get().vt = VT_DATE;
    return value;
  }

  const Apartment apartment_;
  const TypedObject reads_{L"TessarLornPickingAndDelivery.clsGetData"};
  const TypedObject dictionary_{L"Mirel.Dictionary"};
};

TEST_F(ValuesTest, ObjectsAreReadWhereAValueIsWanted) {
  const Value rows = Rows(L"select 'FID' as FName, '1' as FID, 'select 9 a' as FText, cast(null as int) as FNone");
  const auto fake = FakeObject::Make();
  fake->set_default(L"select 9 a");
  // One whose default member is another object has that one's default value.
  const auto outer = FakeObject::Make();
  outer->set_default(fake->dispatch());
  for (const Value& text : {Field(rows, L"FText"), Value(fake->dispatch()), Value(outer->dispatch())}) {
    const Answer nine = Invoke(reads_.get(), reads_.Number(L"ExecuteSQL"), DISPATCH_METHOD, {kMemory, text});
    ASSERT_NE(nine.value.object(), nullptr) << nine.error;
    EXPECT_EQ(Field(nine.value, 0).text(), L"9");
    EXPECT_EQ(Put(L"put", text).status, S_OK);
    EXPECT_EQ(Get(L"put").type(), VT_BSTR);
    EXPECT_EQ(Put(L"set", text, DISPATCH_PROPERTYPUTREF).status, S_OK);
    EXPECT_EQ(Get(L"set").object(), text.object());
  }
  EXPECT_EQ(Put(Field(rows, L"FName"), 1).status, S_OK) << "a key";
  EXPECT_EQ(Get(L"FID").number(), 1);
  EXPECT_EQ(Invoke(TypedObject(rows.object()).get(), 0, DISPATCH_PROPERTYGET, {Field(rows, L"FName")}).value.text(),
            L"1");
  EXPECT_EQ(Invoke(reads_.get(), reads_.Number(L"ExecuteSQL"), DISPATCH_METHOD, {kMemory, Field(rows, L"FNone")}).error,
            static_cast<HRESULT>(0x800A005E));
}

TEST_F(ValuesTest, ObjectsWithoutDefaultValueStayObjects) {
  const auto itself = FakeObject::Make();
  itself->set_default(itself->dispatch());
  const TypedObject foreign(L"Scripting.Dictionary");
  const auto none = FakeObject::Make();
  const TypedObject vector(L"Mirel.Vector");
  for (const Value& object : {Value(foreign.get()), Value(vector.get()), Value(none->dispatch()),
                              Value(itself->dispatch()), Rows(L"select 1 a")}) {
    const Answer put = Put(L"put", object);
    EXPECT_EQ(put.status, S_OK) << put.error;
    EXPECT_EQ(Get(L"put").object(), object.object());
  }
  itself->set_default(Value());
  EXPECT_EQ(
      Invoke(reads_.get(), reads_.Number(L"ExecuteSQL"), DISPATCH_METHOD, {kMemory, Value(none->dispatch())}).error,
      kTypeMismatch);
}

TEST_F(ValuesTest, OperationsReadTheValuesOfObjectsInCollections) {
  Rows(L"create table IC_Web2ERPOrdersEntry (FID int, FStockID int) insert into IC_Web2ERPOrdersEntry values (1, 0)");
  const Value rows = Rows(L"select 1 as FID");
  const auto cell = FakeObject::Make();
  cell->set_items({1});
  cell->add_member(L"Value");
  cell->set_default(1);
  for (const wchar_t* const kind : {L"Mirel.Dictionary", L"Scripting.Dictionary"}) {
    for (const Value& id : {Field(rows, L"FID"), Value(cell->dispatch())}) {
      const TypedObject arguments(kind);
      Invoke(arguments.get(), arguments.Number(L"Add"), DISPATCH_METHOD, {L"sDSN", kMemory});
      Invoke(arguments.get(), arguments.Number(L"Add"), DISPATCH_METHOD, {L"FID", id});
      const Answer answer = reads_.Call(L"bExistStock", {arguments.get()});
      EXPECT_EQ(answer.status, S_OK) << answer.error;
      EXPECT_EQ(answer.value.number(), -1);
    }
  }
}

TEST_F(ValuesTest, CollectionsOfOtherComponentsNeedOnlyCountAndEnumeration) {
  const auto keys = FakeObject::Make();
  keys->set_items({L"FA", L"FB"});
  const auto keyed = FakeObject::Make();
  keyed->set_keys(keys->dispatch());
  EXPECT_EQ(reads_.Call(L"bExistStock", {keyed->dispatch()}).status, S_OK);
  // Not half of them.
  keys->set_items({L"FA"}, E_FAIL);
  EXPECT_EQ(reads_.Call(L"bExistStock", {keyed->dispatch()}).error, E_FAIL);
  keys->set_items({}, E_ACCESSDENIED);
  EXPECT_EQ(reads_.Call(L"bExistStock", {keyed->dispatch()}).error, E_ACCESSDENIED);
}

TEST_F(ValuesTest, CollectionsAreTheSameObjectEachTime) {
  const TypedObject vector(L"Mirel.Vector");
  for (const Value& object : {Value(dictionary_.get()), Value(vector.get()), Rows(L"select 1 a")}) {
    const TypedObject holder(L"Mirel.Dictionary");
    holder.Call(L"Add", {L"inner", object});
    EXPECT_EQ(holder.Call(L"Item", {L"inner"}).value.object(), object.object());
  }
  // One that nobody else holds, too.
  dictionary_.Call(L"Add", {L"inner", TypedObject(L"Mirel.Dictionary").get()});
  const Value inner = Get(L"inner");
  ASSERT_NE(inner.object(), nullptr);
  EXPECT_EQ(Get(L"inner").object(), inner.object());
}

TEST_F(ValuesTest, ArraysKeepBoundsAndType) {
  const auto make = [](VARTYPE type, std::vector<SAFEARRAYBOUND> bounds) {
    Value value;
    value.get().parray = SafeArrayCreate(type, static_cast<UINT>(bounds.size()), bounds.data());
    value.get().vt = static_cast<VARTYPE>(VT_ARRAY | type);
    return value;
  };
  for (const VARTYPE type : {VT_VARIANT, VT_BSTR, VT_R8, VT_CY, VT_DECIMAL, VT_DISPATCH, VT_I8}) {
    Put(L"array", make(type, {{3, -5}}));
    Value back = Get(L"array");
    ASSERT_EQ(back.type(), VT_ARRAY | type);
    LONG lower = 0;
    EXPECT_EQ(SafeArrayGetLBound(back.get().parray, 1, &lower), S_OK);
    EXPECT_EQ(lower, -5);
    EXPECT_EQ(back.get().parray->rgsabound[0].cElements, 3U);
  }
  Put(L"array", make(VT_R4, {{2, 1}, {3, 1}, {4, 1}}));
  EXPECT_EQ(SafeArrayGetDim(Get(L"array").get().parray), 3U);
  // A vector has one dimension.
  const Value flat = make(VT_VARIANT, {{2, 1}});
  const Value square = make(VT_VARIANT, {{2, 1}, {2, 1}});
  const TypedObject saves(L"TessarLornPickingAndDelivery.clsSaveData");
  const DISPID weigh = saves.Number(L"SetUpLogisticsNumberAndWeight");
  EXPECT_EQ(Invoke(saves.get(), weigh, DISPATCH_METHOD, {kMemory, square}).error, kTypeMismatch);
  // What is said of an array has to be so.
  Value wrong = make(VT_BSTR, {{2, 0}});
  wrong.get().vt = VT_ARRAY | VT_VARIANT;
  const Answer refused = Put(L"array", wrong);
  wrong.get().vt = VT_ARRAY | VT_BSTR;
  EXPECT_EQ(refused.error, kTypeMismatch);
}

TEST_F(ValuesTest, NumbersKeepValueAndType) {
  for (const auto& [type, text] :
       {std::pair{VT_R4, L"1.1"}, {VT_CY, L"12.3456"}, {VT_UI1, L"200"}, {VT_I8, L"7"}, {VT_I8, L"9007199254740993"}}) {
    Value value(text);
    ASSERT_EQ(VariantChangeType(&value.get(), &value.get(), 0, static_cast<VARTYPE>(type)), S_OK);
    Put(L"number", value);
    EXPECT_EQ(Get(L"number").type(), type);
    EXPECT_EQ(Get(L"number").text(), text);
    // Inside it is the number that a client sees.
    Value key(value);
    dictionary_.Call(L"RemoveAll");
    EXPECT_EQ(Put(key, 1).status, S_OK);
    EXPECT_EQ(Get(text).number(), 1) << text;
  }
}

TEST_F(ValuesTest, DatesAreThoseOfAutomation) {
  // To the last bit, though the component counts milliseconds.
  for (const double date : {-657434.5, 46349.508958333331, 46349.50895833334, 0.1, -1.7000000001, 1e-12}) {
    EXPECT_EQ(Put(L"date", Date(date)).status, S_OK);
    EXPECT_EQ(Get(L"date").get().date, date);
  }
  EXPECT_EQ(Put(L"date", Date(-657435)).error, kOverflow);
  EXPECT_EQ(Put(L"date", Date(2958466)).error, kOverflow);
  const Value rows = Rows(L"select cast('0001-01-01' as date) as FFirst");
  EXPECT_EQ(TypedObject(Field(rows, 0).object()).Call(L"Value").error, kOverflow);
  EXPECT_EQ(TypedObject(rows.object()).Call(L"GetRows").error, kOverflow);
}

}  // namespace
}  // namespace tessarlorn::com_test
