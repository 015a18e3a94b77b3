#include "support/sample_test.h"

namespace tessarlorn {
namespace {

class InvoiceChecksTest : public SampleTest {};

TEST_F(InvoiceChecksTest, FindsInvoicedOrdersWithoutAnInternalInvoice) {
  Run("insert into IC_Web2ERPOrders(FID,FOrderID,FInnerInvoice,FInvoiceStatus) values "
      "(1,'A1',0,1),(2,'A2',1,1),(3,'A3',0,0),(4,'A4',0,1),(5,'A5',0,1)");
  EXPECT_EQ(Told(get().CheckInnerInvoice(Keys("1,2,3,4"))),
            "FStatus=1 ReturnBills=[FID=1 FOrderID=A1 | FID=4 FOrderID=A4 | ] ");
  EXPECT_EQ(Told(get().CheckInnerInvoice(Keys("2,3"))), "FStatus=0 ReturnBills=[] ");
}

TEST_F(InvoiceChecksTest, ReadsTheBillingSwitchOfItsCategoryOnly) {
  Run("insert into t_SystemProfile(FCategory,FKey,FValue) values ('IC','MarkBilling','1'),('EC','MarkBilling','0')");
  EXPECT_FALSE(get().GetIsMarkBilling(dsn_));
  Run("update t_SystemProfile set FValue='1' where FCategory='EC'");
  EXPECT_TRUE(get().GetIsMarkBilling(dsn_));
}

TEST_F(InvoiceChecksTest, CountsSalesInvoicesOfStockBillsOfWebOrdersOnly) {
  Run(R"(
insert into IC_Web2ERPOrders(FID) values (1),(2),(3)
insert into ICStockBillEntry(FInterID,FEntryID,FSourceTranType,FSourceInterId)
  values (80,1,1014301,1),(80,2,81,2),(81,1,1014301,3)
insert into ICSaleEntry(FInterID,FEntryID,FSourceInterId,FSourceEntryID) values (90,1,80,1),(90,2,80,2),(90,3,81,7))");
  const std::pair<const char*, bool> cases[] = {{"1", true}, {"2,1", true}, {"2", false}, {"3", false}};
  for (const auto& [orders, answer] : cases) {
    EXPECT_EQ(get().bExistInvoice(Keys(orders)), answer) << orders;
  }
}

}  // namespace
}  // namespace tessarlorn
