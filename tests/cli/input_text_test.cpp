#include "hosts/cli/input/input_text.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <string_view>

namespace tessarlorn::cli {
namespace {

using std::string_view_literals::operator""sv;

TEST(InputTextTest, ReadsWhatEditorsWriteAndRefusesTheRest) {
  using Case = std::pair<std::string_view, std::optional<std::string>>;
  for (const auto& [bytes, text] : {
           Case{"", ""},
           Case{"张\n", "张\n"},
           Case{"\xEF\xBB\xBF张", "张"},
           Case{"\xFF\xFE\x20\x5F\x0A\x00\x3D\xD8\x00\xDE"sv, "张\n😀"},
           Case{"\xFE\xFF\x5F\x20\x00\x0A\xD8\x3D\xDE\x00"sv, "张\n😀"},
           Case{"\xFF\xFE", ""},
           Case{"\xD5\xC5", std::nullopt},
           Case{"\xEF\xBB\xBF\xFF", std::nullopt},
           Case{"\xFF\xFE\x20", std::nullopt},
           Case{"\xFF\xFE\x3D\xD8\x0A\x00"sv, std::nullopt},
           Case{"\xFF\xFE\x00\x00\x41\x00\x00\x00"sv, std::nullopt},
       }) {
    EXPECT_EQ(DecodeText(std::string(bytes)), text) << testing::PrintToString(bytes);
  }
}

}  // namespace
}  // namespace tessarlorn::cli
