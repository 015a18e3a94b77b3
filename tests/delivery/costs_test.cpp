#include <gmock/gmock.h>

#include "frame/clsGetData.h"
#include "frame/clsSaveData.h"
#include "support/recording_driver.h"

namespace tessarlorn {
namespace {

using testing::ElementsAre;

class CostsTest : public RecordingTest {
 protected:
  clsSaveData save_;
};

TEST_F(CostsTest, ModifiesCostsAfterLoggingEachOrder) {
  Dictionary parameters{{"sDSN", kDsn}, {"FID", "12,15"}, {"LogisticsCosts", 1234.565}};
  EXPECT_TRUE(save_.ModifyCost(&parameters));
  EXPECT_THAT(Events(), ElementsAre("WriteSaveOrderLog(12,0,FLogisticsCost,1234.57)",
                                    "WriteSaveOrderLog(15,0,FLogisticsCost,1234.57)",
                                    Lines({
                                        "Update IC_Web2ERPOrders",
                                        "Set FLogisticsCost = 1234.57--物流成本",
                                        "WHERE   FID IN (12,15)",
                                    })));
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
  EXPECT_THAT(Events(),
              ElementsAre("WriteSaveOrderLog(12,0,FLogisticsOrder,SF1)", Lines({
                                                                             "Update IC_Web2ERPOrders",
                                                                             "SET     FLogisticsOrder ='SF1',",
                                                                             "        FWeight = 0,",
                                                                             "        FLogisticsCost = 12.5",
                                                                             "Where FID =12",
                                                                             "Update IC_Web2ERPOrders",
                                                                             "SET     FLogisticsOrder ='',",
                                                                             "        FWeight = 0.25,",
                                                                             "        FLogisticsCost = 0",
                                                                             "Where FID =15",
                                                                         })));
}

TEST_F(CostsTest, StoresNumbersByUniqueCode) {
  const Dictionary numbers{{"1234567890123456789012345678", "SF1"}, {"5", 6}};
  EXPECT_TRUE(save_.SetUpLogisticsNumber(kDsn, &numbers));
  EXPECT_EQ(OnlyEvent(),
            Lines({
                "UPDATE IC_Web2ERPOrders SET FLogisticsOrder = 'SF1' WHERE FUniqueCode =1234567890123456789012345678",
                "UPDATE IC_Web2ERPOrders SET FLogisticsOrder = '6' WHERE FUniqueCode =5",
            }));
  Events().clear();
  const Dictionary none;
  EXPECT_FALSE(save_.SetUpLogisticsNumber(kDsn, &none));
  EXPECT_FALSE(save_.SetUpLogisticsNumber("", &numbers));
  EXPECT_TRUE(Events().empty());
}

TEST_F(CostsTest, TotalsCostsOfNoOrderToZero) {
  clsGetData get;
  const Dictionary parameters{{"sDSN", kDsn}, {"FID", "12"}};
  TheRecording().answer = [](std::string_view) { return TextRows({"TotalLogisticsCosts"}, {{nullptr}}); };
  EXPECT_EQ(get.GetTotalLogisticsCosts(&parameters), 0);
  TheRecording().answer = [](std::string_view) { return TextRows({"TotalLogisticsCosts"}, {{"12.5"}}); };
  EXPECT_EQ(get.GetTotalLogisticsCosts(&parameters), 12.5);
}

}  // namespace
}  // namespace tessarlorn
