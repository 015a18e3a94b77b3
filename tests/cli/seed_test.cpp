#include "samples/seed.h"

#include <gtest/gtest.h>
#include <set>
#include <string>
#include <vector>

#include "frame/clsGetData.h"
#include "frame/clsSaveData.h"
#include "platform/error.h"
#include "support/sample_database.h"

namespace tessarlorn::cli {
namespace {

int Count(SampleDatabase& database, const std::string& from) {
  return database.connection().Execute("SELECT COUNT(*) FROM " + from)->Get(std::size_t{0}).ToInt32();
}

std::vector<std::string> Column(SampleDatabase& database, const std::string& query) {
  std::vector<std::string> values;
  for (const RecordsetPtr rows = database.connection().Execute(query); !rows->eof(); rows->MoveNext()) {
    values.push_back(rows->Get(std::size_t{0}).ToText());
  }
  return values;
}

/// Every cell of every table, the rows of a table in the order of their text.
std::string Contents(SampleDatabase& database) {
  std::string text;
  for (const std::string& table : Column(database, "SELECT name FROM sys.tables ORDER BY name")) {
    std::multiset<std::string> lines;
    for (const RecordsetPtr rows = database.connection().Execute("SELECT * FROM " + table); !rows->eof();
         rows->MoveNext()) {
      std::string line = table + ":";
      for (std::size_t i = 0; i < rows->fields().size(); ++i) {
        line += (rows->Get(i).is_null() ? "NULL" : rows->Get(i).ToText()) + "|";
      }
      lines.insert(line + "\n");
    }
    for (const std::string& line : lines) text += line;
  }
  return text;
}

TEST(SeedTest, SameSeedGivesSameOrders) {
  SampleDatabase first(230, 5);
  SampleDatabase second(230, 5);
  SampleDatabase other(230, 6);
  const std::string contents = Contents(first);
  EXPECT_EQ(contents == Contents(second), true);
  EXPECT_EQ(contents == Contents(other), false);
  EXPECT_EQ(Count(other, "IC_Web2ERPOrders"), 230);
}

struct Case {
  const char* from;
  int at_least;
};

TEST(SampleCasesTest, AFewHundredOrdersHoldEveryCase) {
  SampleDatabase database(300);
  const Case cases[] = {
      // Warehouses, batches, price differences
      {"t_Stock s INNER JOIN t_StockPlaceGroup g ON s.FSPGroupID=g.FSPGroupID INNER JOIN t_StockPlace p ON "
       "g.FDefaultSPID=p.FSPID WHERE s.FIsStockMgr=1",
       2},
      {"t_Stock WHERE FIsStockMgr=0", 2},
      {"t_ICItem WHERE FSerialClassID>0", 2},
      {"t_ICItem i INNER JOIN t_Stock s ON i.FDefaultLoc=s.FItemID INNER JOIN t_StockPlace p ON i.FSPID=p.FSPID AND "
       "p.FSPGroupID=s.FSPGroupID WHERE i.FBatchManager=1",
       2},
      {"IC_Web2ERPOrdersEntry l INNER JOIN t_ICItem i ON l.FItemID=i.FItemID AND l.FStockID=i.FDefaultLoc INNER JOIN "
       "t_Stock s ON l.FStockID=s.FItemID AND s.FIsStockMgr=1",
       3},
      {"IC_Web2ERPOrders h WHERE NOT EXISTS (SELECT 1 FROM IC_Web2ERPOrdersEntry l INNER JOIN t_Stock s ON "
       "l.FStockID=s.FItemID WHERE l.FID=h.FID AND s.FIsStockMgr=1)",
       3},
      {"IC_Web2ERPOrders h WHERE NOT EXISTS (SELECT 1 FROM IC_Web2ERPOrdersEntry l WHERE l.FID=h.FID AND "
       "l.FBatchNo IS NOT NULL)",
       3},
      {"IC_Web2ERPOrdersEntry WHERE FBatchNo=''", 3},
      {"IC_Web2ERPOrdersEntry WHERE FBatchNo<>''", 3},
      {"IC_Web2ERPOrdersEntry l INNER JOIN IC_Web2ERPOrders h ON l.FID=h.FID WHERE l.FStockID=0 AND h.FOrderStatus=2",
       2},
      {"IC_Web2ERPOrdersEntry l INNER JOIN t_ICItem i ON l.FItemID=i.FItemID INNER JOIN ic_goodstomateriel g ON "
       "g.FMaterielCode=i.FNumber WHERE g.FIsPriceChange=1 AND l.FAfterDiscountAmount>0",
       5},
      {"IC_Web2ERPOrdersEntry l INNER JOIN t_ICItem i ON l.FItemID=i.FItemID INNER JOIN ic_goodstomateriel g ON "
       "g.FMaterielCode=i.FNumber INNER JOIN t_Stock s ON l.FStockID=s.FItemID WHERE g.FIsPriceChange=1 AND "
       "s.FIsStockMgr=1",
       1},
      {"IC_Web2ERPOrdersEntry l INNER JOIN t_ICItem i ON l.FItemID=i.FItemID WHERE i.FNumber LIKE '08.%' AND "
       "l.FBuyerFreight>0",
       1},
      // Marketplace orders
      {"IC_Web2ERPOrdersEntry l INNER JOIN IC_Trade t ON l.FSiteOrderID=t.FTID", 300},
      {"IC_Web2ERPOrdersEntry l WHERE l.FSiteOrderID<>'' AND NOT EXISTS (SELECT 1 FROM IC_Trade t WHERE "
       "t.FTID=l.FSiteOrderID)",
       2},
      {"IC_Web2ERPOrdersEntry a INNER JOIN IC_Web2ERPOrdersEntry b ON a.FSiteOrderID=b.FSiteOrderID AND a.FID<b.FID "
       "AND a.FChildOrderID<>'' AND a.FChildOrderID<>b.FChildOrderID INNER JOIN IC_Trade t ON a.FSiteOrderID=t.FTID",
       2},
      {"(SELECT FSiteOrderID FROM IC_Web2ERPOrdersEntry WHERE FSiteOrderID<>'' AND FChildOrderID<>'' GROUP BY "
       "FSiteOrderID HAVING COUNT(*)=1) t",
       2},
      {"(SELECT FSiteOrderID FROM IC_Web2ERPOrdersEntry WHERE FSiteOrderID<>'' AND FChildOrderID<>'' GROUP BY "
       "FSiteOrderID HAVING COUNT(*)=2) t",
       2},
      {"(SELECT FSiteOrderID FROM IC_Web2ERPOrdersEntry WHERE FSiteOrderID<>'' AND FChildOrderID<>'' GROUP BY "
       "FSiteOrderID HAVING COUNT(*)>2) t",
       2},
      {"(SELECT DISTINCT s.FWebShopType FROM IC_Web2ERPOrders h INNER JOIN IC_WebshopToStorage s ON "
       "h.FWebshopID=s.FWebShopID) t",
       2},
      {"IC_UploadWebOrderTaskFlow f INNER JOIN t_User u ON f.FUserName=u.FName WHERE f.FUpStatus=0", 1},
      {"IC_UploadWebOrderTaskFlow f INNER JOIN t_User u ON f.FUserName=u.FName WHERE f.FUpStatus=1 AND "
       "u.FUserID<>16394",
       1},
      {"IC_UploadWebOrderIndicator i INNER JOIN IC_UploadWebOrderTaskFlow f ON i.FTaskID=f.FTaskID AND f.FUpStatus=1 "
       "INNER JOIN IC_Web2ERPOrders h ON i.FID=h.FID AND h.FUpLoadStatus=1",
       2},
      // Outside warehouses
      {"IC_WebtplFlat f WHERE NOT EXISTS (SELECT 1 FROM IC_WebtplToStorage s WHERE s.FWebtplType=f.FWebTplType)", 1},
      {"IC_WebtplFlat f INNER JOIN IC_WebtplToStorage s ON s.FWebtplType=f.FWebTplType INNER JOIN t_Stock k ON "
       "s.FStockID=k.FItemID WHERE s.FIsbad=0 AND s.FUnUsed=0",
       2},
      {"IC_WebtplToStorage WHERE FIsbad=1", 1},
      {"IC_WebtplToStorage WHERE FUnUsed=1", 1},
      {"IC_WebtplToStorage WHERE FStockID=0", 1},
      {"IC_Web2ERPOrders h LEFT JOIN IC_Web2ERPOrdersEx x ON h.FID=x.FID WHERE ISNULL(x.FTplStatus,'')='' AND EXISTS "
       "(SELECT 1 FROM IC_Web2ERPOrdersEntry l INNER JOIN IC_WebtplToStorage w ON l.FStockID=w.FStockID WHERE "
       "l.FID=h.FID)",
       2},
      {"IC_Web2ERPOrders h INNER JOIN IC_Web2ERPOrdersEx x ON h.FID=x.FID WHERE x.FTplStatus='1' AND "
       "h.FLogisticsOrder='' AND NOT EXISTS (SELECT 1 FROM IC_Web2ERPOrdersEntry WHERE FID=h.FID AND FStockID NOT IN "
       "(SELECT FStockID FROM IC_WebtplToStorage))",
       1},
      {"IC_Web2ERPOrders h INNER JOIN IC_Web2ERPOrdersEx x ON h.FID=x.FID WHERE x.FTplStatus='1' AND "
       "h.FLogisticsOrder<>''",
       1},
      {"IC_Web2ERPOrdersEx WHERE FTplStatus='0'", 1},
      {"IC_Web2ERPOrdersEx WHERE FTplStatus='2'", 1},
      {"IC_Web2ERPOrdersEx WHERE FTplStatus='3'", 1},
      {"TPLTaskFlow WHERE FTaskType=120 AND FTaskId<>'' AND FStatus=2", 1},
      {"TPLTaskFlow WHERE FTaskType=120 AND FStatus<>2", 1},
      {"TPLTaskFlow t INNER JOIN IC_Web2ERPOrdersEx x ON t.FTaskName=CAST(x.FID AS nvarchar(20)) AND x.FTplStatus='3' "
       "WHERE t.FTaskType=130",
       1},
      {"POOrder h INNER JOIN POOrderEntry l ON h.FInterID=l.FInterID WHERE h.FTplStatus='3' AND l.FTplEStatus='3' AND "
       "l.FTplEStock<>''",
       1},
      {"POOrder h INNER JOIN POOrderEntry l ON h.FInterID=l.FInterID WHERE l.FTplEStatus IN ('0','')", 2},
      {"SEOrder h INNER JOIN SEOrderEntry l ON h.FInterID=l.FInterID WHERE l.FTplEStatus IN ('0','')", 2},
      {"IC_SynchSetting WHERE FSettingName='DownloadWebTpls'", 1},
      // Addresses and carriers
      {"IC_Web2ERPOrders h INNER JOIN IC_Web2ERPOrdersEx x ON h.FID=x.FID WHERE h.FLogisticsID<>0 AND "
       "x.FAddressReachable=1",
       5},
      {"IC_Web2ERPOrders h INNER JOIN IC_Web2ERPOrdersEx x ON h.FID=x.FID WHERE h.FLogisticsID<>0 AND "
       "x.FAddressReachable=4",
       5},
      {"IC_Web2ERPOrders h INNER JOIN IC_Web2ERPOrdersEx x ON h.FID=x.FID WHERE h.FLogisticsID<>0 AND "
       "x.FAddressReachable=5",
       2},
      {"IC_Web2ERPOrders h INNER JOIN IC_Web2ERPOrdersEx x ON h.FID=x.FID WHERE h.FLogisticsID<>0 AND "
       "x.FAddressReachable NOT IN (1,4,5)",
       2},
      {"IC_Web2ERPOrders h WHERE FLogisticsID<>0 AND NOT EXISTS (SELECT 1 FROM IC_Web2ERPOrdersEx x WHERE x.FID=h.FID)",
       5},
      {"IC_Web2ERPOrders h INNER JOIN IC_Logistics c ON h.FLogisticsID=c.FItemID INNER JOIN "
       "IC_SaveAddressReachableInfo a ON a.FDeliveryDistrict=h.FDeliveryDistrict AND a.FNumber=c.FNumber AND "
       "a.FArrive=1",
       2},
      {"IC_Web2ERPOrders WHERE FDeliveryDistrict=0 AND FLogisticsID<>0", 2},
      {"IC_Web2ERPOrders WHERE FLogisticsID=0", 2},
      {"IC_Web2ERPOrders h INNER JOIN IC_Logistics c ON h.FLogisticsID=c.FItemID WHERE c.FNumber=''", 2},
      {"IC_Web2ERPOrders h INNER JOIN IC_SfexpressLogisticsOrder w ON h.FID=w.FID WHERE h.FOrderStatus=6", 1},
      // Prints
      {"ICPrintMaxCount WHERE FPrintControlOrNo=1 AND FID BETWEEN 10143011 AND 10143013", 3},
      {"ICPrintMaxCount WHERE FPrintControlOrNo=0 AND FID=10143014", 1},
      {"IC_Web2ERPOrders h, ICPrintMaxCount m WHERE m.FID=10143011 AND h.FPrintPickCount<m.FPrintMaxCount", 5},
      {"IC_Web2ERPOrders h, ICPrintMaxCount m WHERE m.FID=10143012 AND h.FPrintSendCount=m.FPrintMaxCount", 2},
      {"IC_Web2ERPOrders h, ICPrintMaxCount m WHERE m.FID=10143013 AND h.FPrintExpressCount>m.FPrintMaxCount", 2},
      {"IC_Web2ERPOrders WHERE FPrintSendList>3", 2},
      {"IC_Web2ERPOrdersEx WHERE FLotNumber LIKE '2026__[1-9]%' AND FSerialNumber='20'", 1},
      {"(SELECT FLotNumber FROM IC_Web2ERPOrdersEx WHERE FLotNumber<>'' GROUP BY FLotNumber HAVING COUNT(*)>5 AND "
       "COUNT(DISTINCT FSerialNumber)=COUNT(*)) t",
       5},
      // Invoices
      {"ICExpenses e WHERE NOT EXISTS (SELECT 1 FROM IC_Web2ERPOrders h WHERE h.FFeeBillNO=e.FinterID)", 1},
      {"(SELECT e.FinterID FROM ICExpenses e INNER JOIN IC_Web2ERPOrders h ON e.FinterID=h.FFeeBillNO GROUP BY "
       "e.FinterID HAVING COUNT(*)=1) t",
       1},
      {"(SELECT e.FinterID FROM ICExpenses e INNER JOIN IC_Web2ERPOrders h ON e.FinterID=h.FFeeBillNO GROUP BY "
       "e.FinterID HAVING COUNT(*)=2) t",
       1},
      {"IC_Web2ERPOrders WHERE FInvoiceStatus=1 AND FInnerInvoice=0", 2},
      {"IC_Web2ERPOrders WHERE FInvoiceStatus=1 AND FInnerInvoice=1", 2},
      {"ICStockBillEntry b INNER JOIN IC_Web2ERPOrders h ON b.FSourceTranType=1014301 AND b.FSourceInterId=h.FID WHERE "
       "NOT EXISTS (SELECT 1 FROM ICSaleEntry s WHERE s.FSourceInterId=b.FInterID AND s.FSourceEntryID=b.FEntryID)",
       2},
      {"ICSaleEntry s INNER JOIN ICStockBillEntry b ON s.FSourceInterId=b.FInterID AND s.FSourceEntryID=b.FEntryID "
       "INNER JOIN IC_Web2ERPOrdersEntry l ON b.FSourceTranType=1014301 AND b.FSourceEntryID=l.FEntryID AND "
       "b.FSourceInterId=l.FID AND b.FItemID=l.FItemID",
       2},
      {"ICSaleEntry s INNER JOIN ICStockBillEntry b ON s.FSourceInterId=b.FInterID AND s.FSourceEntryID=b.FEntryID "
       "INNER JOIN IC_Web2ERPOrders h ON b.FSourceTranType<>1014301 AND b.FSourceInterId=h.FID",
       1},
      {"IC_WEBOrders_Status WHERE FOrderStatus=14 AND FTitle=N'已发货(240)'", 1},
  };
  for (const Case& item : cases) EXPECT_GE(Count(database, item.from), item.at_least) << item.from;

  const char* const faults[] = {
      "IC_MaxNum",
      "ICMaxNum",
      "IC_UploadWebOrderTaskFlow f INNER JOIN t_User u ON f.FUserName=u.FName WHERE u.FUserID=16394 AND f.FUpStatus=0",
      "IC_Web2ERPOrders WHERE FLogisticsID=0 AND FLogisticsOrder<>''",
      "IC_Web2ERPOrdersEntry l INNER JOIN IC_WebtplToStorage w ON l.FStockID=w.FStockID AND w.FStockID<>0 WHERE "
      "w.FUnUsed=1 OR w.FIsbad=1",
      "(SELECT FTID FROM IC_Trade GROUP BY FTID HAVING COUNT(*)>1) t",
      "POOrderEntry l LEFT JOIN t_ICItem i ON l.FItemID=i.FItemID WHERE i.FItemID IS NULL",
      "SEOrderEntry l LEFT JOIN t_ICItem i ON l.FItemID=i.FItemID WHERE i.FItemID IS NULL",
      "t_MeasureUnit WHERE FItemID<>FMeasureUnitID",
      "IC_Web2ERPOrders h WHERE FTotalFreight<>(SELECT SUM(FBuyerFreight) FROM IC_Web2ERPOrdersEntry l WHERE "
      "l.FID=h.FID)",
      "IC_Web2ERPOrdersEx WHERE FLotNumber<>'' AND CONVERT(decimal,FLotNumber)<2025011",
  };
  for (const char* fault : faults) EXPECT_EQ(Count(database, fault), 0) << fault;
}

TEST(SampleCasesTest, GridLayoutNamesWhatIsThere) {
  SampleDatabase database(1);
  EXPECT_GE(Count(database, "ICClassTableInfo WHERE FClassTypeID=1014301 AND FPage=1 AND FUserDefine=0"), 60);
  EXPECT_GE(Count(database, "ICClassTableInfo WHERE FClassTypeID=1014301 AND FPage=2 AND FUserDefine=0"), 40);
  EXPECT_EQ(Count(database,
                  "ICClassTableInfo WHERE FCaption_CHS='' OR FCaption_CHT='' OR FTabIndex=0 OR (FCtlType=0 AND "
                  "FUserDefine=0)"),
            0);
  EXPECT_EQ(
      Count(database,
            "ICClassTableInfo i WHERE i.FTableName<>'' AND NOT EXISTS (SELECT 1 FROM INFORMATION_SCHEMA.COLUMNS c "
            "WHERE c.TABLE_NAME=i.FTableName AND c.COLUMN_NAME=i.FFieldName)"),
      0);
  EXPECT_EQ(
      Count(database, "ICClassTableInfo WHERE FPage=1 AND FNeedSave=1 AND FKey IN ('FID','FTextMulti','FOrderType')"),
      3);
  EXPECT_EQ(
      Count(database,
            "ICClassTableInfo WHERE FKey IN ('FItemName','FPackagedGoods','FPackagedGoodsName','FIsFree','FNumber',"
            "'FBarCode','FItemOnlineProductNumber','FTextApplyForReFund','FMealID2','FAddressReachable',"
            "'FInsuredValue','FLogisticsState','FStockBillResult','FStockBillStatus','FTplFail','FTplStatus',"
            "'FLotNumber','FSerialNumber','FTpName','FTplRemark','FUpdateMemoFail','FUpdateMemoStauts','FIsLock',"
            "'FLockReason','FSPID','FStockID','FIsPrintExpress','FIsPrintPick','FIsPrintSend','FPrintExpressCount',"
            "'FPrintExpressUserID','FTplOrderID')"),
      32);

  int lookups = 0;
  for (const RecordsetPtr fields = database.connection().Execute(
           "SELECT FKey, FLookUpList, FSRCFieldName, FDSPFieldName FROM ICClassTableInfo WHERE FLookUpList<>''");
       !fields->eof(); fields->MoveNext()) {
    ++lookups;
    const std::string choices = fields->Get("FLookUpList").ToText();
    ASSERT_NE(choices.find("FROM"), std::string::npos) << choices;
    const std::string query = "SELECT " + fields->Get("FDSPFieldName").ToText() + "+'_'+CAST(" +
                              fields->Get("FSRCFieldName").ToText() + " AS varchar(50)) " +
                              choices.substr(choices.find("FROM"));
    EXPECT_GT(Column(database, query).size(), 0U) << query;
    EXPECT_EQ(
        Count(database, "ICClassTableInfo WHERE FClassTypeID=1014301 AND FKey='" + fields->Get("FKey").ToText() + "'"),
        1);
  }
  EXPECT_GE(lookups, 5);
}

class SeededTest : public testing::Test {
 protected:
  static constexpr int kOrders = 500;
  static SampleDatabase& Database() {
    static SampleDatabase database(kOrders);
    return database;
  }
  const std::string administrator_ = Database().Dsn();
};

TEST_F(SeededTest, HoldsEveryState) {
  const char* const states[] = {
      "IC_Web2ERPOrders WHERE FOrderStatus=2",
      "IC_Web2ERPOrders WHERE FOrderStatus=6 AND FPickMan<>'0' AND FPIckingGoodsStatus=0 AND FPickingGoodMan=0",
      "IC_Web2ERPOrders WHERE FOrderStatus=6 AND FPIckingGoodsStatus=0 AND FPickingGoodMan<>0",
      "IC_Web2ERPOrders WHERE FOrderStatus=6 AND FPIckingGoodsStatus=1 AND FWeighttingStatus=0",
      "IC_Web2ERPOrders WHERE FOrderStatus=6 AND FWeighttingStatus=1 AND FWeight>0 AND FLogisticsOrder<>''",
      "IC_Web2ERPOrders WHERE FOrderStatus=14 AND FShippingMan<>0 AND FUpLoadStatus=1 AND FTransactionStatus=38193",
      "IC_Web2ERPOrders WHERE FOrderStatus=14 AND FUpLoadStatus=0 AND FReasonsForFailure<>''",
      "IC_Web2ERPOrders WHERE FUpLoadStatus=2",
      "IC_Web2ERPOrders WHERE FUpLoadStatus=3",
      "IC_Web2ERPOrders WHERE FOrderType=38112 AND FUpLoadStatus=0",
      "IC_Web2ERPOrders WHERE FTransactionStatus=38195 AND FUpLoadStatus=0",
      "IC_Web2ERPOrders WHERE FSendType=38132",
      "IC_Web2ERPOrders WHERE FCurrencyID=3",
      "IC_Web2ERPOrders WHERE FMergeStatus=1",
      "IC_Web2ERPOrders WHERE FInvoiceStatus=1 AND FFeeBillNO<>''",
      "IC_Web2ERPOrders WHERE LEN(CONVERT(varchar(30),FUniqueCode))=23",
      "IC_Web2ERPOrders h WHERE NOT EXISTS (SELECT 1 FROM IC_Web2ERPOrdersEx x WHERE x.FID=h.FID)",
      "IC_Web2ERPOrdersEx WHERE FIsLock=1 AND FLockStatus=1",
      "IC_Web2ERPOrdersEx WHERE FIsLock=1 AND FLockStatus=2 AND FLockReason<>''",
      "IC_Web2ERPOrdersEx WHERE FTplStatus='0'",
      "IC_Web2ERPOrdersEx WHERE FTplStatus='1' AND FTplOrderID<>''",
      "IC_Web2ERPOrdersEx WHERE FTplStatus='2' AND FTplFail<>''",
      "IC_Web2ERPOrdersEx WHERE FTplStatus='3'",
      "IC_StockBillOrdersStatus WHERE FStockBillStatus=1",
      "IC_StockBillOrdersStatus WHERE FStockBillStatus=2",
      "IC_StockBillOrdersStatus WHERE FStockBillStatus=3 AND FStockBillResult<>''",
      "vw_Web2ERPOrdersRefund WHERE FRefundStatus=1 AND FIsShowWaitVerifyTemp=0",
      "vw_Web2ERPOrdersRefund WHERE FRefundStatus=1 AND FIsShowWaitVerifyTemp>0",
      "IC_Web2ERPOrdersEntry WHERE FIsFree=1 AND FAmount=0",
      "IC_Web2ERPOrdersEntry WHERE FMealID<>'0'",
      "IC_Web2ERPOrdersEntry WHERE FPackagedGoods<>0",
      "IC_Web2ERPOrdersEntry WHERE FBatchNo<>'' AND FSPID<>0",
      "IC_Web2ERPOrdersEntry WHERE FIndex=8",
      "IC_Web2ERPOrdersEntry l INNER JOIN IC_WebOrder w ON l.FChildOrderID=CAST(w.FOID AS varchar(50)) AND w.FOID<>0",
      ("IC_Web2ERPOrdersEntry a INNER JOIN IC_Web2ERPOrdersEntry b ON a.FSiteOrderID=b.FSiteOrderID AND a.FID<b.FID "
       "AND a.FSiteOrderID<>''"),
      "IC_PrintOrderInfo WHERE FIsPrintPick NOT IN (0,1)",
  };
  for (const char* state : states) EXPECT_GT(Count(Database(), state), 0) << state;
}

TEST_F(SeededTest, AmountsAddUpAndReferencesExist) {
  const char* const faults[] = {
      "IC_Web2ERPOrders h WHERE FAmount<>(SELECT SUM(FAmount) FROM IC_Web2ERPOrdersEntry l WHERE l.FID=h.FID)",
      ("IC_Web2ERPOrders h WHERE FBillDiscountFee<>(SELECT SUM(FEntryBillDiscountFee) FROM IC_Web2ERPOrdersEntry l WHERE "
       "l.FID=h.FID)"),
      "IC_Web2ERPOrdersEntry WHERE FAfterDiscountAmount<0",
      "IC_Web2ERPOrdersEntry l INNER JOIN IC_Web2ERPOrders h ON l.FID=h.FID WHERE h.FOrderStatus=14 AND l.FIsRowClose=0",
      "IC_Web2ERPOrders h LEFT JOIN t_Emp e ON h.FPickMan=e.FNumber WHERE h.FPickMan<>'0' AND e.FItemID IS NULL",
      "IC_Web2ERPOrders h LEFT JOIN IC_Area a ON h.FDeliveryDistrict=a.FID WHERE h.FDeliveryDistrict<>0 AND a.FID IS "
      "NULL",
      "IC_Web2ERPOrders h LEFT JOIN t_SubMessage m ON h.FTransactionStatus=m.FInterID WHERE m.FInterID IS NULL",
      "IC_Area a LEFT JOIN IC_Area p ON a.FParentID=p.FID WHERE a.FLevel>0 AND p.FID IS NULL",
      "IC_Web2ERPOrdersEntry l LEFT JOIN t_ICItem i ON l.FItemID=i.FItemID WHERE i.FItemID IS NULL",
  };
  for (const char* fault : faults) EXPECT_EQ(Count(Database(), fault), 0) << fault;
}

TEST_F(SeededTest, OrderListShowsEachUnlockedOrderOnce) {
  clsGetData get;
  const Dictionary everything;
  const RecordsetPtr orders = get.GetListData(administrator_, &everything);
  std::set<int> keys;
  int named = 0;
  for (; !orders->eof(); orders->MoveNext()) {
    keys.insert(orders->Get("FID").ToInt32());
    const char* const names[] = {"FWebshopName",      "FOrderType",           "FTransactionStatusName",
                                 "FShippingTypeName", "FTransactionTypeName", "FDeliveryCityName",
                                 "FChkManName",       "FBillerName",          "FCurrencyID"};
    for (const char* name : names) named += orders->Get(name).is_null() ? 0 : 1;
  }
  const int unlocked =
      Count(Database(),
            "IC_Web2ERPOrders h WHERE NOT EXISTS (SELECT 1 FROM IC_Web2ERPOrdersEx x WHERE x.FID=h.FID AND "
            "x.FIsLock=1)");
  EXPECT_EQ(orders->RecordCount(), static_cast<std::size_t>(unlocked));
  EXPECT_EQ(keys.size(), orders->RecordCount());
  EXPECT_EQ(named, 9 * unlocked) << "a join finds no name";
  EXPECT_TRUE(orders->FindField("FGiftCardText").has_value());

  // Columns of tables that only some orders are in.
  const char* const sometimes[] = {
      "FPickManName",        "FShippingManName", "FWeighttingMan",       "FStockBillStatus",
      "FTplOrderStatus",     "FIsShShip",        "FIsJzserviceOrder",    "FMailNo",
      "FLogisticsStateName", "FLogisticsIDName", "FDeliveryDistrictName"};
  for (const char* name : sometimes) {
    int found = 0;
    for (orders->MoveFirst(); !orders->eof(); orders->MoveNext()) found += orders->Get(name).is_null() ? 0 : 1;
    EXPECT_GT(found, 0) << name;
    EXPECT_LT(found, unlocked) << name;
  }
}

TEST_F(SeededTest, ClerksSeeTheirShopsOnly) {
  clsGetData get;
  const Dictionary everything;
  const RecordsetPtr orders = get.GetListData(Database().Dsn(16395), &everything);
  EXPECT_GT(orders->RecordCount(), 0U);
  EXPECT_LT(orders->RecordCount(), static_cast<std::size_t>(kOrders) / 2);
  EXPECT_EQ(get.GetListData(Database().Dsn(16404), &everything)->RecordCount(), 0U);
}

TEST_F(SeededTest, LinesCarryTheirNames) {
  clsGetData get;
  int activities = 0;
  int refused = 0;
  for (int key = 1; key <= kOrders; ++key) {
    const Dictionary parameters{{"FID", key}};
    const RecordsetPtr lines = get.GetEntryData(administrator_, &parameters);
    ASSERT_GE(lines->RecordCount(), 1U);
    ASSERT_LE(lines->RecordCount(), 8U);
    for (; !lines->eof(); lines->MoveNext()) {
      ASSERT_NE(lines->Get("FItemName").ToText(), "");
      ASSERT_NE(lines->Get("FUnitIDName").ToText(), "");
      ASSERT_EQ(lines->Get("FStockIDName").is_null(), lines->Get("FStockID").ToInt32() == 0);
      activities += lines->Get("FActivityName").is_null() ? 0 : 1;
      refused += lines->Get("FServiceStatusName").ToText() == "卖家拒绝" ? 1 : 0;
    }
    ASSERT_TRUE(lines->FindField("FEngraving") && lines->FindField("FWrapping"));
  }
  EXPECT_GT(activities, 0);
  EXPECT_GT(refused, 0);
}

TEST_F(SeededTest, ComputedWeightIsTheWeighedOne) {
  clsGetData get;
  const RecordsetPtr weighed =
      Database().connection().Execute("SELECT TOP 40 FID, FWeight FROM IC_Web2ERPOrders WHERE FWeighttingStatus=1");
  constexpr double kBox = 0.12;
  for (; !weighed->eof(); weighed->MoveNext()) {
    const auto computed = get.NewGetWeightByFID(administrator_, weighed->Get("FID").ToInt32());
    ASSERT_TRUE(computed.has_value());
    EXPECT_NEAR(computed->GetValue("FWeight").ToDouble() + kBox, weighed->Get("FWeight").ToDouble(), 0.001)
        << weighed->Get("FID").ToText();
  }
}

TEST(SeedRefusalTest, RefusesADatabaseWithOrdersAndKeepsMasterData) {
  SampleDatabase database;
  database.connection().Execute(
      "INSERT INTO IC_WebshopToStorage (FID,FWebShopID,FWebShopName) VALUES (9,909,N'旧店')\n"
      "INSERT INTO t_SystemProfile (FCategory,FKey,FValue) VALUES ('EC','PickGoodsCount','7')");
  std::string told;
  Seed(database.connection(), {.orders = 20, .random_seed = 3},
       [&](int done, int total) { told += std::to_string(done) + "/" + std::to_string(total) + ";"; });
  EXPECT_EQ(told, "20/20;");
  EXPECT_EQ(Count(database, "IC_Web2ERPOrders WHERE FWebshopID=909"), 20);
  EXPECT_EQ(Count(database, "t_SystemProfile WHERE FKey='PickGoodsCount' AND FValue='7'"), 1);

  try {
    Seed(database.connection(), {.orders = 1, .random_seed = 3}, {});
    FAIL() << "seeded twice";
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), error_number::kInvalidArgument);
    EXPECT_NE(error.description().find("already holds orders"), std::string::npos) << error.description();
  }
  EXPECT_EQ(Count(database, "IC_Web2ERPOrders"), 20);
}

TEST(SeedRefusalTest, LeavesNothingWhenItFails) {
  SampleDatabase database;
  database.connection().Execute("DROP TABLE IC_SfexpressLogisticsOrder");
  EXPECT_THROW(Seed(database.connection(), {.orders = 20}, {}), Error);
  EXPECT_EQ(Count(database, "IC_Web2ERPOrders") + Count(database, "t_SystemProfile"), 0);
}

}  // namespace
}  // namespace tessarlorn::cli
