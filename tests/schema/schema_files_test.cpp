#include "schema/schema_files.h"

#include <gtest/gtest.h>

#include "frame/clsGetData.h"
#include "frame/clsSaveData.h"
#include "support/sample_database.h"

namespace tessarlorn {
namespace {

TEST(SplitBatchesTest, SplitsAtLinesOfGoAlone) {
  using Batches = std::vector<std::string_view>;
  EXPECT_EQ(SplitBatches("a\nGO\nb\n"), (Batches{"a\n", "b\n"}));
  EXPECT_EQ(SplitBatches("a\r\n go \r\n\r\nGo\r\nb\r\nGO"), (Batches{"a\r\n", "b\r\n"}));
  EXPECT_EQ(SplitBatches("select 'GO' -- GO\nGOTO x"), (Batches{"select 'GO' -- GO\nGOTO x"}));
  EXPECT_EQ(SplitBatches("GO\n \t\nGO\n"), Batches{});
}

/// What the database knows of its tables: columns with their types, indexes, views, procedures.
std::string Shape(Connection& connection) {
  std::string shape;
  for (const char* query : {"SELECT TABLE_NAME, COLUMN_NAME, DATA_TYPE, CHARACTER_MAXIMUM_LENGTH, NUMERIC_PRECISION, "
                            "NUMERIC_SCALE, IS_NULLABLE, COLUMN_DEFAULT FROM "
                            "INFORMATION_SCHEMA.COLUMNS ORDER BY TABLE_NAME, ORDINAL_POSITION",
                            "SELECT i.name, t.name FROM sys.indexes i INNER JOIN sys.tables t ON i.object_id = "
                            "t.object_id ORDER BY i.name, t.name",
                            "SELECT name FROM sys.views ORDER BY name", "SELECT name FROM sys.procedures"}) {
    for (const RecordsetPtr rows = connection.Execute(query); !rows->eof(); rows->MoveNext()) {
      for (std::size_t i = 0; i < rows->fields().size(); ++i) {
        const Variant value = rows->Get(i);
        shape += (value.is_null() ? "" : value.ToText()) + "|";
      }
      shape += "\n";
    }
  }
  return shape;
}

TEST(SchemaTest, AppliedAgainChangesNothingAndKeepsRows) {
  SampleDatabase database;
  const std::string shape = Shape(database.connection());
  database.connection().Execute("INSERT INTO IC_Web2ERPOrders (FID) VALUES (1)");
  ApplySchema(database.connection());
  EXPECT_EQ(Shape(database.connection()), shape);
  EXPECT_EQ(database.connection().Execute("SELECT FPickMan FROM IC_Web2ERPOrders")->Get(std::size_t{0}).ToText(), "0");
}

TEST(SchemaTest, CompletesAnOlderDatabase) {
  SampleDatabase database;
  const std::string shape = Shape(database.connection());
  database.connection().Execute(
      "DROP INDEX IX_Web2ERPOrdersEx_Lock ON IC_Web2ERPOrdersEx\n"
      "ALTER TABLE IC_Web2ERPOrdersEx DROP COLUMN FIsLock, FLockStatus, FLockReason\n"
      "ALTER TABLE IC_Web2ERPOrders DROP COLUMN FPrintPickCount, FPrintSendCount, FPrintExpressCount, FPrintSendList, "
      "fisLocalChangeAddr, FPrintExpressUserID\n"
      "ALTER TABLE t_MeasureUnit DROP COLUMN FItemID\n"
      "INSERT INTO t_MeasureUnit (FMeasureUnitID) VALUES (21)\n"
      "INSERT INTO IC_Web2ERPOrders (FID) VALUES (1)\n"
      "DROP VIEW vw_TplWeb2ERPOrders\n"
      "DROP PROCEDURE p_WebBillTitleData");
  for (const char* table : {"IC_TradeLog",
                            "IC_Trade",
                            "IC_UploadWebOrderIndicator",
                            "IC_UploadWebOrderTaskFlow",
                            "ic_goodstomateriel",
                            "IC_SaveAddressReachableInfo",
                            "IC_WebtplFlat",
                            "IC_WebtplToStorage",
                            "POOrder",
                            "POOrderEntry",
                            "SEOrder",
                            "SEOrderEntry",
                            "TPLTaskFlow",
                            "IC_SynchSetting",
                            "ICPrintMaxCount",
                            "IC_MaxNum",
                            "ICMaxNum",
                            "ICExpenses",
                            "ICStockBill",
                            "ICStockBillEntry",
                            "ICSale",
                            "ICSaleEntry",
                            "IC_WEBOrders_Status"}) {
    database.connection().Execute(std::string("DROP TABLE ") + table);
  }
  ASSERT_NE(Shape(database.connection()), shape);
  ApplySchema(database.connection());
  EXPECT_EQ(Shape(database.connection()), shape);
  const RecordsetPtr unit = database.connection().Execute("SELECT FItemID FROM t_MeasureUnit");
  EXPECT_EQ(unit->Get("FItemID").ToInt32(), 21);
  const RecordsetPtr order = database.connection().Execute("SELECT FPrintPickCount FROM IC_Web2ERPOrders");
  EXPECT_EQ(order->Get("FPrintPickCount").ToInt32(), 0);
}

TEST(SchemaTest, TitlesCountTheOrdersOfEachState) {
  SampleDatabase database;
  const auto titles = [&] {
    std::string text;
    database.connection().Execute(" exec p_WebBillTitleData ");
    const RecordsetPtr rows =
        database.connection().Execute("select * from IC_WEBOrders_Status WITH(NOLOCK) order by FOrderStatus");
    for (; !rows->eof(); rows->MoveNext()) {
      text += rows->Get(std::size_t{0}).ToText() + "=" + rows->Get(std::size_t{1}).ToText() + ";";
    }
    return text;
  };
  EXPECT_EQ(titles(), "2=待配货(0);6=待发货(0);14=已发货(0);");
  database.connection().Execute(
      "INSERT INTO IC_Web2ERPOrders (FID,FOrderStatus) VALUES (1,2),(2,6),(3,2)\n"
      "UPDATE IC_WEBOrders_Status SET FName = N'发完' WHERE FOrderStatus = 14");
  EXPECT_EQ(titles(), "2=待配货(2);6=待发货(1);14=发完(0);") << "names that were changed stay";
}

TEST(SchemaTest, TakesTextsWhereOperationsQuoteThem) {
  SampleDatabase database;
  database.connection().Execute(
      "INSERT INTO IC_UploadWebOrderIndicator (FTaskID,FIsSplit,FWebshopID,FID) VALUES ('T','True','101','7')\n"
      "INSERT INTO IC_Web2ERPOrdersEx (FID,FOrderID,FLotNumber,FSerialNumber,FCreateDate,FAddressReachable,FTplStatus) "
      "VALUES (1,'','','',GETDATE(),'','3')\n"
      "INSERT INTO ICExpenses (FinterID) VALUES (5)\n"
      "INSERT INTO IC_Web2ERPOrders (FID,FFeeBillNO) VALUES (1,'5'),(2,'')\n"
      "INSERT INTO TPLTaskFlow (FTaskType,FTaskName,FWebTplType,FRefreshTime) VALUES (130,'" +
      std::string(9000, '1') + "','2',GETDATE())");
  const auto number = [&](const char* query) {
    return database.connection().Execute(query)->Get(std::size_t{0}).ToInt32();
  };
  EXPECT_EQ(number("SELECT COUNT(*) FROM IC_UploadWebOrderIndicator WHERE FIsSplit=1 AND FID=7"), 1);
  EXPECT_EQ(number("SELECT FAddressReachable FROM IC_Web2ERPOrdersEx"), 0);
  EXPECT_EQ(number("SELECT o.FID FROM ICExpenses e INNER JOIN IC_Web2ERPOrders o ON e.FinterID = o.FFeeBillNO"), 1);
  EXPECT_EQ(number("SELECT LEN(FTaskName) FROM TPLTaskFlow WHERE FWebTplType='2'"), 9000);
}

TEST(SchemaTest, TakesValuesAsWideAsTheLogsWriteThem) {
  SampleDatabase database;
  database.connection().Execute("INSERT INTO t_SystemProfile (FCategory,FKey,FValue) VALUES ('EC','TradeLog3005','1')");
  const std::string dsn = database.Dsn(7, "Client=" + std::string(63, '1') + ";");
  clsSaveData save;
  const Dictionary order{{"sDSN", dsn}, {"FID", "12"}, {"UpdateFlag", true}};
  ASSERT_TRUE(save.BackToThePreviousStep(&order));
  EXPECT_TRUE(save.WriteOPLog("12", "3005", "0", std::string(300, 'o'), std::string(300, 'n')));
  EXPECT_TRUE(save.WriteSaveOrderLog("12", "0", std::string(70, 'f'), std::string(2100, 'v')));
  EXPECT_EQ(database.connection()
                .Execute("SELECT MAX(LEN(FUserIP)+LEN(FOldValue)+LEN(FNewValue)) FROM IC_TradeLog")
                ->Get(std::size_t{0})
                .ToInt32(),
            63 + 255 + 255);
  EXPECT_EQ(database.connection()
                .Execute("SELECT LEN(FFieldName)+LEN(FNewValue) FROM IC_TradeFieldLog")
                ->Get(std::size_t{0})
                .ToInt32(),
            64 + 2000);
}

TEST(SchemaTest, HasEveryNameThatTheQueriesUse) {
  SampleDatabase database;
  const std::string dsn = database.Dsn(7);
  clsSaveData save;
  EXPECT_TRUE(save.UpLoadStatusForManualAndClosed(dsn));
  const Dictionary order{{"sDSN", dsn},
                         {"sDsn", dsn},
                         {"sProps", dsn},
                         {"FID", "1"},
                         {"FPickManNumber", "E"},
                         {"UserId", 7},
                         {"UserID", 7},
                         {"AsyncCreate", true},
                         {"FShippingRem", "r"},
                         {"UpdateFlag", false},
                         {"LogisticsCosts", 1},
                         {"FPickingGoodMan", 7},
                         {"FLogisticsOrder", "20260630101000000001"},
                         {"FPickingGoodsstatus", 1}};
  EXPECT_TRUE(save.ConfirmBill(&order));
  EXPECT_TRUE(save.SavePickingGoods(&order));
  EXPECT_TRUE(save.MarkPickingGoodsStatus(&order));
  EXPECT_TRUE(save.ModifyCost(&order));
  EXPECT_TRUE(save.UpdateLogisticsWeightStatus(dsn, &order));
  EXPECT_TRUE(save.Delivery(&order));
  EXPECT_TRUE(save.DeliveryRemark(&order));
  EXPECT_TRUE(save.BackToThePreviousStep(&order));
  EXPECT_TRUE(save.UploadStatus(&order));
  clsGetData get;
  EXPECT_EQ(get.GetTotalLogisticsCosts(&order), 0);
  EXPECT_EQ(get.GetWeightByFID(&order)->RecordCount(), 0U);
  EXPECT_EQ(get.bExistUpLoadBill(&order)->RecordCount(), 0U);
  EXPECT_FALSE(get.bIsWeightting(dsn));
  const Dictionary lines{{"FID", 1}};
  EXPECT_EQ(get.GetEntryData(dsn, &lines)->RecordCount(), 0U);
  for (const Dictionary& filter : {Dictionary{}, Dictionary{{"IsLock", 1}, {"FStockID", "x"}},
                                   Dictionary{{"FCloseOrRefundStatus", 1}, {"FOrderStatus", 2}},
                                   Dictionary{{"FCloseOrRefundStatus", 2}, {"FLogisticsID", 1}},
                                   Dictionary{{"AdvancedFilter", " AND t19.FNumber='1' AND t20.FOnlineShopPNo='1'"}}}) {
    const RecordsetPtr orders = get.GetListData(dsn, &filter);
    ASSERT_NE(orders, nullptr);
    EXPECT_EQ(orders->RecordCount(), 0U);
    EXPECT_TRUE(orders->FindField("FTplOrderID").has_value());
  }
}

}  // namespace
}  // namespace tessarlorn
