#include "support/recording_driver.h"
#include "support/sample_test.h"

namespace tessarlorn {
namespace {

/// The orders 1 to 9; the tables below say what is the matter with each.
class BillChecksTest : public SampleTest {
 protected:
  BillChecksTest() {
    dsn_ = database_.Dsn(7, "Language=CHT;");
    Run(R"(
insert into t_SubMessage(FInterID,FTypeID,FName,FName_CHT) values (1,843,N'等卖家',N'等賣家'),(2,843,N'收货',''),(1001,3,N'x','')
insert into IC_RefundInfo(FID,FIsRefuse) values (91,1)
insert into IC_Web2ERPOrders(FID,FOrderID,FSiteOrderID,FOrderStatus,FCheckStatus,FTransactionStatus)
values (1,'O1','S1',6,1,0),(2,'O2','S2',6,1,38195),(3,'O3','S3',6,1,0),(4,'O4','S4',6,1,0),(5,'O5','S5',6,1,0),
       (6,'O6','S6',6,0,0),(7,'O7','S7',2,1,0),(8,'O8','S8',6,1,0),(9,'O9','S9',6,1,0)
insert into IC_Web2ERPOrdersEx(FID,FIsLock) values (1,0),(6,1)
insert into IC_Web2ERPOrdersEntry(FEntryID,FID,FIndex,FRowClosed,FStatus,FRefundStatus,FRefundFID,FServiceStatus)
values (11,1,1,0,'',0,0,0),
       (21,2,1,0,'',1,0,2),                                              -- transaction closed, a refund all the same
       (31,3,1,1,'',1,0,0),(32,3,2,0,'TRADE_CLOSED',0,0,0),              -- each line closed
       (41,4,1,1,'',0,0,0),(42,4,2,0,'TRADE_FINISHED',0,0,0),            -- one of two
       (51,5,1,0,'',1,0,1),(52,5,2,0,'',1,0,9),(53,5,3,0,'',1,0,1),      -- in refund
       (61,6,1,0,'',1,91,1),                                             -- refused
       (71,7,1,0,'',0,0,0),(81,8,1,1,'',1,0,1)                           -- 9 has no lines
)");
  }

  std::string Status(const Dictionary& more) { return Told(get().CheckBillStatus(Keys("9,8,7,6,5,4,3,2,1,77", more))); }

  Dictionary all_{{"sDSN", database_.Dsn(7, "Language=CHT;")}, {"FID", "9,8,7,6,5,4,3,2,1,77"}};
};

TEST_F(BillChecksTest, SortOrdersByWhatStopsThem) {
  EXPECT_EQ(Told(get().CheckReturnBills(&all_)),
            "FID=2 FOrderID=O2 FSiteOrderID=S2 FReason=1 收货 | "
            "FID=5 FOrderID=O5 FSiteOrderID=S5 FReason=1,3 等賣家;2 申請退款 | ");
  EXPECT_EQ(Told(get().CheckCloseBill(&all_)),
            "FID=2 FOrderID=O2 FCloseType=1 | FID=3 FOrderID=O3 FCloseType=1 | "
            "FID=4 FOrderID=O4 FCloseType=2 | FID=8 FOrderID=O8 FCloseType=1 | ");
  EXPECT_EQ(Told(get().CheckCloseBillOnly(&all_)),
            "FID=3 FOrderID=O3 FCloseType=1 | FID=8 FOrderID=O8 FCloseType=1 | ");
  EXPECT_EQ(Status({}), "Closed=O2,O3,O8 Refund=O2,O5 Unchecked=O6 Locked=O6 WrongStatus= Pass=1,4,7,9 ");
  EXPECT_EQ(Status({{"FOrderStatus", "6"}}),
            "Closed=O2,O3,O8 Refund=O2,O5 Unchecked=O6 Locked=O6 WrongStatus=O7 Pass=1,4,9 ");
  EXPECT_EQ(Raised([&] { Status({{"FOrderStatus", "six"}}); }), "13 CheckReturnBills");
  const Dictionary simplified{{"sDSN", database_.Dsn(7, "Language=CHS;")}, {"FID", "5"}};
  EXPECT_EQ(Told(get().CheckReturnBills(&simplified)),
            "FID=5 FOrderID=O5 FSiteOrderID=S5 FReason=1,3 等卖家;2 申请退款 | ");
}

TEST_F(BillChecksTest, CountNoRefundsWhereTheSwitchSaysSo) {
  Run("insert into t_SystemProfile(FCategory,FKey,FValue) values ('EC','NotCheckRefundOnStatus','1')");
  EXPECT_EQ(Told(get().CheckReturnBills(&all_)), "");
  EXPECT_EQ(Told(get().CheckCloseBillOnly(&all_)),
            "FID=2 FOrderID=O2 FCloseType=1 | FID=3 FOrderID=O3 FCloseType=1 | FID=8 FOrderID=O8 FCloseType=1 | ");
  EXPECT_EQ(Status({}), "Closed=O2,O3,O8 Refund= Unchecked=O6 Locked=O6 WrongStatus= Pass=1,4,5,7,9 ");
}

}  // namespace
}  // namespace tessarlorn
