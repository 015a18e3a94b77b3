#include <gmock/gmock.h>

#include "frame/clsGetData.h"
#include "platform/text.h"
#include "support/recording_driver.h"

namespace tessarlorn {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class OrderListTest : public RecordingTest {
 protected:
  OrderListTest() { Answer("", false, false); }

  /// What the database answers: user-defined fields, whether the user may see every web shop, the refund setting.
  static void Answer(const char* user_fields, bool sees_all, bool refund_check_off) {
    TheRecording().answer = [=](std::string_view text) -> RecordsetPtr {
      const std::vector<std::vector<const char*>> one = {{"1"}};
      if (text.starts_with("declare")) return TextRows({"UserDefineFld"}, {{user_fields}});
      if (text.starts_with(" SELECT FValue")) return TextRows({"FValue"}, sees_all ? one : decltype(one){});
      if (text.starts_with("SELECT 1 FROM t_SystemProfile")) {
        return TextRows({"n"}, refund_check_off ? one : decltype(one){});
      }
      return TextRows({}, {});
    };
  }

  /// The batches that GetListData sends for a filter.
  std::vector<std::string> Send(const Dictionary& filter, std::string_view dsn = kDsn) {
    Events().clear();
    EXPECT_NE(get_.GetListData(dsn, &filter), nullptr);
    return TheRecording().Batches();
  }
  /// The WHERE text of the last batch, without its joins and order.
  std::string Where(const Dictionary& filter) {
    const std::string text = Send(filter).back();
    const std::size_t begin = text.rfind(" where 1=1");
    return text.substr(begin, text.rfind(") t order by") - begin);
  }

