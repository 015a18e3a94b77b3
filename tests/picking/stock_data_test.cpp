#include <gmock/gmock.h>

#include "support/recording_driver.h"
#include "support/sample_test.h"

namespace tessarlorn {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using SaveBatchTest = RecordingTest;

TEST_F(SaveBatchTest, StoresWithoutQuotesAndLogsFirst) {
  const Vector lines{Dictionary{{"FBatchNo", "O'Neil-7"}, {"FStockID", "2'01"}, {"SPID", "'31'"}, {"FEntryID", 12}},
                     Dictionary{}};
  EXPECT_TRUE(save_.SaveBatchNo(kDsn, &lines));
  EXPECT_THAT(Events(),
              ElementsAre("WriteSaveOrderLog(,12,FBatchNo,ONeil-7)", "WriteSaveOrderLog(,0,FBatchNo,)",
                          testing::AllOf(
                              HasSubstr("FBatchNo = 'ONeil-7',FStockID = '201',FSPID = '31' WHERE FEntryID = 12\r\n"),
                              HasSubstr("FBatchNo = '',FStockID = '',FSPID = '' WHERE FEntryID = 0\r\n"))));
  const Vector none;
  EXPECT_FALSE(save_.SaveBatchNo(kDsn, &none));
}

/// Three orders: 1 in a warehouse with places, 2 in one without, 3 without lines. Line 13 is a price difference.
class StockDataTest : public SampleTest {
 protected:
  StockDataTest() {
    Run("INSERT INTO IC_Web2ERPOrders (FID) VALUES (1), (2), (3) "
        "INSERT INTO t_StockPlaceGroup (FSPGroupID, FName, FDefaultSPID) VALUES (5, N'甲组', 51), (6, N'乙组', 0) "
        "INSERT INTO t_StockPlace (FSPID, FName) VALUES (51, N'A-01'), (52, N'A-02'), (0, N'-') "
        "INSERT INTO t_Stock (FItemID, FName, FSPGroupID, FIsStockMgr) "
        "VALUES (201, N'中心仓', 5, 1), (202, N'北方仓', 6, 0), (203, N'南方仓', 6, 1) "
        "INSERT INTO t_ICItem (FItemID, FNumber, FName, FDefaultLoc, FSPID, FSerialClassID, FBatchManager) "
        "VALUES (1, 'A1', 'Tea', 201, 52, 0, 1), (2, 'A2', 'Cup', 202, 52, 0, 0), (3, 'A3', 'Clock', 0, 0, 4, 0), "
        "(4, 'PD', 'Difference', 201, 51, 0, 0) "
        "INSERT INTO ic_goodstomateriel (FID, FMaterielCode, FIsPriceChange) VALUES (1, 'PD', 1), (2, 'A1', 0) "
        "INSERT INTO IC_Web2ERPOrdersEntry (FEntryID, FID, FItemID, FStockID, FSPID, FBatchNo) "
        "VALUES (11, 1, 1, 201, 52, 'B7'), (12, 1, 2, 201, 0, NULL), (13, 1, 4, 201, 0, NULL), "
        "(21, 2, 2, 202, 0, ''), (14, 1, 2, 203, 0, 'x')");
  }
};

TEST_F(StockDataTest, ListsLinesOfWarehousesWithPlaces) {
  const Vector lines = get().bExistStockPositionManager(Keys("1,3")).value();
  std::vector<std::string> found;
  for (const Variant& line : lines) found.push_back(Told(line));
  EXPECT_THAT(found, testing::UnorderedElementsAre(
                         "FEntryID=11 FStockID=201 FStockName=中心仓 FDefaultStockPlaceGroupID=51 "
                         "FDefaultStockPlaceGroupName=甲组 FDefaultStockPlaceName=A-01 FDefaultItemStockPlaceID=52 ",
                         "FEntryID=12 FStockID=201 FStockName=中心仓 FDefaultStockPlaceGroupID=51 "
                         "FDefaultStockPlaceGroupName=甲组 FDefaultStockPlaceName=A-01 FDefaultItemStockPlaceID=0 ",
                         "FEntryID=14 FStockID=203 FStockName=南方仓 FDefaultStockPlaceGroupID=0 "
                         "FDefaultStockPlaceGroupName=乙组 FDefaultStockPlaceName= FDefaultItemStockPlaceID=0 "));
  EXPECT_TRUE(get().bExistStockPositionManager(Keys("2")).value().empty());
  EXPECT_FALSE(get().bExistStockPositionManager(Keys("")).has_value());
}

TEST_F(StockDataTest, TellsWhatIsMissing) {
  using Case = std::tuple<const char*, bool, bool>;
  // Null is no empty batch number.
  for (const auto& [orders, managed, empty] : {Case{"1", true, false}, Case{"2", false, true}, Case{"2,1", true, true},
                                               Case{"3", false, false}, Case{"", false, false}}) {
    const Parameters keys = Keys(orders);
    EXPECT_EQ(get().bExistBatchOrSerialManagerItem(keys), managed) << orders;
    EXPECT_EQ(get().bExistBatchEmpty(keys), empty) << orders;
  }
  Run("UPDATE IC_Web2ERPOrdersEntry SET FItemID = 3 WHERE FEntryID = 21");
  EXPECT_TRUE(get().bExistBatchOrSerialManagerItem(Keys("2")));
}

TEST_F(StockDataTest, ReadsBackWhatWasStored) {
  const Vector choice{Dictionary{{"FBatchNo", "L'1"}, {"FStockID", 201}, {"SPID", 51}, {"FEntryID", 21}}};
  EXPECT_TRUE(save().SaveBatchNo(dsn_, &choice));
  EXPECT_THAT(Told(get().GetBatchNo(Keys("2,3"))),
              testing::AnyOf("2 2 21 Cup A2 L1 中心仓 201 51 A-01 | 3          | ",
                             "3          | 2 2 21 Cup A2 L1 中心仓 201 51 A-01 | "));
}

}  // namespace
}  // namespace tessarlorn
