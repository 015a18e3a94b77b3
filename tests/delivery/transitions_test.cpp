#include <gmock/gmock.h>

#include "support/batches.h"
#include "support/recording_driver.h"

namespace tessarlorn {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using TransitionsTest = RecordingTest;

TEST_F(TransitionsTest, DeliversForUsersOfSixteenBits) {
  const Dictionary parameters{{"sDSN", kDsn}, {"FID", "12,15"}};
  TheRecording().user = 40000;
  EXPECT_EQ(Raised([&] { save_.Delivery(&parameters); }), "6 Delivery");
  EXPECT_TRUE(Events().empty());
}

TEST_F(TransitionsTest, StepsBack) {
  const Dictionary parameters{{"sDSN", kDsn}, {"FID", "12,15"}, {"UpdateFlag", "False"}};
  TheRecording().log_enabled = false;
  EXPECT_TRUE(save_.BackToThePreviousStep(&parameters));
  EXPECT_THAT(Events(), ElementsAre("IsLogEnable(3005)", Lines({
                                                             "UPDATE IC_Web2ERPOrders",
                                                             "SET     FOrderStatus = 2 ,         --待配货状态为2",
                                                             "        FPickMan = 0 ,             --配货员为空",
                                                             "        FPickDate = Null           --配货时间为空",
                                                             "WHERE   FID IN (12,15)",
                                                         })));
}

TEST_F(TransitionsTest, QueuesStockBillsInBatches) {
  EXPECT_TRUE(save_.UpdateDeliveryData(kDsn, " 7"));
  EXPECT_THAT(OnlyEvent(), HasSubstr("        VALUES (7,1,'')\r\n"));
  for (const BatchCase& c : kBatchCases) {
    Events().clear();
    EXPECT_TRUE(save_.UpdateDeliveryData(kDsn, KeysTo(c.keys)));
    EXPECT_EQ(CountsOf("IF EXISTS (", Events()), c.blocks);
  }
  Events().clear();
  EXPECT_TRUE(save_.UpdateDeliveryData(kDsn, ""));
  EXPECT_EQ(Raised([&] { save_.UpdateDeliveryData(kDsn, "1,x"); }),
            "13 TessarLornPickingAndDelivery.clsSaveData.UpdateDeliveryData");
  EXPECT_TRUE(Events().empty());
}

}  // namespace
}  // namespace tessarlorn
