#include <gmock/gmock.h>

#include "support/recording_driver.h"
#include "support/sample_test.h"

namespace tessarlorn {
namespace {

class ShopsAndBuyersTest : public SampleTest {
 protected:
  ShopsAndBuyersTest() {
    Run("INSERT INTO IC_WebshopToStorage (FID, FWebshopID, FWebShopName) VALUES (2, 31, 'Tea'), (1, 32, 'Cups') "
        "INSERT INTO IC_Logistics (FItemID, FNumber, FName, FName_Cht) VALUES (7, 'QL', N'快递', N'快遞') "
        "INSERT INTO IC_Web2ERPOrders (FID, FOrderID, FOrderStatus, FWebshopID, FLogisticsID, FBuyerName, "
        "FBuyerEMail) VALUES (3, 'O3', 2, 31, 7, 'Ann', 'a@x.example'), (5, 'O5', 6, 32, 0, 'Bob', ''), "
        "(6, 'O6', 6, 99, 7, 'Cid', '')");
  }
  Parameters Keys(const std::string& orders, const std::string& language = "CHS") {
    return {{"sDSN", database_.Dsn(16394, "Language=" + language + ";")}, {"FID", orders}};
  }
};

TEST_F(ShopsAndBuyersTest, ListsShopsAndBuyers) {
  const RecordsetPtr shops = get().GetWebShopData(Parameters{{"sDSN", dsn_}});
  ASSERT_EQ(shops->RecordCount(), 2U);
  EXPECT_EQ(shops->Get("FWebShopName").ToText(), "Cups");
  EXPECT_TRUE(shops->attached());
  EXPECT_EQ(get().GetCommunicaInformation(Keys("3,5"))->RecordCount(), 2U);
  EXPECT_EQ(get().GetCommunicaInformation(Keys("3"))->Get("FBuyerEMail").ToText(), "a@x.example");
}

TEST_F(ShopsAndBuyersTest, LeavesOrdersWithoutCarrierOrShopOut) {
  for (const auto& [language, name] : {std::pair{"CHT", "快遞"}, std::pair{"CHS", "快递"}, std::pair{"ENG", "快递"}}) {
    EXPECT_EQ(Told(get().GetMobileInformation(Keys("3,5,6", language)), {"FOrderID", "FWebShopName", "FLogisticsName"}),
              std::string("O3 Tea ") + name + " | ");
  }
}

TEST_F(ShopsAndBuyersTest, RefreshesAndReadsTheTitlesOfStates) {
  EXPECT_TRUE(get().ExeP_WebBillTitleData(dsn_));
  EXPECT_EQ(Told(get().GetWebBillTitleData(dsn_)), "2=待配货(1) 6=待发货(2) 14=已发货(0) ");
}

TEST_F(ShopsAndBuyersTest, SwallowsErrorsOfTitles) {
  for (const char* dsn : {"", "Embedded=/no/such/folder/x.db", "Nothing=here"}) {
    EXPECT_FALSE(get().GetWebBillTitleData(dsn).has_value()) << dsn;
    EXPECT_FALSE(get().ExeP_WebBillTitleData(dsn)) << dsn;
  }
  Run("DROP TABLE IC_WEBOrders_Status");
  EXPECT_FALSE(get().GetWebBillTitleData(dsn_).has_value());
  EXPECT_FALSE(get().ExeP_WebBillTitleData(dsn_));
}

TEST_F(ShopsAndBuyersTest, PassesSqlAndItsErrorsThrough) {
  RecordsetPtr rows;
  {
    clsGetData get{host_};
    EXPECT_EQ(get.ExecuteSQL(dsn_, "UPDATE IC_Web2ERPOrders SET FOrderFlag = 4 WHERE FID = 3"), nullptr);
    rows = get.ExecuteSQL(dsn_, "SELECT FID, FOrderFlag FROM IC_Web2ERPOrders ORDER BY FID");
  }
  host_.CloseIdle();
  // The connection is gone, the rows are not.
  EXPECT_FALSE(rows->attached());
  ASSERT_EQ(rows->RecordCount(), 3U);
  EXPECT_EQ(rows->Get("FOrderFlag").ToInt32(), 4);
  rows->MoveTo(2);
  EXPECT_EQ(rows->Get("FID").ToInt32(), 6);

  const auto from_driver = [this](std::string_view sql) {
    return Raised([&] { database_.connection().Execute(sql); });
  };
  for (const char* wrong : {"SELECT * FROM NoSuchTable", "SELEKT 1", "SELECT 1/0"}) {
    EXPECT_EQ(Raised([&] { get().ExecuteSQL(dsn_, wrong); }), from_driver(wrong)) << wrong;
    EXPECT_THAT(from_driver(wrong), testing::HasSubstr(" TessarLorn "));
  }
}

using WebShopSessionTest = RecordingTest;

// The list is opened while the session of the call before still holds its connection, so that it takes another.
TEST_F(WebShopSessionTest, DoesNotResetTheSessionBefore) {
  get_.GetUserDefineFilterTemplate(kDsn);
  Events().clear();
  get_.GetWebShopData(Parameters{{"sDSN", kDsn}});
  EXPECT_EQ(Events().front(), "open");
}

}  // namespace
}  // namespace tessarlorn
