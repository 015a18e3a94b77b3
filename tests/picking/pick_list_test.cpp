#include "support/sample_test.h"

namespace tessarlorn {
namespace {

class PickListTest : public SampleTest {
 protected:
  PickListTest() {
    Run(R"(
insert into t_StockPlaceGroup(FSPGroupID,FDefaultSPID) values (1,13),(2,23)
insert into t_Stock(FItemID,FNumber,FName,FSPGroupID) values (1,'02','B',1),(2,'01','A',2),(3,'03','C',0)
insert into t_StockPlace(FSPID,FSPGroupID,FNumber,FName)
  values (11,1,'P-11','p11'),(12,1,'P-02','p02'),(13,1,'P-13','p13'),(23,2,'P-23','p23')
insert into t_ICItem(FItemID,FNumber,FName,FDefaultLoc,FSPID)
  values (1,'X1','Tea',1,12),(2,'X2','Cup',9,12),(3,'X3','Difference',1,0)
insert into ic_goodstomateriel(FID,FMaterielCode,FIsPriceChange) values (1,'X3',1),(2,'X1',0)
insert into t_AuxItem(FItemID,FName) values (7,N'red')
insert into IC_Logistics(FItemID,FName,FName_CHT) values (5,N'顺',N'順')
insert into IC_RefundInfo(FID,FIsRefuse) values (91,0),(92,1)
insert into IC_Web2ERPOrders(FID,FOrderID,FLogisticsID) values (1,'O1',5),(2,'O2',0),(3,'O3',5)
insert into IC_Web2ERPOrdersEx(FID,FLotNumber,FSerialNumber) values (1,'L1','10'),(2,'L1','2')
insert into IC_Web2ERPOrdersEntry(FEntryID,FID,FIndex,FItemID,FAttrCode,FStockID,FSPID,FQuantity,FBatchNo,FRowClosed,
  FRefundStatus,FRefundFID)
values (101,1,1,1,7,1,11,2,'b',0,0,0),  -- the line's own place
       (102,1,2,1,7,1,0,1,'b',0,0,0),   -- the item's
       (103,1,3,2,0,1,0,4,null,0,0,0),  -- the default: the item's is in another warehouse
       (104,1,4,1,0,1,11,9,'b',1,0,0),  -- closed by hand
       (105,1,5,3,0,1,11,9,'',0,0,0),   -- a difference in price
       (201,2,1,1,7,1,11,3,'b',0,0,0),
       (202,2,2,2,0,1,13,1,'',0,1,92),  -- its refund was refused
       (203,2,3,2,0,1,13,9,'',0,1,91),  -- refund under way
       (301,3,1,1,0,2,0,5,'b',0,0,0),   -- the item's is in another warehouse
       (302,3,2,1,0,3,0,6,'b',0,0,0)    -- a warehouse without places
)");
  }

  std::string List(const Dictionary& more, std::vector<const char*> columns) {
    const RecordsetPtr rows = get().GetPrintRecordsetForPick(Keys("3,2,1", more));
    std::string text;
    for (; !rows->eof(); rows->MoveNext()) {
      for (const char* column : columns)
        text += (rows->IsNull(*rows->FindField(column)) ? "-" : rows->Get(column).ToText()) + " ";
      text += "\n";
    }
    return text;
  }
};

TEST_F(PickListTest, WalksFromPlaceToPlace) {
  EXPECT_EQ(List({}, {"FStockName", "FSPNumber", "FNumber", "FSerialNumber", "FID", "FIndex", "FAttrName"}),
            "A P-23 X1 - 3 1 - \n"
            "B P-02 X1 10 1 2 red \n"
            "B P-11 X1 2 2 1 red \n"
            "B P-11 X1 10 1 1 red \n"
            "B P-13 X2 2 2 2 - \n"
            "B P-13 X2 10 1 3 - \n"
            "C - X1 - 3 2 - \n");
  EXPECT_EQ(List({}, {"FLogisticsName"}), "顺 \n顺 \n- \n顺 \n- \n顺 \n顺 \n");
}

TEST_F(PickListTest, CollectsWhatAllOrdersNeed) {
  EXPECT_EQ(List({{"Mode", "1"}}, {"FStockName", "FSPNumber", "FNumber", "FAttrName", "FBatchNo", "FQuantity",
                                   "FOrders", "FSerialNumbers"}),
            "A P-23 X1 - b 5.0000 1  \n"
            "B P-02 X1 red b 1.0000 1 10 \n"
            "B P-11 X1 red b 5.0000 2 2,10 \n"
            "B P-13 X2 -  5.0000 2 2,10 \n"
            "C - X1 - b 6.0000 1  \n");
}

}  // namespace
}  // namespace tessarlorn
