#include <gmock/gmock.h>

#include "support/recording_driver.h"
#include "support/sample_test.h"

namespace tessarlorn {
namespace {

using testing::ElementsAre;

/// "site order|child orders|split|shop|carrier|waybill|order|key" of a report.
std::string Text(const Variant& report) {
  std::string text;
  std::string keys;
  for (const auto& [key, value] : *report.ToDictionary()) {
    text += (text.empty() ? "" : "|") + value.ToText();
    keys += key + " ";
  }
  EXPECT_EQ(keys, "SiteOrderID ChildIDs IsSplit FWebshopID FLogisticsNumber FLogisticsOrder FOrderID FID ");
  return text;
}

/// Marketplace orders of one, two and three lines, spread over orders and carriers.
class UploadDataTest : public SampleTest {
 protected:
  UploadDataTest() {
    Run("INSERT INTO IC_Logistics (FItemID, FNumber, FName) VALUES (7, 'QL', 'Quick'), (8, 'SL', 'Slow') "
        "INSERT INTO IC_Trade (FID, FTID, FWebshopID) VALUES (1, 'ONE', 31), (2, 'TWO', 31), (3, 'THREE', 32), "
        "(4, 'PARTED', 31), (5, 'COMMAS', 31), (6, 'BARE', 32) "
        "INSERT INTO IC_Web2ERPOrders (FID, FOrderID, FLogisticsID, FLogisticsOrder) VALUES (1, 'O1', 7, 'W1'), "
        "(2, 'O2', 8, 'W2'), (3, 'O3', 7, 'W3'), (4, 'O4', 7, 'W4'), (5, 'O5', 99, 'W5'), (6, 'O6', 7, 'W6,W7,W8'), "
        "(7, 'O7', 0, '')");
    Line(1, 1, "ONE", "c1");
    Line(2, 2, "TWO", "c1");
    Line(3, 2, "TWO", "c2");
    Line(4, 3, "THREE", "c1");
    Line(5, 3, "THREE", "c2");
    Line(6, 3, "THREE", "c3");
    // The other child order of PARTED is in order 5.
    Line(7, 4, "PARTED", "c1");
    Line(8, 5, "PARTED", "c2");
    Line(9, 6, "COMMAS", "c1");
    Line(10, 1, "", "");
    Line(11, 1, "UNKNOWN", "c1");
    Line(12, 7, "BARE", "");
  }
  void Line(int key, int order, const std::string& site, const std::string& child) {
    Run("INSERT INTO IC_Web2ERPOrdersEntry (FEntryID, FID, FSiteOrderID, FChildOrderID) "
        "VALUES (" +
        std::to_string(key) + ", " + std::to_string(order) + ", '" + site + "', '" + child + "')");
  }
  std::vector<std::string> Reports(const char* orders) {
    std::vector<std::string> texts;
    for (const Variant& report : get().GetUploadDataByFID(dsn_, orders)) texts.push_back(Text(report));
    return texts;
  }
};

TEST_F(UploadDataTest, ReportsWholeOrdersOnceAndSplitOnesByLine) {
  EXPECT_THAT(Reports("1"), ElementsAre("ONE||False|31|QL|W1|O1|1"));
  EXPECT_THAT(Reports("2"), ElementsAre("TWO||False|31|SL|W2|O2|2"));
  EXPECT_THAT(Reports("3"), testing::UnorderedElementsAre("THREE|c1|True|32|QL|W3|O3|3", "THREE|c2|True|32|QL|W3|O3|3",
                                                          "THREE|c3|True|32|QL|W3|O3|3"));
  // Fewer lines than child orders, one of which is elsewhere; with both at hand it is no longer split.
  EXPECT_THAT(Reports("4"), ElementsAre("PARTED|c1|True|31|QL|W4|O4|4"));
  EXPECT_THAT(Reports("4,5"), ElementsAre("PARTED||False|31|QL|W4|O4|4"));
  // A waybill that is several numbers counts as several; an unknown carrier has no code; no waybill is one all the
  // same.
  EXPECT_THAT(Reports("6"), ElementsAre("COMMAS|c1|True|31|QL|W6,W7,W8|O6|6"));
  EXPECT_THAT(Reports("5"), ElementsAre("PARTED|c2|True|31||W5|O5|5"));
  EXPECT_THAT(Reports("7"), ElementsAre("BARE||False|32|||O7|7"));
  EXPECT_TRUE(Reports("").empty());
  EXPECT_TRUE(Reports("99").empty());
}

class UploadPageTest : public UploadDataTest {
 protected:
  UploadPageTest() {
    Run("CREATE TABLE Run7 (fid int, fstatus int) CREATE TABLE Page1 (fid int, fstatus int) "
        "CREATE TABLE pageTable (fid int, fstatus int) "
        "CREATE TABLE Tasks7 (FTaskID nvarchar(50), FSiteOrderID nvarchar(50), FChildIDs nvarchar(50), FIsSplit bit, "
        "FWebshopID int, FLogisticsNumber nvarchar(50), FLogisticsOrder nvarchar(50), FOrderID nvarchar(50), FID int, "
        "FUpStatus int, FError nvarchar(50)) "
        "INSERT INTO Run7 SELECT FID, 0 FROM IC_Web2ERPOrders INSERT INTO Page1 VALUES (2, 0), (3, 0) "
        "INSERT INTO pageTable VALUES (1, 0)");
  }
  bool Upload(const char* page) { return get().GetUploadDataByTab(dsn_, page, "Run7", "Tasks7", "T7"); }
  std::string Rows(const std::string& table) {
    return Read(
        "SELECT FTaskID, FSiteOrderID, FChildIDs, FIsSplit, FWebshopID, FLogisticsNumber, FLogisticsOrder, "
        "FOrderID, FID, FUpStatus, FError FROM " +
        table + " ORDER BY FSiteOrderID, FChildIDs");
  }
  const std::string expected_ =
      "T7|THREE|c1|True|32|QL|W3|O3|3|0||T7|THREE|c2|True|32|QL|W3|O3|3|0||T7|THREE|c3|True|32|QL|W3|O3|3|0||"
      "T7|TWO||False|31|SL|W2|O2|2|0||";
};

TEST_F(UploadPageTest, WritesAPageOnce) {
  EXPECT_TRUE(Upload("Page1 pageTable"));
  EXPECT_EQ(Rows("Tasks7"), expected_);
  EXPECT_EQ(Rows("IC_UploadWebOrderIndicator"), expected_);
  EXPECT_EQ(Read("SELECT fid FROM Run7 WHERE fstatus = 1 ORDER BY fid"), "2|3|");

  // The page itself is not marked by the run: a second time writes task rows again, and no row of the list twice.
  EXPECT_TRUE(Upload("Page1 pageTable"));
  EXPECT_EQ(Read("SELECT COUNT(*) FROM Tasks7"), "8|");
  EXPECT_EQ(Rows("IC_UploadWebOrderIndicator"), expected_);

  // Once one of its orders is marked the page is done.
  Run("UPDATE Page1 SET fstatus = 1 WHERE fid = 3 DELETE FROM IC_UploadWebOrderIndicator");
  EXPECT_TRUE(Upload("Page1 pageTable"));
  EXPECT_EQ(Rows("IC_UploadWebOrderIndicator"), "");
}

TEST_F(UploadPageTest, NeedsThePageUnderItsName) {
  EXPECT_TRUE(Upload("pageTable"));
  EXPECT_EQ(Read("SELECT fid FROM Run7 WHERE fstatus = 1"), "1|");
  const std::string source = " TessarLornPickingAndDelivery.clsGetData.GetUploadDataByTab";
  EXPECT_EQ(Raised([&] { Upload("Page1"); }), std::to_string(error_number::kStatementError) + source);
  EXPECT_EQ(Raised([&] { Upload("Page9 pageTable"); }), std::to_string(error_number::kNoSuchTable) + source);
  EXPECT_EQ(Read("SELECT fid FROM Run7 WHERE fstatus = 1"), "1|");
  EXPECT_FALSE(Upload(""));
}

}  // namespace
}  // namespace tessarlorn
