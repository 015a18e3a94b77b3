#include <gtest/gtest.h>

#include "com/client/typed_object.h"

namespace tessarlorn::com_test {
namespace {

constexpr const wchar_t* kMemory = L"Embedded=:memory:collections";

struct Kind {
  const wchar_t* prog_id;
  /// Whether values have keys.
  bool keyed;
};

/// Collections of both origins: own ones, and those of the platform, which are reached by calls alone.
class CollectionsTest : public testing::TestWithParam<Kind> {
 protected:
  CollectionsTest() {
    const TypedObject reads(L"TessarLornPickingAndDelivery.clsGetData");
    reads.Call(L"ExecuteSQL", {kMemory, L"create table IC_Web2ERPOrdersEntry (FID int, FStockID int)"});
  }
  static TypedObject Make() { return TypedObject(GetParam().prog_id); }
  static void Put(const TypedObject& collection, const wchar_t* key, IDispatch* item) {
    GetParam().keyed ? collection.Call(L"Add", {key, item}) : collection.Call(L"Add", {item});
  }
  /// A collection in another one, and so on.
  static TypedObject Nest(int levels, int references) {
    TypedObject inner = Make();
    for (int i = 1; i < levels; ++i) {
      TypedObject outer = Make();
      for (int r = 0; r < references; ++r) Put(outer, r == 0 ? L"one" : L"other", inner.get());
      inner = outer;
    }
    return inner;
  }
  /// An operation that does not look at the collection.
  static Answer Pass(const TypedObject& collection) {
    const TypedObject arguments(L"Mirel.Dictionary");
    arguments.Call(L"Add", {L"sDSN", kMemory});
    arguments.Call(L"Add", {L"FID", L"1"});
    arguments.Call(L"Add", {L"FMore", collection.get()});
    return TypedObject(L"TessarLornPickingAndDelivery.clsGetData").Call(L"bExistStock", {arguments.get()});
  }

  Apartment apartment_;
};

// Copied for each of its holders, the innermost one would have 2^59 copies.
TEST_P(CollectionsTest, IsConvertedOnceWhoeverHoldsIt) { EXPECT_EQ(Pass(Nest(60, 2)).status, S_OK); }

TEST_P(CollectionsTest, IsRefusedWhenItHoldsItself) {
  const TypedObject outer = Make();
  const TypedObject inner = Make();
  Put(outer, L"inner", inner.get());
  Put(inner, L"outer", outer.get());
  const Answer answer = Pass(outer);
  // Or else they would keep each other for ever.
  inner.Call(GetParam().keyed ? L"RemoveAll" : L"Clear");
  EXPECT_EQ(answer.error, static_cast<HRESULT>(0x800A0005));
  EXPECT_EQ(answer.description, L"A collection holds itself");
  EXPECT_EQ(Pass(outer).status, S_OK);
}

TEST_P(CollectionsTest, IsRefusedWhenItIsTooDeep) {
  const Answer answer = Pass(Nest(500, 1));
  EXPECT_EQ(answer.error, static_cast<HRESULT>(0x800A0005));
  EXPECT_EQ(answer.description, L"Collections are nested too deep");
}

INSTANTIATE_TEST_SUITE_P(Kinds, CollectionsTest,
                         testing::Values(Kind{L"Mirel.Vector", false}, Kind{L"Mirel.Dictionary", true},
                                         Kind{L"Scripting.Dictionary", true}));

}  // namespace
}  // namespace tessarlorn::com_test
