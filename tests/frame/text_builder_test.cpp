#include "frame/text_builder.h"

#include <gtest/gtest.h>

#include "tessarlorn/error.h"

namespace tessarlorn {
namespace {

TEST(TextBuilderTest, EndsLinesWithCrLf) {
  TextBuilder text;
  text.Append(R"(
Set FIsRowClose = 1 --行
  Where FID IN ({FID}) and {n} <> {FID}
)"_sql,
              {{"FID", "{n},2"}, {"n", -2147483647 - 1}});
  text.Line("a", std::string("b"), std::string_view("c"));
  text.Append(R"(x)"_sql);
  EXPECT_EQ(text.GetText(), "Set FIsRowClose = 1 --行\r\n  Where FID IN ({n},2) and -2147483648 <> {n},2\r\nabc\r\nx");
}

TEST(TextBuilderTest, RefusesAPlaceWithoutAValue) {
  TextBuilder text;
  EXPECT_THROW(text.Append("{a}{b}", {{"a", "1"}}), Error);
}

}  // namespace
}  // namespace tessarlorn
