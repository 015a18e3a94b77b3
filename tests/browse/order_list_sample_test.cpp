// The order list on sample data: what each filter lets through, against a plain query of the header table.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/sample_database.h"
#include "tessarlorn/clsGetData.h"
#include "tessarlorn/error.h"

namespace tessarlorn {
namespace {

constexpr int kOrders = 400;
constexpr int kAdministrator = 16394;
constexpr int kBlindUser = 16404;

constexpr const char* kUnlocked =
    "not exists(select 1 from IC_Web2ERPOrdersEx x where x.FID = o.FID and x.FIsLock <> 0)";

class OrderListSampleTest : public testing::Test {
 protected:
  static std::string KeysOf(const RecordsetPtr& rows) {
    std::string keys;
    for (; !rows->eof(); rows->MoveNext()) keys += rows->Get("FID").ToText() + " ";
    return keys;
  }
  std::string List(const Dictionary& filter, int user = kAdministrator) {
    return KeysOf(get_.GetListData(samples_.Dsn(user), &filter));
  }
  /// The keys of the headers that meet a condition, in the order of the list.
  std::string Headers(const std::string& condition) {
    return KeysOf(samples_.connection().Execute("select o.FID from IC_Web2ERPOrders o where " + condition +
                                                " order by o.FSitePayDate, o.FOrderID"));
  }
  std::string One(const std::string& query) {
    return samples_.connection().Execute(query)->Get(std::size_t{0}).ToText();
  }

