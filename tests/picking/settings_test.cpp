#include <gmock/gmock.h>

#include "support/recording_driver.h"

namespace tessarlorn {
namespace {

using SettingsTest = RecordingTest;

TEST_F(SettingsTest, CountsTwentyOrdersPerRunWhenTheSettingIsNoNumber) {
  const auto count = [&](const char* value) {
    TheRecording().answer = [=](std::string_view) { return TextRows({"FValue"}, {{value}}); };
    return get_.lPickGoodsCount(kDsn);
  };
  EXPECT_EQ(count("35"), 35);
  EXPECT_EQ(count("many"), 20);
  EXPECT_EQ(count(""), 20);
  EXPECT_EQ(count(nullptr), 20);
  EXPECT_EQ(get_.lPickGoodsCount(""), 0);
  TheRecording().answer = [](std::string_view) { return TextRows({"FValue"}, {}); };
  EXPECT_EQ(Raised([&] { get_.lPickGoodsCount(kDsn); }), "3021 lPickGoodsCount");
}

}  // namespace
}  // namespace tessarlorn
