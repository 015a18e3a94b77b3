#include "tessarlorn/collections.h"

#include <gtest/gtest.h>
#include <string>

#include "support/error_of.h"

namespace tessarlorn {
namespace {

TEST(DictionaryTest, KeepsOrderAndPlacesThroughChanges) {
  // Few keys are searched one by one, many through an index.
  for (const int others : {0, 12, 50}) {
    Dictionary entries{{"b", 1}, {"a", 2}, {"c", 3}};
    for (int i = 0; i < others; ++i) entries.SetValue("key" + std::to_string(i), i);
    entries.SetValue("b", 10);
    EXPECT_TRUE(entries.Remove("a"));
    EXPECT_FALSE(entries.Remove("a"));
    entries.SetValue("A", 4);
    const auto count = static_cast<std::size_t>(3 + others);
    ASSERT_EQ(entries.size(), count);
    EXPECT_EQ(entries.At(1).first, "b");
    EXPECT_EQ(entries.At(1).second.ToInt32(), 10);
    EXPECT_EQ(entries.At(2).first, "c");
    EXPECT_EQ(entries.At(count).first, "A");
    EXPECT_EQ(entries.Find("c")->ToInt32(), 3);
    EXPECT_FALSE(entries.Exists("a"));
    EXPECT_EQ(entries.GetValue("a", "none").ToText(), "none");
    for (int i = 0; i < others; ++i) EXPECT_EQ(entries.GetValue("key" + std::to_string(i)).ToInt32(), i);
  }
}

TEST(CollectionsTest, CountFromOne) {
  const Vector items{1, 2};
  EXPECT_EQ(items.At(2).ToInt32(), 2);
  for (const std::size_t position : {0U, 3U}) {
    EXPECT_EQ(ErrorOf([&] { (void)items.At(position); }).number(), error_number::kSubscriptOutOfRange) << position;
  }
}

}  // namespace
}  // namespace tessarlorn
