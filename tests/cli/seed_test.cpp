#include "cli/seed/seed.h"

#include <gtest/gtest.h>
#include <set>

#include "frame/clsGetData.h"
#include "frame/clsSaveData.h"
#include "platform/error.h"
#include "support/sample_database.h"

namespace tessarlorn::cli {
namespace {

int Count(SampleDatabase& database, const std::string& from) {
  return database.connection().Execute("SELECT COUNT(*) FROM " + from)->Get(std::size_t{0}).ToInt32();
}

/// Every cell of the tables that differ from order to order, in key order.
std::string Contents(SampleDatabase& database) {
  std::string text;
  for (const char* query :
       {"SELECT * FROM IC_Web2ERPOrders ORDER BY FID", "SELECT * FROM IC_Web2ERPOrdersEntry ORDER BY FEntryID",
        "SELECT * FROM IC_Web2ERPOrdersEx ORDER BY FID", "SELECT * FROM IC_PrintOrderInfo ORDER BY FID",
        "SELECT * FROM IC_StockBillOrdersStatus ORDER BY FID"}) {
    for (const RecordsetPtr rows = database.connection().Execute(query); !rows->eof(); rows->MoveNext()) {
      for (std::size_t i = 0; i < rows->fields().size(); ++i) {
        text += (rows->Get(i).is_null() ? "NULL" : rows->Get(i).ToText()) + "|";
      }
      text += "\n";
    }
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
      "IC_Web2ERPOrders h LEFT JOIN IC_Area a ON h.FDeliveryDistrict=a.FID WHERE a.FID IS NULL",
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
                                 "FShippingTypeName", "FTransactionTypeName", "FDeliveryDistrictName",
                                 "FLogisticsIDName",  "FChkManName",          "FBillerName",
                                 "FCurrencyID"};
    for (const char* name : names) named += orders->Get(name).is_null() ? 0 : 1;
  }
  const int unlocked =
      Count(Database(),
            "IC_Web2ERPOrders h WHERE NOT EXISTS (SELECT 1 FROM IC_Web2ERPOrdersEx x WHERE x.FID=h.FID AND "
            "x.FIsLock=1)");
  EXPECT_EQ(orders->RecordCount(), static_cast<std::size_t>(unlocked));
  EXPECT_EQ(keys.size(), orders->RecordCount());
  EXPECT_EQ(named, 10 * unlocked) << "a join finds no name";
  EXPECT_TRUE(orders->FindField("FGiftCardText").has_value());

  // Columns of tables that only some orders are in.
  const char* const sometimes[] = {"FPickManName",        "FShippingManName",   "FWeighttingMan",    "FStockBillStatus",
                                   "FTplOrderStatus",     "FIsShShip",          "FIsJzserviceOrder", "FMailNo",
                                   "FLogisticsStateName", "FPrintExpressUserID"};
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
      ASSERT_NE(lines->Get("FStockIDName").ToText(), "");
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

}  // namespace
}  // namespace tessarlorn::cli
