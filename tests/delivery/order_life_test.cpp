// The way of orders through picking, weighing, delivery and upload, on the embedded database.
#include <gtest/gtest.h>

#include "drivers/embedded/embedded_driver.h"
#include "frame/clsGetData.h"
#include "frame/clsSaveData.h"
#include "platform/error.h"
#include "siblings/siblings.h"
#include "support/sample_test.h"

namespace tessarlorn {
namespace {

const char* const kDsn = "Connect={Embedded=:memory:order_life};User=7;Client=10.0.0.5";

class OrderLifeTest : public testing::Test {
 protected:
  OrderLifeTest() {
    RegisterEmbeddedDriver();
    RegisterDefaultSiblings();
    session_->OpenSession(kDsn);
    session_->GetConnection().Execute(R"(
create table IC_Web2ERPOrders(FID int primary key, FOrderID nvarchar(50), FOrderStatus int, FOrderType int,
  FTransactionStatus int, FUpLoadStatus int default 0, FSendType int, FReasonsForFailure nvarchar(255), FPickMan nvarchar(50),
  FPickRem nvarchar(255), FPickDate datetime, FPIckingGoodsStatus int default 0, FPickingGoodMan int,
  FOrderPickingDate datetime, FShippingMan int, FShippingRem nvarchar(255), FUniqueCode decimal(28,0),
  FLogisticsOrder nvarchar(50), FLogisticsCost decimal(18,4), FWeight decimal(18,4), FWeighttingMan int,
  FWeighttingStatus int, FCurrencyID int)
create table IC_Web2ERPOrdersEntry(FID int, FIsRowClose int default 0, FUpLoadStatus int default 0)
create table IC_StockBillOrdersStatus(FID int, FStockBillStatus int, FStockBillResult nvarchar(255))
create table IC_TradeLog(FOrderFID int, FOPUserID int, FOPCode int, FUserIP nvarchar(64), FOPTime datetime, FItemID int,
  FOldValue nvarchar(255), FNewValue nvarchar(255))
create table IC_TradeFieldLog(FOrderFID int, FEntryID int, FFieldName nvarchar(64), FNewValue nvarchar(2000), FOPUserID int,
  FOPTime datetime)
create table t_SystemProfile(FCategory nvarchar(50), FKey nvarchar(50), FValue nvarchar(50))
create table t_Currency(FCurrencyID int, FOperator nvarchar(2), FExchangeRate decimal(18,6))
insert into IC_Web2ERPOrders(FID,FOrderID,FOrderStatus,FUniqueCode,FCurrencyID,FShippingRem)
  values(12,'A',2,1234567890123456789012345678,1,'old')
insert into IC_Web2ERPOrders(FID,FOrderID,FOrderStatus,FTransactionStatus,FCurrencyID) values(15,'B',2,38195,2)
insert into IC_Web2ERPOrdersEntry(FID) values(12)
insert into IC_StockBillOrdersStatus values(12,3,'no stock')
insert into t_SystemProfile values('EC','TradeLog3005','1')
insert into t_Currency values(1,'/',0)
insert into t_Currency values(2,'*',2)
)");
  }
  ~OrderLifeTest() override {
    session_->Reset();
    SessionFactory::CloseIdle();
  }

  std::string Read(std::string_view query) { return Cells(session_->GetConnection(), query); }
  static Dictionary Keys(const Dictionary& more = {}) {
    Dictionary keys{{"sDSN", kDsn}, {"sDsn", kDsn}, {"sProps", kDsn}, {"FID", "12,15"}};
    for (const auto& [key, value] : more) keys.SetValue(key, value);
    return keys;
  }

