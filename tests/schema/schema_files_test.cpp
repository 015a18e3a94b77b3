#include "cli/schema_files.h"

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

/// What the database knows of its tables: columns with their types, indexes, views.
std::string Shape(Connection& connection) {
  std::string shape;
  for (const char* query : {"SELECT TABLE_NAME, COLUMN_NAME, DATA_TYPE, IS_NULLABLE FROM "
                            "INFORMATION_SCHEMA.COLUMNS ORDER BY TABLE_NAME, ORDINAL_POSITION",
                            "SELECT name, object_id FROM sys.indexes ORDER BY name, object_id",
                            "SELECT name FROM sys.views ORDER BY name"}) {
    for (const RecordsetPtr rows = connection.Execute(query); !rows->eof(); rows->MoveNext()) {
      for (std::size_t i = 0; i < rows->fields().size(); ++i) shape += rows->Get(i).ToText() + "|";
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
      "DROP VIEW vw_TplWeb2ERPOrders\n"
      "DROP TABLE IC_TradeLog");
  ASSERT_NE(Shape(database.connection()), shape);
  ApplySchema(database.connection());
  EXPECT_NO_THROW(database.connection().Execute("SELECT FIsLock, FLockStatus, FLockReason FROM IC_Web2ERPOrdersEx"));
  EXPECT_NO_THROW(database.connection().Execute("SELECT FTplOrderStatus FROM vw_TplWeb2ERPOrders"));
  EXPECT_NO_THROW(database.connection().Execute("SELECT FOPCode FROM IC_TradeLog"));
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
