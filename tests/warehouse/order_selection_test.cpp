#include "support/recording_driver.h"
#include "support/sample_test.h"

namespace tessarlorn {
namespace {

/// Stocks 10 (warehouse W1 of provider 3) and 20 (W2 of provider 4) are outside, 30 is our own. Orders 1 to 9 have a
/// line on stock 10 and the states below; the others are told apart by their lines.
class OrderSelectionTest : public SampleTest {
 protected:
  OrderSelectionTest() {
    Run(R"(
insert into IC_WebtplToStorage(FID,FWebtplID,FWebtplName,FWebtplType,FtplCategory,FStockID,FUnUsed,FIsbad)
  values (1,'W1','One',3,'A',10,0,0),(2,'W2','Two',4,'A',20,0,0),(3,'W0','None',3,'A',0,0,0)
insert into IC_Web2ERPOrders(FID,FOrderID,FLogisticsOrder) values (1,'A1',''),(2,'A2',''),(3,'A3',''),(4,'A4',''),
  (5,'A5',''),(6,'A6',''),(7,'A7','SF7'),(11,'B1',''),(12,'B2',''),(13,'B3',''),(14,'B4','')
insert into IC_Web2ERPOrdersEx(FID,FTplStatus)
  values (2,''),(3,'0'),(4,'1'),(5,'2'),(6,'3'),(7,'1'),(11,'1'),(12,'1'),(13,'1'),(14,'1')
insert into IC_Web2ERPOrdersEntry(FEntryID,FID,FStockID)
  values (101,1,10),(102,2,10),(103,3,10),(104,4,10),(105,5,10),(106,6,10),(107,7,10),
         (111,11,20),(121,12,10),(122,12,20),(131,13,10),(132,13,30),(141,14,10),(142,14,0))");
  }
  const std::string all_ = "1,2,3,4,5,6,7,11,12,13,14";
};

TEST_F(OrderSelectionTest, FindsWhatCanBeSubmittedFromAStock) {
  Dictionary stock{{"FStockID", 10}};
  EXPECT_EQ(get().GetTplOrderInfo(dsn_, all_, &stock), "1,2,3,5");
  EXPECT_EQ(get().GetTplOrderInfo(dsn_, "2,4", &stock), "2");
  stock.SetValue("FStockID", 20);
  EXPECT_EQ(get().GetTplOrderInfo(dsn_, all_, &stock), "");
  EXPECT_EQ(Raised([&] { get().GetTplOrderInfo(dsn_, all_, nullptr); }),
            "-2147217900 TessarLornPickingAndDelivery.clsGetData.GetTplOrderInfo");
  EXPECT_EQ(get().GetTplOrderInfo(dsn_, "", nullptr), "");
}

TEST_F(OrderSelectionTest, FindsOrdersWithALineOfOurOwn) {
  EXPECT_EQ(get().GetNotTplOrderInfo(dsn_, all_), "13");
  Run("delete from IC_WebtplToStorage where FStockID=0");
  EXPECT_EQ(get().GetNotTplOrderInfo(dsn_, all_), "13,14");
}

TEST_F(OrderSelectionTest, FindsWhatCanBeTakenBack) {
  EXPECT_EQ(get().GetCancelTplOrderInfo(dsn_, all_, 0, ""), "4,11,12,14");
  EXPECT_EQ(get().GetCancelTplOrderInfo(dsn_, all_, 3, "W1"), "4");
  EXPECT_EQ(get().GetCancelTplOrderInfo(dsn_, all_, 4, "W2"), "11");
  EXPECT_EQ(get().GetCancelTplOrderInfo(dsn_, all_, 4, "W1"), "");
}

TEST_F(OrderSelectionTest, FindsLinesOnAWarehouse) {
  EXPECT_EQ(get().GetCancelTplReturnOrderInfo(dsn_, "104,111,122,132,142", 4, "W2"), "111,122");
  EXPECT_EQ(get().GetCancelTplReturnOrderInfo(dsn_, "104,111", 3, "W2"), "");
}

TEST_F(OrderSelectionTest, FindsOrdersAtAWarehouseWithEveryLine) {
  EXPECT_EQ(get().GetFiltrationTPLOrder(dsn_, all_), "4,6,7,11,12") << "a warehouse of stock 0 stands for no stock";
}

}  // namespace
}  // namespace tessarlorn
