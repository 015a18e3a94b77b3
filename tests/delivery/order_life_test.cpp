// The way of orders through picking, weighing, delivery and upload.
#include <gmock/gmock.h>

#include "support/sample_test.h"

namespace tessarlorn {
namespace {

class OrderLifeTest : public SampleTest {
 protected:
  OrderLifeTest() {
    Run(R"(
insert into IC_Web2ERPOrders(FID,FOrderID,FOrderStatus,FTransactionStatus,FUniqueCode,FCurrencyID,FShippingRem)
  values (12,'A',2,38192,12345678901234567890123,1,'old'),(15,'B',2,38195,null,2,'')
insert into IC_Web2ERPOrdersEntry(FEntryID,FID) values (121,12)
insert into IC_StockBillOrdersStatus(FID,FStockBillStatus,FStockBillResult) values (12,3,'no stock')
insert into t_SystemProfile(FCategory,FKey,FValue) values ('EC','TradeLog3005','1')
insert into t_Currency(FCurrencyID,FOperator,FExchangeRate) values (1,'/',0),(2,'*',2))");
  }
  Parameters Both(const Dictionary& more = {}) {
    Parameters keys = Keys("12,15", more);
    keys.SetValue("sDsn", dsn_);
    return keys;
  }
};

TEST_F(OrderLifeTest, GoesFromPickingToUploadAndBack) {
  const Dictionary keys = Both({{"FPickManNumber", "E01"},
                                {"FShippingRem", "new"},
                                {"Mode", 1},
                                {"LogisticsCosts", 10},
                                {"AsyncCreate", true},
                                {"UserID", 7},
                                {"UserId", 7}});
  EXPECT_TRUE(save().ConfirmBill(&keys));
  EXPECT_TRUE(save().MarkPickingGoodsStatus(&keys));
  EXPECT_EQ(Read("select FOrderStatus,FPickMan,FPIckingGoodsStatus from IC_Web2ERPOrders order by FID"),
            "6|E01|1|6|E01|1|");
  EXPECT_TRUE(save().SetUpLogisticsNumber(dsn_, Parameters{{"12345678901234567890123", "SF1"}}));
  const Dictionary check{{"sProps", dsn_}, {"FLogisticsOrder", "SF1"}, {"FPickingGoodMan", 7}};
  EXPECT_TRUE(save().SavePickingGoods(&check));
  EXPECT_EQ(Read("select FPIckingGoodsStatus from IC_Web2ERPOrders order by FID"), "0|1|");
  EXPECT_TRUE(save().ModifyCost(&keys));
  EXPECT_TRUE(save().UpdateLogisticsWeightStatus(dsn_, &keys));
  EXPECT_EQ(Read("select FLogisticsOrder,FWeighttingStatus from IC_Web2ERPOrders order by FID"), "SF1|1||1|");
  EXPECT_EQ(Read("select FID,FStockBillStatus,FStockBillResult from IC_StockBillOrdersStatus order by FID"),
            "12|1||15|1||");
  EXPECT_EQ(get().GetTotalLogisticsCosts(&keys), 30) << "a rate of 0 counts as 1 on the dividing side";
  const Dictionary one = Keys("12");
  EXPECT_EQ(get().GetWeightByFID(&one)->RecordCount(), 0U);
  EXPECT_FALSE(get().bIsWeightting(dsn_));
  EXPECT_TRUE(save().DeliveryRemark(&keys));
  EXPECT_TRUE(save().Delivery(&keys));
  EXPECT_EQ(Read("select FOrderStatus,FShippingMan,FShippingRem from IC_Web2ERPOrders where FID=12"), "14|7|old\\new|");
  EXPECT_EQ(Read("select FIsRowClose from IC_Web2ERPOrdersEntry"), "1|");
  EXPECT_TRUE(save().UpLoadStatusForManualAndClosed(dsn_));
  EXPECT_EQ(get().bExistUpLoadBill(&keys)->Get("FOrderID").ToText(), "B");
  EXPECT_TRUE(save().UploadStatus(&one));
  const Dictionary failed = Both({{"ErrInfo", Vector{Dictionary{{"FailureFID", 15}, {"FailureInfo", "can't ship"}}}}});
  EXPECT_TRUE(save().UploadStatusFailure(&failed));
  EXPECT_EQ(Read("select FUpLoadStatus,FReasonsForFailure from IC_Web2ERPOrders order by FID"), "1||0|cant ship|");
  EXPECT_TRUE(save().BackToThePreviousStep(Both({{"UpdateFlag", true}})));
  EXPECT_EQ(Read("select FOrderStatus,FShippingMan from IC_Web2ERPOrders where FID=12"), "6|0|");
  EXPECT_EQ(Read("select FIsRowClose from IC_Web2ERPOrdersEntry"), "0|");
  EXPECT_EQ(Read("select FOrderFID,FOPCode,FUserIP from IC_TradeLog"),
            "12|3014|10.0.0.5|15|3014|10.0.0.5|12|3005|10.0.0.5|15|3005|10.0.0.5|");
  EXPECT_EQ(Read("select FOrderFID,FFieldName,FNewValue,FOPUserID from IC_TradeFieldLog where FOrderFID=12"),
            "12|FLogisticsCost|10|7|12|FShippingRem|new|7|");
}

TEST_F(OrderLifeTest, ContainerTakesBackWhatAFailedCallLogged) {
  Run("drop table IC_Web2ERPOrdersEntry");
  const Dictionary keys = Both({{"UpdateFlag", true}});
  {
    const ContainerTransaction transaction(TestHost());
    EXPECT_THROW(save().BackToThePreviousStep(&keys), Error);
  }
  EXPECT_EQ(Read("select FOPCode from IC_TradeLog"), "");
  EXPECT_EQ(Read("select FOrderStatus from IC_Web2ERPOrders where FID=12"), "2|");
  // Without a container the log row and the first statement stay.
  EXPECT_THROW(save().BackToThePreviousStep(&keys), Error);
  EXPECT_EQ(Read("select FOPCode from IC_TradeLog"), "3005|3005|");
  EXPECT_EQ(Read("select FOrderStatus from IC_Web2ERPOrders where FID=12"), "6|");
}

}  // namespace
}  // namespace tessarlorn
