#include "hosts/objects/type_library_text.h"

#include <gtest/gtest.h>

#include "platform/text/text.h"
#include "tessarlorn/operations.h"

namespace tessarlorn {
namespace {

/// Help is prose, with quotes of its own: each text ends where it should, on its line.
TEST(TypeLibraryTextTest, QuotesHelp) {
  const std::string text = TypeLibraryText();
  EXPECT_NE(text.find(R"("Fields by which the rows are ordered, as \"FDate DESC, FID\".")"), std::string::npos);
  for (const std::string_view line : Split(text, '\n')) {
    std::size_t quotes = 0;
    for (std::size_t i = 0; i < line.size(); ++i) {
      if (line[i] == '\\') {
        ++i;
      } else if (line[i] == '"') {
        ++quotes;
      }
    }
    EXPECT_EQ(quotes % 2, 0U) << line;
  }
}

/// A client of the library has no other list of keys and columns.
TEST(TypeLibraryTextTest, TellsTheKeysAndColumnsOfOperations) {
  const std::string text = TypeLibraryText();
  for (const Operation* const operation : Operations()) {
    for (const Argument& argument : operation->arguments()) {
      for (const Key& key : argument.keys) {
        EXPECT_NE(text.find(" " + std::string(key.name) + " ("), std::string::npos) << operation->name << key.name;
      }
    }
    for (const Column& column : operation->contract->columns) {
      EXPECT_NE(text.find(" " + std::string(column.name) + " ("), std::string::npos) << operation->name << column.name;
    }
  }
}

}  // namespace
}  // namespace tessarlorn
