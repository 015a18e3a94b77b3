#include <gmock/gmock.h>

#include "support/recording_driver.h"
#include "tessarlorn/clsGetData.h"

namespace tessarlorn {
namespace {

class SettingsTest : public RecordingTest {
 protected:
  clsGetData get_{host_};
};

TEST_F(SettingsTest, ReadsSwitches) {
  using Read = bool (clsGetData::*)(std::string_view);
  const struct {
    Read read;
    const char* key;
  } switches[] = {{&clsGetData::bIsPickingGoods, "ECPickingGoods"},
                  {&clsGetData::bIsPickByBatch, "PickByBatch"},
                  {&clsGetData::bIsWeightting, "ECWeightting"}};
  for (const auto& c : switches) {
    for (const char* count : {"0", "1", "2"}) {
      TheRecording().answer = [=](std::string_view) { return TextRows({"flag"}, {{count}}); };
      EXPECT_EQ((get_.*c.read)(kDsn), *count != '0') << c.key;
      EXPECT_NE(Events().back().find(" where FKey ='" + std::string(c.key) + "' and"), std::string::npos);
    }
  }
}

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
