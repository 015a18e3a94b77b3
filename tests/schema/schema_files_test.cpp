#include "schema/schema_files.h"

#include <gtest/gtest.h>

#include "support/batches.h"
#include "support/sample_test.h"

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
    shape += Cells(connection, query) + "\n";
  }
  return shape;
}

TEST(SchemaTest, AppliedAgainChangesNothingAndKeepsRows) {
  SampleDatabase database;
  const std::string shape = Shape(database.connection());
  database.connection().Execute("INSERT INTO IC_Web2ERPOrders (FID) VALUES (1)");
  ApplySchema(database.connection());
  EXPECT_EQ(Shape(database.connection()), shape);
  EXPECT_EQ(Cells(database.connection(), "SELECT FPickMan FROM IC_Web2ERPOrders"), "0|");
}

TEST(SchemaTest, CompletesAnOlderDatabase) {
  SampleDatabase database;
  const std::string shape = Shape(database.connection());
  database.connection().Execute(
      "DROP INDEX IX_Web2ERPOrdersEx_Lock ON IC_Web2ERPOrdersEx\n"
      "ALTER TABLE IC_Web2ERPOrdersEx DROP CONSTRAINT IF EXISTS DF_IC_Web2ERPOrdersEx_FIsLock, DF_IC_Web2ERPOrdersEx_FLockStatus, DF_IC_Web2ERPOrdersEx_FLockReason, DF_IC_Web2ERPOrdersEx_FJzService, COLUMN FIsLock, FLockStatus, FLockReason, FJzService\n"
      "ALTER TABLE IC_Web2ERPOrders DROP CONSTRAINT IF EXISTS DF_IC_Web2ERPOrders_FPrintPickCount, DF_IC_Web2ERPOrders_FPrintSendCount, DF_IC_Web2ERPOrders_FPrintExpressCount, DF_IC_Web2ERPOrders_FPrintSendList, DF_IC_Web2ERPOrders_fisLocalChangeAddr, DF_IC_Web2ERPOrders_FPrintExpressUserID, DF_IC_Web2ERPOrders_FEMSStatus, COLUMN FPrintPickCount, FPrintSendCount, FPrintExpressCount, FPrintSendList, fisLocalChangeAddr, FPrintExpressUserID, FEMSStatus\n"
      "ALTER TABLE t_MeasureUnit DROP CONSTRAINT IF EXISTS DF_t_MeasureUnit_FItemID, COLUMN FItemID\n"
      "INSERT INTO t_MeasureUnit (FMeasureUnitID) VALUES (21)\n"
      "INSERT INTO IC_Web2ERPOrders (FID) VALUES (1)\n"
      "DROP VIEW vw_TplWeb2ERPOrders\n"
      "DROP PROCEDURE p_WebBillTitleData");
  const RecordsetPtr tables = database.connection().Execute(
      "SELECT name FROM sys.tables WHERE name NOT IN ('IC_Web2ERPOrdersEx', 'IC_Web2ERPOrders', 't_MeasureUnit')");
  for (; !tables->eof(); tables->MoveNext()) {
    database.connection().Execute("DROP TABLE " + tables->Get(0).ToText());
  }
  ASSERT_NE(Shape(database.connection()), shape);
  ApplySchema(database.connection());
  EXPECT_EQ(Shape(database.connection()), shape);
  EXPECT_EQ(Cells(database.connection(), "SELECT FItemID FROM t_MeasureUnit"), "21|");
  EXPECT_EQ(Cells(database.connection(), "SELECT FPrintPickCount FROM IC_Web2ERPOrders"), "0|");
}

TEST(SchemaTest, TitlesCountTheOrdersOfEachState) {
  SampleDatabase database;
  const auto titles = [&] {
    database.connection().Execute(" exec p_WebBillTitleData ");
    return Cells(database.connection(), "select * from IC_WEBOrders_Status WITH(NOLOCK) order by FOrderStatus");
  };
  EXPECT_EQ(titles(), "2|待配货(0)|待配货|6|待发货(0)|待发货|14|已发货(0)|已发货|");
  database.connection().Execute(
      "INSERT INTO IC_Web2ERPOrders (FID,FOrderStatus) VALUES (1,2),(2,6),(3,2)\n"
      "UPDATE IC_WEBOrders_Status SET FName = N'发完' WHERE FOrderStatus = 14");
  EXPECT_EQ(titles(), "2|待配货(2)|待配货|6|待发货(1)|待发货|14|发完(0)|发完|") << "names that were changed stay";
}

TEST(SchemaTest, WarnsOfALoginThatReadsDatesOtherwise) {
  SampleDatabase database;
  EXPECT_EQ(DateOrderWarning(database.connection()), "");
  database.connection().Execute("SET DATEFORMAT dmy");
  EXPECT_EQ(DateOrderWarning(database.connection()).substr(0, 60),
            "This login reads '2001-02-03' as year, day, month, by its la");
}

TEST(SchemaTest, TakesValuesAsWideAsTheLogsWriteThem) {
  SampleDatabase database;
  database.connection().Execute("INSERT INTO t_SystemProfile (FCategory,FKey,FValue) VALUES ('EC','TradeLog3005','1')");
  const std::string dsn = database.Dsn(7, "Client=" + std::string(63, '1') + ";");
  clsSaveData save{TestHost()};
  ASSERT_TRUE(save.BackToThePreviousStep(Parameters{{"sDSN", dsn}, {"FID", "12"}, {"UpdateFlag", true}}));
  EXPECT_TRUE(save.WriteOPLog("12", "3005", "0", std::string(300, 'o'), std::string(300, 'n')));
  EXPECT_TRUE(save.WriteSaveOrderLog("12", "0", std::string(70, 'f'), std::string(2100, 'v')));
  EXPECT_EQ(Cells(database.connection(), "SELECT MAX(LEN(FUserIP)+LEN(FOldValue)+LEN(FNewValue)) FROM IC_TradeLog"),
            std::to_string(63 + 255 + 255) + "|");
  EXPECT_EQ(Cells(database.connection(), "SELECT LEN(FFieldName)+LEN(FNewValue) FROM IC_TradeFieldLog"),
            std::to_string(64 + 2000) + "|");
  EXPECT_TRUE(save.SubMitTplOrderTask(dsn, KeysTo(2000), 3, "Li"));
  EXPECT_EQ(Cells(database.connection(), "SELECT LEN(FTaskName) FROM TPLTaskFlow"),
            std::to_string(KeysTo(2000).size()) + "|");
}

}  // namespace
}  // namespace tessarlorn
