#include "samples/seed.h"

#include <set>

#include "support/error_of.h"
#include "support/sample_test.h"
#include "tessarlorn/error.h"

namespace tessarlorn::cli {
namespace {

/// Every cell of every table, the rows of a table in the order of their text.
std::string Contents(Connection& connection) {
  std::string text;
  const RecordsetPtr tables = connection.Execute("SELECT name FROM sys.tables ORDER BY name");
  for (; !tables->eof(); tables->MoveNext()) {
    std::multiset<std::string> lines;
    const RecordsetPtr rows = connection.Execute("SELECT * FROM " + tables->Get(0).ToText());
    for (; !rows->eof(); rows->MoveNext()) {
      std::string line;
      for (std::size_t i = 0; i < rows->fields().size(); ++i) {
        line += (rows->Get(i).is_null() ? "NULL" : rows->Get(i).ToText()) + "|";
      }
      lines.insert(line);
    }
    text += tables->Get(0).ToText() + ":\n";
    for (const std::string& line : lines) text += line + "\n";
  }
  return text;
}

TEST(SeedTest, SameSeedGivesSameOrders) {
  SampleDatabase first(230, 5);
  SampleDatabase second(230, 5);
  SampleDatabase other(230, 6);
  const std::string contents = Contents(first.connection());
  EXPECT_EQ(contents == Contents(second.connection()), true);
  EXPECT_EQ(contents == Contents(other.connection()), false);
}

/// A few hundred orders. Headers, lines, extensions, items, stocks, outside warehouses and marketplace orders have
/// names of a letter: h, l, x, i, s, w and t.
class SamplesTest : public testing::Test {
 protected:
  static Connection& Database() {
    static SampleDatabase database(400);
    static const bool named = [] {
      for (const auto& [name, table] : {std::pair{"h", "IC_Web2ERPOrders"},
                                        {"l", "IC_Web2ERPOrdersEntry"},
                                        {"x", "IC_Web2ERPOrdersEx"},
                                        {"i", "t_ICItem"},
                                        {"s", "t_Stock"},
                                        {"w", "IC_WebtplToStorage"},
                                        {"t", "IC_Trade"}}) {
        database.connection().Execute(std::string("create view ") + name + " as select * from " + table);
      }
      return true;
    }();
    EXPECT_TRUE(named);
    return database.connection();
  }
  static std::string Read(const std::string& query) { return Cells(Database(), query); }
  static int Count(const std::string& from) { return std::stoi(Read("select count(*) from " + from)); }
};

TEST_F(SamplesTest, HoldEveryState) {
  const std::tuple<std::string, const char*, const char*> cases[] = {
      {"FOrderStatus", "h", "2|6|14|"},
      {"FUpLoadStatus", "h", "0|1|2|3|"},
      {"FLockStatus", "x where FIsLock = 1", "1|2|"},
      {"FStockBillStatus", "IC_StockBillOrdersStatus", "1|2|3|"},
      {"FTplStatus", "x", "|0|1|2|3|"},
      {"isnull(FAddressReachable, 4)", "x join h on h.FID = x.FID where FLogisticsID <> 0", "1|2|4|5|"},
      {"FStatus", "TPLTaskFlow where FTaskType = 120", "0|2|"},
      {"FOrderStatus", "h where FInvoiceStatus = 1 and FInnerInvoice = 1", "2|6|14|"},
      {"FOrderStatus", "h where FInvoiceStatus = 1 and FInnerInvoice = 0", "2|6|14|"},
      {"FPIckingGoodsStatus * 10 + FWeighttingStatus", "h where FOrderStatus = 6", "0|10|11|"},
      {"FCurrencyID", "h", "1|2|3|"},
      {"FMergeStatus", "h", "0|1|"},
      {"FIsUnUsed", "(select FUnUsed as FIsUnUsed from w) w", "0|1|"},
      {"FIsbad", "w", "0|1|"},
      {"FIsStockMgr", "s", "0|1|"},
      {"len(convert(varchar(30), FUniqueCode))", "h", "20|21|22|23|"},
      {"FID", "ICPrintMaxCount where FPrintControlOrNo = 1", "10143011|10143012|10143013|"},
      {"FIsShowWaitVerifyTemp", "vw_Web2ERPOrdersRefund where FRefundStatus = 1", "0|1|"},
      {"FIsFree", "l where FIndex = 8 or FAmount = 0", "0|1|"},
      {"FTitle", "IC_WEBOrders_Status where FOrderStatus = 14", "已发货(320)|"},
  };
  for (const auto& [value, from, values] : cases) {
    EXPECT_EQ(Read("select distinct " + value + " from " + from + " order by " + value), values) << value << from;
  }
}

TEST_F(SamplesTest, HoldEveryCase) {
  const char* const cases[] = {
      // Picking and delivery
      "h where FOrderStatus = 6 and FPickMan <> '0' and FPickingGoodMan <> 0 and FPIckingGoodsStatus = 0",
      "h where FOrderStatus = 6 and FWeighttingStatus = 1 and FWeight > 0 and FLogisticsOrder <> ''",
      "h where FOrderStatus = 14 and FShippingMan <> 0 and FUpLoadStatus = 1 and FTransactionStatus = 38193",
      "h where FOrderStatus = 14 and FUpLoadStatus = 0 and FReasonsForFailure <> ''",
      "h where FOrderType = 38112 and FUpLoadStatus = 0",
      "h where FTransactionStatus = 38195 and FUpLoadStatus = 0",
      "h where FSendType = 38132",
      "IC_StockBillOrdersStatus where FStockBillStatus = 3 and FStockBillResult <> ''",
      // Lines, warehouses, batches, price differences
      "l where FMealID <> '0'",
      "l where FPackagedGoods <> 0",
      "l where FBatchNo <> '' and FSPID <> 0",
      "l where FBatchNo = ''",
      "h where not exists (select 1 from l where l.FID = h.FID and FBatchNo is not null)",
      "h where not exists (select 1 from l join s on l.FStockID = s.FItemID where l.FID = h.FID and FIsStockMgr = 1)",
      "l join h on l.FID = h.FID where l.FStockID = 0 and FOrderStatus = 2",
      "s join t_StockPlaceGroup g on s.FSPGroupID = g.FSPGroupID join t_StockPlace p on g.FDefaultSPID = p.FSPID",
      "i join s on i.FDefaultLoc = s.FItemID join t_StockPlace p on i.FSPID = p.FSPID where i.FBatchManager = 1",
      "l join i on l.FItemID = i.FItemID and l.FStockID = i.FDefaultLoc",
      "i where FSerialClassID > 0",
      "l join i on l.FItemID = i.FItemID join ic_goodstomateriel g on g.FMaterielCode = i.FNumber join s on "
      "l.FStockID = s.FItemID where FIsPriceChange = 1 and FAfterDiscountAmount > 0 and FIsStockMgr = 1",
      "l join i on l.FItemID = i.FItemID where i.FNumber like '08.%' and l.FBuyerFreight > 0",
      "l join IC_WebOrder o on l.FChildOrderID = cast(o.FOID as varchar(50)) and o.FOID <> 0",
      // Marketplace orders: in the list, not in it, parted; of one line, of two, of more
      "l join t on l.FSiteOrderID = t.FTID",
      "l left join t on l.FSiteOrderID = t.FTID where l.FSiteOrderID <> '' and t.FTID is null",
      "l a join l b on a.FSiteOrderID = b.FSiteOrderID and a.FID < b.FID and a.FChildOrderID <> b.FChildOrderID",
      "(select FSiteOrderID from l where FChildOrderID <> '' group by FSiteOrderID having count(*) = 1) a",
      "(select FSiteOrderID from l where FChildOrderID <> '' group by FSiteOrderID having count(*) = 2) a",
      "(select FSiteOrderID from l where FChildOrderID <> '' group by FSiteOrderID having count(*) > 2) a",
      "IC_UploadWebOrderTaskFlow f join t_User u on FUserName = u.FName where FUpStatus = 0",
      "IC_UploadWebOrderTaskFlow f join t_User u on FUserName = u.FName where FUpStatus = 1 and FUserID <> 16394",
      "IC_UploadWebOrderIndicator a join IC_UploadWebOrderTaskFlow f on a.FTaskID = f.FTaskID and f.FUpStatus = 1",
      // Outside warehouses and their tasks
      "IC_WebtplFlat f left join w on w.FWebtplType = f.FWebTplType where w.FID is null",
      "IC_WebtplFlat f join w on w.FWebtplType = f.FWebTplType join s on w.FStockID = s.FItemID where FUnUsed + FIsbad = 0",
      "w where FStockID = 0",
      "h left join x on h.FID = x.FID where isnull(FTplStatus, '') = '' and h.FID in (select l.FID from l join w on l.FStockID = w.FStockID)",
      "h join x on h.FID = x.FID where FTplStatus = '1' and FLogisticsOrder = '' and FTplOrderID <> ''",
      "h join x on h.FID = x.FID where FTplStatus = '1' and FLogisticsOrder <> ''",
      "x where FTplStatus = '2' and FTplFail <> ''",
      "TPLTaskFlow f join x on FTaskName = cast(x.FID as nvarchar(20)) and x.FTplStatus = '3' where FTaskType = 130",
      "POOrder h join POOrderEntry l on h.FInterID = l.FInterID where FTplStatus = '3' and FTplEStock <> ''",
      "POOrder h join POOrderEntry l on h.FInterID = l.FInterID where FTplEStatus in ('0', '')",
      "SEOrder h join SEOrderEntry l on h.FInterID = l.FInterID where FTplEStatus in ('0', '')",
      "IC_SynchSetting where FSettingName = 'DownloadWebTpls'",
      // Addresses and carriers
      "h left join x on h.FID = x.FID where FLogisticsID <> 0 and x.FID is null",
      "h join IC_Logistics c on FLogisticsID = c.FItemID join IC_SaveAddressReachableInfo a on a.FDeliveryDistrict = "
      "h.FDeliveryDistrict and a.FNumber = c.FNumber and FArrive = 1",
      "h where FDeliveryDistrict = 0 and FLogisticsID <> 0",
      "h where FLogisticsID = 0",
      "h join IC_Logistics c on FLogisticsID = c.FItemID where c.FNumber = ''",
      "h join IC_SfexpressLogisticsOrder o on h.FID = o.FID where FOrderStatus = 6",
      // Prints
      "h, ICPrintMaxCount m where m.FID = 10143011 and FPrintPickCount < FPrintMaxCount",
      "h, ICPrintMaxCount m where m.FID = 10143012 and FPrintSendCount = FPrintMaxCount",
      "h, ICPrintMaxCount m where m.FID = 10143013 and FPrintExpressCount > FPrintMaxCount",
      "IC_PrintOrderInfo where FIsPrintPick not in (0, 1)",
      "x where FLotNumber like '2026__[1-9]%' and FSerialNumber = '20'",
      "(select FLotNumber from x group by FLotNumber having count(*) > 5 and count(distinct FSerialNumber) = count(*)) a",
      // Invoices: of no order, of one, of two; with and without a sales invoice
      "ICExpenses e left join h on FFeeBillNO = FinterID where h.FID is null",
      "(select FinterID from ICExpenses join h on FinterID = FFeeBillNO group by FinterID having count(*) = 1) a",
      "(select FinterID from ICExpenses join h on FinterID = FFeeBillNO group by FinterID having count(*) = 2) a",
      "ICStockBillEntry b join h on FSourceTranType = 1014301 and b.FSourceInterId = h.FID left join ICSaleEntry e on "
      "e.FSourceInterId = b.FInterID and e.FSourceEntryID = b.FEntryID where e.FInterID is null",
      "ICSaleEntry e join ICStockBillEntry b on e.FSourceInterId = b.FInterID and e.FSourceEntryID = b.FEntryID join l on "
      "FSourceTranType = 1014301 and b.FSourceEntryID = l.FEntryID and b.FItemID = l.FItemID",
      "ICSaleEntry e join ICStockBillEntry b on e.FSourceInterId = b.FInterID and FSourceTranType <> 1014301",
  };
  for (const char* from : cases) EXPECT_GT(Count(from), 0) << from;
}

TEST_F(SamplesTest, AddUpAndReferToWhatIsThere) {
  const char* const faults[] = {
      "h where FAmount <> (select sum(FAmount) from l where l.FID = h.FID)",
      "h where FBillDiscountFee <> (select sum(FEntryBillDiscountFee) from l where l.FID = h.FID)",
      "h where FTotalFreight <> (select sum(FBuyerFreight) from l where l.FID = h.FID)",
      "l where FAfterDiscountAmount < 0",
      "l join h on l.FID = h.FID where h.FOrderStatus = 14 and l.FIsRowClose = 0",
      "h left join t_Emp e on FPickMan = e.FNumber where FPickMan <> '0' and e.FItemID is null",
      "h left join IC_Area a on FDeliveryDistrict = a.FID where FDeliveryDistrict <> 0 and a.FID is null",
      "h left join t_SubMessage m on FTransactionStatus = m.FInterID where m.FInterID is null",
      "IC_Area a left join IC_Area p on a.FParentID = p.FID where a.FLevel > 0 and p.FID is null",
      "l left join i on l.FItemID = i.FItemID where i.FItemID is null",
      "POOrderEntry l left join i on l.FItemID = i.FItemID where i.FItemID is null",
      "SEOrderEntry l left join i on l.FItemID = i.FItemID where i.FItemID is null",
      "t_MeasureUnit where FItemID <> FMeasureUnitID",
      "h where FLogisticsID = 0 and FLogisticsOrder <> ''",
      "l join w on l.FStockID = w.FStockID and w.FStockID <> 0 where w.FUnUsed = 1 or w.FIsbad = 1",
      "(select FTID from t group by FTID having count(*) > 1) a",
      "x where FLotNumber <> '' and convert(decimal, FLotNumber) < 2025011",
      "IC_MaxNum, ICMaxNum",
      "IC_UploadWebOrderTaskFlow f join t_User u on FUserName = u.FName where FUserID = 16394 and FUpStatus = 0",
      "ICClassTableInfo where FCaption_CHS = '' or FCaption_CHT = '' or FTabIndex = 0 or FCtlType + FUserDefine = 0",
      "ICClassTableInfo f left join INFORMATION_SCHEMA.COLUMNS c on TABLE_NAME = FTableName and COLUMN_NAME = FFieldName "
      "where FTableName <> '' and TABLE_NAME is null",
  };
  for (const char* fault : faults) EXPECT_EQ(Count(fault), 0) << fault;
}

TEST_F(SamplesTest, GridLayoutOffersFieldsAndChoices) {
  EXPECT_GE(Count("ICClassTableInfo where FClassTypeID = 1014301 and FPage = 1 and FUserDefine = 0"), 60);
  EXPECT_GE(Count("ICClassTableInfo where FClassTypeID = 1014301 and FPage = 2 and FUserDefine = 0"), 40);
  EXPECT_EQ(Count("ICClassTableInfo where FPage = 1 and FNeedSave = 1 and FKey in ('FID', 'FTextMulti', 'FOrderType')"),
            3);
  const RecordsetPtr fields = Database().Execute(
      "select FLookUpList, FSRCFieldName, FDSPFieldName from ICClassTableInfo where FLookUpList <> ''");
  EXPECT_GE(fields->RecordCount(), 5U);
  for (; !fields->eof(); fields->MoveNext()) {
    const std::string choices = fields->Get(0).ToText();
    EXPECT_GT(Count("(select " + fields->Get(1).ToText() + ", " + fields->Get(2).ToText() + " " +
                    choices.substr(choices.find("FROM")) + ") a"),
              0)
        << choices;
  }
}

class SampleListsTest : public testing::Test {
 protected:
  static constexpr int kOrders = 400;
  SampleDatabase samples_{kOrders};
  clsGetData get_{TestHost()};
};

TEST_F(SampleListsTest, NamesAreFoundForOrdersAndLines) {
  const Dictionary everything;
  const RecordsetPtr orders = get_.GetListData(samples_.Dsn(), &everything);
  EXPECT_TRUE(orders->FindField("FGiftCardText").has_value());
  const auto named = [&](const char* name) {
    std::size_t found = 0;
    for (orders->MoveFirst(); !orders->eof(); orders->MoveNext()) found += orders->Get(name).is_null() ? 0 : 1;
    return found;
  };
  for (const char* name : {"FWebshopName", "FOrderType", "FTransactionStatusName", "FShippingTypeName",
                           "FTransactionTypeName", "FDeliveryCityName", "FBillerName", "FCurrencyID"}) {
    EXPECT_EQ(named(name), orders->RecordCount()) << name;
  }
  // Columns of tables that only some orders are in.
  for (const char* name : {"FChkManName", "FPickManName", "FShippingManName", "FWeighttingMan", "FStockBillStatus",
                           "FTplOrderStatus", "FIsShShip", "FIsJzserviceOrder", "FMailNo", "FLogisticsStateName",
                           "FLogisticsIDName", "FDeliveryDistrictName"}) {
    EXPECT_GT(named(name), 0U) << name;
    EXPECT_LT(named(name), orders->RecordCount()) << name;
  }
  int activities = 0;
  int refused = 0;
  for (int key = 1; key <= kOrders; ++key) {
    const RecordsetPtr lines = get_.GetEntryData(samples_.Dsn(), Parameters{{"FID", key}});
    ASSERT_GE(lines->RecordCount(), 1U);
    for (; !lines->eof(); lines->MoveNext()) {
      ASSERT_NE(lines->Get("FItemName").ToText(), "");
      ASSERT_NE(lines->Get("FUnitIDName").ToText(), "");
      ASSERT_EQ(lines->Get("FStockIDName").is_null(), lines->Get("FStockID").ToInt32() == 0);
      activities += lines->Get("FActivityName").is_null() ? 0 : 1;
      refused += lines->Get("FServiceStatusName").ToText() == "卖家拒绝" ? 1 : 0;
    }
  }
  EXPECT_GT(activities, 0);
  EXPECT_GT(refused, 0);
}

TEST_F(SampleListsTest, ComputedWeightIsTheWeighedOne) {
  const RecordsetPtr weighed =
      samples_.connection().Execute("SELECT TOP 40 FID, FWeight FROM IC_Web2ERPOrders WHERE FWeighttingStatus=1");
  constexpr double kBox = 0.12;
  for (; !weighed->eof(); weighed->MoveNext()) {
    const auto computed = get_.NewGetWeightByFID(samples_.Dsn(), weighed->Get("FID").ToInt32());
    EXPECT_NEAR(computed.value().GetValue("FWeight").ToDouble() + kBox, weighed->Get("FWeight").ToDouble(), 0.001);
  }
}

TEST(SeedRefusalTest, RefusesADatabaseWithOrdersAndKeepsMasterData) {
  SampleDatabase database;
  database.connection().Execute(
      "INSERT INTO IC_WebshopToStorage (FID,FWebShopID,FWebShopName) VALUES (9,909,N'旧店')\n"
      "INSERT INTO t_SystemProfile (FCategory,FKey,FValue) VALUES ('EC','PickGoodsCount','7')");
  std::string told;
  const auto tell = [&](int done, int total) { told += std::to_string(done) + "/" + std::to_string(total) + ";"; };
  const auto seed = [&](Connection& connection) { Seed(connection, {.orders = 20, .random_seed = 3}, tell); };
  {
    const auto hurried = OpenConnection(database.database() + ";Timeout=0");
    const auto other = OpenConnection(database.database());
    other->BeginTransaction();
    other->Execute("UPDATE t_Stock SET FName = 'x'");
    const Error error = ErrorOf([&] { seed(*hurried); });
    EXPECT_EQ(error.number(), error_number::kTimeout);
    EXPECT_NE(error.description().find("Another program is writing"), std::string::npos) << error.description();
    other->RollbackTransaction();
  }
  seed(database.connection());
  EXPECT_EQ(told, "20/20;");
  EXPECT_EQ(Cells(database.connection(), "SELECT COUNT(*) FROM IC_Web2ERPOrders WHERE FWebshopID=909"), "20|");
  EXPECT_EQ(Cells(database.connection(), "SELECT FValue FROM t_SystemProfile WHERE FKey='PickGoodsCount'"), "7|");
  const Error error = ErrorOf([&] { seed(database.connection()); });
  EXPECT_EQ(error.number(), error_number::kInvalidArgument);
  EXPECT_NE(error.description().find("already holds orders"), std::string::npos) << error.description();
  EXPECT_EQ(Cells(database.connection(), "SELECT COUNT(*) FROM IC_Web2ERPOrders"), "20|");
}

TEST(SeedRefusalTest, LeavesNothingWhenItFails) {
  SampleDatabase database;
  database.connection().Execute("DROP TABLE IC_SfexpressLogisticsOrder");
  EXPECT_THROW(Seed(database.connection(), {.orders = 20}, {}), Error);
  EXPECT_EQ(Cells(database.connection(), "SELECT FID FROM IC_Web2ERPOrders"), "");
  EXPECT_EQ(Cells(database.connection(), "SELECT FKey FROM t_SystemProfile"), "");
}

}  // namespace
}  // namespace tessarlorn::cli