  SampleDatabase samples_{kOrders};
  clsGetData get_{TestHost()};
};

TEST_F(OrderListSampleTest, EachFilterLetsThroughWhatItSays) {
  const std::string shop = One("select min(FWebshopID) from IC_Web2ERPOrders");
  const std::string warehouse = One(
      "select top 1 s.FName from t_Stock s join IC_Web2ERPOrdersEntry e on e.FStockID = s.FItemID order by e.FEntryID");
  const std::string middle = One("select convert(varchar(20), min(FOrderDate) + 100, 120) from IC_Web2ERPOrders");
  const std::pair<Dictionary, std::string> cases[] = {
      {{}, kUnlocked},
      {{{"FOrderStatus", 2}},
       std::string(kUnlocked) +
           " and o.FOrderStatus = 2 and not exists(select 1 from IC_StockBillOrdersStatus s where s.FID = o.FID and s.FStockBillStatus = 1)"},
      {{{"FOrderStatus", 6}, {"WaitingForDelivery", 14}},
       std::string(kUnlocked) +
           " and (o.FOrderStatus = 6 or (o.FOrderStatus = 14 and exists(select 1 from IC_StockBillOrdersStatus s where s.FID = o.FID and s.FStockBillStatus = 1)))"},
      {{{"FSiteID", shop}}, std::string(kUnlocked) + " and o.FWebshopID = '" + shop + "'"},
      {{{"FUpLoadStatus", 0}, {"FOrderType", 38112}},
       std::string(kUnlocked) + " and o.FUpLoadStatus = 0 and o.FOrderType = 38112"},
      {{{"FOrderDateFrom", middle}}, std::string(kUnlocked) + " and o.FOrderDate >= '" + middle + "'"},
      {{{"FOrderDateTo", middle}, {"FOrderStatus", ""}},
       std::string(kUnlocked) + " and o.FOrderDate <= '" + middle + "'"},
      {{{"FStockID", warehouse}},
       std::string(kUnlocked) +
           " and o.FID in (select e.FID from IC_Web2ERPOrdersEntry e join t_Stock s on s.FItemID = e.FStockID where s.FName = N'" +
           warehouse + "')"},
      {{{"OtherFilterOne", "t1.FID % 7 = 0"}}, std::string(kUnlocked) + " and o.FID % 7 = 0"},
      {{{"IsLock", 1}, {"FOrderStatus", 2}},
       "o.FCheckStatus = 1 and o.FOrderStatus > 1 and exists(select 1 from IC_Web2ERPOrdersEx x where x.FID = o.FID and x.FIsLock = 1 and x.FLockStatus = 2)"},
      {{{"AdvancedFilter", " AND t18.FQuantity > 1"}},
       std::string(kUnlocked) +
           " and exists(select 1 from IC_Web2ERPOrdersEntry e where e.FID = o.FID and e.FQuantity > 1)"},
      {{{"AdvancedFilter", " AND t19.FNumber = '02.003'"}, {"FSiteID", "no such shop"}},
       std::string(kUnlocked) +
           " and exists(select 1 from IC_Web2ERPOrdersEntry e join t_ICItem i on i.FItemID = e.FItemID where e.FID = o.FID and i.FNumber = '02.003')"},
  };
  for (const auto& [filter, condition] : cases) {
    SCOPED_TRACE(condition);
    const std::string wanted = Headers(condition);
    EXPECT_FALSE(wanted.empty());
    EXPECT_EQ(List(filter), wanted);
  }
  const std::string most = List({{"WebOrderMaxDisplayCount", 7}});
  EXPECT_EQ(std::count(most.begin(), most.end(), ' '), 7);
  EXPECT_EQ(List({{"WebOrderMaxDisplayCount", -1}}), List({}));
}

TEST_F(OrderListSampleTest, RefundsSplitTheListInTwo) {
  const std::size_t normal = List({{"FCloseOrRefundStatus", 1}}).size();
  const std::size_t refunding = List({{"FCloseOrRefundStatus", 2}}).size();
  EXPECT_GT(normal, 0U);
  EXPECT_GT(refunding, 0U);
  EXPECT_LT(normal, List({}).size());
  samples_.connection().Execute(
      "delete t_SystemProfile where FKey = 'NotCheckRefundOnStatus' "
      "insert t_SystemProfile (FCategory, FKey, FValue) values ('EC', 'NotCheckRefundOnStatus', '1')");
  EXPECT_GE(List({{"FCloseOrRefundStatus", 1}}).size(), normal);
  EXPECT_LE(List({{"FCloseOrRefundStatus", 2}}).size(), refunding);
}

TEST_F(OrderListSampleTest, ShowsOnlyTheWebShopsThatTheUserMaySee) {
  samples_.connection().Execute(
      "delete t_SystemProfile where FKey = 'WebShopAccess' insert t_SystemProfile (FCategory, FKey, FValue) values ('EC', 'WebShopAccess', '1')");
  const std::string clerk =
      One("select min(FUserID) from IC_WebShopAccessData where FIsAccess = 1 and FUserID <> 16394");
  EXPECT_EQ(
      List({}, std::stoi(clerk)),
      Headers(std::string(kUnlocked) +
              " and o.FWebshopID in (select FWebShopID from IC_WebShopAccessData where FIsAccess = 1 and FUserID = " +
              clerk + ")"));
  EXPECT_TRUE(List({}, kBlindUser).empty());
  EXPECT_EQ(List({}), Headers(kUnlocked));
  samples_.connection().Execute("update t_SystemProfile set FValue = '0' where FKey = 'WebShopAccess'");
  EXPECT_EQ(List({}, kBlindUser), Headers(kUnlocked));
}

TEST_F(OrderListSampleTest, NamesPlacesInTheCallersLanguage) {
  const Dictionary filter{{"WebOrderMaxDisplayCount", 1}};
  const RecordsetPtr simplified = get_.GetListData(samples_.Dsn(kAdministrator, "Language= chs ;"), &filter);
  const RecordsetPtr traditional = get_.GetListData(samples_.Dsn(kAdministrator, "Language=ENU;"), &filter);
  const std::string province = simplified->Get("FDeliveryProvince").ToText();
  EXPECT_EQ(simplified->Get("FDeliveryProvinceName").ToText(),
            One("select FName from IC_Area where FID = " + province));
  EXPECT_EQ(traditional->Get("FDeliveryProvinceName").ToText(),
            One("select FName_CHT from IC_Area where FID = " + province));
}

TEST_F(OrderListSampleTest, LinesCarryTheFieldsOfTheInstallation) {
  const Dictionary order{
      {"FID", One("select top 1 FID from IC_Web2ERPOrdersEntry group by FID having count(*) > 2 order by FID")}};
  const RecordsetPtr lines = get_.GetEntryData(samples_.Dsn(kAdministrator), &order);
  EXPECT_EQ(lines->fields().front().name, "FTest");
  EXPECT_TRUE(lines->FindField("FEngraving").has_value());
  EXPECT_TRUE(lines->FindField("FWrapping").has_value());
  std::string last;
  for (; !lines->eof(); lines->MoveNext()) {
    const std::string place = lines->Get("FIsFree").ToText() + std::to_string(1000 + lines->Get("FIndex").ToInt32());
    EXPECT_LT(last, place) << "gift lines stand last, each group by its number";
    last = place;
    EXPECT_NE(lines->Get("FMealID").ToText(), "0");
  }
}

}  // namespace
}  // namespace tessarlorn