  std::shared_ptr<DataSession> session_ = SessionFactory::ForThisThread().NewSession();
};

TEST_F(OrderLifeTest, GoesFromPickingToUploadAndBack) {
  clsSaveData save;
  clsGetData get;
  const Dictionary keys = Keys({{"FPickManNumber", "E01"},
                                {"FShippingRem", "new"},
                                {"Mode", 1},
                                {"LogisticsCosts", 10},
                                {"AsyncCreate", true},
                                {"UserID", 7},
                                {"UserId", 7}});
  EXPECT_TRUE(save.ConfirmBill(&keys));
  EXPECT_TRUE(save.MarkPickingGoodsStatus(&keys));
  EXPECT_EQ(Read("select FOrderStatus,FPickMan,FPIckingGoodsStatus from IC_Web2ERPOrders order by FID"),
            "6|E01|1|6|E01|1|");

  const Dictionary number{{"1234567890123456789012345678", "SF1"}};
  EXPECT_TRUE(save.SetUpLogisticsNumber(kDsn, &number));
  EXPECT_TRUE(save.ModifyCost(&keys));
  EXPECT_TRUE(save.UpdateLogisticsWeightStatus(kDsn, &keys));
  EXPECT_EQ(Read("select FLogisticsOrder,FWeighttingStatus from IC_Web2ERPOrders order by FID"), "SF1|1|null|1|");
  EXPECT_EQ(Read("select * from IC_StockBillOrdersStatus order by FID"), "12|1||15|1||");
  EXPECT_EQ(get.GetTotalLogisticsCosts(&keys), 30) << "a rate of 0 counts as 1 on the dividing side";

  EXPECT_TRUE(save.DeliveryRemark(&keys));
  EXPECT_TRUE(save.Delivery(&keys));
  EXPECT_EQ(Read("select FOrderStatus,FShippingMan,FShippingRem from IC_Web2ERPOrders where FID=12"), "14|7|old\\new|");
  EXPECT_EQ(Read("select FIsRowClose from IC_Web2ERPOrdersEntry"), "1|");

  EXPECT_TRUE(save.UpLoadStatusForManualAndClosed(kDsn));
  EXPECT_EQ(get.bExistUpLoadBill(&keys)->Get("FOrderID").ToText(), "B");
  const Dictionary failed = Keys({{"ErrInfo", Vector{Dictionary{{"FailureFID", 15}, {"FailureInfo", "can't ship"}}}}});
  EXPECT_TRUE(save.UploadStatusFailure(&failed));
  EXPECT_EQ(Read("select FUpLoadStatus,FReasonsForFailure from IC_Web2ERPOrders where FID=15"), "0|cant ship|");

  const Dictionary back = Keys({{"UpdateFlag", true}});
  EXPECT_TRUE(save.BackToThePreviousStep(&back));
  EXPECT_EQ(Read("select FOrderStatus,FShippingMan from IC_Web2ERPOrders where FID=12"), "6|0|");
  EXPECT_EQ(Read("select FIsRowClose from IC_Web2ERPOrdersEntry"), "0|");
  EXPECT_EQ(Read("select FOrderFID,FOPCode,FUserIP from IC_TradeLog"),
            "12|3014|10.0.0.5|15|3014|10.0.0.5|12|3005|10.0.0.5|15|3005|10.0.0.5|");
  EXPECT_EQ(Read("select FOrderFID,FFieldName,FNewValue,FOPUserID from IC_TradeFieldLog where FOrderFID=12"),
            "12|FLogisticsCost|10|7|12|FShippingRem|new|7|");
}

TEST_F(OrderLifeTest, ContainerTakesBackWhatAFailedCallLogged) {
  session_->GetConnection().Execute("drop table IC_Web2ERPOrdersEntry");
  clsSaveData save;
  const Dictionary keys = Keys({{"UpdateFlag", true}});
  {
    const ContainerTransaction transaction;
    EXPECT_THROW(save.BackToThePreviousStep(&keys), Error);
  }
  EXPECT_EQ(Read("select FOPCode from IC_TradeLog"), "");
  EXPECT_EQ(Read("select FOrderStatus from IC_Web2ERPOrders where FID=12"), "2|");
  // Without a container the log row and the first statement stay.
  EXPECT_THROW(save.BackToThePreviousStep(&keys), Error);
  EXPECT_EQ(Read("select FOPCode from IC_TradeLog"), "3005|3005|");
  EXPECT_EQ(Read("select FOrderStatus from IC_Web2ERPOrders where FID=12"), "6|");
}

}  // namespace
}  // namespace tessarlorn
