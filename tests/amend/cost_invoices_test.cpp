#include "support/recording_driver.h"
#include "support/sample_test.h"

namespace tessarlorn {
namespace {

class CostInvoicesTest : public SampleTest {
 protected:
  CostInvoicesTest() {
    Run(R"(
insert into IC_Web2ERPOrders(FID,FOrderID,FFeeBillNO) values (1,'A1',''),(2,'A2','70'),(3,'A3','71'),(4,'A4','71')
insert into ICExpenses(FinterID) values (70),(71),(72))");
  }
};

TEST_F(CostInvoicesTest, LinksOrdersAndLogsThemAlways) {
  EXPECT_TRUE(save().UpdateCostInvoiceStatus(Keys("1,2", {{"FCostInvoiceInterID", 72}})));
  EXPECT_EQ(Read("select FFeeBillNO from IC_Web2ERPOrders order by FID"), "72|72|71|71|");
  EXPECT_EQ(Read("select FOrderFID,FOPCode,FItemID,FOldValue,FNewValue from IC_TradeLog order by FOrderFID"),
            "1|3007|0|||2|3007|0|||");
  const Dictionary quoted = Keys("3", {{"FCostInvoiceInterID", "7'2"}});
  EXPECT_EQ(Raised([&] { save().UpdateCostInvoiceStatus(&quoted); }), "-2147217900 ChangeAddess");
  EXPECT_EQ(Read("select count(*) from IC_TradeLog where FOrderFID=3"), "1|") << "what was logged stays";
  EXPECT_TRUE(save().UpdateCostInvoiceStatus(Keys("3")));
  EXPECT_EQ(Read("select FFeeBillNO from IC_Web2ERPOrders where FID=3"), "|");
}

TEST_F(CostInvoicesTest, UnlinksTheOrdersOfDeletedInvoices) {
  EXPECT_FALSE(save().UpdateAfterDeleteBill(dsn_, ""));
  EXPECT_TRUE(save().UpdateAfterDeleteBill(dsn_, "71,72"));
  EXPECT_EQ(Read("select FFeeBillNO from IC_Web2ERPOrders order by FID"), "|70|||");
}

TEST_F(CostInvoicesTest, FindsTheOneOrderOfAnInvoice) {
  EXPECT_EQ(get().GetWebFIDByCostInoviceID(dsn_, 70), 2);
  EXPECT_EQ(get().GetWebFIDByCostInoviceID(dsn_, 71), -1) << "two orders";
  EXPECT_EQ(get().GetWebFIDByCostInoviceID(dsn_, 72), -1) << "no order";
  EXPECT_EQ(get().GetWebFIDByCostInoviceID(dsn_, 0), -1) << "orders without an invoice are no invoice's";
}

TEST_F(CostInvoicesTest, TotalsPriceDifferenceLines) {
  Run(R"(
insert into t_ICItem(FItemID,FNumber) values (501,'DIFF'),(502,'TEA')
insert into ic_goodstomateriel(FID,FMaterielCode,FIsPriceChange) values (1,'DIFF',1),(2,'TEA',0)
insert into IC_Web2ERPOrdersEntry(FEntryID,FID,FItemID,FAfterDiscountAmount,FBuyerFreight,FEntryBillDiscountFee)
  values (11,1,501,1.5,2,0.25),(12,1,501,2,0,0),(13,1,502,100,100,100),(21,2,502,5,5,5),(31,3,501,9,9,9))");
  EXPECT_EQ(Told(get().GetTotalPriceChange(dsn_, "1,2"),
                 {"FID", "FTotalPriceChange", "FTotalFreight", "FEntryBillDiscountFee"}),
            "1 3.5000 2.0000 0.2500 | ");
  EXPECT_EQ(get().GetTotalPriceChange("", "1"), nullptr);
  EXPECT_EQ(Raised([this] { get().GetTotalPriceChange(dsn_, ""); }),
            std::to_string(error_number::kStatementError) + " GetBatchNo");
}

}  // namespace
}  // namespace tessarlorn
