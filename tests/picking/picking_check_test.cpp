#include <gmock/gmock.h>

#include "support/recording_driver.h"

namespace tessarlorn {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using PickingCheckTest = RecordingTest;

TEST_F(PickingCheckTest, SavesTheCheckOfAParcel) {
  const struct {
    const char* name;
    Dictionary parameters;
    const char* condition;
    const char* update;
    const char* logged;
  } cases[] = {
      {"number, passed with time",
       {{"FLogisticsOrder", "4711"}, {"FPickingGoodsStatus", 1}, {"FPickingGoodMan", 7}, {"FPickingGoodsstatus", 1}},
       " Where FUniqueCode ='4711' OR FLogisticsOrder ='4711'",
       "UPDATE IC_Web2ERPOrders  SET FPIckingGoodsStatus =1,FPickingGoodMan = 7,FOrderPickingDate='2024-05-06 07:08:09'",
       "FNewValue=通过"},
      {"letters, passed without time",
       {{"FLogisticsOrder", "SF12"}, {"FPickingGoodsStatus", "1"}, {"FPickingGoodMan", "7"}},
       " Where FLogisticsOrder ='SF12'",
       "UPDATE IC_Web2ERPOrders  SET FPIckingGoodsStatus =1,FPickingGoodMan = 7",
       "FNewValue=通过"},
      {"not passed",
       {{"FLogisticsOrder", "SF12"}},
       " Where FLogisticsOrder ='SF12'",
       "UPDATE IC_Web2ERPOrders  SET FPIckingGoodsStatus =0,FPickingGoodMan = ",
       "FNewValue=不通过"},
  };
  for (const auto& c : cases) {
    Events().clear();
    TheRecording().answer = [](std::string_view text) {
      return text.starts_with("select") ? TextRows({"FID"}, {{"12"}, {"13"}}) : nullptr;
    };
    Dictionary parameters = c.parameters;
    parameters.SetValue("sProps", kDsn);
    EXPECT_TRUE(save_.SavePickingGoods(&parameters)) << c.name;
    EXPECT_THAT(Events(),
                ElementsAre("IsLogEnable(3003)",
                            Lines({std::string("select FID from IC_Web2ERPOrders with(nolock) ") + c.condition}),
                            testing::AllOf(HasSubstr("{sFID=12,"), HasSubstr("FOPCode=3003"), HasSubstr(c.logged)),
                            Lines({std::string(c.update) + c.condition})))
        << c.name;
  }
}

TEST_F(PickingCheckTest, UpdatesTheCheckThoughNoOrderIsFoundToLog) {
  const Dictionary parameters{{"sProps", kDsn}, {"FLogisticsOrder", "SF12"}};
  EXPECT_TRUE(save_.SavePickingGoods(&parameters));
  EXPECT_EQ(TheRecording().Batches().size(), 2U);
  EXPECT_EQ(Events().size(), 3U);
}

TEST_F(PickingCheckTest, LogsNothingWhenTheCheckIsNoNumber) {
  TheRecording().answer = [](std::string_view) { return TextRows({"FID"}, {{"12"}}); };
  for (const char* key : {"FPickingGoodsStatus", "FPickingGoodsstatus"}) {
    const Dictionary parameters{{"sProps", kDsn}, {"FLogisticsOrder", "SF12"}, {key, "abc"}};
    EXPECT_EQ(Raised([&] { save_.SavePickingGoods(&parameters); }), "13 SavePickingGoods") << key;
    EXPECT_TRUE(Events().empty()) << key;
  }
}

TEST_F(PickingCheckTest, MarksAlwaysLoggedAndClearsLoggedOnRequest) {
  const Dictionary parameters{{"sDsn", kDsn}, {"FID", "12,15"}, {"UserId", 7}};
  TheRecording().log_enabled = false;
  EXPECT_TRUE(save_.MarkPickingGoodsStatus(&parameters));
  EXPECT_THAT(Events(), ElementsAre(HasSubstr("sFID=12,15,FOPUserID=16394,FOPCode=3014"),
                                    HasSubstr("WHERE FID IN (12,15) AND FPIckingGoodsStatus = 0\r\n")));
  Events().clear();
  EXPECT_TRUE(save_.ClearPickingGoodsStatus(&parameters));
  EXPECT_THAT(Events(),
              ElementsAre("IsLogEnable(3013)", HasSubstr("WHERE FID IN (12,15) AND FPIckingGoodsStatus = 1\r\n")));
}

TEST_F(PickingCheckTest, CountsTwentyOrdersPerRunWhenTheSettingIsNoNumber) {
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
