#include "platform/text/text.h"

#include <gtest/gtest.h>

namespace tessarlorn {
namespace {

TEST(TextTest, WalksWellFormedAndMalformedText) {
  const std::tuple<const char*, std::string, std::size_t, bool> cases[] = {
      {"ascii", "abc", 3, true},
      {"han", "\u8ba2\u5355", 2, true},
      {"astral", "\U00020BB7", 2, true},
      {"overlong", "\xC0\xAF", 2, false},
      {"surrogate", "\xED\xA0\x80", 3, false},
      {"cut", "a\xE8\xAE", 3, false},
      {"too large", "\xF4\x90\x80\x80", 4, false},
      {"stray", "\x80z", 2, false},
  };
  for (const auto& [name, text, units, valid] : cases) {
    EXPECT_EQ(Utf16Length(text), units) << name;
    EXPECT_EQ(IsValidUtf8(text), valid) << name;
    std::string copy;
    for (std::size_t position = 0; position < text.size();) AppendCharacter(copy, NextCharacter(text, position));
    EXPECT_EQ(copy == text, valid) << name;
    EXPECT_TRUE(IsValidUtf8(copy)) << name;
  }
}

TEST(TextTest, ChangesCase) {
  const std::pair<const char*, const char*> cases[] = {
      {"order9_", "ORDER9_"},
      {"\u00e9\u00ff", "\u00c9\u0178"},
      {"\u0101\u017e\u0142", "\u0100\u017d\u0141"},
      {"\u03b1\u03c9\u03ac\u03ce", "\u0391\u03a9\u0386\u038f"},
      {"\u0436\u0451", "\u0416\u0401"},
      {"\uff41\uff5a", "\uff21\uff3a"},
      {"\u00f7\u8ba2", "\u00f7\u8ba2"},
  };
  for (const auto& [lower, upper] : cases) {
    EXPECT_EQ(UpperCase(lower), upper);
    EXPECT_EQ(LowerCase(upper), lower);
  }
  EXPECT_EQ(UpperCase("\x80z"), "\x80Z");
}

TEST(TextTest, FindsWithoutCase) {
  EXPECT_TRUE(EqualsIgnoreCase("Connect", "cONNECT"));
  EXPECT_FALSE(EqualsIgnoreCase("[", "{"));
  EXPECT_TRUE(StartsWithIgnoreCase("Embedded=x", "embedded="));
  EXPECT_FALSE(StartsWithIgnoreCase("Emb", "embedded"));
  EXPECT_EQ(FindIgnoreCase("xSelect", "SELECT"), 1U);
  EXPECT_EQ(FindIgnoreCase("sel", "select"), std::string::npos);
  EXPECT_EQ(FindIgnoreCase("", ""), 0U);
}

TEST(TextTest, SplitsAndReplaces) {
  EXPECT_EQ(Split("1,,2,", ','), (std::vector<std::string_view>{"1", "", "2", ""}));
  EXPECT_EQ(Split("", ','), (std::vector<std::string_view>{""}));
  EXPECT_EQ(Trim("  a b "), "a b");
  EXPECT_EQ(Trim("   "), "");
  EXPECT_EQ(ReplaceAll("it''s '", "'", "''"), "it''''s ''");
  EXPECT_EQ(ReplaceAll("a", "", "b"), "a");
}

TEST(TextTest, NamesTheNearest) {
  const std::vector<std::string_view> names = {"Delivery", "DeliveryRemark", "UploadStatus"};
  EXPECT_EQ(Nearest("delivry", names), "Delivery");
  EXPECT_EQ(Nearest("UpLoadStaus", names), "UploadStatus");
  EXPECT_EQ(Nearest("xyz", names), "");
}

}  // namespace
}  // namespace tessarlorn
