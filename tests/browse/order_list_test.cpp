#include <gmock/gmock.h>

#include "platform/text/text.h"
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
};

const char* const kUnlocked = " AND (t22.FIsLock = 0 OR t22.FIsLock IS NULL)";

// The whole statements stand in automation/statements.txt.
TEST_F(OrderListTest, TakesTheFieldsOfTheInstallationAndALimitAboveZero) {
  Answer(",t1.FColour,t1.FSize", true, false);
  EXPECT_THAT(Send({{"WebOrderMaxDisplayCount", "20"}}).back(),
              testing::AllOf(StartsWith("select * from (\r\nSELECT  TOP 20 t1.FID , "),
                             HasSubstr("        t22.FTplOrderID\r\n,t1.FColour,t1.FSize\r\nFROM "),
                             Not(HasSubstr("AccessDataWebShop"))));
  EXPECT_THAT(Send({{"WebOrderMaxDisplayCount", -1}}).back(), Not(HasSubstr("TOP")));
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
  const std::string waits = "(t26.FRefundStatus = 1 AND t26.FIsShowWaitVerifyTemp > 0)";
  const std::string closed =
      " OR EXISTS(SELECT 1 FROM IC_Web2ERPOrdersEntry WHERE FID=t1.FID \r\n"
      " AND FStatus IN ('TRADE_CLOSED','TRADE_AUTOMATIC_CLOSED','TRADE_MANUAL_CLOSED')))\r\n";
  const std::string refunding =
      " AND t1.FOrderStatus > 1\r\n AND (t26.FRefundStatus = 1 AND t26.FIsShowWaitVerifyTemp = 0 \r\n";
  const std::tuple<int, bool, std::string> cases[] = {
      {1, false, "  AND (t26.FRefundStatus IS NULL OR " + waits + ")\r\n"},
      {1, true,
       "  AND (t26.FRefundStatus IS NULL OR (t26.FRefundStatus = 1 AND (t26.FIsShowWaitVerifyTemp > 0 OR "
       "(t26.FIsShowWaitVerifyTemp = 0 AND t1.FTransactionStatus IN (38193,38194)))))\r\n"},
      {2, false, refunding + closed},
      {2, true, refunding + " AND t1.FTransactionStatus NOT IN (38193,38194)\r\n" + closed},
      {3, true, ""},
  };
  for (const auto& [status, check_off, clauses] : cases) {
    Answer("", false, check_off);
    EXPECT_EQ(Where({{"FCloseOrRefundStatus", status}}), Lines({" where 1=1 ", kUnlocked}) + clauses)
        << status << check_off;
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

class OrderLinesTest : public RecordingTest {
 protected:
  std::string Send(const char* user_fields) {
    Events().clear();
    TheRecording().answer = [=](std::string_view text) {
      return text.starts_with("declare") ? TextRows({"UserDefineFld"}, {{user_fields}}) : TextRows({}, {});
    };
    const Dictionary parameters{{"FID", 12}};
    EXPECT_NE(get_.GetEntryData(kDsn, &parameters), nullptr);
    EXPECT_EQ(TheRecording().Batches().size(), 2U);
    return TheRecording().Batches().back();
  }
};

TEST_F(OrderLinesTest, ReadsTheFieldsOfTheInstallation) {
  EXPECT_THAT(Send(""), testing::AllOf(HasSubstr("FActivityName\r\nFROM "), HasSubstr("\r\nand t1.FID=12\r\n")));
  EXPECT_THAT(Send(",t2.FColour"), HasSubstr("FActivityName\r\n,t2.FColour\r\nFROM "));
}

}  // namespace
}  // namespace tessarlorn
