#include <gtest/gtest.h>

#include "hosts/objects/dictionary_object.h"
#include "hosts/objects/vector_object.h"
#include "objects/object_support.h"

namespace tessarlorn {
namespace {

class DictionaryObjectTest : public testing::Test {
 protected:
  std::shared_ptr<Dictionary> inside_ = std::make_shared<Dictionary>();
  DictionaryObject object_{inside_};
};

TEST_F(DictionaryObjectTest, KeepsValuesUnderKeysInTheirOrder) {
  Call(object_, "Add", {"FID", 12});
  Put(object_, "Item", {"fid", "small"});
  Call(object_, "SetValue", {7, Null{}});
  Put(object_, "item", {"FID", 13});
  EXPECT_EQ(Get(object_, "Count").ToInt32(), 3);
  EXPECT_EQ(Get(object_, "Item", {"FID"}).ToInt32(), 13);
  EXPECT_TRUE(Get(object_, "Item", {"7"}).is_null());
  EXPECT_EQ(ArrayTexts(Call(object_, "Keys")), (std::vector<std::string>{"FID", "fid", "7"}));
  EXPECT_EQ(ArrayTexts(Call(object_, "Items")), (std::vector<std::string>{"13", "small", "NULL"}));
  EXPECT_EQ(Texts(object_.Items()), ArrayTexts(Get(object_, "_NewEnum")));
  Put(object_, "Key", {"fid", "Fid"});
  EXPECT_EQ(ArrayTexts(Call(object_, "Keys")), (std::vector<std::string>{"FID", "Fid", "7"}));
  EXPECT_TRUE(Call(object_, "Exists", {"Fid"}).ToBool());
  Call(object_, "Remove", {"Fid"});
  EXPECT_FALSE(Call(object_, "Exists", {"Fid"}).ToBool());
  Call(object_, "RemoveAll");
  EXPECT_TRUE(inside_->empty());
}

TEST_F(DictionaryObjectTest, ReadsAbsentKeysWithoutMakingThem) {
  EXPECT_TRUE(Get(object_, "Item", {"none"}).is_empty());
  EXPECT_TRUE(Call(object_, "GetValue", {"none"}).is_empty());
  EXPECT_EQ(Call(object_, "GetValue", {"none", 5}).ToInt32(), 5);
  EXPECT_EQ(Get(object_, "Count").ToInt32(), 0);
}

TEST_F(DictionaryObjectTest, FindsRenamedKeysAmongMany) {
  for (int i = 0; i < 20; ++i) Call(object_, "Add", {i, i});
  Put(object_, "Key", {5, "five"});
  EXPECT_EQ(Get(object_, "Item", {"five"}).ToInt32(), 5);
  EXPECT_FALSE(Call(object_, "Exists", {5}).ToBool());
}

TEST_F(DictionaryObjectTest, RefusesWhatDoesNotFit) {
  Put(object_, "CompareMode", {0});
  EXPECT_EQ(Number([&] { Put(object_, "CompareMode", {1}); }), 5);
  Call(object_, "Add", {"FID", 12});
  EXPECT_EQ(Number([&] { Call(object_, "Add", {"FID", 13}); }), 457);
  EXPECT_EQ(Number([&] { Call(object_, "Remove", {"fid"}); }), 32811);
  EXPECT_EQ(Number([&] { Put(object_, "Key", {"fid", "x"}); }), 32811);
  EXPECT_EQ(Number([&] { Put(object_, "Key", {"FID", "FID"}); }), 457);
  EXPECT_EQ(Number([&] { Put(object_, "CompareMode", {0}); }), 5);
  EXPECT_EQ(Number([&] { Call(object_, "Add", {Variant(inside_), 1}); }), 13);
  EXPECT_EQ(Get(object_, "Item", {"FID"}).ToInt32(), 12);
}

TEST_F(DictionaryObjectTest, MayHoldItself) {
  Call(object_, "Add", {"self", inside_});
  EXPECT_EQ(Get(object_, "Item", {"self"}).ToDictionary(), inside_);
  EXPECT_EQ(ArrayTexts(Call(object_, "Keys")), std::vector<std::string>{"self"});
  // Nothing but itself holds it when it is emptied.
  DictionaryObject last(std::make_shared<Dictionary>());
  Call(last, "Add", {"self", last.dictionary()});
  Call(last, "RemoveAll");
  EXPECT_EQ(last.dictionary().use_count(), 1);
  Call(object_, "RemoveAll");
}

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
    EXPECT_EQ(Number([&] { Get(object, "Item", {position}); }), 9) << position;
    EXPECT_EQ(Number([&] { Put(object, "Item", {position, 0}); }), 9) << position;
    EXPECT_EQ(Number([&] { Call(object, "Remove", {position}); }), 9) << position;
  }
  EXPECT_EQ(Number([&] { Get(object, "Item", {"first"}); }), 13);
  EXPECT_EQ(Texts(object.Items()), (std::vector<std::string>{"1", "2"}));
}

}  // namespace
}  // namespace tessarlorn
