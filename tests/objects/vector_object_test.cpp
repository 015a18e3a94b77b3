#include "hosts/objects/vector_object.h"

#include <gtest/gtest.h>

#include "objects/object_support.h"

namespace tessarlorn {
namespace {

TEST(VectorObjectTest, KeepsValuesInOrderFromOneOn) {
  const auto inside = std::make_shared<Vector>();
  VectorObject object(inside);
  for (const Variant& value : {Variant("a"), Variant(2), Variant(Null{}), Variant(4)}) Call(object, "Add", {value});
  Put(object, "Item", {2, "two"});
  Call(object, "Remove", {"3"});
  EXPECT_EQ(Get(object, "Count").ToInt32(), 3);
  EXPECT_EQ(Get(object, "Item", {1}).ToText(), "a");
  EXPECT_EQ(Texts(object.Items()), (std::vector<std::string>{"a", "two", "4"}));
  EXPECT_EQ(inside->size(), 3U);
  Call(object, "Clear");
  EXPECT_TRUE(inside->empty());
}

TEST(VectorObjectTest, RefusesPositionsThatItDoesNotHave) {
  VectorObject object(std::make_shared<Vector>(Vector{1, 2}));
  for (const std::int32_t position : {-2147483647, -1, 0, 3}) {
    EXPECT_EQ(ErrorOf([&] { Get(object, "Item", {position}); }), 9) << position;
    EXPECT_EQ(ErrorOf([&] { Put(object, "Item", {position, 0}); }), 9) << position;
    EXPECT_EQ(ErrorOf([&] { Call(object, "Remove", {position}); }), 9) << position;
  }
  EXPECT_EQ(ErrorOf([&] { Get(object, "Item", {"first"}); }), 13);
  EXPECT_EQ(Texts(object.Items()), (std::vector<std::string>{"1", "2"}));
}

}  // namespace
}  // namespace tessarlorn
