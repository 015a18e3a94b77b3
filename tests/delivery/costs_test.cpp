#include <gmock/gmock.h>

#include "support/recording_driver.h"

namespace tessarlorn {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using CostsTest = RecordingTest;

TEST_F(CostsTest, ModifiesCostsAfterLoggingEachOrder) {
  Dictionary parameters{{"sDSN", kDsn}, {"FID", "12,15"}, {"LogisticsCosts", 1234.565}};
  EXPECT_TRUE(save_.ModifyCost(&parameters));
  EXPECT_THAT(Events(), ElementsAre("WriteSaveOrderLog(12,0,FLogisticsCost,1234.57)",
                                    "WriteSaveOrderLog(15,0,FLogisticsCost,1234.57)",
                                    HasSubstr("\r\nSet FLogisticsCost = 1234.57--")));
  Events().clear();
  parameters.SetValue("LogisticsCosts", "free");
  EXPECT_EQ(Raised([&] { save_.ModifyCost(&parameters); }), "13 Delivery");
  parameters.Remove("LogisticsCosts");
  EXPECT_EQ(Raised([&] { save_.ModifyCost(&parameters); }), "13 Delivery");
  EXPECT_TRUE(Events().empty());
}

TEST_F(CostsTest, StoresNumbersAndWeightsInOneBatch) {
  const Vector parcels{
      Dictionary{{"FLogisticsOrder", "SF1"}, {"FWeight", "abc"}, {"FLogisticsCost", "12.50 yuan"}, {"FID", 12}},
      Dictionary{{"FLogisticsOrder", ""}, {"FWeight", 0.25}, {"FID", "15"}}};
  EXPECT_TRUE(save_.SetUpLogisticsNumberAndWeight(kDsn, &parcels));
  ASSERT_EQ(Events().size(), 2U);
  EXPECT_EQ(Events().front(), "WriteSaveOrderLog(12,0,FLogisticsOrder,SF1)");
  EXPECT_THAT(Events().back(),
              testing::AllOf(HasSubstr("FWeight = 0,\r\n        FLogisticsCost = 12.5\r\nWhere FID =12\r\n"),
                             HasSubstr("FWeight = 0.25,\r\n        FLogisticsCost = 0\r\nWhere FID =15\r\n")));
}

TEST_F(CostsTest, TotalsCostsOfNoOrderToZero) {
  const Dictionary parameters{{"sDSN", kDsn}, {"FID", "12"}};
  TheRecording().answer = [](std::string_view) { return TextRows({"TotalLogisticsCosts"}, {{nullptr}}); };
  EXPECT_EQ(get_.GetTotalLogisticsCosts(&parameters), 0);
  TheRecording().answer = [](std::string_view) { return TextRows({"TotalLogisticsCosts"}, {{"12.5"}}); };
  EXPECT_EQ(get_.GetTotalLogisticsCosts(&parameters), 12.5);
}

}  // namespace
}  // namespace tessarlorn
