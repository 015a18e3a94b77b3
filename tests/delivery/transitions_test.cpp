#include <gmock/gmock.h>

#include "frame/clsSaveData.h"
#include "support/recording_driver.h"

namespace tessarlorn {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class TransitionsTest : public RecordingTest {
 protected:
  clsSaveData save_;
};

TEST_F(TransitionsTest, Delivers) {
  const Dictionary parameters{{"sDSN", kDsn}, {"FID", "12,15"}};
  EXPECT_TRUE(save_.Delivery(&parameters));
  EXPECT_EQ(OnlyEvent(), Lines({
                             "Update IC_Web2ERPOrders",
                             "SET     FOrderStatus = 14,                                     --发货状态",
                             "        FShippingMan = 16394                 --发货人",
                             "WHERE   FID IN (12,15)",
                             "Update IC_Web2ERPOrdersEntry",
                             "Set FIsRowClose = 1",
                             "Where FID IN (12,15)",
                         }));
  Events().clear();
  TheRecording().user = 40000;
  EXPECT_EQ(Raised([&] { save_.Delivery(&parameters); }), "6 Delivery");
  EXPECT_TRUE(Events().empty());
}

TEST_F(TransitionsTest, RemarksAreLoggedForEachOrderFirst) {
  Dictionary parameters{{"sDSN", kDsn}, {"FID", "12,15"}, {"FShippingRem", "late"}, {"Mode", "1"}};
  EXPECT_TRUE(save_.DeliveryRemark(&parameters));
  EXPECT_THAT(Events(),
              ElementsAre("WriteSaveOrderLog(12,0,FShippingRem,late)", "WriteSaveOrderLog(15,0,FShippingRem,late)",
                          Lines({
                              "Update IC_Web2ERPOrders ",
                              "SET    FShippingRem = FShippingRem + '\\late'",
                              "Where FID in (12,15)",
                          })));
  for (const Variant& mode : {Variant(0), Variant(""), Variant(true), Variant()}) {
    Events().clear();
    parameters.SetValue("Mode", mode);
    EXPECT_TRUE(save_.DeliveryRemark(&parameters));
    EXPECT_THAT(Events().back(), HasSubstr("\r\nSET    FShippingRem ='late'\r\n"));
  }
  Events().clear();
  parameters.SetValue("Mode", "append");
  EXPECT_EQ(Raised([&] { save_.DeliveryRemark(&parameters); }), "13 OrderRemark");
  EXPECT_TRUE(Events().empty());
}

TEST_F(TransitionsTest, StepsBack) {
  Dictionary parameters{{"sDSN", kDsn}, {"FID", "12,15"}, {"UpdateFlag", true}};
  EXPECT_TRUE(save_.BackToThePreviousStep(&parameters));
  EXPECT_THAT(Events(), ElementsAre("IsLogEnable(3005)", HasSubstr("sFID=12,15,FOPUserID=16394,FOPCode=3005"),
                                    Lines({
                                        "UPDATE IC_Web2ERPOrders",
                                        "SET     FOrderStatus = 6 ,         --待发货状态为6",
                                        "        FShippingMan = 0           --清空发货人",
                                        "WHERE   FID IN (12,15)",
                                        "Update IC_Web2ERPOrdersEntry",
                                        "Set FIsRowClose = 0",
                                        "Where FID IN (12,15)",
                                    })));
  Events().clear();
  TheRecording().log_enabled = false;
  parameters.SetValue("UpdateFlag", "False");
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
  const struct {
    int orders;
    std::vector<std::size_t> blocks;
  } cases[] = {{0, {}}, {1, {1}}, {149, {149}}, {150, {150}}, {151, {150, 1}}, {301, {150, 150, 1}}};
  const std::size_t block =
      Lines({
                "IF EXISTS (SELECT 1 FROM IC_StockBillOrdersStatus WHERE FID = 1)",
                "    BEGIN",
                "        UPDATE IC_StockBillOrdersStatus",
                "        SET FStockBillResult = '', FStockBillStatus = 1",
                "        WHERE FID = 1",
                "    END",
                "ELSE",
                "    BEGIN",
                "        INSERT INTO IC_StockBillOrdersStatus(FID,FStockBillStatus,FStockBillResult)",
                "        VALUES (1,1,'')",
                "    END",
            })
          .size();
  for (const auto& c : cases) {
    Events().clear();
    std::string keys;
    for (int i = 0; i < c.orders; ++i) keys += i == 0 ? "7" : ", 7";
    EXPECT_TRUE(save_.UpdateDeliveryData(kDsn, keys));
    std::vector<std::size_t> blocks;
    for (const std::string& batch : Events()) {
      EXPECT_EQ(batch.size() % block, 0U);
      blocks.push_back(batch.size() / block);
    }
    EXPECT_EQ(blocks, c.blocks) << c.orders;
  }
  EXPECT_EQ(Raised([&] { save_.UpdateDeliveryData(kDsn, "1,x"); }),
            "13 TessarLornPickingAndDelivery.clsSaveData.UpdateDeliveryData");
}

}  // namespace
}  // namespace tessarlorn