  clsGetData get_;
};

const char* const kUnlocked = " AND (t22.FIsLock = 0 OR t22.FIsLock IS NULL)";

TEST_F(OrderListTest, ListsWithoutAnyKey) {
  const std::vector<std::string> batches = Send({});
  ASSERT_EQ(batches.size(), 3U);
  EXPECT_EQ(batches[0], Lines({
                            "declare @strFld as varchar(1000)",
                            "select @strFld=''",
                            "select @strFld=@strFld+',t1.'+FFieldName ",
                            "from ICClassTableInfo where FClassTypeID=1014301 and FUserDefine=1 and FPage=1",
                            "select isnull(@strFld,'') as UserDefineFld",
                        }));
  EXPECT_EQ(batches[1],
            Lines({
                " SELECT FValue FROM t_SystemProfile WHERE FCategory='EC' and FKey = 'WebShopAccess' and FValue =0",
                " union ",
                "select 1 from t_Group where FGroupID =1 and FUserID =16394",
            }));
  EXPECT_THAT(batches[2], StartsWith("select * from (\r\nSELECT  t1.FID ,                                   -- "
                                     "网上订单内码\r\n        t1.FSiteOrderID ,\r\n"));
  EXPECT_THAT(batches[2], HasSubstr("        t22.FTplOrderID\r\nFROM    IC_Web2ERPOrders t1 with(nolock) \r\n"));
  EXPECT_THAT(batches[2],
              EndsWith(Lines({
                  " inner join (select  FWebShopID  from  IC_WebShopAccessData where FIsAccess=1 and FUserID "
                  "=16394) AccessDataWebShop on t1.FWebshopID=AccessDataWebShop.FWebShopID",
                  " where 1=1 ",
                  kUnlocked,
                  ") t order by FSitePayDate,FOrderID",
              })));
}

TEST_F(OrderListTest, ShapesTheColumns) {
  Answer(",t1.FColour,t1.FSize", true, false);
  const std::string text = Send({{"WebOrderMaxDisplayCount", "20"}}).back();
  EXPECT_THAT(text, StartsWith("select * from (\r\nSELECT  TOP 20 t1.FID , -- 网上订单内码\r\n"));
  EXPECT_THAT(text, HasSubstr("        t22.FTplOrderID\r\n,t1.FColour,t1.FSize\r\nFROM "));
  EXPECT_THAT(text, Not(HasSubstr("AccessDataWebShop")));
  EXPECT_THAT(text, HasSubstr("t14.FName AS FLogisticsIDName"));
  for (const char* dsn : {"Connect=Recording=a;Language=CHT", "Connect=Recording=a;Language=EN"}) {
    EXPECT_THAT(Send({{"WebOrderMaxDisplayCount", -1}}, dsn).back(),
                testing::AllOf(HasSubstr("t30.FName_CHT AS FDeliveryCountryName"), Not(HasSubstr("TOP"))));
  }
  EXPECT_THAT(Send({}, "Connect=Recording=a;Language= chs ").back(), HasSubstr("t30.FName AS FDeliveryCountryName"));
}

TEST_F(OrderListTest, FiltersByEachKey) {
  const Dictionary filter{
      {"FStockID", "Main"},
      {"OtherFilterOne", "t1.FAmount > 5"},
      {"FGoodsCount", "1=1"},
      {"FOrderStatus", 6},
      {"FLogisticsID", 3},
      {"FSiteID", "4"},
      {"FUpLoadStatus", 0},
      {"FOrderFlag", ""},
      {"FSendDateTo", ""},
      {"FShipDateFrom", "2024-05-06"},
      {"FOrderDateFrom", DateTime::Parse("2024-05-06 07:08:09").value()},
  };
  EXPECT_EQ(Where(filter), Lines({
                               " where 1=1 ",
                               " AND t1.FOrderDate >='2024-05-06 07:08:09'",
                               " AND convert(varchar(20),t1.FOnlineSendDate,120) >='2024-05-06 00:00:00'",
                               " AND convert(varchar(20),t1.FSendDate,120) <=''",
                               " AND t1.FUpLoadStatus =0",
                               " AND t1.FWebshopID ='4'",
                               " AND t14.FItemID ='3'",
                               " AND t1.FOrderStatus =6",
                               " AND ISNULL(t23.FStockBillStatus,0) <> 1",
                               " AND 1=1",
                               " AND t1.FAmount > 5",
                               "AND EXISTS (",
                               "SELECT  1",
                               "From IC_Web2ERPOrdersEntry a",
                               "INNER JOIN t_Stock b ON a.FStockID = b.FItemID AND b.FName = 'Main'",
                               "WHERE a.FID = t1.FID)",
                               kUnlocked,
                           }));
}

TEST_F(OrderListTest, FiltersByStatusAndLock) {
  const char* const locked =
      " AND t1.FCheckStatus = 1 AND t1.FOrderStatus > 1 AND t22.FIsLock = 1 AND t22.FLockStatus = 2";
  EXPECT_EQ(
      Where({{"FOrderStatus", 2}, {"WaitingForDelivery", 6}}),
      Lines({" where 1=1 ", " AND (t1.FOrderStatus =2 OR (t1.FOrderStatus = 6 AND ISNULL(t23.FStockBillStatus,0) = 1))",
             kUnlocked}));
  EXPECT_EQ(Where({{"FOrderStatus", 2}, {"IsLock", "1"}}), Lines({" where 1=1 ", locked}));
  EXPECT_EQ(Where({{"FOrderStatus", 2}, {"IsLock", 2}}), Lines({" where 1=1 ", kUnlocked}));
  EXPECT_EQ(Where({{"IsLock", ""}}), Lines({" where 1=1 ", kUnlocked}));
  const Dictionary no_number{{"IsLock", "abc"}};
  EXPECT_EQ(Raised([&] { get_.GetListData(kDsn, &no_number); }),
            "13 TessarLornPickingAndDelivery.clsGetData.GetListData");
}

TEST_F(OrderListTest, FiltersRefundsByTheSetting) {
  const struct {
    int status;
    bool check_off;
    std::vector<std::string_view> clauses;
  } cases[] = {
      {1, false, {"  AND (t26.FRefundStatus IS NULL OR (t26.FRefundStatus = 1 AND t26.FIsShowWaitVerifyTemp > 0))"}},
      {1,
       true,
       {"  AND (t26.FRefundStatus IS NULL OR (t26.FRefundStatus = 1 AND (t26.FIsShowWaitVerifyTemp > 0 OR "
        "(t26.FIsShowWaitVerifyTemp = 0 AND t1.FTransactionStatus IN (38193,38194)))))"}},
      {2,
       false,
       {" AND t1.FOrderStatus > 1", " AND (t26.FRefundStatus = 1 AND t26.FIsShowWaitVerifyTemp = 0 ",
        " OR EXISTS(SELECT 1 FROM IC_Web2ERPOrdersEntry WHERE FID=t1.FID ",
        " AND FStatus IN ('TRADE_CLOSED','TRADE_AUTOMATIC_CLOSED','TRADE_MANUAL_CLOSED')))"}},
      {2,
       true,
       {" AND t1.FOrderStatus > 1", " AND (t26.FRefundStatus = 1 AND t26.FIsShowWaitVerifyTemp = 0 ",
        " AND t1.FTransactionStatus NOT IN (38193,38194)",
        " OR EXISTS(SELECT 1 FROM IC_Web2ERPOrdersEntry WHERE FID=t1.FID ",
        " AND FStatus IN ('TRADE_CLOSED','TRADE_AUTOMATIC_CLOSED','TRADE_MANUAL_CLOSED')))"}},
      {3, true, {}},
  };
  for (const auto& c : cases) {
    Answer("", false, c.check_off);
    EXPECT_EQ(Where({{"FCloseOrRefundStatus", c.status}}), Lines({" where 1=1 ", kUnlocked}) + Lines(c.clauses))
        << c.status << c.check_off;
  }
}

TEST_F(OrderListTest, CollectsTheKeysOfAnAdvancedFilterFirst) {
  const auto keys = [&](const char* advanced) {
    const std::vector<std::string> batches =
        Send({{"AdvancedFilter", advanced}, {"FOrderStatus", 6}, {"IsLock", 1}, {"FOrderFlag", "x"}});
    EXPECT_THAT(batches.back(), EndsWith(Lines({
                                    "Where exists(select 1 from #Data where FID=t1.FID)",
                                    " order by t1.FSitePayDate ,t1.FOrderID ",
                                    "Drop Table #Data",
                                })));
    const std::string& text = batches[batches.size() - 2];
    EXPECT_THAT(text, StartsWith("Select distinct t1.FID into #Data\r\nFROM    IC_Web2ERPOrders t1 with(nolock) \r\n"));
    EXPECT_THAT(text, EndsWith("\r\n;\r\nCREATE NONCLUSTERED INDEX idx_#data_FID ON #Data(FID);\r\n"));
    EXPECT_THAT(text, Not(HasSubstr("FOrderFlag")));
    return text.substr(text.find("AccessDataWebShop.FWebShopID\r\n") + 30);
  };
  const std::string lines_join = "        LEFT JOIN IC_Web2ERPOrdersEntry t18 ON t18.FID=t1.FID";
  EXPECT_THAT(keys(" AND t1.FBuyerNick='Ann'"),
              StartsWith(Lines({" where 1=1 AND t1.FBuyerNick='Ann'", " AND t1.FOrderStatus =6"})));
  EXPECT_THAT(keys(" AND T18.FPrice>1"), StartsWith(Lines({lines_join, " where 1=1 AND T18.FPrice>1"})));
  EXPECT_THAT(keys(" AND t19.FName='Cup'"),
              StartsWith(Lines({lines_join, "        LEFT JOIN t_ICItem t19 ON t19.FItemID=t18.FItemID",
                                " where 1=1 AND t19.FName='Cup'"})));
  EXPECT_THAT(
      keys(" AND t20.FOnlineShopPNo='cup'"),
      StartsWith(Lines({
          lines_join,
          "        LEFT JOIN ic_weborder t20 ON t18.FChildOrderID=(cast(t20.FOID as varchar(50))) and t20.FOID <> 0 ",
          " WHERE 1=1 AND (case when t20.FOuterSKUID <>'' then t20.FouterSKUID else t20.FOuteriid end)='CUP'",
          " AND T1.FORDERSTATUS =6",
      })));
}

TEST_F(OrderListTest, AnswersNothingWithoutConnectionStringOrFilter) {
  const Dictionary filter;
  EXPECT_EQ(get_.GetListData("", &filter), nullptr);
  EXPECT_EQ(get_.GetListData(kDsn, nullptr), nullptr);
  EXPECT_TRUE(Events().empty());
  EXPECT_EQ(Raised([&] { get_.GetListData("Nobody=1", nullptr); }).substr(12),
            "TessarLornPickingAndDelivery.clsGetData.GetListData");
}

}  // namespace
}  // namespace tessarlorn
